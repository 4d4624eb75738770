// The created-files list and the quarantine list of a process, with what they trace.

#ifndef ZT_ENGINE_QUARANTINE_H
#define ZT_ENGINE_QUARANTINE_H

#include "engine/process_item.h"

namespace zt {

/// Appends `path` to the quarantine list of `process`; false when it is there already.
bool AddToQuarantineList(PathName& path, ProcessItem& process);
/// Removes `path` from the quarantine list of `process`; false when it is not there.
bool RemoveFromQuarantineList(const PathName& path, ProcessItem& process);
/// Appends `path` to the created-files list of `process` unless it is there already.
void AddToCreatedFilesList(PathName& path, ProcessItem& process);

}  // namespace zt

#endif  // ZT_ENGINE_QUARANTINE_H
