// Whom to stop: what a host works out from the results of ZtInsertLog.

#ifndef ZT_EXAMPLES_CULPRITS_H
#define ZT_EXAMPLES_CULPRITS_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "zteng/zteng.h"

/// The host's own view of the processes. A process's damage is charged to it and to every ancestor, so the score of an ancestor
/// says little about the ancestor: the shell of a desktop is charged with all that its programs do. The culprit is the deepest
/// process that reached the alarm: it has no descendant that did. It and its descendants are stopped, never an ancestor.
///
/// Where a program hands each file to a new worker process, no worker reaches the alarm but their parent does: it is the
/// culprit.
///
/// Threads: none of its own.
class Culprits {
 public:
  /// @param alarm  the score from which on a process is stopped
  /// @param spare  whether a process of this image is never stopped, such as the system's own
  Culprits(ZtLong alarm, std::function<bool(const std::wstring& image)> spare) : alarm_(alarm), spare_(std::move(spare)) {}

  /// The process `pid` runs from `image`, created by `parent`. An id that is used again names the new process.
  void Enter(std::uint64_t pid, std::uint64_t parent, std::wstring image) {
    processes_[pid] = {parent, std::move(image), 1};
    culprits_.erase(pid);
  }

  /// Takes in the result of ZtInsertLog for an event of the process `pid`. Returns the culprit where the event made one known.
  std::optional<std::uint64_t> Take(std::uint64_t pid, std::uint32_t behavior, ZtLong result) {
    const auto actor = processes_.find(pid);
    if (result == 0 || actor == processes_.end()) {
      return std::nullopt;
    }
    // The result is the larger of the actor's and its parent's score. What the actor did alone is at least this: a file that is
    // overwritten doubles a score, an original that is deleted beside its copy multiplies it by six.
    Process& process = actor->second;
    if (process.own_score < alarm_) {
      process.own_score *= behavior == BehaviorDelete || behavior == BehaviorDeleteAlt ? 6 : 2;
    }
    if (result < alarm_) {
      return std::nullopt;
    }
    const std::uint64_t culprit = process.own_score >= alarm_ ? pid : process.parent;
    const auto found = processes_.find(culprit);
    if (found == processes_.end() || spare_(found->second.image) || HasCulpritBelow(culprit) ||
        !culprits_.insert(culprit).second) {
      return std::nullopt;
    }
    return culprit;
  }

  /// The process and all its descendants: whom to stop.
  [[nodiscard]] std::vector<std::uint64_t> WithDescendants(std::uint64_t pid) const {
    std::vector<std::uint64_t> family;
    for (const auto& [member, process] : processes_) {
      if (IsBelow(member, pid) || member == pid) {
        family.push_back(member);
      }
    }
    return family;
  }

 private:
  struct Process {
    std::uint64_t parent;
    std::wstring image;
    ZtLong own_score;  ///< Not more than the engine's score of the process.
  };

  [[nodiscard]] bool IsBelow(std::uint64_t pid, std::uint64_t ancestor) const {
    std::set<std::uint64_t> met;  // Ids are used again, so parents may lead round.
    for (auto process = processes_.find(pid); process != processes_.end() && met.insert(process->first).second;
         process = processes_.find(process->second.parent)) {
      if (process->second.parent == ancestor) {
        return true;
      }
    }
    return false;
  }
  [[nodiscard]] bool HasCulpritBelow(std::uint64_t pid) const {
    for (const std::uint64_t culprit : culprits_) {
      if (IsBelow(culprit, pid)) {
        return true;
      }
    }
    return false;
  }

  ZtLong alarm_;
  std::function<bool(const std::wstring&)> spare_;
  std::map<std::uint64_t, Process> processes_;
  std::set<std::uint64_t> culprits_;
};

#endif  // ZT_EXAMPLES_CULPRITS_H
