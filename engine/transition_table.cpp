#include "engine/transition_table.h"

#include "engine/tracing.h"
#include "engine/transition_callbacks.h"

namespace zt {

std::size_t Fnv1aHash::operator()(std::uint32_t key) const noexcept {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (int byte = 0; byte < 4; ++byte) {
    hash ^= (key >> (8 * byte)) & 0xFF;
    hash *= 0x100000001b3;
  }
  return static_cast<std::size_t>(hash);
}

void AddTransition(TransitionTable& table, std::uint32_t from_state, std::uint32_t input, TransitionCallback callback) {
  table.try_emplace(from_state, kTransitionBuckets).first->second.insert_or_assign(input, callback);
  ZT_TRACE_DEBUG("Adding Transition from state %d with input %08x", from_state, input);
}

TransitionCallback NextState(const TransitionTable& table, std::uint32_t state, std::uint32_t input) {
  ZT_TRACE_DEBUG("Next State from %d with %08x", state, input);
  const auto row = table.find(state);
  if (row == table.end()) {
    return nullptr;
  }
  const auto transition = row->second.find(input);
  return transition == row->second.end() ? nullptr : transition->second;
}

void FillTransitionTable(TransitionTable& table) {
  AddTransition(table, ZT_UNKNOWN, BehaviorCreate, UnknownCreate);
  AddTransition(table, ZT_DELETE_ORG, BehaviorCreate, DeletedCreate);
  AddTransition(table, ZT_OPEN_EXISTING, BehaviorRead, OpenExistingRead);
  AddTransition(table, ZT_OPEN_EXISTING, BehaviorSectionSync, OpenReadSync);
  AddTransition(table, ZT_READ_START, BehaviorSectionSync, OpenReadSync);
  AddTransition(table, ZT_READ_START, BehaviorWrite, ReadWrite);
  AddTransition(table, ZT_DELETE_ORG, BehaviorWrite, DeleteWrite);
  AddTransition(table, ZT_SECTION_SYNC, BehaviorWrite, SyncWrite);
  AddTransition(table, ZT_WRITE_SIMILAR, BehaviorDelete, WriteSimilarDelete);
  AddTransition(table, ZT_READ_START, BehaviorDelete, ReadDelete);
  AddTransition(table, ZT_WRITE_SIMILAR, BehaviorDeleteAlt, WriteSimilarDelete);
  AddTransition(table, ZT_READ_START, BehaviorDeleteAlt, ReadDelete);
  AddTransition(table, ZT_DELETE_ORG, BehaviorRename, DeleteOrgRename);
  AddTransition(table, ZT_SECTION_SYNC, BehaviorRename, SyncRename);
  AddTransition(table, ZT_WRITE_SIMILAR, BehaviorRename, WriteSimilarRename);
}

}  // namespace zt
