#include "tools/replay/input/line_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> Lines(const std::string& text, std::size_t step) {
  LineReader reader(SourceOf(text, step));
  std::vector<std::string> lines;
  std::string_view line;
  while (reader.Next(line)) {
    lines.push_back(std::to_string(reader.number()) + ':' + std::string(line));
  }
  return lines;
}

TEST(LineReaderTest, GivesLinesWithTheirNumbersHoweverTheyArrive) {
  for (const std::size_t step : {1U, 2U, 3U, 4096U}) {
    EXPECT_THAT(Lines("a\r\n\nbc\rd\ne", step), ElementsAre("1:a\r\n", "2:\n", "3:bc\rd\n", "4:e")) << step;
  }
}

TEST(LineReaderTest, ALastLineFeedOpensNoLine) { EXPECT_THAT(Lines("a\n", 10), ElementsAre("1:a\n")); }

TEST(LineReaderTest, NothingHasNoLines) { EXPECT_THAT(Lines("", 10), IsEmpty()); }

TEST(LineReaderTest, ALineOf16MiBIsRead) {
  LineReader reader(SourceOf(std::string(LineReader::kLongestLine, 'x') + "\ny", 1 << 20));
  std::string_view line;
  ASSERT_TRUE(reader.Next(line));
  EXPECT_EQ(line.size(), LineReader::kLongestLine + 1);
  ASSERT_TRUE(reader.Next(line));
  EXPECT_EQ(line, "y");
}

TEST(LineReaderTest, ALongerLineIsAnErrorAtItsNumber) {
  for (const std::string end : {"\ny", ""}) {
    LineReader reader(SourceOf("first\n" + std::string(LineReader::kLongestLine + 1, 'x') + end, 1 << 20));
    std::string_view line;
    ASSERT_TRUE(reader.Next(line));
    EXPECT_EQ(ErrorOf([&] { reader.Next(line); }), "capture:2: the line is longer than 16 MiB");
  }
}

// A source without end and without line feeds.
class Endless : public PeekableSource {
 public:
  [[nodiscard]] const std::string& name() const override { return name_; }
  [[nodiscard]] std::uint64_t consumed() const override { return given_; }
  [[nodiscard]] std::uint64_t total() const override { return 0; }

 protected:
  std::size_t ReadMore(char* buffer, std::size_t size) override {
    std::memset(buffer, 'x', size);
    given_ += size;
    return size;
  }

 private:
  std::string name_ = "endless";
  std::uint64_t given_ = 0;
};

TEST(LineReaderTest, OfALineWithoutEndLittleMoreThan16MiBIsRead) {
  auto source = std::make_unique<Endless>();
  const Endless& endless = *source;
  LineReader reader(std::move(source));
  std::string_view line;
  EXPECT_EQ(ErrorOf([&] { reader.Next(line); }), "endless:1: the line is longer than 16 MiB");
  EXPECT_LE(endless.consumed(), LineReader::kLongestLine + (1U << 20));
}

}  // namespace
}  // namespace replay::testing
