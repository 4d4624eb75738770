// What a single row of Process Monitor says, without knowing the others.

#ifndef ZT_TOOLS_REPLAY_INPUT_PROCMON_FACTS_H
#define ZT_TOOLS_REPLAY_INPUT_PROCMON_FACTS_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "tools/replay/input/known_processes.h"
#include "tools/replay/input/procmon_rows.h"

namespace replay {

/// A file on a drive or on a share.
bool IsFileName(std::string_view path);

/// Text that is a number and nothing else.
std::optional<std::uint64_t> WholeNumber(std::string_view text);

/// The Options of a CreateFile, a list; empty where its Detail has none.
std::string_view OptionsOf(std::string_view detail);

/// Whether a row of success shows that its path is a folder.
bool ShowsFolder(std::string_view operation, std::string_view detail);

/// The process that a row belongs to. Throws RowError: a PID that is no number.
SeenProcess ProcessOf(const ProcmonRow& row);

/// Why an operation that has no event is no input, in plain words.
const char* ReasonFor(std::string_view operation);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_PROCMON_FACTS_H
