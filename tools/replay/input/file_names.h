// What the names in captures stand for. Pure functions on Windows paths in UTF-8.

#ifndef ZT_TOOLS_REPLAY_INPUT_FILE_NAMES_H
#define ZT_TOOLS_REPLAY_INPUT_FILE_NAMES_H

#include <string>
#include <string_view>

namespace replay {

/// Without a leading "\??\" or "\\?\", which only say how the rest is to be read.
std::string_view WithoutNamespacePrefix(std::string_view name);

/// "C:\x": a name below a drive's root. Not the drive ("C:"), its root ("C:\") or a name that ends with a backslash.
bool IsOnDrive(std::string_view name);

/// "\\server\share\x": a name below a share. Not pipes and mailslots of a server, devices ("\\.\x") or a trailing backslash.
bool IsOnShare(std::string_view name);

/// The content of a folder, which file systems keep in a stream of its own: "C:\x:$I30:$INDEX_ALLOCATION".
bool IsFolderStream(std::string_view name);

/// All before the last backslash; empty where there is none.
std::string_view FolderOf(std::string_view name);

/// Where a rename to `destination` leads. A bare name, which stays in the folder of `source`, and a full path are handed back;
/// of the rest, "\x" is taken from the root of the source's drive and "a\x" from its folder.
std::string RenameTarget(std::string_view source, std::string_view destination);

/// The program of a command line: what is in quotes at its start; else all up to the first ".exe" that ends a word, since
/// unquoted paths have spaces too; else its first word.
std::string_view ProgramOf(std::string_view command_line);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_FILE_NAMES_H
