#include "tools/replay/input/procmon_detail.h"

#include <gtest/gtest.h>

#include <string>

namespace replay {
namespace {

std::string Value(std::string_view detail, std::string_view key, const DetailKeys& keys) {
  return std::string(DetailValue(detail, key, keys).value_or("(none)"));
}

constexpr std::string_view kOpen =
    "Desired Access: Generic Write, Read Attributes, Disposition: OverwriteIf, Options: Synchronous IO Non-Alert, "
    "Non-Directory "
    "File, Attributes: n/a, ShareMode: Read, Write, Delete, AllocationSize: 0, Impersonating: DESKTOP-6PCIALL\\test, "
    "OpenResult: "
    "Created";

TEST(ProcmonDetailTest, ValuesReachToTheNextKey) {
  EXPECT_EQ(Value(kOpen, "Desired Access", kCreateFileKeys), "Generic Write, Read Attributes");
  EXPECT_EQ(Value(kOpen, "Disposition", kCreateFileKeys), "OverwriteIf");
  EXPECT_EQ(Value(kOpen, "Options", kCreateFileKeys), "Synchronous IO Non-Alert, Non-Directory File");
  EXPECT_EQ(Value(kOpen, "ShareMode", kCreateFileKeys), "Read, Write, Delete");
  EXPECT_EQ(Value(kOpen, "AllocationSize", kCreateFileKeys), "0");
  EXPECT_EQ(Value(kOpen, "Impersonating", kCreateFileKeys), "DESKTOP-6PCIALL\\test");
  EXPECT_EQ(Value(kOpen, "OpenResult", kCreateFileKeys), "Created");
}

TEST(ProcmonDetailTest, AMissingKeyHasNoValue) {
  EXPECT_EQ(Value("Desired Access: Synchronize, Disposition: Open", "OpenResult", kCreateFileKeys), "(none)");
  EXPECT_EQ(Value("", "Options", kCreateFileKeys), "(none)");
  EXPECT_EQ(Value("Options", "Options", kCreateFileKeys), "(none)");
}

TEST(ProcmonDetailTest, NumbersKeepTheirSeparatorsInOneValue) {
  EXPECT_EQ(
      Value("Offset: 427,520, Length: 80,896, I/O Flags: Non-cached, Paging I/O, Priority: Normal", "Offset", kTransferKeys),
      "427,520");
  EXPECT_EQ(
      Value("Offset: 427,520, Length: 80,896, I/O Flags: Non-cached, Paging I/O, Priority: Normal", "Length", kTransferKeys),
      "80,896");
  EXPECT_EQ(
      Value("Offset: 427,520, Length: 80,896, I/O Flags: Non-cached, Paging I/O, Priority: Normal", "I/O Flags", kTransferKeys),
      "Non-cached, Paging I/O");
}

TEST(ProcmonDetailTest, FreeTextReachesToTheEnd) {
  EXPECT_EQ(Value("ReplaceIfExists: True, FileName: C:\\a, Flags: b, ReplaceIfExists: c.txt", "FileName", kRenameKeys),
            "C:\\a, Flags: b, ReplaceIfExists: c.txt");
  EXPECT_EQ(Value("ReplaceIfExists: True, FileName: C:\\a, Flags: b", "Flags", kRenameKeys), "(none)");
  EXPECT_EQ(Value("PID: 11464, Command line: gcc  @includes.txt, PID: 5", "PID", kProcessCreateKeys), "11464");
  EXPECT_EQ(Value("PID: 11464, Command line: gcc  @includes.txt, PID: 5", "Command line", kProcessCreateKeys),
            "gcc  @includes.txt, PID: 5");
}

TEST(ProcmonDetailTest, EmptyValuesAreValues) {
  EXPECT_EQ(Value("SyncType: SyncTypeCreateSection, PageProtection: ", "SyncType", kSectionKeys), "SyncTypeCreateSection");
  EXPECT_EQ(Value("SyncType: SyncTypeCreateSection, PageProtection: ", "PageProtection", kSectionKeys), "");
  EXPECT_EQ(Value("SyncType: SyncTypeCreateSection, PageProtection:", "PageProtection", kSectionKeys), "");
}

TEST(ProcmonDetailTest, KeysThatAreNotKnownArePassedOver) {
  EXPECT_EQ(Value("Novelty: 1, 2, Offset: 5", "Offset", kTransferKeys), "5");
}

TEST(ProcmonDetailTest, ItemsOfAListAreWhole) {
  EXPECT_TRUE(HasItem("Directory, Synchronous IO Non-Alert", "Directory"));
  EXPECT_TRUE(HasItem("Synchronous IO Non-Alert, Directory", "Directory"));
  EXPECT_TRUE(HasItem("Directory", "Directory"));
  EXPECT_FALSE(HasItem("Synchronous IO Non-Alert, Non-Directory File", "Directory"));
  EXPECT_FALSE(HasItem("", "Directory"));
  EXPECT_FALSE(HasItem("FILE_DISPOSITION_DO_NOT_DELETE, X", "FILE_DISPOSITION_DELETE"));
}

struct NumberCase {
  int line;
  const char* text;
  std::optional<std::uint64_t> number;
};

TEST(ProcmonDetailTest, NumbersOfEveryLocale) {
  const NumberCase cases[] = {
      {__LINE__, "0", 0},
      {__LINE__, "4,096", 4096},                   // English
      {__LINE__, "4.612.096", 4612096},            // Spanish
      {__LINE__, "40\u00A0960", 40960},            // Polish, Russian: no-break space
      {__LINE__, "2\u202F420\u202F736", 2420736},  // French: narrow no-break space
      {__LINE__, "40 960", 40960},                 // A plain space
      {__LINE__, "3'514'368", 3514368},            // Swiss
      {__LINE__, "12,34,567", 1234567},            // Indian
      {__LINE__, "18,446,744,073,709,551,615", 18446744073709551615U},
      {__LINE__, "18,446,744,073,709,551,616", std::nullopt},
      {__LINE__, "-1", 18446744073709551615U},
      {__LINE__, "1234567", 1234567},  // No separators
      {__LINE__, "-4,096", 0 - std::uint64_t{4096}},
      {__LINE__, "n/a", std::nullopt},
      {__LINE__, "-", std::nullopt},
      {__LINE__, "1/1/1601 12:00:00 AM", std::nullopt},  // A size that is printed as a date
      {__LINE__, "01.01.1601 1:00:00", std::nullopt},
      {__LINE__, "1601-01-01", std::nullopt},
      {__LINE__, "1,234,56", std::nullopt},
      {__LINE__, "1234,567", std::nullopt},
      {__LINE__, "1,234.567", std::nullopt},
      {__LINE__, "1,,234", std::nullopt},
      {__LINE__, "1,234,", std::nullopt},
      {__LINE__, ",234", std::nullopt},
      {__LINE__, "4,096 KB", std::nullopt},
      {__LINE__, "", std::nullopt},
  };
  for (const NumberCase& c : cases) {
    EXPECT_EQ(GroupedNumber(c.text), c.number) << "line " << c.line;
  }
}

}  // namespace
}  // namespace replay
