// The engine context: all state of one engine, behind the handle.

#ifndef ZT_ENGINE_CONTEXT_H
#define ZT_ENGINE_CONTEXT_H

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/inspection.h"
#include "engine/process_tree.h"
#include "engine/transition_table.h"
#include "platform/critical_section.h"
#include "zteng/zteng.h"

/// All state of one engine. Everything but the settings, the watch table and the transition table, which are written only while
/// the engine is built, is guarded by Lock. Built by ZtInitEngineCore; freed with the last copy of the handle.
class _ZtEngineCore {
 public:
  explicit _ZtEngineCore(std::uint32_t id);
  _ZtEngineCore(const _ZtEngineCore&) = delete;
  _ZtEngineCore& operator=(const _ZtEngineCore&) = delete;
  ~_ZtEngineCore() = default;

  /// The start time of the newest process created under `pid`. An unknown id is entered with start time 0.
  std::int64_t StartTimeOrEnter(std::uint64_t pid) { return StartTimes[pid]; }
  /// The same, or null for an unknown id.
  [[nodiscard]] const std::int64_t* FindStartTime(std::uint64_t pid) const;

  std::uint32_t EngineId;  ///< The host's identifier; not interpreted.
  /// Names of watched modules, by the behaviour code that loads them.
  std::map<std::uint32_t, std::vector<std::wstring>> CryptoModules;
  std::map<std::uint64_t, std::int64_t> StartTimes;  ///< Process id to the start time of the newest process under it.
  zt::CriticalSection Lock;
  std::uint16_t Setting = 1;           ///< Reserved for a later setting; read by nothing.
  std::uint32_t ScoreWalkLimit = 4;    ///< Levels that a family's root is looked for; reads of the score walk.
  std::int64_t fileKeepTime = 900000;  ///< Age in milliseconds beyond which a file record may be forgotten.
  zt::ProcessTree Tree;
  zt::TransitionTable Transitions;

  zt::EngineObserver* Observer = nullptr;  ///< Borrowed; null for none.
};

namespace zt {

/// The engine behind `handle`, as a counted reference that keeps it for the length of a call; null when the handle is empty or
/// the engine was cleaned up.
std::shared_ptr<_ZtEngineCore> AcquireEngine(const std::shared_ptr<void>& handle);

/// Whether a process counts as suspicious: a score of 2 or more, read as unsigned.
inline bool IsSuspicious(const ProcessItem& process) { return static_cast<std::uint32_t>(process.Score) >= 2; }

/// Tells the engine's observer, if there is one, that a score was set.
inline void ReportScore(const _ZtEngineCore& engine, const ZtProcKey& process, ScoreReport::Cause cause, std::int32_t before,
                        std::int32_t after) {
  if (engine.Observer != nullptr) {
    engine.Observer->OnScore({process, cause, before, after, 0, {}});
  }
}

/// The same for a charged penalty.
inline void ReportCharge(const _ZtEngineCore& engine, const ZtProcKey& process, ScoreReport::Cause cause, std::int32_t before,
                         std::int32_t after, std::uint32_t factor, std::wstring_view file) {
  if (engine.Observer != nullptr) {
    engine.Observer->OnScore({process, cause, before, after, factor, file});
  }
}

/// A process id as the exports pass it.
inline std::uint64_t PidFromHandle(void* pid) { return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pid)); }
inline void* HandleFromPid(std::uint64_t pid) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(pid));  // NOLINT(performance-no-int-to-ptr): hosts pass ids so.
}

}  // namespace zt

#endif  // ZT_ENGINE_CONTEXT_H
