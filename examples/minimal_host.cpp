// A small host: announces the processes that run, feeds the events of an attack, names the culprit and asks what to restore.

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "examples/culprits.h"
#include "zteng/zteng.h"

namespace {

constexpr ZtLong kAlarm = 64;  // Six files overwritten.
constexpr std::uint64_t kShell = 900;
constexpr std::uint64_t kProgram = 4242;

/// An engine and what the host itself has to know.
class Host {
 public:
  Host() { ZtInitEngineCore(engine_, 1); }
  ~Host() { ZtCleanupEngineCore(engine_); }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// A process that runs already, or that starts now. The engine ignores the events of a process that was not announced.
  void Announce(std::uint64_t parent, std::uint64_t pid, std::u16string_view image) {
    culprits_.Enter(pid, parent, std::wstring(image.begin(), image.end()));
    Insert(parent, BehaviorProcessCreate, image, pid);
  }

  /// Feeds one event and acts on its result. `target` must not be longer than a record's Target.
  void Insert(std::uint64_t pid, std::uint32_t behavior, std::u16string_view target, std::uint64_t target_pid) {
    LOG_ITEM log = {};
    log.Time = ++time_ * kMillisecond;
    log.Pid = pid;
    log.TargetPid = target_pid;
    log.Behavior = behavior;
    std::copy(target.begin(), target.end(), log.Target);
    if (const auto culprit = culprits_.Take(pid, behavior, ZtInsertLog(engine_, &log))) {
      Stop(*culprit);
    }
    // Old scores and files are forgotten once a minute of event time. A host that never does this grows for ever, and charges a
    // desktop's shell for years with what its programs do.
    if (time_ % 60000 == 0) {
      ZtResetScore(engine_, log.Time, /*scoreAgeLimit=*/10 * 60000);
    }
  }

 private:
  static constexpr std::int64_t kMillisecond = 10000;  // In the 100 ns ticks of records.

  /// What a real host would end here is printed.
  void Stop(std::uint64_t culprit) {
    for (const std::uint64_t pid : culprits_.WithDescendants(culprit)) {
      std::cout << "stop process " << pid << "\n";
    }
    std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
    std::vector<std::wstring> quarantined;
    ZtGetFinalStateFileByPid(engine_, reinterpret_cast<void*>(static_cast<std::uintptr_t>(culprit)), files, quarantined);
    std::cout << files.size() << " files to restore, " << quarantined.size() << " paths in its quarantine list\n";
  }

  static bool IsSystems(const std::wstring& image) {
    return image == L"C:\\Windows\\explorer.exe" || image == L"C:\\Windows\\System32\\services.exe";
  }

  std::shared_ptr<void> engine_;
  Culprits culprits_{kAlarm, IsSystems};
  std::int64_t time_ = 0;
};

}  // namespace

int main() {
  Host host;
  host.Announce(4, kShell, u"C:\\Windows\\explorer.exe");
  host.Announce(kShell, kProgram, u"C:\\Users\\ann\\invoice.exe");
  for (char16_t letter = u'a'; letter <= u'h'; ++letter) {
    const std::u16string path = std::u16string(u"C:\\Users\\ann\\") + letter + u".docx";
    host.Insert(kProgram, BehaviorCreate, path, 1);             // 1: the file existed before.
    host.Insert(kProgram, BehaviorRead, path, 51200);           // Up to this position.
    host.Insert(kProgram, BehaviorWrite, path + u"|51200", 0);  // 51,200 bytes at the start.
  }
}
