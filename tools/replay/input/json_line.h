// One JSON object on one line, flattened: the members of a nested object are found under "outer.inner".

#ifndef ZT_TOOLS_REPLAY_INPUT_JSON_LINE_H
#define ZT_TOOLS_REPLAY_INPUT_JSON_LINE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/replay/input/row_error.h"

namespace replay {

/// A value of the object. Of nested arrays and of objects below the second level only the place is kept.
struct JsonValue {
  enum class Kind { kNull, kBoolean, kInteger, kOtherNumber, kText, kNested };

  Kind kind = Kind::kNull;
  bool boolean = false;         ///< kBoolean.
  bool negative = false;        ///< kInteger: the sign of `magnitude`.
  std::uint64_t magnitude = 0;  ///< kInteger.
  std::string text;             ///< kText: UTF-8; kOtherNumber: as it is written (a fraction, or beyond 64 bits).
};

struct JsonMember {
  std::string name;
  JsonValue value;
};

/// Reads line after line into the same storage.
class JsonLine {
 public:
  /// Reads `line`, which replaces what was read before. Throws RowError: not one object, text that is no UTF-8, an escape of a
  /// lone surrogate.
  void Parse(std::string_view line);

  /// All members in the order of the line.
  [[nodiscard]] std::span<const JsonMember> members() const { return {members_.data(), count_}; }

  /// The first member of that name, or null.
  [[nodiscard]] const JsonValue* Find(std::string_view name) const;

 private:
  friend class JsonLineBuilder;

  // Storage is kept from line to line: the first count_ members are those of the present one.
  std::vector<JsonMember> members_;
  std::size_t count_ = 0;
};

/// An integer, written as a JSON number or as text in decimal or hexadecimal ("0x4001"), that fits the type. Throws RowError.
std::int64_t ToSigned64(const JsonValue& value);
std::uint64_t ToUnsigned64(const JsonValue& value);
std::int32_t ToSigned32(const JsonValue& value);
std::uint32_t ToUnsigned32(const JsonValue& value);

/// Text. Throws RowError.
const std::string& ToText(const JsonValue& value);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_JSON_LINE_H
