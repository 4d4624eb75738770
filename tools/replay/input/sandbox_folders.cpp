#include "tools/replay/input/sandbox_folders.h"

#include <string>

#include "tools/replay/input/file_names.h"

namespace replay {
namespace {

constexpr std::uint64_t kDirectoryAttribute = 0x10;

bool IsOpen(std::string_view api) { return api == "NtCreateFile" || api == "NtOpenFile"; }

bool ShowsFolder(std::uint64_t information_class, const std::string& bytes) {
  const auto has = [&bytes](std::size_t offset, std::uint64_t bit) {
    return bytes.size() > offset && (static_cast<unsigned char>(bytes[offset]) & bit) != 0;
  };
  switch (information_class) {
    case kBasicInformation:  // Four times, then the attributes.
      return has(32, kDirectoryAttribute);
    case kStandardInformation:  // Two sizes, a count, the delete mark, the directory mark.
      return has(21, 1);
    case kNetworkOpenInformation:  // Four times, two sizes, then the attributes.
      return has(48, kDirectoryAttribute);
    default:
      return false;
  }
}

}  // namespace

void SandboxFolders::Learn(const SandboxCall& call) {
  if (!call.succeeded()) {
    return;
  }
  const std::string_view api = call.api();
  for (const std::string_view argument : {"FileName", "HandleName", "ExistingFileName", "DirectoryName"}) {
    if (api == "LdrLoadDll" || api == "LdrGetDllHandle") {
      break;  // Names of modules, which need not be where they say.
    }
    const std::string_view name = call.FileArgument(argument);
    if (IsOnDrive(name)) {
      folders_.AddFoldersOf(name);
    }
  }
  const auto handle = call.NumberArgument("FileHandle").value_or(0);
  if (IsOpen(api)) {
    const std::string_view name = call.FileArgument("FileName");
    handles_.Open(call.pid(), handle, name);
    if ((call.NumberArgument("FileAttributes").value_or(0) & kDirectoryAttribute) != 0) {
      folders_.Add(name);
    }
  } else if (api == "NtQueryDirectoryFile") {
    if (const HandleTable::File* file = handles_.Find(call.pid(), handle)) {
      folders_.Add(file->name);
    }
  } else if (api == "NtQueryInformationFile") {
    LearnFromQuery(call);
  } else if (api == "CreateDirectoryW") {
    folders_.Add(call.FileArgument("DirectoryName"));
  } else if (api == "NtClose") {
    handles_.Close(call.pid(), call.NumberArgument("Handle").value_or(0));
  } else if (api == "NtTerminateProcess" && IsOwnProcess(call.NumberArgument("ProcessHandle"))) {
    handles_.CloseAll(call.pid());
  }
}

void SandboxFolders::LearnFromQuery(const SandboxCall& call) {
  const auto information_class = call.NumberArgument("FileInformationClass").value_or(0);
  const std::string_view name = call.FileArgument("HandleName");
  if (IsOnDrive(name) && ShowsFolder(information_class, call.Information())) {
    folders_.Add(name);
  }
}

}  // namespace replay
