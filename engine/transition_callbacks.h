// What the transitions of the file state machine do. Each callback writes its name to the trace, checks its guard and, where
// the guard holds, moves the file on, writes the label of the new state and returns the penalty. Where the guard fails it
// returns 0 and changes nothing.

#ifndef ZT_ENGINE_TRANSITION_CALLBACKS_H
#define ZT_ENGINE_TRANSITION_CALLBACKS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/files/path_name.h"
#include "engine/files/tracked_file.h"
#include "zteng/zteng.h"

namespace zt {

/// What a step hands to its callback. The pointers are borrowed for the step.
struct TransitionContext {
  FileItem* Item = nullptr;              ///< The file that steps; null: no step is made.
  std::uint8_t PrevState = 0;            ///< Its state before the step, and before a move to ZT_WRITE_SIMILAR.
  const LOG_ITEM* Log = nullptr;         ///< The event; set for creates only.
  PathName* FilePath = nullptr;          ///< The path that the event names.
  std::uint64_t ReadInfo = 0;            ///< For a read, the position that it reached.
  bool SimilarFound = false;             ///< Item was found by the similar-file search.
  std::uint32_t SectionRenamed = 0;      ///< When set after the step, the event's path is quarantined.
  std::u16string* PrevFolder = nullptr;  ///< The process's PrevFolder; set for renames of a tracked source only.
  std::u16string_view SourcePath;        ///< Rename of a tracked source: the path before.
  std::u16string_view DestPath;          ///< Rename of a tracked source: the path after.
};

std::uint64_t UnknownCreate(TransitionContext* context);
std::uint64_t DeletedCreate(TransitionContext* context);
std::uint64_t OpenExistingRead(TransitionContext* context);
std::uint64_t OpenReadSync(TransitionContext* context);
std::uint64_t ReadWrite(TransitionContext* context);
std::uint64_t DeleteWrite(TransitionContext* context);
std::uint64_t SyncWrite(TransitionContext* context);
std::uint64_t WriteSimilarDelete(TransitionContext* context);
std::uint64_t ReadDelete(TransitionContext* context);
std::uint64_t DeleteOrgRename(TransitionContext* context);
std::uint64_t SyncRename(TransitionContext* context);
std::uint64_t WriteSimilarRename(TransitionContext* context);

}  // namespace zt

#endif  // ZT_ENGINE_TRANSITION_CALLBACKS_H
