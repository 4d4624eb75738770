#include "tools/replay/progress.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/tools/calls.h"

namespace replay {
namespace {

using namespace std::chrono_literals;

TEST(ProgressText, ShowsTheShareOfAKnownSize) {
  EXPECT_EQ(ProgressText(512, 2048, 100, 2), "25 % of 2.0 KiB, 100 events, 50 events per second");
  EXPECT_EQ(ProgressText(1, 1073741824, 1, 0), "0 % of 1.0 GiB, 1 events, 0 events per second");
}

TEST(ProgressText, ShowsTheAmountReadOfAnUnknownSize) {
  EXPECT_EQ(ProgressText(1572864, 0, 3000, 1.5), "1.5 MiB, 3000 events, 2000 events per second");
}

/// A source that stands at its middle.
class HalfReadSource : public ByteSource {
 public:
  std::size_t Read(char*, std::size_t) override { return 0; }
  std::string_view Peek(std::size_t) override { return {}; }
  [[nodiscard]] const std::string& name() const override { return name_; }
  [[nodiscard]] std::uint64_t consumed() const override { return 1024; }
  [[nodiscard]] std::uint64_t total() const override { return 2048; }

 private:
  std::string name_ = "half";
};

class ProgressTest : public ::testing::Test {
 protected:
  Progress Make() {
    return {source_, sink_.Take(), [this] { return now_; }};
  }

  HalfReadSource source_;
  testing::Sink sink_;
  std::chrono::steady_clock::time_point now_;
};

TEST_F(ProgressTest, AShortReplayShowsNothing) {
  {
    Progress progress = Make();
    now_ += 999ms;
    progress.Tell(1024);
  }
  EXPECT_EQ(sink_.text, "");
}

TEST_F(ProgressTest, ALongReplayShowsALineAndTakesItAway) {
  const std::string line =
      "\r\x1b[K"
      "50 % of 2.0 KiB, 2048 events, 2048 events per second";
  {
    Progress progress = Make();
    now_ += 1s;
    progress.Tell(2048);
    EXPECT_EQ(sink_.text, line);
    now_ += 199ms;
    progress.Tell(3072);
    EXPECT_EQ(sink_.text, line);
  }
  EXPECT_EQ(sink_.text, line + "\r\x1b[K");
}

TEST_F(ProgressTest, LooksAtTheClockNowAndThen) {
  Progress progress = Make();
  now_ += 5s;
  progress.Tell(1023);
  EXPECT_EQ(sink_.text, "");
}

}  // namespace
}  // namespace replay
