#include "trace/message_formatter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace zt {
namespace {

// Formats, and checks what holds for every message: it ends in NUL where it says, and nothing behind the capacity is touched.
std::string Format(const char* format, ...) {
  constexpr char kUntouched = '\x7F';
  std::vector<char> buffer(kMessageCapacity + 64, kUntouched);
  std::va_list arguments;
  va_start(arguments, format);
  const std::size_t length = TraceFormatMessage(buffer.data(), 0, format, arguments);
  va_end(arguments);
  EXPECT_LT(length, kMessageCapacity);
  EXPECT_EQ(buffer[length], '\0');
  EXPECT_THAT(std::vector<char>(buffer.begin() + kMessageCapacity, buffer.end()), ::testing::Each(kUntouched));
  return {buffer.data(), length};
}

// The C library's text for one number. The format is put together, which its attribute does not like.
template <typename Number>
std::string CLibrary(const std::string& format, Number number) {
  std::array<char, 128> text = {};
  static_cast<void>(std::snprintf(text.data(), text.size(), format.c_str(), number));
  return text.data();
}

TEST(MessageFormatterTest, LiteralTextIsCopied) {
  EXPECT_EQ(Format(""), "");
  EXPECT_EQ(Format("plain text, \r\n\t\xC3\xA4"), "plain text, \r\n\t\xC3\xA4");
}

TEST(MessageFormatterTest, NullFormatIsEmpty) { EXPECT_EQ(Format(nullptr), ""); }

TEST(MessageFormatterTest, SecondParameterIsIgnored) {
  const auto format = [](std::size_t ignored, ...) {
    std::array<char, kMessageCapacity> buffer;
    std::va_list arguments;
    va_start(arguments, ignored);
    const std::size_t length = TraceFormatMessage(buffer.data(), ignored, "%d", arguments);
    va_end(arguments);
    return std::string(buffer.data(), length);
  };
  EXPECT_EQ(format(0, 12345), "12345");
  EXPECT_EQ(format(1, 12345), "12345");
}

TEST(MessageFormatterTest, ArgumentListIsLeftAsItWas) {
  const auto format_twice = [](const char* format, ...) {
    std::array<char, kMessageCapacity> buffer;
    std::va_list arguments;
    va_start(arguments, format);
    TraceFormatMessage(buffer.data(), 0, format, arguments);
    TraceFormatMessage(buffer.data(), 0, format, arguments);
    va_end(arguments);
    return std::string(buffer.data());
  };
  EXPECT_EQ(format_twice("%d %s", 5, "x"), "5 x");
}

// ---- signed numbers

TEST(MessageFormatterTest, SignedNumbers) {
  EXPECT_EQ(Format("%d", 0), "0");
  EXPECT_EQ(Format("%d", 5), "5");
  EXPECT_EQ(Format("%d", -5), "-5");
  EXPECT_EQ(Format("%i", 2147483647), "2147483647");
  EXPECT_EQ(Format("%i", std::numeric_limits<int>::min()), "-2147483648");
}

TEST(MessageFormatterTest, SignedNumbersAreRightAligned) {
  EXPECT_EQ(Format("[%5d]", 42), "[   42]");
  EXPECT_EQ(Format("[% 5d]", 42), "[   42]");
  EXPECT_EQ(Format("[%5d]", -42), "[  -42]");
  EXPECT_EQ(Format("[%2d]", 12345), "[12345]");
  EXPECT_EQ(Format("[% d]", 42), "[42]");  // The space pads; it is no sign.
}

TEST(MessageFormatterTest, ZeroFilledNegativeNumberGivesUpOneFillDigit) {
  EXPECT_EQ(Format("[%05d]", 42), "[00042]");
  EXPECT_EQ(Format("[%05d]", -42), "[-0042]");
  EXPECT_EQ(Format("[%03d]", -42), "[-42]");
  EXPECT_EQ(Format("[%02d]", -42), "[-42]");
}

TEST(MessageFormatterTest, OneLTakesThirtyTwoBits) {
  // Were 64 bits taken, the numbers after the first would shift.
  EXPECT_EQ(Format("%ld %ld %lu %lx %ld", -1, 2, 4294967295u, 255u, 3), "-1 2 4294967295 0xff 3");
}

TEST(MessageFormatterTest, TwoLsTakeSixtyFourBits) {
  EXPECT_EQ(Format("%lld", std::numeric_limits<long long>::min()), "-9223372036854775808");
  EXPECT_EQ(Format("%lli", std::numeric_limits<long long>::max()), "9223372036854775807");
  EXPECT_EQ(Format("%llu", std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
  EXPECT_EQ(Format("%llx", 0x123456789ABCDEFull), "0x123456789abcdef");
  EXPECT_EQ(Format("%llX", 0x123456789ABCDEFull), "0x123456789ABCDEF");
  EXPECT_EQ(Format("[%020lld]", -1LL), "[-0000000000000000001]");
}

// ---- numbers against the C library, for all flags and widths where both mean the same

struct PadAndWidth {
  std::string ours;       // As this formatter writes it...
  std::string c_library;  // ...and as the C library does: its space flag means a sign, so there is none for it.
};

std::vector<PadAndWidth> AllPadsAndWidths() {
  std::vector<PadAndWidth> all;
  for (const std::string width :
       {"", "1", "2", "3", "4", "5", "8", "9", "10", "11", "12", "16", "18", "19", "20", "21", "22", "40"}) {
    all.push_back({width, width});
    all.push_back({"0" + width, "0" + width});
    all.push_back({" " + width, width});
  }
  return all;
}

template <typename Signed>
std::vector<Signed> BoundaryNumbers() {
  std::vector<Signed> numbers = {0, std::numeric_limits<Signed>::min(), std::numeric_limits<Signed>::max(),
                                 std::numeric_limits<Signed>::min() + 1, std::numeric_limits<Signed>::max() - 1};
  for (Signed power = 1; power <= std::numeric_limits<Signed>::max() / 10; power *= 10) {
    numbers.insert(numbers.end(), {power - 1, power, power + 1, -power, -power - 1, -power + 1});
  }
  for (Signed power = 1; power <= std::numeric_limits<Signed>::max() / 16; power *= 16) {
    numbers.insert(numbers.end(), {power - 1, power, power + 1, -power});
  }
  return numbers;
}

TEST(MessageFormatterTest, SignedNumbersAgreeWithTheCLibrary) {
  for (const auto& [ours, c_library] : AllPadsAndWidths()) {
    for (const std::int32_t number : BoundaryNumbers<std::int32_t>()) {
      const std::string expected = CLibrary("%" + c_library + "d", number);
      EXPECT_EQ(Format(("%" + ours + "d").c_str(), number), expected) << ours;
      EXPECT_EQ(Format(("%" + ours + "i").c_str(), number), expected) << ours;
      EXPECT_EQ(Format(("%" + ours + "ld").c_str(), number), expected) << ours;
    }
    for (const long long number : BoundaryNumbers<long long>()) {
      EXPECT_EQ(Format(("%" + ours + "lld").c_str(), number), CLibrary("%" + c_library + "lld", number)) << ours;
    }
  }
}

TEST(MessageFormatterTest, UnsignedNumbersAgreeWithTheCLibrary) {
  for (const auto& [ours, c_library] : AllPadsAndWidths()) {
    for (const std::int32_t number : BoundaryNumbers<std::int32_t>()) {
      const auto value = static_cast<std::uint32_t>(number);
      const std::string expected = CLibrary("%" + c_library + "u", value);
      EXPECT_EQ(Format(("%" + ours + "u").c_str(), value), expected) << ours;
      EXPECT_EQ(Format(("%" + ours + "lu").c_str(), value), expected) << ours;
    }
    for (const long long number : BoundaryNumbers<long long>()) {
      const auto value = static_cast<unsigned long long>(number);
      EXPECT_EQ(Format(("%" + ours + "llu").c_str(), value), CLibrary("%" + c_library + "llu", value)) << ours;
    }
  }
}

// Hex digits in upper case after a lower-case "0x".
std::string WithUpperDigits(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  std::replace(text.begin(), text.end(), 'X', 'x');
  return text;
}

TEST(MessageFormatterTest, HexNumbersAgreeWithTheCLibrarysPrefixedForm) {
  for (const auto& [ours, c_library] : AllPadsAndWidths()) {
    for (const long long number : BoundaryNumbers<long long>()) {
      const auto wide = static_cast<unsigned long long>(number);
      if (const auto narrow = static_cast<std::uint32_t>(wide); narrow != 0) {  // The C library writes no "0x" before 0.
        const std::string expected = CLibrary("%#" + c_library + "x", narrow);
        EXPECT_EQ(Format(("%" + ours + "x").c_str(), narrow), expected) << ours;
        EXPECT_EQ(Format(("%" + ours + "lx").c_str(), narrow), expected) << ours;
        EXPECT_EQ(Format(("%" + ours + "X").c_str(), narrow), WithUpperDigits(expected)) << ours;
      }
      if (wide != 0) {
        const std::string expected = CLibrary("%#" + c_library + "llx", wide);
        EXPECT_EQ(Format(("%" + ours + "llx").c_str(), wide), expected) << ours;
        EXPECT_EQ(Format(("%" + ours + "llX").c_str(), wide), WithUpperDigits(expected)) << ours;
      }
    }
  }
}

// ---- hex and pointers

TEST(MessageFormatterTest, HexNumbersAlwaysCarryTheirPrefix) {
  EXPECT_EQ(Format("%x", 255u), "0xff");
  EXPECT_EQ(Format("%X", 255u), "0xFF");
  EXPECT_EQ(Format("%x", 0u), "0x0");
  EXPECT_EQ(Format("%X", 0xFFFFFFFFu), "0xFFFFFFFF");
}

TEST(MessageFormatterTest, WidthOfHexNumbersCountsThePrefix) {
  EXPECT_EQ(Format("%08x", 0x2Au), "0x00002a");
  EXPECT_EQ(Format("%8x", 0x2Au), "    0x2a");
  EXPECT_EQ(Format("% 8X", 0x2Au), "    0x2A");
  EXPECT_EQ(Format("%08x", 0x12345678u), "0x12345678");
  EXPECT_EQ(Format("%05x", 0u), "0x000");
  EXPECT_EQ(Format("%5x", 0u), "  0x0");
}

const void* PointerTo(std::uintptr_t address) {
  return reinterpret_cast<const void*>(address);  // NOLINT(performance-no-int-to-ptr): an address is what is wanted.
}

TEST(MessageFormatterTest, PointersHaveSixteenDigits) {
  EXPECT_EQ(Format("%p", PointerTo(0x1234)), "0x0000000000001234");
  EXPECT_EQ(Format("%p", PointerTo(0xFEDCBA9876543210)), "0xFEDCBA9876543210");
  EXPECT_EQ(Format("%p", static_cast<const void*>(nullptr)), "0x0000000000000000");
}

TEST(MessageFormatterTest, PointersHaveNoWidth) {
  EXPECT_EQ(Format("[%20p]", static_cast<const void*>(nullptr)), "[0x0000000000000000]");
  EXPECT_EQ(Format("[%02p]", static_cast<const void*>(nullptr)), "[0x0000000000000000]");
}

// ---- characters and narrow strings

TEST(MessageFormatterTest, CharactersFollowWidthMinusOneSpaces) {
  EXPECT_EQ(Format("[%c]", 'x'), "[x]");
  EXPECT_EQ(Format("[%1c]", 'x'), "[x]");
  EXPECT_EQ(Format("[%4c]", 'x'), "[   x]");
  EXPECT_EQ(Format("[%04c]", 'x'), "[   x]");
}

TEST(MessageFormatterTest, NulCharacterCounts) { EXPECT_EQ(Format("a%cb", 0), std::string("a\0b", 3)); }

TEST(MessageFormatterTest, NarrowStringsAreRightAlignedWithSpaces) {
  EXPECT_EQ(Format("[%s]", "text"), "[text]");
  EXPECT_EQ(Format("[%s]", ""), "[]");
  EXPECT_EQ(Format("[%6s]", "text"), "[  text]");
  EXPECT_EQ(Format("[%06s]", "text"), "[  text]");
  EXPECT_EQ(Format("[% 6s]", "text"), "[  text]");
  EXPECT_EQ(Format("[%2s]", "text"), "[text]");
  EXPECT_EQ(Format("[%3s]", ""), "[   ]");
  EXPECT_EQ(Format("[%ls]", "text"), "[text]");
}

TEST(MessageFormatterTest, NullNarrowStringPrintsNothing) {
  EXPECT_EQ(Format("[%s]", static_cast<const char*>(nullptr)), "[]");
  EXPECT_EQ(Format("[%6s]", static_cast<const char*>(nullptr)), "[]");
  EXPECT_EQ(Format("%s%d", static_cast<const char*>(nullptr), 7), "7");
}

// ---- wide strings

TEST(MessageFormatterTest, WideStringsBecomeUtf8) {
  for (const char* format : {"%S", "%ws"}) {
    EXPECT_EQ(Format(format, L"C:\\a.txt"), "C:\\a.txt");
    EXPECT_EQ(Format(format, L""), "");
    EXPECT_EQ(Format(format, L"\xE4\x20AC"), "\xC3\xA4\xE2\x82\xAC");
    const wchar_t pair[] = {0xD83D, 0xDE00, 0};  // U+1F600
    EXPECT_EQ(Format(format, pair), "\xF0\x9F\x98\x80");
  }
}

TEST(MessageFormatterTest, LoneSurrogatesBecomeReplacementCharacters) {
  const wchar_t high_at_end[] = {'a', 0xD83D, 0};
  const wchar_t low_first[] = {0xDE00, 'b', 0};
  const wchar_t two_highs[] = {0xD83D, 0xD83D, 0xDE00, 0};
  EXPECT_EQ(Format("%ws", high_at_end), "a\xEF\xBF\xBD");
  EXPECT_EQ(Format("%ws", low_first),
            "\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(Format("%ws", two_highs), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(MessageFormatterTest, NullWideStringPrintsNothing) {
  EXPECT_EQ(Format("[%ws]", static_cast<const wchar_t*>(nullptr)), "[]");
  EXPECT_EQ(Format("[%S]%d", static_cast<const wchar_t*>(nullptr), 7), "[]7");
}

TEST(MessageFormatterTest, WideStringsHaveNoWidth) { EXPECT_EQ(Format("[%9ws][%09S]", L"a", L"b"), "[a][b]"); }

TEST(MessageFormatterTest, WideStringsOfAnyLengthArePrinted) {
  for (const std::size_t length : {1022u, 1023u, 1024u, 1025u, 5000u}) {
    std::string expected;
    for (std::size_t i = 0; i < length; ++i) {
      expected += "\xE2\x82\xAC";
    }
    EXPECT_EQ(Format("%ws", std::wstring(length, L'\x20AC').c_str()), expected) << length;
  }
}

// ---- percent signs and what is no conversion

TEST(MessageFormatterTest, TwoPercentSignsAreOne) {
  EXPECT_EQ(Format("%%"), "%");
  EXPECT_EQ(Format("100%%d"), "100%d");
  EXPECT_EQ(Format("%%%%%d", 1), "%%1");
  EXPECT_EQ(Format("[%5%]"), "[%]");
}

TEST(MessageFormatterTest, ConversionWithoutACharacterPrintsNothing) {
  EXPECT_EQ(Format("%"), "");
  EXPECT_EQ(Format("abc%"), "abc");
  EXPECT_EQ(Format("abc%0"), "abc");
  EXPECT_EQ(Format("abc%08"), "abc");
  EXPECT_EQ(Format("abc% 8l"), "abc");
  EXPECT_EQ(Format("abc%ll"), "abc");
  EXPECT_EQ(Format("abc%w"), "abc");
}

TEST(MessageFormatterTest, UnknownConversionsPrintNothingAndTakeNothing) {
  EXPECT_EQ(Format("%q%d", 7), "7");
  EXPECT_EQ(Format("%f %d", 7), " 7");
  EXPECT_EQ(Format("%5n|%d", 7), "|7");
  EXPECT_EQ(Format("%D%o%e%U%d", 7), "7");
  EXPECT_EQ(Format("%\x80%d", 7), "7");
}

TEST(MessageFormatterTest, TextAfterAnUnknownConversionIsLiteral) {
  EXPECT_EQ(Format("%-5d %d", 7), "5d 7");
  EXPECT_EQ(Format("%.3s %d", 7), "3s 7");
  EXPECT_EQ(Format("%#x %d", 7), "x 7");
  EXPECT_EQ(Format("%+d %d", 7), "d 7");
  EXPECT_EQ(Format("%hd %d", 7), "d 7");
  EXPECT_EQ(Format("%llld %d", 7), "d 7");
  EXPECT_EQ(Format("%wx %d", 7), "x 7");
  EXPECT_EQ(Format("%*d %d", 7), "d 7");
  EXPECT_EQ(Format("%  d %d", 7), "d 7");
}

// ---- truncation

TEST(MessageFormatterTest, LongMessagesAreCut) {
  const std::string fits(16383, 'a');
  EXPECT_EQ(Format(fits.c_str()), fits);
  EXPECT_EQ(Format((fits + "b").c_str()), fits);
  EXPECT_EQ(Format("%s", (fits + "b").c_str()), fits);
  EXPECT_EQ(Format("%s%d%p%c%%x", (fits + "b").c_str(), 1, nullptr, 'c'), fits);
}

TEST(MessageFormatterTest, NumbersAreCutWhereTheMessageEnds) {
  const std::string before(16380, 'a');
  EXPECT_EQ(Format("%s%d", before.c_str(), 12345), before + "123");
  EXPECT_EQ(Format("%s%x", before.c_str(), 0x1234u), before + "0x1");
  EXPECT_EQ(Format("%s%5d", before.c_str(), 12), before + "   ");
  EXPECT_EQ(Format("%s%ws", before.c_str(), L"\xE4\xE4"), before + "\xC3\xA4\xC3");
}

TEST(MessageFormatterTest, WidthsBeyondTheMessageFillIt) {
  EXPECT_EQ(Format("%16383d", 7), std::string(16382, ' ') + "7");
  EXPECT_EQ(Format("%16384d", 7), std::string(16383, ' '));
  EXPECT_EQ(Format("%099999999999999999999999999999d", 7), std::string(16383, '0'));
  EXPECT_EQ(Format("%18446744073709551617s", "x"), std::string(16383, ' '));
}

}  // namespace
}  // namespace zt
