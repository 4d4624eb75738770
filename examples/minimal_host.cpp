// The smallest host: feeds three events to an engine and asks what to restore.

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "zteng/zteng.h"

namespace {

LOG_ITEM MakeEvent(std::int64_t time, std::uint64_t pid, std::uint32_t behavior, std::u16string_view target,
                   std::uint64_t target_pid) {
  LOG_ITEM log = {};
  log.Time = time;
  log.Pid = pid;
  log.TargetPid = target_pid;
  log.Behavior = behavior;
  std::copy(target.begin(), target.end(), log.Target);
  return log;
}

}  // namespace

int main() {
  std::shared_ptr<void> engine;
  ZtInitEngineCore(engine, 1);

  constexpr std::uint64_t kPid = 4242;
  LOG_ITEM events[] = {
      MakeEvent(1000, 4, BehaviorProcessCreate, u"C:\\Users\\ann\\invoice.exe", kPid),
      MakeEvent(1001, kPid, BehaviorCreate, u"C:\\Users\\ann\\report.docx", 1),
      MakeEvent(1002, kPid, BehaviorRead, u"C:\\Users\\ann\\report.docx", 51200),
      MakeEvent(1003, kPid, BehaviorWrite, u"C:\\Users\\ann\\report.docx|51200", 0),
  };
  for (LOG_ITEM& event : events) {
    if (const ZtLong score = ZtInsertLog(engine, &event); score != 0) {
      std::cout << "process " << event.Pid << " has risen to score " << score << "\n";
    }
  }

  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
  std::vector<std::wstring> quarantined;
  ZtGetFinalStateFileByPid(engine, reinterpret_cast<void*>(static_cast<std::uintptr_t>(kPid)), files, quarantined);
  std::cout << files.size() << " file to restore, " << quarantined.size() << " path in its quarantine list\n";

  ZtCleanupEngineCore(engine);
  return 0;
}
