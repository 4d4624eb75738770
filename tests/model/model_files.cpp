// File events: which file steps, with what transition, and what else the event leaves behind.

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "tests/model/model_engine.h"
#include "tests/model/model_similar.h"

namespace zt::model {
namespace {

std::uint32_t Low32(std::uint64_t value) { return static_cast<std::uint32_t>(value); }

bool HasBackslash(const std::wstring& path) { return path.find(L'\\') != std::wstring::npos; }

}  // namespace

void ModelEngine::HandleFileEvent(FileEvent& event) {
  Transition& transition = event.transition;
  transition.file_path = event.lower;
  FileMap& files = event.process.files;
  const bool found = files.contains(event.lower);
  switch (event.log.Behavior) {
    case 0x4001:
      Create(event);
      break;
    case 0x4002:
      if (found) {
        files.at(event.lower).created = true;
      }
      Create(event);
      break;
    case 0x4003:
      transition.read_info = event.log.TargetPid;
      FindAndStep(event, false);
      break;
    case 0x4004:
      PreWrite(event);
      break;
    case 0x4005:
      FindAndStep(event, true);
      break;
    case 0x4006:
      Rename(event);
      break;
    case 0x4007:
      if (found) {
        trace_.Debug(0, "File size of %ws has been modified, will need to be restored", {Utf8(event.lower)});
        files.at(event.lower).similar = true;
      }
      break;
    case 0x4008:
      FindAndStep(event, false);
      break;
    case 0x400B:
      if (found && files.at(event.lower).created) {
        trace_.Reached("second delete: of a created file");
        FindAndStep(event, true);
      } else if (found) {
        trace_.Reached("second delete: file was not created");
      }
      break;
    default:
      break;
  }
  if (transition.section_renamed) {
    AddToQuarantineList(event.quarantine, event.process);
  }
}

void ModelEngine::FindAndStep(FileEvent& event, bool mark_similar) {
  FileMap& files = event.process.files;
  if (!files.contains(event.lower)) {
    return;
  }
  FileItem& file = files.at(event.lower);
  if (mark_similar) {
    file.similar = true;
  }
  event.transition.item = &file;
  event.transition.prev_state = file.state;
  Step(event);
}

void ModelEngine::Create(FileEvent& event) {
  FileMap& files = event.process.files;
  const std::vector<std::wstring>& created = event.process.created_files_list;
  event.transition.log = &event.log;
  event.transition.file_path = event.target;
  if (!files.contains(event.lower)) {
    if (event.log.TargetPid == 0) {
      AddToCreatedFilesList(event.lower, event.process);
      event.transition.section_renamed = true;
      return;
    }
    if (std::find(created.begin(), created.end(), event.lower) != created.end()) {
      trace_.Reached("create: opens a file that the process made");
      return;
    }
    files[event.lower] = FileItem();
  }
  FindAndStep(event, false);
}

void ModelEngine::PreWrite(FileEvent& event) {
  const std::size_t bar = event.lower.find(L'|');
  if (bar == std::wstring::npos) {
    return;
  }
  ProcessItem& process = event.process;
  Transition& transition = event.transition;
  const std::wstring path = event.lower.substr(0, bar);
  const std::wstring length_text = event.lower.substr(bar + 1);
  const auto length = static_cast<std::uint32_t>(ReadNumber(length_text));
  const std::uint64_t offset = event.log.TargetPid;

  const bool found = process.files.contains(path);
  std::uint64_t size64 = 0;
  std::int32_t size32 = -1;
  if (found) {
    trace_.Debug(0, "File %ws needs to be restored", {Utf8(path)});
    FileItem& file = process.files.at(path);
    file.similar = true;
    file.similar_mark = true;
    size64 = file.read_info;
    size32 = static_cast<std::int32_t>(file.create_info);
    transition.section_renamed = true;
    event.quarantine = path;
  }
  auto difference = static_cast<std::int32_t>(static_cast<std::uint32_t>(size32) - Low32(offset));
  if (difference <= 0) {
    difference = 0;
  }
  const auto diff = static_cast<std::uint32_t>(difference);
  trace_.Debug(0, "PreWrite:: Offset: %ld, Last offset: %ld, Filesize: %ld, Diff: %ld, Name: %ws, Length: %ld (%ws)",
               {Signed32(offset), Signed32(process.last_offset), Signed32(static_cast<std::uint32_t>(size32)), Signed32(diff),
                Utf8(path), Signed32(length), Utf8(length_text)});

  // One of these is enough.
  const std::array<bool, 5> reasons = {length == process.last_length, offset == 0, offset == size64, diff == process.last_diff,
                                       Low32(offset) == process.last_offset};
  const auto number_of_reasons = std::count(reasons.begin(), reasons.end(), true);
  const bool considered = number_of_reasons > 0;
  constexpr std::array<std::string_view, 5> kAlone = {
      "write: considered for its length alone", "write: considered for the offset 0 alone",
      "write: considered for an offset at the size alone", "write: considered for its difference alone",
      "write: considered for its offset alone"};
  for (std::size_t i = 0; i < reasons.size(); ++i) {
    if (reasons.at(i) && number_of_reasons == 1) {
      trace_.Reached(kAlone.at(i));
    }
  }
  trace_.Reached(considered ? "write: considered" : "write: not considered");
  if (considered && found) {
    transition.item = &process.files.at(path);
    transition.prev_state = transition.item->state;
  } else if (considered) {
    const auto similar = SearchSimilarFile(process.name_diff, process.files, path, trace_);
    if (similar != process.files.end()) {
      transition.item = &similar->second;
      transition.similar_found = true;
      transition.prev_state = similar->second.state;
      if (transition.prev_state == 4 || transition.prev_state >= 7) {
        trace_.Reached("write: similar file was in a final state");
      }
      similar->second.state = 5;
      trace_.Debug(0, "ZT_WRITE_SIMILAR");
    }
  }
  process.last_length = length;
  if (static_cast<std::int32_t>(Low32(offset)) < size32) {
    trace_.Reached(found ? "write: remembered" : "write: remembered for an unknown file");
    process.last_offset = Low32(offset);
    process.last_diff = diff;
  }
  Step(event);
}

void ModelEngine::Rename(FileEvent& event) {
  const std::size_t bar = event.lower.find(L'|');
  if (bar == std::wstring::npos) {
    return;
  }
  const std::wstring source = event.lower.substr(0, bar);
  std::wstring destination = event.lower.substr(bar + 1);
  if (!HasBackslash(destination)) {
    if (HasBackslash(source)) {
      destination = source.substr(0, source.rfind(L'\\') + 1) + destination;
    }
    trace_.Debug(0, "Renamed file name did not include directory, appending: %ws", {Utf8(destination)});
  }
  trace_.Debug(0, "LB_PreSetInforamtionRename Src:%ws, Dst:%ws", {Utf8(source), Utf8(destination)});
  RemoveFromQuarantineList(source, event.process);
  AddToQuarantineList(destination, event.process);
  RenameSimilar(event, source, destination);
  RenameSource(event, source, destination);
}

void ModelEngine::RenameSimilar(FileEvent& event, const std::wstring& source, const std::wstring& destination) {
  FileMap& files = event.process.files;
  const auto similar = SearchSimilarFile(event.process.name_diff, files, destination, trace_);
  if (similar == files.end()) {
    return;
  }
  FileItem& file = similar->second;
  file.renamed = true;
  if (similar->first != source && similar->first != destination) {
    event.transition.item = &file;
    event.transition.similar_found = true;
    event.transition.prev_state = file.state;
    file.state = 5;
    trace_.Debug(0, "File %ws is renamed to another similarly named flle %ws ZT_WRITE_SIMILAR",
                 {Utf8(destination), Utf8(similar->first)});
    Step(event);
    event.transition.item = nullptr;
  } else if (similar->first == destination) {
    file.state = 10;
    trace_.Debug(0, "File renamed to another identically named flle: %ws ZT_MAX", {Utf8(destination)});
  } else {
    trace_.Reached("rename: only the source is similar");
  }
}

void ModelEngine::RenameSource(FileEvent& event, const std::wstring& source, const std::wstring& destination) {
  FileMap& files = event.process.files;
  if (!files.contains(source)) {
    return;
  }
  if (files.contains(destination)) {
    trace_.Reached(source == destination ? "rename: onto itself" : "rename: destination replaced");
  }
  const FileItem copy = files.at(source);
  files[destination] = copy;
  files.at(destination).renamed = true;
  FileItem& file = files.at(source);
  file.similar = true;
  event.transition.item = &file;
  event.transition.prev_state = file.state;
  event.transition.similar_found = false;
  event.transition.prev_folder = &event.process.prev_folder;
  event.transition.source_path = source;
  event.transition.dest_path = destination;
  Step(event);
}

void ModelEngine::Step(FileEvent& event) {
  if (event.transition.item == nullptr) {
    return;
  }
  // A similar file has been moved to state 5 by now and steps from where it stood before.
  const Callback callback = machine_.NextState(event.transition.prev_state, event.log.Behavior, trace_);
  if (callback == nullptr) {
    return;
  }
  event.result = static_cast<std::uint32_t>(callback(event.transition, trace_));
  event.path = Lower(event.transition.item->path);
  event.stepped = true;
}

}  // namespace zt::model
