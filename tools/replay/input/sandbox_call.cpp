#include "tools/replay/input/sandbox_call.h"

#include <array>
#include <charconv>
#include <utility>

#include "tools/replay/input/ascii.h"
#include "tools/replay/input/file_names.h"
#include "tools/replay/input/row_error.h"
#include "tools/replay/input/ticks.h"

namespace replay {
namespace {

// Runs `read` on the value and says whose it was when it is not what it should be.
template <typename Read>
auto Named(std::string_view name, const Read& read) {
  try {
    return read();
  } catch (const RowError& error) {
    throw RowError("the member " + Quoted(name) + ": " + error.what());
  }
}

// "\xHH" at the start of the text.
std::optional<char> HexEscape(std::string_view text) {
  if (!text.starts_with("\\x") || text.size() < 4) {
    return std::nullopt;
  }
  unsigned value = 0;
  const auto [end, error] = std::from_chars(text.data() + 2, text.data() + 4, value, 16);
  if (error != std::errc() || end != text.data() + 4) {
    return std::nullopt;
  }
  return static_cast<char>(value);
}

// The escapes of one letter.
std::optional<char> LetterEscape(std::string_view text) {
  constexpr std::string_view kLetters = "\\nrt0abfv\"'";
  constexpr std::string_view kBytes("\\\n\r\t\0\a\b\f\v\"'", 11);
  if (text.size() < 2 || text[0] != '\\') {
    return std::nullopt;
  }
  const std::size_t at = kLetters.find(text[1]);
  if (at == std::string_view::npos) {
    return std::nullopt;
  }
  return kBytes[at];
}

std::string Decode(std::string_view text, bool letter_escapes) {
  std::string bytes;
  while (!text.empty()) {
    const auto hex = HexEscape(text);
    const auto letter = letter_escapes && !hex ? LetterEscape(text) : std::nullopt;
    bytes += hex.value_or(letter.value_or(text.front()));
    text.remove_prefix(hex ? 4 : letter ? 2 : 1);
  }
  return bytes;
}

// Takes digits and the separator behind them off the text.
bool TakeNumber(std::string_view& text, std::string_view separators, unsigned& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) {
    return false;
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (separators.empty()) {
    return true;
  }
  if (text.empty() || separators.find(text.front()) == std::string_view::npos) {
    return false;
  }
  text.remove_prefix(1);
  return true;
}

// Behind the seconds: nothing, or a decimal fraction of any length.
std::optional<std::int64_t> FractionTicks(std::string_view text) {
  if (text.empty()) {
    return 0;
  }
  if ((text.front() != ',' && text.front() != '.') || text.size() < 2) {
    return std::nullopt;
  }
  text.remove_prefix(1);
  std::int64_t ticks = 0;
  std::int64_t unit = kTicksPerSecond;
  for (const char c : text) {
    if (!IsDigit(c)) {
      return std::nullopt;
    }
    unit /= 10;
    ticks += (c - '0') * unit;
  }
  return ticks;
}

}  // namespace

std::uint64_t SandboxCall::pid() const {
  return Named("process_id", [this] { return ToUnsigned64(Needed("process_id")); });
}

std::string_view SandboxCall::api() const {
  return Named("api", [this]() -> std::string_view { return ToText(Needed("api")); });
}

std::int64_t SandboxCall::time() const {
  return Named("timestamp", [this] { return ParseSandboxTime(ToText(Needed("timestamp"))); });
}

bool SandboxCall::succeeded() const {
  const JsonValue* status = json.Find("status");
  if (status == nullptr) {
    return true;
  }
  if (status->kind == JsonValue::Kind::kBoolean) {
    return status->boolean;
  }
  return Named("status", [status] { return ToUnsigned64(*status); }) != 0;
}

std::uint64_t SandboxCall::times() const {
  constexpr std::uint64_t kMost = 1'000'000;
  const std::uint64_t repeated = NumberOr("repeated", 0);
  if (repeated > kMost) {
    throw RowError("the member \"repeated\": more than a million equal calls");
  }
  return repeated + 1;
}

std::string_view SandboxCall::Argument(std::string_view name) const {
  const std::string path = "arguments." + std::string(name);
  const JsonValue* value = json.Find(path);
  if (value == nullptr || value->kind == JsonValue::Kind::kNull) {
    return {};
  }
  return Named(path, [value]() -> std::string_view { return ToText(*value); });
}

std::string_view SandboxCall::FileArgument(std::string_view name) const { return WithoutNamespacePrefix(Argument(name)); }

std::string SandboxCall::Information() const { return DecodeStructure(Argument("FileInformation")); }

std::optional<std::uint64_t> SandboxCall::NumberArgument(std::string_view name) const {
  const std::string path = "arguments." + std::string(name);
  const JsonValue* value = json.Find(path);
  if (value == nullptr) {
    return std::nullopt;
  }
  return Named(path, [value] { return ToUnsigned64(*value); });
}

const JsonValue& SandboxCall::Needed(std::string_view name) const {
  const JsonValue* value = json.Find(name);
  if (value == nullptr) {
    throw RowError("is missing");
  }
  return *value;
}

std::uint64_t SandboxCall::NumberOr(std::string_view name, std::uint64_t otherwise) const {
  const JsonValue* value = json.Find(name);
  if (value == nullptr || value->kind == JsonValue::Kind::kNull) {
    return otherwise;
  }
  return Named(name, [value] { return ToUnsigned64(*value); });
}

std::string_view SandboxCall::TextOr(std::string_view name, std::string_view otherwise) const {
  const JsonValue* value = json.Find(name);
  if (value == nullptr || value->kind == JsonValue::Kind::kNull) {
    return otherwise;
  }
  return Named(name, [value]() -> std::string_view { return ToText(*value); });
}

bool IsOwnProcess(std::optional<std::uint64_t> handle) {
  const std::uint64_t value = handle.value_or(0);
  return value == 0xFFFFFFFFU || value == 0xFFFFFFFFFFFFFFFFU;
}

std::int64_t ParseSandboxTime(std::string_view text) {
  std::string_view rest = text;
  std::array<unsigned, 6> parts = {};
  constexpr std::array<std::string_view, 6> kSeparators = {"-", "-", " T", ":", ":", ""};
  bool readable = true;
  for (std::size_t i = 0; i < parts.size() && readable; ++i) {
    readable = TakeNumber(rest, kSeparators[i], parts[i]);
  }
  const auto [year, month, day, hour, minute, second] = parts;
  const auto days = readable ? DaysSince1601(static_cast<int>(year), month, day) : std::nullopt;
  const auto fraction = readable ? FractionTicks(rest) : std::nullopt;
  if (!days || !fraction || hour > 23 || minute > 59 || second > 59) {
    throw RowError("cannot read the time " + Quoted(text));
  }
  return *days * kTicksPerDay + ((hour * 60 + minute) * 60 + second) * kTicksPerSecond + *fraction;
}

std::string DecodeStructure(std::string_view text) { return Decode(text, false); }

std::optional<std::uint64_t> NumberAt(std::string_view bytes, std::size_t offset) {
  if (bytes.size() < offset + 8) {
    return std::nullopt;
  }
  std::uint64_t number = 0;
  for (std::size_t i = 8; i > 0; --i) {
    number = number << 8 | static_cast<unsigned char>(bytes[offset + i - 1]);
  }
  return number;
}

std::uint64_t DecodeNumber(std::string_view text) {
  std::string bytes = DecodeStructure(text);
  if (bytes.size() > 8) {
    if (std::string decoded = Decode(text, true); decoded.size() == 8) {
      bytes = std::move(decoded);
    }
  }
  if (const auto number = NumberAt(bytes, 0)) {
    return *number;
  }
  throw RowError("the argument \"FileInformation\" does not hold eight bytes");
}

}  // namespace replay
