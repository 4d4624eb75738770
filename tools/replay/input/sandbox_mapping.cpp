#include "tools/replay/input/sandbox_mapping.h"

#include <map>
#include <string>

#include "tools/replay/input/file_names.h"
#include "tools/replay/input/row_error.h"

namespace replay {
namespace {

constexpr const char* kNoEvent = "call without an event";

std::uint64_t NeededNumber(const SandboxCall& call, std::string_view name) {
  if (const auto number = call.NumberArgument(name)) {
    return *number;
  }
  throw RowError(std::string(call.api()) + " without the argument " + Quoted(name));
}

bool IsMove(std::string_view api) { return api.starts_with("MoveFile"); }

std::optional<std::uint64_t> EndOfFileIn(std::uint64_t information_class, const std::string& bytes) {
  switch (information_class) {
    case kStandardInformation:
      return NumberAt(bytes, 8);
    case kNetworkOpenInformation:
      return NumberAt(bytes, 40);
    default:
      return std::nullopt;
  }
}

}  // namespace

void SandboxMapping::Map(const SandboxCall& call) {
  events_.CountRow();
  const std::int64_t time = call.time();
  const SeenProcess seen = {call.pid(), call.parent_pid(), call.module_path(), call.process_name()};
  if (seen.pid == 0) {
    return events_.Skip("process 0, which is none");
  }
  KnownProcesses::Process& process = processes_.See(seen, time, events_);
  if (!call.succeeded()) {
    return events_.Skip("call failed");
  }
  const std::string_view image = seen.image.empty() ? std::string_view(process.image) : seen.image;
  const Event event = {call, {time, seen.pid, call.tid(), image}, process};
  if (const Handler handler = HandlerFor(call.api())) {
    return (this->*handler)(event);
  }
  events_.Skip(kNoEvent);
}

SandboxMapping::Handler SandboxMapping::HandlerFor(std::string_view api) {
  static const std::map<std::string_view, Handler> kHandlers = {
      {"NtCreateFile", &SandboxMapping::Open},
      {"NtOpenFile", &SandboxMapping::Open},
      {"NtReadFile", &SandboxMapping::Read},
      {"NtWriteFile", &SandboxMapping::Write},
      {"NtSetInformationFile", &SandboxMapping::SetInformation},
      {"NtQueryInformationFile", &SandboxMapping::QueryInformation},
      {"DeleteFileW", &SandboxMapping::Delete},
      {"DeleteFileA", &SandboxMapping::Delete},
      {"NtCreateSection", &SandboxMapping::CreateSection},
      {"NtClose", &SandboxMapping::CloseHandle},
      {"NtDuplicateObject", &SandboxMapping::DuplicateHandle},
      {"LdrLoadDll", &SandboxMapping::LoadModule},
      {"CreateProcessInternalW", &SandboxMapping::CreateProcess},
      {"NtTerminateProcess", &SandboxMapping::TerminateProcess},
  };
  if (IsMove(api)) {
    return &SandboxMapping::Move;
  }
  const auto found = kHandlers.find(api);
  return found == kHandlers.end() ? nullptr : found->second;
}

void SandboxMapping::Open(const Event& event) {
  const std::string_view name = event.call.FileArgument("FileName");
  handles_.Open(event.actor.pid, NeededNumber(event.call, "FileHandle"), name);
  if (!IsFile(name)) {
    return;
  }
  const bool existed = event.call.Argument("ExistedBefore") != "no";
  events_.Add(event.actor, BehaviorCreate, existed ? sizes_.ForOpen(name) : 0, name, {event.call.times(), 0});
  if (!existed) {
    sizes_.Is(name, 0);
  }
}

void SandboxMapping::Read(const Event& event) {
  const std::string_view name = event.call.FileArgument("HandleName");
  if (!IsFile(name)) {
    return;
  }
  const std::uint64_t length = NeededNumber(event.call, "Length");
  const std::uint64_t times = event.call.times();
  HandleTable::File& file = FileOf(event, name);
  events_.Add(event.actor, BehaviorRead, file.position + length, name, {times, length});
  file.position += length * times;
  sizes_.ReadTo(name, file.position);
}

void SandboxMapping::Write(const Event& event) {
  const std::string_view name = event.call.FileArgument("HandleName");
  if (!IsFile(name)) {
    return;
  }
  const std::uint64_t length = NeededNumber(event.call, "Length");
  const std::uint64_t times = event.call.times();
  HandleTable::File& file = FileOf(event, name);
  events_.Add(event.actor, BehaviorWrite, file.position, std::string(name) + '|' + std::to_string(length), {times, length});
  file.position += length * times;
  sizes_.WrittenTo(name, file.position);
}

void SandboxMapping::SetInformation(const Event& event) {
  const std::string_view name = event.call.FileArgument("HandleName");
  if (!IsFile(name)) {
    return;
  }
  switch (NeededNumber(event.call, "FileInformationClass")) {
    case kPositionInformation:
      FileOf(event, name).position = DecodeNumber(event.call.Argument("FileInformation"));
      return events_.Skip(kNoEvent);
    case kDispositionInformation:
      return SetDisposition(event);
    case kAllocationInformation:
      return SetSize(event, false);
    case kEndOfFileInformation:
      return SetSize(event, true);
    default:
      return events_.Skip(kNoEvent);
  }
}

void SandboxMapping::SetDisposition(const Event& event) {
  const std::string_view name = event.call.FileArgument("HandleName");
  const std::string bytes = event.call.Information();
  if (!bytes.empty() && bytes[0] == '\0') {
    return events_.Skip("delete mark taken back");
  }
  events_.Add(event.actor, BehaviorDelete, 0, name, {event.call.times(), 0});
  sizes_.Deleted(name);
}

void SandboxMapping::SetSize(const Event& event, bool end_of_file) {
  const std::string_view name = event.call.FileArgument("HandleName");
  events_.Add(event.actor, BehaviorSizeChange, 0, name, {event.call.times(), 0});
  const auto size = NumberAt(event.call.Information(), 0);
  if (!size) {
    return;
  }
  if (end_of_file) {
    sizes_.Is(name, *size);
  } else {
    sizes_.IsAtMost(name, *size);
  }
}

void SandboxMapping::QueryInformation(const Event& event) {
  const auto information_class = event.call.NumberArgument("FileInformationClass").value_or(0);
  if (const auto size = EndOfFileIn(information_class, event.call.Information())) {
    sizes_.Is(event.call.FileArgument("HandleName"), *size);
  }
  events_.Skip(kNoEvent);
}

void SandboxMapping::Delete(const Event& event) {
  const std::string_view name = event.call.FileArgument("FileName");
  if (!IsFile(name)) {
    return;
  }
  events_.Add(event.actor, BehaviorDelete, 0, name, {event.call.times(), 0});
  sizes_.Deleted(name);
}

void SandboxMapping::Move(const Event& event) {
  constexpr std::uint64_t kDelayUntilReboot = 4;
  const std::string_view name = event.call.FileArgument("ExistingFileName");
  if (!IsFile(name)) {
    return;
  }
  const bool later = (event.call.NumberArgument("Flags").value_or(0) & kDelayUntilReboot) != 0;
  const std::string destination = RenameTarget(name, event.call.Argument("NewFileName"));
  if (later || destination.empty()) {
    return events_.Skip("rename at the next start of the system");
  }
  events_.Add(event.actor, BehaviorRename, 0, std::string(name) + '|' + destination, {event.call.times(), 0});
  sizes_.Renamed(name, destination);
}

void SandboxMapping::CreateSection(const Event& event) {
  const auto handle = event.call.NumberArgument("FileHandle").value_or(0);
  const HandleTable::File* file = handles_.Find(event.actor.pid, handle);
  if (file == nullptr) {
    return events_.Skip("section without a file");
  }
  if (IsFile(file->name)) {
    events_.Add(event.actor, BehaviorSectionSync, 0, file->name, {event.call.times(), 0});
  }
}

void SandboxMapping::CloseHandle(const Event& event) {
  handles_.Close(event.actor.pid, NeededNumber(event.call, "Handle"));
  events_.Skip(kNoEvent);
}

void SandboxMapping::DuplicateHandle(const Event& event) {
  constexpr std::uint64_t kCloseSource = 1;
  const SandboxCall& call = event.call;
  events_.Skip(kNoEvent);
  if (!IsOwnProcess(call.NumberArgument("SourceProcessHandle")) || !IsOwnProcess(call.NumberArgument("TargetProcessHandle"))) {
    return;
  }
  const std::uint64_t source = NeededNumber(call, "SourceHandle");
  handles_.Duplicate(event.actor.pid, source, NeededNumber(call, "TargetHandle"));
  if ((call.NumberArgument("Options").value_or(0) & kCloseSource) != 0) {
    handles_.Close(event.actor.pid, source);
  }
}

void SandboxMapping::LoadModule(const Event& event) {
  const std::string_view name = event.call.FileArgument("FileName");
  if (name.empty()) {
    return events_.Skip("module without a name");
  }
  events_.Add(event.actor, BehaviorModuleLoad, 0, name, {event.call.times(), 0});
}

// The call is logged when it returns: calls of the new process may stand before it, and have entered it already.
void SandboxMapping::CreateProcess(const Event& event) {
  const std::uint64_t pid = NeededNumber(event.call, "ProcessId");
  const KnownProcesses::Process* known = processes_.Find(pid);
  const bool entered = known != nullptr && !known->starts && !known->exited && known->entered_by == event.actor.pid;
  if (entered || pid == 0) {
    return events_.Skip("creation of a process that was entered already");
  }
  std::string_view image = event.call.FileArgument("ApplicationName");
  if (image.empty()) {
    image = WithoutNamespacePrefix(ProgramOf(event.call.Argument("CommandLine")));
  }
  processes_.Create(event.actor, pid, image, events_);
}

void SandboxMapping::TerminateProcess(const Event& event) {
  if (!IsOwnProcess(event.call.NumberArgument("ProcessHandle")) || event.process.exited) {
    return events_.Skip("end of another process or of threads");
  }
  event.process.exited = true;
  handles_.CloseAll(event.actor.pid);
  events_.Add(event.actor, BehaviorProcessExit, 0, {});
}

bool SandboxMapping::IsFile(std::string_view name) {
  const bool root_or_folder = name.size() > 2 && name[1] == ':' && name.ends_with('\\');
  if (!IsOnDrive(name) && !root_or_folder) {
    events_.Skip("no file on a drive");
    return false;
  }
  if (!root_or_folder && !folders_.Contains(name) && !IsFolderStream(name)) {
    return true;
  }
  events_.Skip("folder");
  return false;
}

// The open of a handle may be missing from the log.
HandleTable::File& SandboxMapping::FileOf(const Event& event, std::string_view name) {
  const std::uint64_t handle = NeededNumber(event.call, "FileHandle");
  HandleTable::File* file = handles_.Find(event.actor.pid, handle);
  return file != nullptr ? *file : handles_.Open(event.actor.pid, handle, name);
}

}  // namespace replay
