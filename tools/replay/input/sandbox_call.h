// One line of a sandbox's call log, and the small languages in which it writes times, numbers and structures.

#ifndef ZT_TOOLS_REPLAY_INPUT_SANDBOX_CALL_H
#define ZT_TOOLS_REPLAY_INPUT_SANDBOX_CALL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/replay/input/json_line.h"

namespace replay {

/// Values of the argument FileInformationClass.
enum InformationClass : std::uint64_t {
  kBasicInformation = 4,
  kStandardInformation = 5,
  kDispositionInformation = 13,
  kPositionInformation = 14,
  kAllocationInformation = 19,
  kEndOfFileInformation = 20,
  kNetworkOpenInformation = 34,
};

/// A call as it is logged. Throws RowError where a member is not what it should be.
class SandboxCall {
 public:
  std::uint64_t line = 0;
  JsonLine json;

  [[nodiscard]] std::uint64_t pid() const;
  [[nodiscard]] std::uint64_t parent_pid() const { return NumberOr("parent_id", 0); }
  [[nodiscard]] std::uint64_t tid() const { return NumberOr("thread_id", 0); }
  [[nodiscard]] std::string_view process_name() const { return TextOr("process_name", ""); }
  [[nodiscard]] std::string_view module_path() const { return TextOr("module_path", ""); }
  [[nodiscard]] std::string_view api() const;

  /// Time of the call in ticks since 1601, of a clock whose zone the log does not tell.
  [[nodiscard]] std::int64_t time() const;

  /// Whether the call succeeded; a log without a status has only such.
  [[nodiscard]] bool succeeded() const;

  /// How many equal calls the line stands for: one, and those that the sandbox folded into it.
  [[nodiscard]] std::uint64_t times() const;

  /// An argument; empty where the call has none of that name.
  [[nodiscard]] std::string_view Argument(std::string_view name) const;

  /// An argument that is a file's name, without the prefix of the object namespace.
  [[nodiscard]] std::string_view FileArgument(std::string_view name) const;

  /// The bytes of the structure that a file's information is set from or returned in.
  [[nodiscard]] std::string Information() const;

  /// An argument that is a number; nothing where the call has none of that name.
  [[nodiscard]] std::optional<std::uint64_t> NumberArgument(std::string_view name) const;

 private:
  [[nodiscard]] const JsonValue& Needed(std::string_view name) const;
  [[nodiscard]] std::uint64_t NumberOr(std::string_view name, std::uint64_t otherwise) const;
  [[nodiscard]] std::string_view TextOr(std::string_view name, std::string_view otherwise) const;
};

/// Whether a handle means the process itself, in programs of 32 or of 64 bits.
bool IsOwnProcess(std::optional<std::uint64_t> handle);

/// "2016-07-15 12:44:22,237" in ticks since 1601. Throws RowError.
std::int64_t ParseSandboxTime(std::string_view text);

/// The bytes of a structure: printable ones (and white space and the backslash) stand for themselves, others are written
/// "\x1f".
std::string DecodeStructure(std::string_view text);

/// The 64-bit little-endian number at `offset`, or nothing where the bytes end before.
std::optional<std::uint64_t> NumberAt(std::string_view bytes, std::size_t offset);

/// A structure that begins with a 64-bit number: some sandboxes log the whole buffer, of which the structure is the start.
/// Where the bytes are more than eight, but eight with full C escapes ("\\", "\n", "\0"), these are meant. Throws RowError.
std::uint64_t DecodeNumber(std::string_view text);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_SANDBOX_CALL_H
