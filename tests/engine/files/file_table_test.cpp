#include "engine/files/file_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/records.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FileTableTest : public ::testing::Test {
 protected:
  TrackedFile* Add(std::wstring_view path) { return table_.FindOrAdd(OwnedPath(path, hash_).name()).first; }
  TrackedFile* Find(std::wstring_view path) { return table_.Find(OwnedPath(path, hash_).name()); }
  void Erase(std::wstring_view path) { table_.Erase(*Find(path), hash_); }

  std::vector<std::wstring> Keys() {
    std::vector<std::wstring> keys;
    for (const TrackedFile* file : table_.Sorted([](const TrackedFile&) { return true; })) {
      keys.push_back(Widen(file->key.Lower()));
    }
    return keys;
  }

  /// How many files have this folder and stem.
  std::size_t CountOfStem(std::u16string_view stem) {
    const StemFiles* const found =
        table_.FindStem(hash_(stem), [stem](StemFiles files) { return files.file()->FolderAndStem() == stem; });
    if (found == nullptr) {
      return 0;
    }
    return found->group() == nullptr ? 1 : found->group()->files.size();
  }

  const TextHash hash_{7};
  FileTable table_;
};

TEST_F(FileTableTest, ANewTableHasNoFiles) {
  EXPECT_EQ(table_.size(), 0U);
  EXPECT_TRUE(table_.empty());
  EXPECT_EQ(Find(L"c:\\a"), nullptr);
  EXPECT_THAT(Keys(), IsEmpty());
}

TEST_F(FileTableTest, AnAddedFileIsFoundAndStaysWhereItIs) {
  TrackedFile* const file = Add(L"c:\\d\\a.doc");
  EXPECT_EQ(file->key.Lower(), u"c:\\d\\a.doc");
  EXPECT_EQ(file->item.State, 0);
  for (int number = 0; number < 1000; ++number) {
    Add(L"c:\\d\\" + std::to_wstring(number));
  }
  EXPECT_EQ(Find(L"c:\\d\\a.doc"), file);
  EXPECT_EQ(table_.size(), 1001U);
  const auto [again, is_new] = table_.FindOrAdd(OwnedPath(L"c:\\d\\a.doc", hash_).name());
  EXPECT_EQ(again, file);
  EXPECT_FALSE(is_new);
}

TEST_F(FileTableTest, FilesAreSortedByTheirUnits) {
  for (const wchar_t* path : {L"ab", L"a", L"\xE000", L"b", L"\xD800", L""}) {
    Add(path);
  }
  std::vector<std::u16string> keys;
  for (const TrackedFile* file : table_.Sorted([](const TrackedFile& each) { return !each.key.empty(); })) {
    keys.emplace_back(file->key.Lower());
  }
  EXPECT_THAT(keys, ElementsAre(u"a", u"ab", u"b", u"\xD800", u"\xE000"));
}

TEST_F(FileTableTest, FilesOfOneStemAreAGroup) {
  Add(L"c:\\d\\photo.jpg");
  EXPECT_EQ(CountOfStem(u"c:\\d\\photo"), 1U);
  Add(L"c:\\d\\photo.raw");
  Add(L"c:\\d\\photo");
  Add(L"c:\\d\\photo.old.jpg");
  Add(L"c:\\e\\photo.jpg");
  EXPECT_EQ(CountOfStem(u"c:\\d\\photo"), 3U);
  EXPECT_EQ(CountOfStem(u"c:\\d\\photo.old"), 1U);
  EXPECT_EQ(CountOfStem(u"c:\\e\\photo"), 1U);
  EXPECT_EQ(CountOfStem(u"c:\\d\\pho"), 0U);
  Erase(L"c:\\d\\photo.raw");
  EXPECT_EQ(CountOfStem(u"c:\\d\\photo"), 2U);
  Erase(L"c:\\d\\photo.jpg");
  EXPECT_EQ(CountOfStem(u"c:\\d\\photo"), 1U);
  EXPECT_NE(Find(L"c:\\d\\photo"), nullptr);
  Erase(L"c:\\d\\photo");
  EXPECT_EQ(CountOfStem(u"c:\\d\\photo"), 0U);
}

TEST_F(FileTableTest, LengthsBeginningsAndEndsAreKnownAsLongAsAFileHasThem) {
  const std::vector<std::u16string_view> marks = {u"c:\\d", u"c:\\d\\rep", u"*.doc"};
  const auto known = [&] {
    return std::count_if(marks.begin(), marks.end(), [this](std::u16string_view mark) { return table_.HasMark(hash_(mark)); });
  };
  Add(L"c:\\d\\report.doc");
  Add(L"c:\\d\\repair.doc");
  EXPECT_EQ(known(), 3);
  EXPECT_TRUE(table_.HasMark(hash_(u"*ort")));
  EXPECT_TRUE(table_.HasMark(hash_(u"*air")));
  EXPECT_FALSE(table_.HasMark(hash_(u".doc")));  // Marks of ends do not count as marks of beginnings.
  EXPECT_TRUE(table_.key_lengths().Has(15));
  EXPECT_TRUE(table_.stem_lengths().Has(6));
  EXPECT_TRUE(table_.extension_lengths().Has(4));
  Erase(L"c:\\d\\report.doc");
  EXPECT_EQ(known(), 3);
  EXPECT_FALSE(table_.HasMark(hash_(u"*ort")));
  Erase(L"c:\\d\\repair.doc");
  EXPECT_EQ(known(), 0);
  EXPECT_FALSE(table_.key_lengths().Has(15));
  EXPECT_FALSE(table_.stem_lengths().Has(6));
  EXPECT_FALSE(table_.extension_lengths().Has(4));
}

// What stays after the last such file went only costs a second question.
TEST_F(FileTableTest, FirstQuestionsMissNothing) {
  Add(L"c:\\d\\report.doc");
  EXPECT_TRUE(table_.MayBeginKey(u'c'));
  EXPECT_FALSE(table_.MayBeginKey(u'd'));
  EXPECT_TRUE(table_.MayEndKey(u"oc"));
  EXPECT_FALSE(table_.MayEndKey(u"co"));
  EXPECT_TRUE(table_.MayBeginStem(u"re"));
  EXPECT_FALSE(table_.MayBeginStem(u"er"));
  EXPECT_TRUE(table_.MayEndStem(u"rt"));
  EXPECT_FALSE(table_.MayEndStem(u"oc"));
}

TEST_F(FileTableTest, ErasesWhatGoes) {
  for (int number = 0; number < 500; ++number) {
    Add(L"c:\\d\\" + std::to_wstring(number) + L".doc")->item.State = static_cast<std::uint8_t>(number % 2);
  }
  table_.EraseIf([](const TrackedFile& file) { return file.item.State == 1; }, hash_);
  EXPECT_EQ(table_.size(), 250U);
  EXPECT_EQ(Find(L"c:\\d\\7.doc"), nullptr);
  EXPECT_NE(Find(L"c:\\d\\8.doc"), nullptr);
  EXPECT_EQ(CountOfStem(u"c:\\d\\7"), 0U);
  EXPECT_EQ(CountOfStem(u"c:\\d\\8"), 1U);
  table_.EraseIf([](const TrackedFile&) { return true; }, hash_);
  EXPECT_TRUE(table_.empty());
  EXPECT_FALSE(table_.HasMark(hash_(u"c:\\d")));
}

TEST_F(FileTableTest, AMoveHandsEverythingOver) {
  Add(L"c:\\d\\a.doc");
  Add(L"c:\\d\\a.txt");
  FileTable moved = std::move(table_);
  table_ = FileTable();
  EXPECT_TRUE(table_.empty());
  table_ = std::move(moved);
  EXPECT_THAT(Keys(), ElementsAre(L"c:\\d\\a.doc", L"c:\\d\\a.txt"));
}

TEST_F(FileTableTest, EverySearchHasANumberOfItsOwn) {
  Add(L"c:\\d\\a.doc");
  const std::uint32_t first = table_.BeginSearch();
  EXPECT_NE(first, Find(L"c:\\d\\a.doc")->last_search);
  EXPECT_NE(table_.BeginSearch(), first);
}

// Random names that share stems, beside a std::map; the table grows and shrinks.
TEST_F(FileTableTest, HoldsWhatAMapHolds) {
  std::mt19937 random(3);
  std::map<std::wstring, TrackedFile*> expected;
  for (int step = 0; step < 100000; ++step) {
    std::wstring path = random() % 2 == 0 ? L"c:\\d\\" : L"c:\\";
    for (std::size_t length = random() % 6; length > 0; --length) {
      path += L"ab.c"[random() % 4];
    }
    const auto known = expected.find(path);
    ASSERT_EQ(Find(path), known == expected.end() ? nullptr : known->second) << step;
    if (known != expected.end() && random() % 2 == 0) {
      Erase(path);
      expected.erase(known);
    } else {
      expected[path] = Add(path);
    }
    ASSERT_EQ(table_.size(), expected.size());
  }
  std::vector<std::wstring> keys;
  std::transform(expected.begin(), expected.end(), std::back_inserter(keys), [](const auto& file) { return file.first; });
  EXPECT_EQ(Keys(), keys);
  for (const std::wstring& key : keys) {
    Erase(key);
  }
  EXPECT_TRUE(table_.empty());
  EXPECT_FALSE(table_.key_lengths().Has(5));
  EXPECT_FALSE(table_.HasMark(hash_(u"c:\\d")));
}

}  // namespace
}  // namespace zt::testing
