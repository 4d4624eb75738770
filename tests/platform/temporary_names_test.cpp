#include "platform/temporary_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zt {
namespace {

std::vector<std::filesystem::path> All(const TemporaryNames& names) {
  std::vector<std::filesystem::path> all;
  names.ForEach([&](const TemporaryNames::Character* name) { all.emplace_back(name); });
  return all;
}

TEST(TemporaryNamesTest, AreThoseAddedAndNotRemoved) {
  TemporaryNames names;
  EXPECT_TRUE(All(names).empty());
  const std::size_t a = names.Add("a");
  const std::size_t b = names.Add("b");
  EXPECT_EQ(All(names), (std::vector<std::filesystem::path>{"a", "b"}));
  names.Remove(a);
  EXPECT_EQ(All(names), std::vector<std::filesystem::path>{"b"});
  names.Remove(b);
  EXPECT_TRUE(All(names).empty());
}

TEST(TemporaryNamesTest, EightFindAPlace) {
  TemporaryNames names;
  for (std::size_t count = 0; count < 8; ++count) {
    EXPECT_EQ(names.Add(std::to_string(count)), count);
  }
  names.Remove(names.Add("ninth"));
  EXPECT_EQ(All(names).size(), 8U);
  names.Remove(3);
  EXPECT_EQ(names.Add("tenth"), 3U);
}

}  // namespace
}  // namespace zt
