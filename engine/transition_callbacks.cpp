#include "engine/transition_callbacks.h"

#include <string_view>

#include "engine/text.h"
#include "engine/tracing.h"
#include "engine/transition_table.h"

namespace zt {
namespace {

// What a step tells of a file: nothing, its content is destroyed or replaced, or an original was deleted or renamed away after
// a similar copy of it was written.
constexpr std::uint64_t kNoPenalty = 0;
constexpr std::uint64_t kReplaced = 2;
constexpr std::uint64_t kOriginalGone = 6;

}  // namespace

std::uint64_t UnknownCreate(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: UnknownCreate");
  FileItem& item = *context->Item;
  const LOG_ITEM& log = *context->Log;
  if (log.TargetPid == 0) {
    return kNoPenalty;
  }
  item.Path = context->FilePath->Text();  // First: it may throw, and the record is to stay as it was then.
  item.State = ZT_OPEN_EXISTING;
  item.FirstTime = log.Time;
  item.Context = log.Context;
  item.CreateInfo = static_cast<std::uint32_t>(log.TargetPid);
  item.Created = item.Created || log.Behavior == BehaviorCreateNew;
  ZT_TRACE_DEBUG("ZT_OPEN_EXISTING");
  return kNoPenalty;
}

std::uint64_t DeletedCreate(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: DeletedCreate");
  if (context->Log->TargetPid != 0) {
    return kNoPenalty;
  }
  context->Item->State = ZT_READ_START;
  ZT_TRACE_DEBUG("ZT_READ_START: Found creating already deleted file with identical name");
  return kNoPenalty;
}

std::uint64_t OpenExistingRead(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: OpenExistingRead");
  FileItem& item = *context->Item;
  item.State = ZT_READ_START;
  item.ReadInfo = context->ReadInfo;
  item.ReadStarted = true;
  ZT_TRACE_DEBUG("ZT_READ_START");
  return kNoPenalty;
}

std::uint64_t OpenReadSync(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: OpenReadSync");
  FileItem& item = *context->Item;
  item.State = ZT_SECTION_SYNC;
  ZT_TRACE_DEBUG("LB_PreSectionSync ZT_READ_START");
  if (!item.Renamed) {
    return kNoPenalty;
  }
  item.State = ZT_RENAME_SECTION_SYNC;
  item.Written = true;
  item.Similar = true;
  context->SectionRenamed = 1;
  ZT_TRACE_DEBUG("ZT_RENAME_SECTION_SYNC");
  return kReplaced;
}

std::uint64_t ReadWrite(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: ReadWrite");
  if (context->SimilarFound) {
    return kNoPenalty;
  }
  context->Item->State = ZT_OVERWRITE;
  context->Item->Written = true;
  ZT_TRACE_DEBUG("ZT_OVERWRITE");
  return kReplaced;
}

std::uint64_t DeleteWrite(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: DeleteWrite");
  if (!context->SimilarFound) {
    return kNoPenalty;
  }
  context->Item->Written = true;
  context->Item->Similar = true;
  context->Item->State = ZT_WRITTEN_DELETE;
  ZT_TRACE_DEBUG("ZT_DELETE_ORG + ZT_WRITE_SIMILAR");
  return kOriginalGone;
}

std::uint64_t SyncWrite(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: SyncWrite");
  if (!context->SimilarFound) {
    return kNoPenalty;
  }
  context->Item->State = ZT_OVERWRITE;
  context->Item->Written = true;
  context->Item->Similar = true;
  ZT_TRACE_DEBUG("ZT_SECTION_SYNC + ZT_WRITE_SIMILAR");
  return kReplaced;
}

std::uint64_t WriteSimilarDelete(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: WriteSimilarDelete");
  context->Item->Written = true;
  context->Item->State = ZT_WRITTEN_DELETE;
  ZT_TRACE_DEBUG("ZT_WRITTEN_DELETE");
  return kOriginalGone;
}

// Reports nothing: a deleted original counts only when a similar copy is written then, or its name is renamed onto.
std::uint64_t ReadDelete(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: ReadDelete");
  context->Item->State = ZT_DELETE_ORG;
  ZT_TRACE_DEBUG("ZT_DELETE_ORG");
  return kNoPenalty;
}

std::uint64_t DeleteOrgRename(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: DeleteOrgRename");
  if (!context->SimilarFound) {
    return kNoPenalty;
  }
  context->Item->Written = true;
  context->Item->Similar = true;
  context->Item->State = ZT_WRITTEN_DELETE;
  ZT_TRACE_DEBUG("ZT_DELETE_ORG + Renamed + ZT_WRITE_SIMILAR");
  return kOriginalGone;
}

std::uint64_t SyncRename(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: SyncRename");
  if (context->SimilarFound) {
    return kNoPenalty;
  }
  context->Item->State = ZT_RENAME_SECTION_SYNC;
  context->Item->Written = true;
  ZT_TRACE_DEBUG("ZT_RENAME_SECTION_SYNC");
  return kReplaced;
}

// The first move of a process's similar files into another folder arms the rule, the second into the same folder fires it.
std::uint64_t WriteSimilarRename(TransitionContext* context) {
  ZT_TRACE_DEBUG("Callback: WriteSimilarRename");
  FileItem& item = *context->Item;
  if (!item.ReadStarted || !item.SimilarMark) {
    return kNoPenalty;
  }
  const std::u16string_view destination = context->DestPath;
  const std::size_t last = destination.rfind(u'\\');
  if (last == std::u16string_view::npos) {
    ZT_TRACE_DEBUG("Cannot find \\ in Dst:%ws", Widen(destination).c_str());
    return kNoPenalty;
  }
  // Characters are compared, not folders: a longer source that only begins alike counts as the same folder.
  const std::u16string_view folder = destination.substr(0, last);
  if (context->SourcePath.substr(0, last) == folder) {
    return kNoPenalty;
  }
  ZT_TRACE_DEBUG("New folder:%ws", Widen(folder).c_str());
  if (folder != *context->PrevFolder) {
    *context->PrevFolder = folder;
    return kNoPenalty;
  }
  item.State = ZT_WRITE_SIMILAR_SYNC;
  ZT_TRACE_DEBUG("Same folder as previous, ZT_WRITE_SIMILAR_SYNC");
  return kReplaced;
}

}  // namespace zt
