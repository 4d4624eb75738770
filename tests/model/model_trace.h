// What the model traces, put together with plain string functions.

#ifndef ZT_TESTS_MODEL_MODEL_TRACE_H
#define ZT_TESTS_MODEL_MODEL_TRACE_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zt::model {

/// One line of trace.
struct ModelLine {
  std::int32_t line = 0;  ///< Its source line; 0 where the engine is free to choose it.
  std::string level;
  std::string message;
};

/// The number in the "Time past" line: each run has another.
inline constexpr std::string_view kAnyNumber = "N";

// Arguments of a trace line, as text. The 32-bit ones read the low 32 bits.
std::string Signed32(std::uint64_t value);
std::string Unsigned32(std::uint64_t value);
std::string Signed64(std::int64_t value);
/// "0x" and lower-case digits, filled with zeros to eight characters in all.
std::string Hex8(std::uint32_t value);
/// UTF-8 of the text up to its first zero unit; half a surrogate pair alone becomes U+FFFD.
std::string Utf8(const std::wstring& text);

/// Collects lines and counts what was reached.
class ModelTrace {
 public:
  /// @param flags  bits 0x1 (information), 0x2 (debug) and 0x4 (warning)
  explicit ModelTrace(std::uint64_t flags) : flags_(flags) {}

  // Each writes `format` with its conversions replaced by `arguments` in turn, when the flags let it. `format` is a literal.
  void Debug(std::int32_t line, std::string_view format, const std::vector<std::string>& arguments = {});
  void Warning(std::int32_t line, std::string_view format, const std::vector<std::string>& arguments = {});
  void Info(std::int32_t line, std::string_view format, const std::vector<std::string>& arguments = {});

  /// Counts a branch that leaves no line of its own. `branch` is a literal.
  void Reached(std::string_view branch) { ++reached_[branch]; }
  /// How often each format was written and each branch was reached.
  [[nodiscard]] const std::map<std::string_view, std::uint64_t>& reached() const { return reached_; }

  /// The lines since the last call.
  std::vector<ModelLine> Take();

 private:
  void Write(std::uint64_t flag, std::int32_t line, std::string_view level, std::string_view format,
             const std::vector<std::string>& arguments);

  std::uint64_t flags_;
  std::vector<ModelLine> lines_;
  std::map<std::string_view, std::uint64_t> reached_;
};

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_MODEL_TRACE_H
