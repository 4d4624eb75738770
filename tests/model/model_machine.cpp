#include "tests/model/model_machine.h"

#include <cstddef>

namespace zt::model {
namespace {

std::uint64_t UnknownCreate(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: UnknownCreate");
  if (t.log->TargetPid == 0) {
    trace.Reached("UnknownCreate: guard fails");
    return 0;
  }
  t.item->state = 1;
  t.item->first_time = t.log->Time;
  t.item->context = t.log->Context;
  t.item->path = t.file_path;
  t.item->create_info = static_cast<std::uint32_t>(t.log->TargetPid);
  if (t.log->Behavior == 0x4002) {
    t.item->created = true;
  }
  trace.Debug(0, "ZT_OPEN_EXISTING");
  return 0;
}

std::uint64_t DeletedCreate(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: DeletedCreate");
  if (t.log->TargetPid != 0) {
    trace.Reached("DeletedCreate: guard fails");
    return 0;
  }
  t.item->state = 2;
  trace.Debug(0, "ZT_READ_START: Found creating already deleted file with identical name");
  return 0;
}

std::uint64_t OpenExistingRead(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: OpenExistingRead");
  t.item->state = 2;
  t.item->read_info = t.read_info;
  t.item->read_started = true;
  trace.Debug(0, "ZT_READ_START");
  return 0;
}

std::uint64_t OpenReadSync(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: OpenReadSync");
  t.item->state = 3;
  trace.Debug(0, "LB_PreSectionSync ZT_READ_START");
  if (!t.item->renamed) {
    trace.Reached("OpenReadSync: not renamed");
    return 0;
  }
  trace.Reached("OpenReadSync: renamed");
  t.item->state = 7;
  t.item->written = true;
  t.item->similar = true;
  t.section_renamed = true;
  trace.Debug(0, "ZT_RENAME_SECTION_SYNC");
  return 2;
}

std::uint64_t ReadWrite(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: ReadWrite");
  if (t.similar_found) {
    trace.Reached("ReadWrite: guard fails");
    return 0;
  }
  t.item->state = 4;
  t.item->written = true;
  trace.Debug(0, "ZT_OVERWRITE");
  return 2;
}

std::uint64_t DeleteWrite(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: DeleteWrite");
  if (!t.similar_found) {
    trace.Reached("DeleteWrite: guard fails");
    return 0;
  }
  t.item->written = true;
  t.item->similar = true;
  t.item->state = 8;
  trace.Debug(0, "ZT_DELETE_ORG + ZT_WRITE_SIMILAR");
  return 6;
}

std::uint64_t SyncWrite(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: SyncWrite");
  if (!t.similar_found) {
    trace.Reached("SyncWrite: guard fails");
    return 0;
  }
  t.item->state = 4;
  t.item->written = true;
  t.item->similar = true;
  trace.Debug(0, "ZT_SECTION_SYNC + ZT_WRITE_SIMILAR");
  return 2;
}

std::uint64_t WriteSimilarDelete(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: WriteSimilarDelete");
  t.item->written = true;
  t.item->state = 8;
  trace.Debug(0, "ZT_WRITTEN_DELETE");
  return 6;
}

std::uint64_t ReadDelete(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: ReadDelete");
  t.item->state = 6;
  trace.Debug(0, "ZT_DELETE_ORG");
  return 0;
}

std::uint64_t DeleteOrgRename(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: DeleteOrgRename");
  if (!t.similar_found) {
    trace.Reached("DeleteOrgRename: guard fails");
    return 0;
  }
  t.item->written = true;
  t.item->similar = true;
  t.item->state = 8;
  trace.Debug(0, "ZT_DELETE_ORG + Renamed + ZT_WRITE_SIMILAR");
  return 6;
}

std::uint64_t SyncRename(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: SyncRename");
  if (t.similar_found) {
    trace.Reached("SyncRename: guard fails");
    return 0;
  }
  t.item->state = 7;
  t.item->written = true;
  trace.Reached("SyncRename: moves on");
  trace.Debug(0, "ZT_RENAME_SECTION_SYNC");
  return 2;
}

std::uint64_t WriteSimilarRename(Transition& t, ModelTrace& trace) {
  trace.Debug(0, "Callback: WriteSimilarRename");
  if (!t.item->read_started || !t.item->similar_mark) {
    trace.Reached("WriteSimilarRename: not read and marked");
    return 0;
  }
  const std::size_t pos = t.dest_path.rfind(L'\\');
  if (t.dest_path.empty() || pos == std::wstring::npos) {
    trace.Reached(t.dest_path.empty() ? "WriteSimilarRename: no destination" : "WriteSimilarRename: bare destination");
    trace.Debug(0, "Cannot find \\ in Dst:%ws", {Utf8(t.dest_path)});
    return 0;
  }
  if (t.source_path.substr(0, pos) == t.dest_path.substr(0, pos)) {
    trace.Reached("WriteSimilarRename: stays in the folder");
    return 0;
  }
  const std::wstring folder = t.dest_path.substr(0, pos);
  trace.Debug(0, "New folder:%ws", {Utf8(folder)});
  if (folder == *t.prev_folder) {
    t.item->state = 9;
    trace.Debug(0, "Same folder as previous, ZT_WRITE_SIMILAR_SYNC");
    return 2;
  }
  trace.Reached("WriteSimilarRename: arms");
  *t.prev_folder = folder;
  return 0;
}

}  // namespace

void Machine::Fill(ModelTrace& trace) {
  Add(0, 0x4001, UnknownCreate, trace);
  Add(6, 0x4001, DeletedCreate, trace);
  Add(1, 0x4003, OpenExistingRead, trace);
  Add(1, 0x4008, OpenReadSync, trace);
  Add(2, 0x4008, OpenReadSync, trace);
  Add(2, 0x4004, ReadWrite, trace);
  Add(6, 0x4004, DeleteWrite, trace);
  Add(3, 0x4004, SyncWrite, trace);
  Add(5, 0x4005, WriteSimilarDelete, trace);
  Add(2, 0x4005, ReadDelete, trace);
  Add(5, 0x400B, WriteSimilarDelete, trace);
  Add(2, 0x400B, ReadDelete, trace);
  Add(6, 0x4006, DeleteOrgRename, trace);
  Add(3, 0x4006, SyncRename, trace);
  Add(5, 0x4006, WriteSimilarRename, trace);
}

void Machine::Add(std::uint32_t state, std::uint32_t input, Callback callback, ModelTrace& trace) {
  rows_.push_back({state, input, callback});
  trace.Debug(0, "Adding Transition from state %d with input %08x", {Signed32(state), Hex8(input)});
}

Callback Machine::NextState(std::uint32_t state, std::uint32_t input, ModelTrace& trace) const {
  trace.Debug(0, "Next State from %d with %08x", {Signed32(state), Hex8(input)});
  for (const Row& row : rows_) {
    if (row.state == state && row.input == input) {
      return row.callback;
    }
  }
  trace.Reached("NextState: no row");
  return nullptr;
}

}  // namespace zt::model
