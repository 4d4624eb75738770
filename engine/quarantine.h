// The created-files list and the quarantine list of a process, with what they trace.

#ifndef ZT_ENGINE_QUARANTINE_H
#define ZT_ENGINE_QUARANTINE_H

#include <string>

#include "zteng/zt_items.h"

namespace zt {

/// Appends `path` to the quarantine list of `process`; false when it is there already.
bool AddToQuarantineList(const std::wstring& path, ZT_PID_ITEM& process);
/// Removes `path` from the quarantine list of `process`; false when it is not there.
bool RemoveFromQuarantineList(const std::wstring& path, ZT_PID_ITEM& process);
/// Appends `path` to the created-files list of `process` unless it is there already.
void AddToCreatedFilesList(const std::wstring& path, ZT_PID_ITEM& process);

}  // namespace zt

#endif  // ZT_ENGINE_QUARANTINE_H
