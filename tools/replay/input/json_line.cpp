#include "tools/replay/input/json_line.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "tools/replay/input/ascii.h"

namespace replay {
namespace {

using Json = nlohmann::json;

// Of the library's message the place in the line and the reason; the rest repeats the input.
std::string ReasonOf(std::size_t column, std::string_view message) {
  std::string reason = "not valid JSON at column " + std::to_string(column);
  const std::size_t start = message.find(" - ");
  if (start == std::string_view::npos) {
    return reason;
  }
  message.remove_prefix(start + 3);
  return reason + ": " + std::string(message.substr(0, message.find("; last read")));
}

struct Integer {
  bool negative;
  std::uint64_t magnitude;
};

Integer FromText(std::string_view text) {
  const std::string quoted = Quoted(text);
  Integer integer = {text.starts_with('-'), 0};
  if (integer.negative) {
    text.remove_prefix(1);
  }
  const bool hexadecimal = StartsWithNoCase(text, "0x");
  if (hexadecimal) {
    text.remove_prefix(2);
  }
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), integer.magnitude, hexadecimal ? 16 : 10);
  if (error == std::errc::result_out_of_range) {
    throw RowError(quoted + " is out of range");
  }
  if (error != std::errc() || end != text.data() + text.size()) {
    throw RowError(quoted + " is no integer");
  }
  return integer;
}

Integer ToInteger(const JsonValue& value) {
  if (value.kind == JsonValue::Kind::kInteger) {
    return {value.negative, value.magnitude};
  }
  if (value.kind == JsonValue::Kind::kText) {
    return FromText(value.text);
  }
  if (value.kind != JsonValue::Kind::kOtherNumber) {
    throw RowError("is no integer");
  }
  return FromText(value.text);
}

std::string Written(const Integer& integer) { return (integer.negative ? "-" : "") + std::to_string(integer.magnitude); }

template <typename Type>
Type ToSigned(const JsonValue& value) {
  const Integer integer = ToInteger(value);
  const auto most = static_cast<std::uint64_t>(std::numeric_limits<Type>::max());
  if (integer.magnitude > most + (integer.negative ? 1 : 0)) {
    throw RowError(Written(integer) + " is out of range");
  }
  return static_cast<Type>(integer.negative ? 0 - integer.magnitude : integer.magnitude);
}

template <typename Type>
Type ToUnsigned(const JsonValue& value) {
  const Integer integer = ToInteger(value);
  const bool below_zero = integer.negative && integer.magnitude != 0;
  if (below_zero || integer.magnitude > std::numeric_limits<Type>::max()) {
    throw RowError(Written(integer) + " is out of range");
  }
  return static_cast<Type>(integer.magnitude);
}

}  // namespace

// Fills a JsonLine as the parser meets the values.
class JsonLineBuilder : public Json::json_sax_t {
 public:
  explicit JsonLineBuilder(JsonLine& line) : line_(line) {}

  bool null() override { return Add(JsonValue::Kind::kNull); }
  bool boolean(bool value) override {
    if (Add(JsonValue::Kind::kBoolean)) {
      last_->boolean = value;
    }
    return true;
  }
  bool number_integer(std::int64_t value) override {
    if (!Add(JsonValue::Kind::kInteger)) {
      return true;
    }
    last_->negative = value < 0;
    last_->magnitude = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    return true;
  }
  bool number_unsigned(std::uint64_t value) override {
    if (!Add(JsonValue::Kind::kInteger)) {
      return true;
    }
    last_->negative = false;
    last_->magnitude = value;
    return true;
  }
  bool number_float(double, const std::string& written) override {
    if (Add(JsonValue::Kind::kOtherNumber)) {
      last_->text = written;
    }
    return true;
  }
  bool string(std::string& value) override {
    if (Add(JsonValue::Kind::kText)) {
      last_->text.swap(value);
    }
    return true;
  }
  bool binary(Json::binary_t&) override { return true; }  // There is none in text.
  bool start_object(std::size_t) override {
    if (depth_ > 0) {
      Add(JsonValue::Kind::kNested);
    }
    if (depth_ == 1) {
      outer_ = key_ + '.';
    }
    ++depth_;
    return true;
  }
  bool end_object() override { return End(); }
  bool start_array(std::size_t) override {
    if (depth_ == 0) {
      throw RowError("not a JSON object");
    }
    Add(JsonValue::Kind::kNested);
    ++depth_;
    ++arrays_;
    return true;
  }
  bool end_array() override {
    --arrays_;
    return End();
  }
  bool key(std::string& name) override {
    key_.swap(name);
    return true;
  }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error) override {
    throw RowError(ReasonOf(position, error.what()));
  }

 private:
  // Adds a member for the value that comes, or returns false where values are not kept.
  bool Add(JsonValue::Kind kind) {
    if (depth_ == 0) {
      throw RowError("not a JSON object");
    }
    if (arrays_ > 0 || depth_ > 2) {
      return false;
    }
    if (line_.count_ == line_.members_.size()) {
      line_.members_.emplace_back();
    }
    JsonMember& member = line_.members_[line_.count_++];
    member.name = depth_ == 1 ? key_ : outer_ + key_;
    member.value.kind = kind;
    last_ = &member.value;
    return true;
  }

  bool End() {
    --depth_;
    return true;
  }

  JsonLine& line_;
  JsonValue* last_ = nullptr;
  std::string key_;
  std::string outer_;  // Put before the names of the second level.
  std::size_t depth_ = 0;
  std::size_t arrays_ = 0;
};

void JsonLine::Parse(std::string_view line) {
  count_ = 0;
  line.remove_suffix(line.size() - (line.find_last_not_of("\r\n") + 1));  // The line end has no column.
  JsonLineBuilder builder(*this);
  Json::sax_parse(line, &builder);
}

const JsonValue* JsonLine::Find(std::string_view name) const {
  const auto all = members();
  const auto found = std::find_if(all.begin(), all.end(), [name](const JsonMember& member) { return member.name == name; });
  return found == all.end() ? nullptr : &found->value;
}

std::int64_t ToSigned64(const JsonValue& value) { return ToSigned<std::int64_t>(value); }
std::uint64_t ToUnsigned64(const JsonValue& value) { return ToUnsigned<std::uint64_t>(value); }
std::int32_t ToSigned32(const JsonValue& value) { return ToSigned<std::int32_t>(value); }
std::uint32_t ToUnsigned32(const JsonValue& value) { return ToUnsigned<std::uint32_t>(value); }

const std::string& ToText(const JsonValue& value) {
  if (value.kind != JsonValue::Kind::kText) {
    throw RowError("is no text");
  }
  return value.text;
}

}  // namespace replay
