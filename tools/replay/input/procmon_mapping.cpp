#include "tools/replay/input/procmon_mapping.h"

#include <map>
#include <optional>
#include <string>

#include "tools/replay/input/file_names.h"
#include "tools/replay/input/procmon_facts.h"
#include "tools/replay/input/row_error.h"

namespace replay {
void ProcmonMapping::Learn(const ProcmonRow& row) {
  const std::string_view path = WithoutNamespacePrefix(row[Column::kPath]);
  const std::string& result = row[Column::kResult];
  if (!IsFileName(path)) {
    return;
  }
  if (result == "SUCCESS") {
    folders_.AddFoldersOf(path);
  }
  // A query of everything overflows its buffer by the name and tells the attributes all the same.
  const bool told = result == "SUCCESS" || result == "BUFFER OVERFLOW";
  if (result == "IS DIRECTORY" || (told && ShowsFolder(row[Column::kOperation], row[Column::kDetail]))) {
    folders_.Add(path);
  }
}

void ProcmonMapping::Map(const ProcmonRow& row) {
  events_.CountRow();
  const std::int64_t time = clock_.Next(row[Column::kTimeOfDay], row[Column::kDateAndTime], row[Column::kRelativeTime]);
  const SeenProcess seen = ProcessOf(row);
  if (seen.pid == 0) {
    return events_.Skip("process 0, which is none");
  }
  if (row[Column::kOperation] == "Process Start") {
    return MapStart(row, seen, time);
  }

  KnownProcesses::Process& process = processes_.See(seen, time, events_);
  const std::string_view image = seen.image.empty() ? std::string_view(process.image) : seen.image;
  const Actor actor = {time, seen.pid, WholeNumber(row[Column::kTid]).value_or(0), image};
  const Event event = {row, actor, process, WithoutNamespacePrefix(row[Column::kPath]), row[Column::kDetail]};
  if (const Handler handler = HandlerFor(row[Column::kOperation])) {
    return (this->*handler)(event);
  }
  events_.Skip(ReasonFor(row[Column::kOperation]));
}

ProcmonMapping::Handler ProcmonMapping::HandlerFor(std::string_view operation) {
  static const std::map<std::string_view, Handler> kHandlers = {
      {"CreateFile", &ProcmonMapping::Open},
      {"IRP_MJ_CREATE", &ProcmonMapping::Open},
      {"ReadFile", &ProcmonMapping::Read},
      {"IRP_MJ_READ", &ProcmonMapping::Read},
      {"WriteFile", &ProcmonMapping::Write},
      {"IRP_MJ_WRITE", &ProcmonMapping::Write},
      {"SetDispositionInformationFile", &ProcmonMapping::Delete},
      {"SetDispositionInformationEx", &ProcmonMapping::Delete},
      {"SetDispositionInformationFileEx", &ProcmonMapping::Delete},
      {"SetRenameInformationFile", &ProcmonMapping::Rename},
      {"SetRenameInformationEx", &ProcmonMapping::Rename},
      {"SetRenameInformationFileEx", &ProcmonMapping::Rename},
      {"SetRenameInformationExBypassAccessCheck", &ProcmonMapping::Rename},
      {"SetEndOfFileInformationFile", &ProcmonMapping::Resize},
      {"SetAllocationInformationFile", &ProcmonMapping::Resize},
      {"SetValidDataLengthInformationFile", &ProcmonMapping::Resize},
      {"CreateFileMapping", &ProcmonMapping::Section},
      {"CloseFile", &ProcmonMapping::Close},
      {"QueryStandardInformationFile", &ProcmonMapping::Query},
      {"QueryAllInformationFile", &ProcmonMapping::Query},
      {"QueryNetworkOpenInformationFile", &ProcmonMapping::Query},
      {"Load Image", &ProcmonMapping::LoadImage},
      {"Process Create", &ProcmonMapping::CreateProcess},
      {"Process Exit", &ProcmonMapping::ExitProcess},
  };
  const auto found = kHandlers.find(operation);
  return found == kHandlers.end() ? nullptr : found->second;
}

// The creation of the same process, in its creator's row, comes just before; it is missing when the capture is filtered, or
// started in between.
void ProcmonMapping::MapStart(const ProcmonRow& row, const SeenProcess& seen, std::int64_t time) {
  KnownProcesses::Process* process = processes_.Find(seen.pid);
  if (process != nullptr && process->starts) {
    process->starts = false;
    process->name = seen.name;
    return events_.Skip("start of a process whose creation was fed");
  }
  SeenProcess started = seen;
  const auto parent = DetailValue(row[Column::kDetail], "Parent PID", kProcessStartKeys);
  if (parent) {
    started.parent_pid = GroupedNumber(*parent).value_or(started.parent_pid);
  }
  processes_.Start(started, time, events_);
}

void ProcmonMapping::Open(const Event& event) {
  if (!Succeeded(event)) {
    return;
  }
  const std::string_view options = OptionsOf(event.detail);
  if (HasItem(options, "Non-Directory File")) {
    folders_.Remove(event.path);
  }
  if (!IsFile(event.path)) {
    return;
  }
  const std::string_view result = DetailValue(event.detail, "OpenResult", kCreateFileKeys).value_or("Opened");
  if (result == "DoesNotExist") {
    return events_.Skip("call failed");
  }

  const bool existed = result != "Created";
  const bool deletes = HasItem(options, "Delete On Close");
  const std::uint64_t process = event.process.generation;
  const bool marks_created = deletes && delete_on_close_.IsTracked(process, event.path);
  events_.Add(event.actor, marks_created ? BehaviorCreateNew : BehaviorCreate, existed ? sizes_.ForOpen(event.path) : 0,
              event.path);
  if (existed) {
    delete_on_close_.Track(process, event.path);
  }
  if (deletes) {
    delete_on_close_.Mark(process, event.path);
  }
  if (result == "Created" || result == "Overwritten" || result == "Superseded") {
    sizes_.Is(event.path, 0);
  }
}

void ProcmonMapping::Read(const Event& event) {
  if (!IsSuccessOnFile(event)) {
    return;
  }
  const std::uint64_t end = Number(event, "Offset", kTransferKeys) + Number(event, "Length", kTransferKeys);
  events_.Add(event.actor, BehaviorRead, end, event.path);
  sizes_.ReadTo(event.path, end);
}

void ProcmonMapping::Write(const Event& event) {
  if (!IsSuccessOnFile(event)) {
    return;
  }
  const std::uint64_t offset = Number(event, "Offset", kTransferKeys);
  const std::uint64_t length = Number(event, "Length", kTransferKeys);
  events_.Add(event.actor, BehaviorWrite, offset, std::string(event.path) + '|' + std::to_string(length));
  if (offset + length >= offset) {
    sizes_.WrittenTo(event.path, offset + length);  // Else the offset was -1: the end.
  }
}

void ProcmonMapping::Delete(const Event& event) {
  if (!IsSuccessOnFile(event)) {
    return;
  }
  const bool marked = DetailValue(event.detail, "Delete", kDispositionKeys) == "True" ||
                      HasItem(DetailValue(event.detail, "Flags", kDispositionKeys).value_or(""), "FILE_DISPOSITION_DELETE");
  if (!marked) {
    return events_.Skip("delete mark taken back");
  }
  events_.Add(event.actor, BehaviorDelete, 0, event.path);
  sizes_.Deleted(event.path);
}

void ProcmonMapping::Rename(const Event& event) {
  if (!IsSuccessOnFile(event)) {
    return;
  }
  const auto name = DetailValue(event.detail, "FileName", kRenameKeys);
  if (!name || name->empty()) {
    throw RowError("a rename without \"FileName\" in its Detail");
  }
  const std::string destination = RenameTarget(event.path, *name);
  events_.Add(event.actor, BehaviorRename, 0, std::string(event.path) + '|' + destination);

  const bool bare = destination.find('\\') == std::string::npos;
  const std::string path = bare ? std::string(FolderOf(event.path)) + '\\' + destination : destination;
  sizes_.Renamed(event.path, path);
  const std::uint64_t process = event.process.generation;
  if (delete_on_close_.IsTracked(process, event.path)) {
    delete_on_close_.Track(process, path);
  }
}

void ProcmonMapping::Resize(const Event& event) {
  if (!IsSuccessOnFile(event)) {
    return;
  }
  const std::string& operation = event.row[Column::kOperation];
  const bool sets_end = operation.starts_with("SetEndOfFile");
  const bool sets_space = operation.starts_with("SetAllocation");
  const std::uint64_t size = Number(event,
                                    sets_end     ? "EndOfFile"
                                    : sets_space ? "AllocationSize"
                                                 : "ValidDataLength",
                                    kSizeKeys);
  events_.Add(event.actor, BehaviorSizeChange, size, event.path);
  if (sets_end) {
    sizes_.Is(event.path, size);
  }
  if (sets_space) {
    sizes_.IsAtMost(event.path, size);
  }
}

// "Locked with readers" or "with writers" answers the question whether the file may be mapped; it is no failure.
void ProcmonMapping::Section(const Event& event) {
  const bool answered = event.row[Column::kResult].starts_with("FILE LOCKED WITH ");
  if (!answered && !Succeeded(event)) {
    return;
  }
  if (DetailValue(event.detail, "SyncType", kSectionKeys) != "SyncTypeCreateSection") {
    return events_.Skip("section released");
  }
  if (IsFile(event.path)) {
    events_.Add(event.actor, BehaviorSectionSync, 0, event.path);
  }
}

void ProcmonMapping::Close(const Event& event) {
  if (!delete_on_close_.Close(event.process.generation, event.path)) {
    return events_.Skip("close");
  }
  events_.Add(event.actor, BehaviorDeleteAlt, 0, event.path);
  sizes_.Deleted(event.path);
}

void ProcmonMapping::Query(const Event& event) {
  const std::string& result = event.row[Column::kResult];
  const auto end = DetailValue(event.detail, "EndOfFile", kQueryKeys);
  if (end && (result == "SUCCESS" || result == "BUFFER OVERFLOW")) {
    if (const auto size = GroupedNumber(*end)) {
      sizes_.Is(event.path, *size);
    }
  }
  events_.Skip(ReasonFor(event.row[Column::kOperation]));
}

void ProcmonMapping::LoadImage(const Event& event) {
  if (Succeeded(event)) {
    events_.Add(event.actor, BehaviorModuleLoad, 0, event.path);
  }
}

void ProcmonMapping::CreateProcess(const Event& event) {
  if (!Succeeded(event)) {
    return;
  }
  const auto pid = DetailValue(event.detail, "PID", kProcessCreateKeys);
  const auto number = pid ? GroupedNumber(*pid) : std::nullopt;
  if (!number || *number == 0) {
    throw RowError("Process Create without the number \"PID\" in its Detail");
  }
  processes_.Create(event.actor, *number, event.path, events_);
}

void ProcmonMapping::ExitProcess(const Event& event) {
  event.process.exited = true;
  events_.Add(event.actor, BehaviorProcessExit, 0, {});
}

bool ProcmonMapping::Succeeded(const Event& event) {
  const std::string& result = event.row[Column::kResult];
  if (result == "SUCCESS") {
    return true;
  }
  if (result.empty()) {
    events_.Skip("call still pending");
  } else if (result == "FAST IO DISALLOWED") {
    events_.Skip("fast path refused, the call follows again");
  } else if (result == "REPARSE") {
    events_.Skip("open sent on under another name, the call follows again");
  } else {
    events_.Skip("call failed");
  }
  return false;
}

bool ProcmonMapping::IsFile(std::string_view path) {
  if (!IsFileName(path)) {
    const bool folder = path.ends_with('\\') && (IsFileName(path.substr(0, path.size() - 1)) || path.substr(1) == ":\\");
    events_.Skip(folder ? "folder" : "no file: volume, pipe, mailslot or device");
    return false;
  }
  if (!folders_.Contains(path) && !IsFolderStream(path)) {
    return true;
  }
  events_.Skip("folder");
  return false;
}

std::uint64_t ProcmonMapping::Number(const Event& event, std::string_view key, const DetailKeys& keys) {
  const auto value = DetailValue(event.detail, key, keys);
  const auto number = value ? GroupedNumber(*value) : std::nullopt;
  if (number) {
    return *number;
  }
  throw RowError(event.row[Column::kOperation] + " without the number " + Quoted(key) + " in its Detail");
}

}  // namespace replay
