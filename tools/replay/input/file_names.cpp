#include "tools/replay/input/file_names.h"

#include <algorithm>
#include <array>

#include "tools/replay/input/ascii.h"

namespace replay {
namespace {

bool HasDrive(std::string_view name) {
  return name.size() >= 2 && LowerCase(name[0]) >= 'a' && LowerCase(name[0]) <= 'z' && name[1] == ':';
}

bool IsBlankCharacter(char c) { return c == ' ' || c == '\t'; }

// After the first ".exe" at which a word ends, or npos.
std::size_t EndOfExeName(std::string_view text) {
  constexpr std::string_view kExtension = ".exe";
  for (std::size_t at = kExtension.size(); at <= text.size(); ++at) {
    if (at < text.size() && !IsBlankCharacter(text[at])) {
      continue;
    }
    if (EndsWithNoCase(text.substr(0, at), kExtension)) {
      return at;
    }
  }
  return std::string_view::npos;
}

}  // namespace

std::string_view WithoutNamespacePrefix(std::string_view name) {
  if (name.starts_with("\\??\\") || name.starts_with(R"(\\?\)")) {
    name.remove_prefix(4);
  }
  return name;
}

bool IsOnDrive(std::string_view name) { return HasDrive(name) && name.size() > 3 && name[2] == '\\' && name.back() != '\\'; }

bool IsOnShare(std::string_view name) {
  constexpr std::array<std::string_view, 3> kNoShares = {"pipe", "mailslot", "ipc$"};
  if (!name.starts_with("\\\\") || name.back() == '\\') {
    return false;
  }
  const std::size_t server_end = name.find('\\', 2);
  if (server_end == std::string_view::npos) {
    return false;
  }
  const std::size_t share_end = name.find('\\', server_end + 1);
  if (share_end == std::string_view::npos) {
    return false;
  }
  const std::string_view server = name.substr(2, server_end - 2);
  const std::string_view share = name.substr(server_end + 1, share_end - server_end - 1);
  if (server.empty() || server == "." || server == "?" || share.empty()) {
    return false;
  }
  return std::none_of(kNoShares.begin(), kNoShares.end(), [share](std::string_view no) { return EqualNoCase(share, no); });
}

bool IsFolderStream(std::string_view name) {
  return EndsWithNoCase(name, ":$INDEX_ALLOCATION") || EndsWithNoCase(name, ":$I30:$BITMAP");
}

std::string_view FolderOf(std::string_view name) {
  const std::size_t end = name.rfind('\\');
  return end == std::string_view::npos ? std::string_view() : name.substr(0, end);
}

std::string RenameTarget(std::string_view source, std::string_view destination) {
  destination = WithoutNamespacePrefix(destination);
  const bool bare = destination.find('\\') == std::string_view::npos;
  if (bare || HasDrive(destination) || destination.starts_with("\\\\")) {
    return std::string(destination);
  }
  if (destination.starts_with('\\')) {
    return std::string(HasDrive(source) ? source.substr(0, 2) : "").append(destination);
  }
  return std::string(FolderOf(source)).append("\\").append(destination);
}

std::string_view ProgramOf(std::string_view command_line) {
  command_line.remove_prefix(std::min(command_line.find_first_not_of(" \t"), command_line.size()));
  if (command_line.starts_with('"')) {
    command_line.remove_prefix(1);
    return command_line.substr(0, command_line.find('"'));
  }
  const std::size_t exe_end = EndOfExeName(command_line);
  return command_line.substr(0, exe_end != std::string_view::npos ? exe_end : command_line.find_first_of(" \t"));
}

}  // namespace replay
