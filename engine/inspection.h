// A look inside an engine, for the replay tool and the tests: what the exports do not tell. Not exported by the library; who
// uses it links the engine statically.

#ifndef ZT_ENGINE_INSPECTION_H
#define ZT_ENGINE_INSPECTION_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "engine/files/path_list.h"
#include "engine/files/tracked_file.h"
#include "zteng/zteng.h"

namespace zt {

/// One step of a file's state machine that ran a callback.
struct StepReport {
  ZtProcKey process;               ///< The process in whose file records the step was made (the parent, on its pass).
  std::wstring_view file_path;     ///< The stepped record's Path: its name when it was first filled, in that letter case.
  std::wstring_view event_path;    ///< The path that the event names (lower-case; a rename's destination).
  std::uint32_t state_before = 0;  ///< Before the event, so before a move to ZT_WRITE_SIMILAR.
  std::uint32_t state_after = 0;
  std::uint64_t penalty = 0;  ///< What the callback returned: 0, 2 or 6.
  bool similar = false;       ///< The file was found by the similar-file search for event_path.
};

/// A score that one event changed.
struct ScoreReport {
  enum class Cause {
    kModuleLoad,     ///< A watched library was loaded.
    kPenalty,        ///< A file of the process itself was charged.
    kParentPenalty,  ///< A file of a descendant was charged.
    kClamp,          ///< A score beyond 0x7FFFFFFF was cut back to it.
    kUpdate,         ///< ZtUpdateScore.
    kReset,          ///< ZtResetScore.
  };
  ZtProcKey process;
  Cause cause = Cause::kPenalty;
  std::int32_t score_before = 0;
  std::int32_t score_after = 0;
  std::uint32_t factor = 0;        ///< For a penalty, the multiplier; else 0.
  std::wstring_view charged_file;  ///< For a penalty, the lower-case path of the charged file; else empty.
};

/// Is told what happens inside an engine, on the calling thread and, where the export takes it, under the engine's lock. Views
/// are valid during the call only. Must not call into the engine and must not throw.
class EngineObserver {
 public:
  EngineObserver() = default;
  EngineObserver(const EngineObserver&) = delete;
  EngineObserver& operator=(const EngineObserver&) = delete;
  virtual ~EngineObserver() = default;

  /// A callback ran. Steps of one event come in order, before its score changes.
  virtual void OnStep(const StepReport& step) = 0;
  /// A score was set; also when it was set to what it was. A charge of the acting process comes before those of its ancestors,
  /// which come in order from the parent upwards.
  virtual void OnScore(const ScoreReport& score) = 0;
  /// The similar-file search of a write to an unknown file, or of a rename, returned the record under `key`. Comes before the
  /// step that it leads to.
  virtual void OnSimilarFile(const ZtProcKey& process, std::wstring_view target, std::wstring_view key) = 0;
};

/// Tells `observer` (borrowed; null for none) from now on. REQUIRES: no other call on the engine runs.
void SetEngineObserver(std::shared_ptr<void>& engine, EngineObserver* observer);

/// A process as the tree holds it.
struct ProcessView {
  ZtProcKey key;
  ZtProcKey parent;  ///< {0, 0}: none known.
  std::int32_t score = 0;
  bool exited = false;
  std::wstring_view image_path;  ///< Valid until the engine is next called.
};

/// The newest process known under `pid`, or false when the id is unknown. REQUIRES: no other call on the engine runs.
bool FindProcess(std::shared_ptr<void>& engine, std::uint64_t pid, ProcessView& process);

/// The process under `key`, or false. REQUIRES: no other call on the engine runs.
bool FindProcess(std::shared_ptr<void>& engine, const ZtProcKey& key, ProcessView& process);

/// Is told what ZtGetFinalStateFileByPid would report, without the copies of it. Must not call into the engine.
class FinalStateVisitor {
 public:
  FinalStateVisitor() = default;
  FinalStateVisitor(const FinalStateVisitor&) = delete;
  FinalStateVisitor& operator=(const FinalStateVisitor&) = delete;
  virtual ~FinalStateVisitor() = default;

  /// The process's quarantine list; called once, before any file, for a process that is in the tree.
  virtual void OnQuarantine(const PathList& list) = 0;
  /// One file that the report has, in the order of keys. `restored` is its restore flag.
  virtual void OnFile(const TrackedFile& file, bool restored) = 0;

  /// What is not in the report but in the trace of the export, where it comes about: the key that is asked for, the images that
  /// are not handed back, a process that is not in the tree, a file that the report leaves out.
  virtual void OnKey(const ZtProcKey& /*key*/) {}
  virtual void OnExcludedImage(const std::wstring& /*image*/) {}
  virtual void OnMissingProcess(const ZtProcKey& /*key*/) {}
  virtual void OnFileLeftOut(const TrackedFile& /*file*/) {}
  /// Whether OnFileLeftOut is to be called: files that are no restore candidates are then gone through, too.
  [[nodiscard]] virtual bool WantsFilesLeftOut() const { return false; }
};

/// Tells `visitor` the final state of the newest process under `pid`; traces nothing. Takes the engine's lock. False, with
/// nothing told, where the export gives 0.
bool VisitFinalState(std::shared_ptr<void>& engine, std::uint64_t pid, FinalStateVisitor& visitor);

/// What ZtGetProcTree gives of the newest process under `pid`: the ids of the suspicious members of its family with their
/// images. Traces nothing and does not enter an unknown id. REQUIRES: no other call on the engine runs.
std::map<std::uint64_t, std::wstring> SuspiciousFamily(std::shared_ptr<void>& engine, std::uint64_t pid);

}  // namespace zt

#endif  // ZT_ENGINE_INSPECTION_H
