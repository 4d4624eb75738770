#include "engine/file_events.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "engine/paths.h"
#include "engine/quarantine.h"
#include "engine/similar_file.h"
#include "engine/tracing.h"
#include "engine/transition_callbacks.h"

namespace zt {
namespace {

constexpr wchar_t kPartSeparator = L'|';

/// One file event on its way through one process.
class FileEvent {
 public:
  FileEvent(_ZtEngineCore& engine, const Event& event, ProcessTree::Entry& process, StepOutcome& outcome)
      : engine_(engine),
        event_(event),
        process_(process),
        item_(process.Item),
        outcome_(outcome),
        event_path_(event.lower_target) {
    context_.FilePath = &event.lower_target;
  }

  std::uint32_t Run() {
    Dispatch();
    if (context_.SectionRenamed != 0) {
      AddToQuarantineList(written_path_.value_or(event_.lower_target), item_);
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
  void StepSimilarToWritten(const std::wstring& path);
  void StepSimilarToRenamed(const std::wstring& source, const std::wstring& destination);
  void StepRenamed(const std::wstring& source, const std::wstring& destination);

  [[nodiscard]] ZT_FILE_ITEM* Find(const std::wstring& path);
  ZT_FILE_ITEM& Add(const std::wstring& path);
  ZtFileMap::iterator FindSimilar(const std::wstring& path);
  void MoveToWriteSimilar(ZT_FILE_ITEM& file);
  void StepItem(ZT_FILE_ITEM& file);
  void Step();

  _ZtEngineCore& engine_;
  const Event& event_;
  ProcessTree::Entry& process_;
  ZT_PID_ITEM& item_;
  StepOutcome& outcome_;
  TransitionContext context_;
  std::wstring_view event_path_;  ///< What an observer is told: the path part of a write, the destination of a rename.
  std::optional<std::wstring> written_path_;  ///< The path part of a write to a tracked file: what is quarantined then.
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
  const std::wstring& path = event_.lower_target;
  context_.Log = &event_.log;
  context_.FilePath = &event_.target;
  if (ZT_FILE_ITEM* file = Find(path); file != nullptr) {
    if (event_.log.Behavior == BehaviorCreateNew) {
      file->Created = true;
    }
    StepItem(*file);
  } else if (event_.log.TargetPid == 0) {
    AddToCreatedFilesList(path, item_);
    context_.SectionRenamed = 1;
  } else if (!item_.CreatedFilesList.Contains(path)) {
    StepItem(Add(path));
  }
}

void FileEvent::Read() {
  if (ZT_FILE_ITEM* file = Find(event_.lower_target); file != nullptr) {
    context_.ReadInfo = event_.log.TargetPid;
    StepItem(*file);
  }
}

void FileEvent::Delete() {
  if (ZT_FILE_ITEM* file = Find(event_.lower_target); file != nullptr) {
    file->Similar = true;
    StepItem(*file);
  }
}

void FileEvent::DeleteCreated() {
  if (ZT_FILE_ITEM* file = Find(event_.lower_target); file != nullptr && file->Created) {
    file->Similar = true;
    StepItem(*file);
  }
}

void FileEvent::ChangeSize() {
  if (ZT_FILE_ITEM* file = Find(event_.lower_target); file != nullptr) {
    ZT_TRACE_DEBUG("File size of %ws has been modified, will need to be restored", event_.lower_target.c_str());
    file->Similar = true;
  }
}

void FileEvent::SyncSection() {
  if (ZT_FILE_ITEM* file = Find(event_.lower_target); file != nullptr) {
    StepItem(*file);
  }
}

void FileEvent::Write() {
  const std::wstring& target = event_.lower_target;
  const std::size_t separator = target.find(kPartSeparator);
  if (separator == std::wstring::npos) {
    return;
  }
  const std::wstring path = target.substr(0, separator);
  event_path_ = path;
  const wchar_t* const length_text = target.c_str() + separator + 1;

  WriteParts write;
  write.offset = event_.log.TargetPid;
  write.length = static_cast<std::uint32_t>(ParseLength(length_text));
  ZT_FILE_ITEM* const file = Find(path);
  if (file != nullptr) {
    ZT_TRACE_DEBUG("File %ws needs to be restored", path.c_str());
    file->Similar = true;
    file->SimilarMark = true;
    write.size = file->ReadInfo;
    write.size32 = file->CreateInfo;
    context_.SectionRenamed = 1;
    written_path_ = path;
  }
  const auto diff = static_cast<std::int32_t>(write.size32 - write.offset32());
  write.diff = static_cast<std::uint32_t>(std::max(diff, 0));
  ZT_TRACE_DEBUG("PreWrite:: Offset: %ld, Last offset: %ld, Filesize: %ld, Diff: %ld, Name: %ws, Length: %ld (%ws)",
                 write.offset32(), item_.LastWriteOffset, write.size32, write.diff, path.c_str(), write.length, length_text);
  if (IsWriteConsidered(write)) {
    if (file != nullptr) {
      StepItem(*file);
    } else {
      StepSimilarToWritten(path);
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

void FileEvent::StepSimilarToWritten(const std::wstring& path) {
  const auto found = FindSimilar(path);
  if (found == item_.files.end()) {
    return;
  }
  MoveToWriteSimilar(found->second);
  ZT_TRACE_DEBUG("ZT_WRITE_SIMILAR");
  Step();
}

void FileEvent::Rename() {
  const std::wstring& target = event_.lower_target;
  const std::size_t separator = target.find(kPartSeparator);
  if (separator == std::wstring::npos) {
    return;
  }
  const std::wstring source = target.substr(0, separator);
  std::wstring destination = target.substr(separator + 1);
  if (destination.find(L'\\') == std::wstring::npos) {
    destination.insert(0, source, 0, source.rfind(L'\\') + 1);  // Nothing where the source has no directory.
    ZT_TRACE_DEBUG("Renamed file name did not include directory, appending: %ws", destination.c_str());
  }
  // The text is misspelled; readers of traces search for it as it is.
  ZT_TRACE_DEBUG("LB_PreSetInforamtionRename Src:%ws, Dst:%ws", source.c_str(), destination.c_str());
  RemoveFromQuarantineList(source, item_);
  AddToQuarantineList(destination, item_);
  event_path_ = destination;
  StepSimilarToRenamed(source, destination);
  StepRenamed(source, destination);
}

void FileEvent::StepSimilarToRenamed(const std::wstring& source, const std::wstring& destination) {
  const auto found = FindSimilar(destination);
  if (found == item_.files.end()) {
    return;
  }
  const std::wstring& key = found->first;
  ZT_FILE_ITEM& file = found->second;
  file.Renamed = true;
  if (key == destination) {
    file.State = ZT_MAX;
    ZT_TRACE_DEBUG("File renamed to another identically named flle: %ws ZT_MAX", key.c_str());
  } else if (key != source) {
    MoveToWriteSimilar(file);
    ZT_TRACE_DEBUG("File %ws is renamed to another similarly named flle %ws ZT_WRITE_SIMILAR", destination.c_str(),
                   key.c_str());
    Step();
  }
}

void FileEvent::StepRenamed(const std::wstring& source, const std::wstring& destination) {
  ZT_FILE_ITEM* const file = Find(source);
  if (file == nullptr) {
    return;
  }
  // The copy is made before the source is marked, so the destination does not get the mark from this rename.
  ZT_FILE_ITEM copy = *file;
  copy.Renamed = true;
  item_.FileIndex.FindOrAdd(item_.files, destination).first->second = std::move(copy);
  file->Similar = true;
  context_.SimilarFound = false;
  context_.PrevFolder = &item_.PrevFolder;
  context_.SourcePath = source;
  context_.DestPath = destination;
  StepItem(*file);
}

ZT_FILE_ITEM* FileEvent::Find(const std::wstring& path) {
  ZtFileMap::value_type* const found = item_.FileIndex.Find(item_.files, path);
  return found == nullptr ? nullptr : &found->second;
}

ZT_FILE_ITEM& FileEvent::Add(const std::wstring& path) { return item_.FileIndex.FindOrAdd(item_.files, path).first->second; }

ZtFileMap::iterator FileEvent::FindSimilar(const std::wstring& path) {
  outcome_.BeforeSearch(item_);
  const auto found = SearchSimilarFile(item_.NameDiff, item_.files, &item_.FileIndex, path);
  if (found != item_.files.end() && engine_.Observer != nullptr) {
    engine_.Observer->OnSimilarFile(process_.key, path, found->first);
  }
  return found;
}

// The step then starts from the state before the move: only so can the callbacks that want a similar file run at all.
void FileEvent::MoveToWriteSimilar(ZT_FILE_ITEM& file) {
  context_.Item = &file;
  context_.PrevState = file.State;
  context_.SimilarFound = true;
  file.State = ZT_WRITE_SIMILAR;
}

void FileEvent::StepItem(ZT_FILE_ITEM& file) {
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
    engine_.Observer->OnStep(
        {process_.key, file_path, event_path_, context_.PrevState, context_.Item->State, penalty, context_.SimilarFound});
  }
}

}  // namespace

std::uint32_t HandleFileEvent(_ZtEngineCore& engine, const Event& event, ProcessTree::Entry& process, StepOutcome& outcome) {
  return FileEvent(engine, event, process, outcome).Run();
}

std::int32_t ParseLength(std::wstring_view text) {
  constexpr std::wstring_view kWhiteSpace = L" \t\n\v\f\r";
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  const bool negative = text.starts_with(L'-');
  if (negative || text.starts_with(L'+')) {
    text.remove_prefix(1);
  }
  constexpr std::int64_t kBound = std::int64_t{1} << 32;
  std::int64_t value = 0;
  for (const wchar_t digit : text) {
    if (digit < L'0' || digit > L'9') {
      break;
    }
    value = std::min(value * 10 + (digit - L'0'), kBound);
  }
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(negative ? -value : value, std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max()));
}

}  // namespace zt
