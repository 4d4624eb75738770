// A second engine for the tests: it does what the engine does, as slowly and as plainly as can be, and shares no code with it.
//
// Whoever changes the engine's behaviour on purpose changes it here too, from the description of the behaviour and not from the
// engine's source: two readings of one text are what makes the comparison worth something.

#ifndef ZT_TESTS_MODEL_MODEL_ENGINE_H
#define ZT_TESTS_MODEL_MODEL_ENGINE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/model/model_machine.h"
#include "tests/model/model_records.h"
#include "tests/model/model_trace.h"
#include "zteng/zteng.h"

namespace zt::model {

/// One engine. The methods are the exports of the same names. Not for several threads.
class ModelEngine {
 public:
  /// @param id           the host's identifier of the engine
  /// @param trace_flags  bits 0x1, 0x2 and 0x4
  ModelEngine(std::uint32_t id, std::uint64_t trace_flags);

  std::int32_t InsertLog(const LOG_ITEM* log);
  static std::int32_t CalculateSingleLineScore(const LOG_ITEM* log, std::int32_t score);
  void UpdateScore(std::uint64_t pid, std::int32_t value);
  void ResetScore(std::int64_t now, std::int64_t score_age_limit);
  std::vector<std::uint64_t> GetProcTree(std::uint64_t pid);
  void GetProcTree(std::uint64_t pid, std::map<std::uint64_t, std::wstring>& procs);
  unsigned char GetFinalStateFileByPid(std::uint64_t pid, std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files,
                                       std::vector<std::wstring>& paths);

  ModelTrace& trace() { return trace_; }
  /// The newest process under `pid`, or null; for the model's own tests.
  [[nodiscard]] const TreeEntry* Find(std::uint64_t pid) const;
  /// How many file records all processes have together.
  [[nodiscard]] std::size_t CountFiles() const;

 private:
  // One event: model_insert.cpp.
  ProcessItem* ItemOf(const Key& key);
  void Charge(const LOG_ITEM& log, const Key& key, const std::wstring& path, std::uint32_t penalty, std::int32_t& result);
  void ParentPenalty(ProcessItem& ancestor, const LOG_ITEM& log, const std::wstring& path, std::uint32_t penalty);
  std::uint32_t ScoreWalk(const Key& key);

  // One pass: model_process.cpp.
  std::uint32_t ProcessLogItem(const LOG_ITEM& log, const Key& key, std::wstring& path, bool first_pass);
  void ProcessExit(const Key& key);
  void ProcessCreation(const LOG_ITEM& log, const Key& key, const std::wstring& target);

  /// What one file event works on.
  struct FileEvent {
    const LOG_ITEM& log;
    ProcessItem& process;
    std::wstring target;         ///< In its own letter case.
    std::wstring lower;          ///< The same in lower case.
    std::wstring quarantine;     ///< What is quarantined when the transition asks for it.
    Transition transition = {};  ///< What the callbacks see.
    std::uint32_t result = 1;
    std::wstring path = {};  ///< Path of the last stepped file.
    bool stepped = false;    ///< Whether `path` was set.
  };
  // model_files.cpp.
  void HandleFileEvent(FileEvent& event);
  void Create(FileEvent& event);
  void PreWrite(FileEvent& event);
  void Rename(FileEvent& event);
  void RenameSimilar(FileEvent& event, const std::wstring& source, const std::wstring& destination);
  void RenameSource(FileEvent& event, const std::wstring& source, const std::wstring& destination);
  void FindAndStep(FileEvent& event, bool mark_similar);
  void Step(FileEvent& event);
  // model_lists.cpp.
  void AddToQuarantineList(const std::wstring& path, ProcessItem& process);
  void RemoveFromQuarantineList(const std::wstring& path, ProcessItem& process);
  void AddToCreatedFilesList(const std::wstring& path, ProcessItem& process);

  // model_queries.cpp and model_reset.cpp.
  std::vector<ProcessItem> SuspiciousFamily(std::uint64_t pid);
  void ForgetOldFiles(ProcessItem& process, std::int64_t now);
  void EraseFinished();

  static constexpr std::uint32_t kScoreWalkLimit = 4;
  static constexpr std::int64_t kFileKeepTime = 900000;

  std::uint32_t id_;
  ModelTrace trace_;
  Machine machine_;
  std::map<std::uint64_t, std::int64_t> start_times_;
  Tree tree_;
};

/// `text` with A to Z lowered.
std::wstring Lower(std::wstring text);
/// The target of an event, up to its first zero unit or the record's end.
std::wstring TargetOf(const LOG_ITEM& log);
/// A decimal number as the C library reads it, held to 32 bits.
std::int32_t ReadNumber(const std::wstring& text);

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_MODEL_ENGINE_H
