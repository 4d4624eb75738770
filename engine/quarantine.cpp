#include "engine/quarantine.h"

#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {

bool AddToQuarantineList(PathName& path, ProcessItem& process) {
  if (!process.QuarantineList.Add(path)) {
    ZT_TRACE_DEBUG("%ws still exists in the quarantine list of pid %d", Widen(path.lower()).c_str(), Trace32(process.Pid));
    return false;
  }
  ZT_TRACE_DEBUG("Adding %ws to the quarantine list of pid %d", Widen(path.lower()).c_str(), Trace32(process.Pid));
  return true;
}

bool RemoveFromQuarantineList(const PathName& path, ProcessItem& process) {
  if (!process.QuarantineList.Remove(path)) {
    ZT_TRACE_DEBUG("%ws does not exist in the quarantine list", Widen(path.lower()).c_str());
    return false;
  }
  ZT_TRACE_DEBUG("Removing %ws from the quarantine list", Widen(path.lower()).c_str());
  return true;
}

void AddToCreatedFilesList(PathName& path, ProcessItem& process) {
  if (process.CreatedFilesList.Add(path)) {
    ZT_TRACE_DEBUG("Adding %ws to the created files list", Widen(path.lower()).c_str());
  } else {
    ZT_TRACE_DEBUG("%ws still exists in the created files list", Widen(path.lower()).c_str());
  }
}

}  // namespace zt
