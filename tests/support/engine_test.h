// The fixture of the engine's tests: an engine, and a look at its records.

#ifndef ZT_TESTS_SUPPORT_ENGINE_TEST_H
#define ZT_TESTS_SUPPORT_ENGINE_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "engine/context.h"
#include "tests/support/events.h"
#include "tests/support/records.h"
#include "tests/support/trace_capture.h"
#include "zteng/zteng.h"

namespace zt::testing {

/// The messages of the lines alone.
inline std::vector<std::string> MessagesOf(const std::vector<TraceLine>& lines) {
  std::vector<std::string> messages;
  std::transform(lines.begin(), lines.end(), std::back_inserter(messages), [](const TraceLine& line) { return line.message; });
  return messages;
}

/// An engine with the identifier 7.
class EngineTest : public ::testing::Test {
 protected:
  EngineTest() { ZtInitEngineCore(engine_, 7); }

  _ZtEngineCore& core() { return *std::static_pointer_cast<_ZtEngineCore>(engine_); }

  ZtLong Insert(LOG_ITEM log) { return ZtInsertLog(engine_, &log); }

  /// Enters a process whose creator is not known: its key is (pid, time).
  void StartProcess(std::uint64_t pid, std::int64_t time = 100, std::wstring_view image = L"C:\\app.exe") {
    Insert(ProcessCreate(0, pid, time, image));
  }
  /// Enters a process under the newest process of `parent`.
  void StartChild(std::uint64_t parent, std::uint64_t pid, std::int64_t time = 200,
                  std::wstring_view image = L"C:\\child.exe") {
    Insert(ProcessCreate(parent, pid, time, image));
  }

  /// Opens a file that exists and reads it, which leaves it in ZT_READ_START.
  void OpenAndRead(std::uint64_t pid, std::wstring_view path) {
    Insert(Open(pid, path));
    Insert(Read(pid, path));
  }
  /// Opens, reads and overwrites a file. The result of the write, which carries the penalty 2.
  ZtLong Overwrite(std::uint64_t pid, std::wstring_view path) {
    OpenAndRead(pid, path);
    return Insert(Write(pid, path));
  }

  /// The tree entry of the newest process under `pid`, or null.
  ProcessTree::Entry* EntryOf(std::uint64_t pid) {
    const std::int64_t* time = core().FindStartTime(pid);
    return time == nullptr ? nullptr : core().Tree.Find({pid, *time});
  }
  /// Its item, or null.
  ProcessItem* ItemOf(std::uint64_t pid) {
    ProcessTree::Entry* entry = EntryOf(pid);
    return entry == nullptr ? nullptr : &entry->Item;
  }
  /// Its record of the file under the lower-case key, or null.
  FileItem* FileOf(std::uint64_t pid, const std::wstring& key) {
    ProcessItem* item = ItemOf(pid);
    return item == nullptr ? nullptr : FindFile(*item, key);
  }
  /// Puts a record of the file into the process's records. REQUIRES: the process is known.
  FileItem& Track(std::uint64_t pid, const std::wstring& key, std::uint8_t state) {
    FileItem& file = EnterFile(*ItemOf(pid), key);
    file.State = state;
    file.Path = MakePath(key);
    return file;
  }
  /// Its score; -1 when there is no such process.
  std::int32_t ScoreOf(std::uint64_t pid) {
    const ProcessItem* item = ItemOf(pid);
    return item == nullptr ? -1 : item->Score;
  }

  static void* Handle(std::uint64_t pid) { return HandleFromPid(pid); }

  std::shared_ptr<void> engine_;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_SUPPORT_ENGINE_TEST_H
