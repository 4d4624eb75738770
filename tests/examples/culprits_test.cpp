#include "examples/culprits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "tests/support/events.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr std::uint64_t kShell = 10;

/// A host with an engine: process 10 is the shell, which is spared.
class CulpritsTest : public ::testing::Test {
 protected:
  CulpritsTest() {
    ZtInitEngineCore(engine_, 1);
    Start(4, kShell, L"shell.exe");
  }

  void Start(std::uint64_t parent, std::uint64_t pid, const std::wstring& image = L"app.exe") {
    culprits_.Enter(pid, parent, image);
    Insert(ProcessCreate(parent, pid, ++time_, image));
  }
  /// Returns the culprit that the write made known, or 0.
  std::uint64_t Overwrite(std::uint64_t pid, const std::wstring& path) {
    Insert(Open(pid, path));
    Insert(Read(pid, path));
    return Insert(Write(pid, path));
  }
  std::uint64_t Encrypt(std::uint64_t pid, const std::wstring& path) {
    Insert(Open(pid, path));
    Insert(Read(pid, path));
    Insert(Write(pid, path + L".locked"));
    return Insert(Delete(pid, path));
  }
  std::uint64_t Insert(LOG_ITEM log) { return culprits_.Take(log.Pid, log.Behavior, ZtInsertLog(engine_, &log)).value_or(0); }
  static std::wstring FileOf(int number) { return L"c:\\d\\" + std::to_wstring(number) + L".doc"; }

  std::shared_ptr<void> engine_;
  Culprits culprits_{64, [](const std::wstring& image) { return image == L"shell.exe"; }};
  std::int64_t time_ = 0;
};

TEST_F(CulpritsTest, AProgramThatOverwritesIsNamedAtItsSixthFile) {
  Start(kShell, 20);
  for (int file = 1; file <= 5; ++file) {
    EXPECT_EQ(Overwrite(20, FileOf(file)), 0U) << file;
  }
  EXPECT_EQ(Overwrite(20, FileOf(6)), 20U);
  EXPECT_EQ(Overwrite(20, FileOf(7)), 0U) << "named once";
}

TEST_F(CulpritsTest, AProgramThatDeletesOriginalsIsNamedAtItsThirdFile) {
  Start(kShell, 20);
  EXPECT_EQ(Encrypt(20, FileOf(1)), 0U);
  EXPECT_EQ(Encrypt(20, FileOf(2)), 0U);
  EXPECT_EQ(Encrypt(20, FileOf(3)), 20U);
}

TEST_F(CulpritsTest, AncestorsThatWereOnlyChargedAreNotNamed) {
  Start(kShell, 20);
  Start(20, 30);
  Start(30, 40);
  std::uint64_t named = 0;
  for (int file = 1; file <= 20; ++file) {
    if (const std::uint64_t culprit = Overwrite(40, FileOf(file)); culprit != 0) {
      EXPECT_EQ(named, 0U);
      named = culprit;
    }
  }
  EXPECT_THAT(culprits_.WithDescendants(30), UnorderedElementsAre(30, 40));
}

TEST_F(CulpritsTest, WhereEachFileHasAWorkerOfItsOwnTheirParentIsNamed) {
  Start(kShell, 20);
  for (int file = 1; file <= 5; ++file) {
    Start(20, 100 + static_cast<std::uint64_t>(file));
    EXPECT_EQ(Overwrite(100 + static_cast<std::uint64_t>(file), FileOf(file)), 0U) << file;
  }
  Start(20, 106);
  EXPECT_EQ(Overwrite(106, FileOf(6)), 20U);
  EXPECT_THAT(culprits_.WithDescendants(20), UnorderedElementsAre(20, 101, 102, 103, 104, 105, 106));
}

TEST_F(CulpritsTest, TheShellIsSparedWhatItsProgramsDo) {
  for (int program = 1; program <= 8; ++program) {
    Start(kShell, 100 + static_cast<std::uint64_t>(program));
    EXPECT_EQ(Overwrite(100 + static_cast<std::uint64_t>(program), FileOf(program)), 0U) << program;
  }
}

TEST_F(CulpritsTest, AnIdThatIsUsedAgainNamesTheNewProcess) {
  Start(kShell, 20);
  for (int file = 1; file <= 6; ++file) {
    Overwrite(20, FileOf(file));
  }
  Start(kShell, 20);
  EXPECT_EQ(Overwrite(20, FileOf(101)), 0U);
  for (int file = 2; file <= 5; ++file) {
    Overwrite(20, FileOf(100 + file));
  }
  EXPECT_EQ(Overwrite(20, FileOf(106)), 20U);
}

TEST_F(CulpritsTest, StrangersAndEventsWithoutAScoreNameNobody) {
  EXPECT_FALSE(culprits_.Take(99, BehaviorWrite, 1000).has_value());
  EXPECT_FALSE(culprits_.Take(kShell, BehaviorWrite, 0).has_value());
  EXPECT_THAT(culprits_.WithDescendants(99), IsEmpty());
  EXPECT_THAT(culprits_.WithDescendants(kShell), ElementsAre(kShell));
}

}  // namespace
}  // namespace zt::testing
