#include "trace/message_formatter.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <string_view>

#include "platform/utf8.h"
#include "trace/bounded_text.h"
#include "trace/number_text.h"

namespace zt {
namespace {

// One conversion of a format, without its "%".
struct Conversion {
  bool zero_fill = false;
  std::size_t width = 0;
  bool is_64_bit = false;
  char type = '\0';  // 'S' stands for "ws" too, '\0' for the format's end.
};

// Takes one character if it is the wanted one.
bool Skip(const char*& position, char wanted) {
  if (*position != wanted) {
    return false;
  }
  ++position;
  return true;
}

std::size_t ParseWidth(const char*& position) {
  std::size_t width = 0;
  for (; *position >= '0' && *position <= '9'; ++position) {
    // No message is wider than its buffer, so a longer width says nothing more, and cannot overflow.
    width = std::min(width * 10 + static_cast<std::size_t>(*position - '0'), kMessageCapacity);
  }
  return width;
}

// Parses what follows a "%" and moves `position` behind it, though never behind the format's end.
Conversion ParseConversion(const char*& position) {
  Conversion conversion;
  conversion.zero_fill = Skip(position, '0');
  if (!conversion.zero_fill) {
    Skip(position, ' ');
  }
  conversion.width = ParseWidth(position);
  const bool has_l = Skip(position, 'l');
  conversion.is_64_bit = has_l && Skip(position, 'l');
  if (position[0] == 'w' && position[1] == 's') {
    conversion.type = 'S';
    position += 2;
  } else if (*position != '\0') {
    conversion.type = *position++;
  }
  return conversion;
}

// Right-aligns a sign or base prefix and its digits: zeros go between them, spaces before both.
void AppendNumber(BoundedText& out, const Conversion& conversion, std::string_view prefix, std::string_view digits) {
  const std::size_t length = prefix.size() + digits.size();
  const std::size_t padding = conversion.width > length ? conversion.width - length : 0;
  if (!conversion.zero_fill) {
    out.Fill(padding, ' ');
  }
  out.Append(prefix);
  if (conversion.zero_fill) {
    out.Fill(padding, '0');
  }
  out.Append(digits);
}

void AppendSigned(BoundedText& out, const Conversion& conversion, std::int64_t value) {
  // Negated as unsigned: the smallest number has no positive counterpart.
  const auto bits = static_cast<std::uint64_t>(value);
  AppendNumber(out, conversion, value < 0 ? "-" : "", Digits(value < 0 ? 0 - bits : bits).view());
}

void AppendPointer(BoundedText& out, const void* pointer) {
  Conversion all_digits;
  all_digits.zero_fill = true;
  all_digits.width = 2 + 16;
  AppendNumber(out, all_digits, "0x", Digits(reinterpret_cast<std::uintptr_t>(pointer), kUpperHexDigits).view());
}

void AppendAligned(BoundedText& out, std::size_t width, std::string_view text) {
  out.Fill(width > text.size() ? width - text.size() : 0, ' ');
  out.Append(text);
}

// Converts character by character into the message itself, so that no length of string needs the heap.
void AppendWide(BoundedText& out, std::wstring_view text) {
  while (!text.empty() && !out.is_full()) {
    const Utf8Character character = FirstCharacterAsUtf8(text);
    out.Append(character.view());
    text.remove_prefix(character.unit_count);
  }
}

// The next of the caller's arguments.
template <typename T>
T Take(std::va_list* arguments) {
  return va_arg(*arguments, T);  // NOLINT(clang-analyzer-valist.Uninitialized): the analyzer loses a list behind a pointer.
}

std::int64_t TakeSigned(std::va_list* arguments, bool is_64_bit) {
  return is_64_bit ? Take<long long>(arguments) : Take<int>(arguments);
}

std::uint64_t TakeUnsigned(std::va_list* arguments, bool is_64_bit) {
  return is_64_bit ? Take<unsigned long long>(arguments) : Take<unsigned int>(arguments);
}

void Convert(BoundedText& out, const Conversion& conversion, std::va_list* arguments) {
  switch (conversion.type) {
    case 'd':
    case 'i':
      AppendSigned(out, conversion, TakeSigned(arguments, conversion.is_64_bit));
      break;
    case 'u':
      AppendNumber(out, conversion, "", Digits(TakeUnsigned(arguments, conversion.is_64_bit)).view());
      break;
    case 'x':
    case 'X': {
      const std::string_view symbols = conversion.type == 'x' ? kLowerHexDigits : kUpperHexDigits;
      AppendNumber(out, conversion, "0x", Digits(TakeUnsigned(arguments, conversion.is_64_bit), symbols).view());
      break;
    }
    case 'p':
      AppendPointer(out, Take<const void*>(arguments));
      break;
    case 'c': {
      const char character = static_cast<char>(Take<int>(arguments));
      AppendAligned(out, conversion.width, {&character, 1});
      break;
    }
    case 's':
      if (const auto* const text = Take<const char*>(arguments); text != nullptr) {
        AppendAligned(out, conversion.width, text);
      }
      break;
    case 'S':
      if (const auto* const text = Take<const wchar_t*>(arguments); text != nullptr) {
        AppendWide(out, text);
      }
      break;
    case '%':
      out.Append('%');
      break;
    default:
      break;
  }
}

}  // namespace

std::size_t TraceFormatMessage(char* destination, std::size_t /*ignored*/, const char* format, std::va_list arguments) {
  BoundedText out(destination, kMessageCapacity - 1);
  std::va_list copy;
  va_copy(copy, arguments);
  const char* position = format == nullptr ? "" : format;
  while (*position != '\0') {
    if (Skip(position, '%')) {
      Convert(out, ParseConversion(position), &copy);
    } else {
      out.Append(*position++);
    }
  }
  va_end(copy);
  destination[out.size()] = '\0';
  return out.size();
}

}  // namespace zt
