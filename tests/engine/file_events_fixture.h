// The fixture of the file events' tests: one process, its file records, and what an event traces.

#ifndef ZT_TESTS_ENGINE_FILE_EVENTS_FIXTURE_H
#define ZT_TESTS_ENGINE_FILE_EVENTS_FIXTURE_H

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "engine/tracing.h"
#include "engine/transition_table.h"
#include "tests/support/engine_test.h"

namespace zt::testing {

/// The process 10, which has no parent, so that every event is processed once.
class FileEventsTest : public EngineTest {
 protected:
  static constexpr std::uint64_t kPid = 10;

  FileEventsTest() { StartProcess(kPid); }

  ProcessItem& Process() { return *ItemOf(kPid); }

  /// A record in the given state, as though earlier events had led there.
  FileItem& Track(const std::wstring& path, FileState state) {
    FileItem& file = EnterFile(Process(), path);
    file.State = static_cast<std::uint8_t>(state);
    file.Path = MakePath(path);
    return file;
  }
  FileItem& File(const std::wstring& path) { return (*FindFile(Process(), path)); }
  bool IsTracked(const std::wstring& path) { return HasFile(Process(), path); }
  std::vector<std::wstring> Quarantined() { return Process().QuarantineList.Paths(); }
  std::vector<std::wstring> CreatedFiles() { return Process().CreatedFilesList.Paths(); }

  /// A record's state and the names of its flags that are set, e.g. "2 Similar ReadStarted".
  static std::string Summary(const FileItem& file) {
    std::string text = std::to_string(file.State);
    for (const auto& [flag, name] : std::initializer_list<std::pair<bool, const char*>>{{file.Written, " Written"},
                                                                                        {file.Similar, " Similar"},
                                                                                        {file.Renamed, " Renamed"},
                                                                                        {file.SimilarMark, " SimilarMark"},
                                                                                        {file.Created, " Created"},
                                                                                        {file.ReadStarted, " ReadStarted"},
                                                                                        {file.penalized, " penalized"}}) {
      if (flag) {
        text += name;
      }
    }
    return text;
  }
  std::string Summary(const std::wstring& path) { return IsTracked(path) ? Summary(File(path)) : "not tracked"; }

  /// What the file events trace while the event is inserted: all but the frame that every event has.
  std::vector<std::string> MessagesOf(const LOG_ITEM& log) {
    TraceCapture trace(kTraceDebug);
    Insert(log);
    std::vector<std::string> messages = trace.TakeMessages();
    messages.erase(std::remove_if(messages.begin(), messages.end(), IsFrame), messages.end());
    return messages;
  }

 private:
  static bool IsFrame(const std::string& message) {
    const auto begins = [&message](const char* text) { return message.starts_with(text); };
    return begins("=====") || begins("[[ log: ") || begins("log: ") || begins("ProcKey: ") || begins("Time past: ");
  }
};

}  // namespace zt::testing

#endif  // ZT_TESTS_ENGINE_FILE_EVENTS_FIXTURE_H
