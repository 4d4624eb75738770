#include "engine/file_events.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/quarantine.h"
#include "engine/similar_file.h"
#include "engine/text.h"
#include "engine/tracing.h"
#include "engine/transition_callbacks.h"

namespace zt {
namespace {

/// One file event on its way through one process.
class FileEvent {
 public:
  /// REQUIRES: the event's paths are complete.
  FileEvent(_ZtEngineCore& engine, Insertion& insertion, ProcessTree::Entry& process)
      : engine_(engine),
        event_(insertion.event),
        paths_(insertion.Paths()),
        path_(*paths_.path),
        process_(process),
        item_(process.Item),
        outcome_(insertion.outcome) {
    context_.FilePath = &path_;
  }

  std::uint32_t Run() {
    Dispatch();
    if (context_.SectionRenamed != 0) {
      AddToQuarantineList(path_, item_);
    }
    return result_;
  }

 private:
  void Dispatch();
  void Create();
  void Read();
  void Write();
  void Delete();
  void DeleteCreated();
  void Rename();
  void ChangeSize();
  void SyncSection();

  struct WriteParts;
  [[nodiscard]] bool IsWriteConsidered(const WriteParts& write) const;
  void RememberWrite(const WriteParts& write);
  void StepSimilarToWritten();
  void StepSimilarToRenamed(PathName& destination);
  void StepRenamed(PathName& destination);

  [[nodiscard]] FileItem* Find(const PathName& path);
  TrackedFile* FindSimilar(PathName& path);
  void MoveToWriteSimilar(FileItem& file);
  void StepItem(FileItem& file);
  void Step();

  _ZtEngineCore& engine_;
  const Event& event_;
  EventPaths& paths_;
  PathName& path_;  ///< The file, or the source of a rename.
  ProcessTree::Entry& process_;
  ProcessItem& item_;
  StepOutcome& outcome_;
  TransitionContext context_;
  std::uint32_t result_ = 1;
};

/// A write that is about to happen.
struct FileEvent::WriteParts {
  std::uint64_t offset = 0;
  std::uint32_t length = 0;
  std::uint64_t size = 0;             ///< 0 for an unknown file.
  std::uint32_t size32 = 0xFFFFFFFF;  ///< -1 for an unknown file.
  std::uint32_t diff = 0;             ///< size32 less offset where that is positive, else 0.

  [[nodiscard]] std::uint32_t offset32() const { return static_cast<std::uint32_t>(offset); }
};

void FileEvent::Dispatch() {
  switch (event_.log.Behavior) {
    case BehaviorCreate:
    case BehaviorCreateNew:
      return Create();
    case BehaviorRead:
      return Read();
    case BehaviorWrite:
      return Write();
    case BehaviorDelete:
      return Delete();
    case BehaviorRename:
      return Rename();
    case BehaviorSizeChange:
      return ChangeSize();
    case BehaviorSectionSync:
      return SyncSection();
    case BehaviorDeleteAlt:
      return DeleteCreated();
    default:
      return;
  }
}

void FileEvent::Create() {
  context_.Log = &event_.log;
  if (FileItem* file = Find(path_); file != nullptr) {
    file->Created = file->Created || event_.log.Behavior == BehaviorCreateNew;
    StepItem(*file);
  } else if (event_.log.TargetPid == 0) {
    AddToCreatedFilesList(path_, item_);
    context_.SectionRenamed = 1;
  } else if (!item_.CreatedFilesList.Contains(path_)) {
    StepItem(item_.files.FindOrAdd(path_).first->item);
  }
}

void FileEvent::Read() {
  if (FileItem* file = Find(path_); file != nullptr) {
    context_.ReadInfo = event_.log.TargetPid;
    StepItem(*file);
  }
}

void FileEvent::Delete() {
  if (FileItem* file = Find(path_); file != nullptr) {
    file->Similar = true;
    StepItem(*file);
  }
}

void FileEvent::DeleteCreated() {
  if (FileItem* file = Find(path_); file != nullptr && file->Created) {
    file->Similar = true;
    StepItem(*file);
  }
}

void FileEvent::ChangeSize() {
  if (FileItem* file = Find(path_); file != nullptr) {
    ZT_TRACE_DEBUG("File size of %ws has been modified, will need to be restored", Widen(path_.lower()).c_str());
    file->Similar = true;
  }
}

void FileEvent::SyncSection() {
  if (FileItem* file = Find(path_); file != nullptr) {
    StepItem(*file);
  }
}

void FileEvent::Write() {
  WriteParts write;
  write.offset = event_.log.TargetPid;
  write.length = static_cast<std::uint32_t>(ParseLength(paths_.length_text));
  FileItem* const file = Find(path_);
  if (file != nullptr) {
    ZT_TRACE_DEBUG("File %ws needs to be restored", Widen(path_.lower()).c_str());
    file->Similar = true;
    file->SimilarMark = true;
    write.size = file->ReadInfo;
    write.size32 = file->CreateInfo;
    context_.SectionRenamed = 1;
  }
  const auto diff = static_cast<std::int32_t>(write.size32 - write.offset32());
  write.diff = static_cast<std::uint32_t>(std::max(diff, 0));
  ZT_TRACE_DEBUG("PreWrite:: Offset: %ld, Last offset: %ld, Filesize: %ld, Diff: %ld, Name: %ws, Length: %ld (%ws)",
                 write.offset32(), item_.LastWriteOffset, write.size32, write.diff, Widen(path_.lower()).c_str(), write.length,
                 Widen(paths_.length_text).c_str());
  if (IsWriteConsidered(write)) {
    if (file != nullptr) {
      StepItem(*file);
    } else {
      StepSimilarToWritten();
    }
  }
  RememberWrite(write);
}

/// Whether the write looks like the next of a series that rewrites files: the same length, end or place as the last one, or a
/// write at the start or the end of the file.
bool FileEvent::IsWriteConsidered(const WriteParts& write) const {
  return write.length == item_.LastWriteLength || write.offset == 0 || write.offset == write.size ||
         write.diff == item_.LastWriteDiff || write.offset32() == item_.LastWriteOffset;
}

// The comparison is signed: an unknown file (-1) updates the offset only where that is 2^31 or more.
void FileEvent::RememberWrite(const WriteParts& write) {
  item_.LastWriteLength = write.length;
  if (static_cast<std::int32_t>(write.offset32()) < static_cast<std::int32_t>(write.size32)) {
    item_.LastWriteOffset = write.offset32();
    item_.LastWriteDiff = write.diff;
  }
}

void FileEvent::StepSimilarToWritten() {
  TrackedFile* const found = FindSimilar(path_);
  if (found == nullptr) {
    return;
  }
  MoveToWriteSimilar(found->item);
  ZT_TRACE_DEBUG("ZT_WRITE_SIMILAR");
  Step();
}

void FileEvent::Rename() {
  PathName& destination = *paths_.destination;
  if (paths_.completed) {
    ZT_TRACE_DEBUG("Renamed file name did not include directory, appending: %ws", Widen(destination.lower()).c_str());
  }
  // The text is misspelled; readers of traces search for it as it is.
  ZT_TRACE_DEBUG("LB_PreSetInforamtionRename Src:%ws, Dst:%ws", Widen(path_.lower()).c_str(),
                 Widen(destination.lower()).c_str());
  RemoveFromQuarantineList(path_, item_);
  AddToQuarantineList(destination, item_);
  StepSimilarToRenamed(destination);
  StepRenamed(destination);
}

void FileEvent::StepSimilarToRenamed(PathName& destination) {
  TrackedFile* const found = FindSimilar(destination);
  if (found == nullptr) {
    return;
  }
  FileItem& file = found->item;
  file.Renamed = true;
  if (found->key.Lower() == destination.lower()) {
    file.State = ZT_MAX;
    ZT_TRACE_DEBUG("File renamed to another identically named flle: %ws ZT_MAX", Widen(found->key.Lower()).c_str());
  } else if (found->key.Lower() != path_.lower()) {
    MoveToWriteSimilar(file);
    ZT_TRACE_DEBUG("File %ws is renamed to another similarly named flle %ws ZT_WRITE_SIMILAR",
                   Widen(destination.lower()).c_str(), Widen(found->key.Lower()).c_str());
    Step();
  }
}

void FileEvent::StepRenamed(PathName& destination) {
  FileItem* const file = Find(path_);
  if (file == nullptr) {
    return;
  }
  // The copy is made before the source is marked, so the destination does not get the mark from this rename.
  FileItem copy = *file;
  copy.Renamed = true;
  item_.files.FindOrAdd(destination).first->item = std::move(copy);
  file->Similar = true;
  context_.SimilarFound = false;
  context_.PrevFolder = &item_.PrevFolder;
  context_.SourcePath = path_.lower();
  context_.DestPath = destination.lower();
  StepItem(*file);
}

FileItem* FileEvent::Find(const PathName& path) {
  TrackedFile* const found = item_.files.Find(path);
  return found == nullptr ? nullptr : &found->item;
}

TrackedFile* FileEvent::FindSimilar(PathName& path) {
  outcome_.BeforeSearch(item_);
  TrackedFile* const found = SearchSimilarFile(item_.NameDiff, item_.files, path);
  if (found != nullptr && engine_.Observer != nullptr) {
    engine_.Observer->OnSimilarFile(process_.key, Widen(path.lower()), Widen(found->key.Lower()));
  }
  return found;
}

// The step then starts from the state before the move: only so can the callbacks that want a similar file run at all.
void FileEvent::MoveToWriteSimilar(FileItem& file) {
  context_.Item = &file;
  context_.PrevState = file.State;
  context_.SimilarFound = true;
  file.State = ZT_WRITE_SIMILAR;
}

void FileEvent::StepItem(FileItem& file) {
  context_.Item = &file;
  context_.PrevState = file.State;
  Step();
}

void FileEvent::Step() {
  const TransitionCallback callback = NextState(engine_.Transitions, context_.PrevState, event_.log.Behavior);
  if (callback == nullptr) {
    return;
  }
  outcome_.BeforeCallback(*context_.Item, context_.PrevState);
  const std::uint64_t penalty = callback(&context_);
  outcome_.AfterCallback(penalty);
  result_ = static_cast<std::uint32_t>(penalty);
  if (engine_.Observer != nullptr) {
    const std::wstring file_path = context_.Item->Path.Wide();
    const std::wstring event_path = Widen((paths_.destination ? *paths_.destination : path_).lower());
    engine_.Observer->OnStep(
        {process_.key, file_path, event_path, context_.PrevState, context_.Item->State, penalty, context_.SimilarFound});
  }
}

}  // namespace

std::uint32_t HandleFileEvent(_ZtEngineCore& engine, Insertion& insertion, ProcessTree::Entry& process) {
  const std::uint32_t behavior = insertion.event.log.Behavior;
  if (behavior < BehaviorCreate || behavior > BehaviorDeleteAlt || !insertion.Paths().path) {
    return 1;
  }
  return FileEvent(engine, insertion, process).Run();
}

std::int32_t ParseLength(std::u16string_view text) {
  constexpr std::u16string_view kWhiteSpace = u" \t\n\v\f\r";
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) {
    text.remove_prefix(1);
  }
  constexpr std::int64_t kBound = std::int64_t{1} << 32;
  std::int64_t value = 0;
  for (const char16_t digit : text) {
    if (digit < u'0' || digit > u'9') {
      break;
    }
    value = std::min(value * 10 + (digit - u'0'), kBound);
  }
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(negative ? -value : value, std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max()));
}

}  // namespace zt
