// The file state machine as data: the states, and the table from (state, behaviour) to callback.

#ifndef ZT_ENGINE_TRANSITION_TABLE_H
#define ZT_ENGINE_TRANSITION_TABLE_H

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace zt {

struct TransitionContext;

/// The states of a file. Traces print the values: never renumber them. States 4, 7, 8, 9 and 10 are left by no transition.
enum FileState : std::uint32_t {
  ZT_UNKNOWN = 0,              ///< A new record.
  ZT_OPEN_EXISTING = 1,        ///< Opened, and existed before.
  ZT_READ_START = 2,           ///< Read after that, or re-created after a delete.
  ZT_SECTION_SYNC = 3,         ///< Mapped into memory.
  ZT_OVERWRITE = 4,            ///< Read, then overwritten.
  ZT_WRITE_SIMILAR = 5,        ///< A similar copy was written; set by the file events, by no callback.
  ZT_DELETE_ORG = 6,           ///< Read, then deleted.
  ZT_RENAME_SECTION_SYNC = 7,  ///< Mapped and renamed.
  ZT_WRITTEN_DELETE = 8,       ///< Deleted, and a similar copy was written.
  ZT_WRITE_SIMILAR_SYNC = 9,   ///< Similar copies moved into one folder.
  ZT_MAX = 10,                 ///< Something was renamed onto it; set by the file events, by no callback.
};

/// One transition: checks its guard, moves context->Item to its next state and returns the penalty: 0, 2 or 6.
using TransitionCallback = std::uint64_t (*)(TransitionContext* context);

/// 64-bit FNV-1a over the four bytes of a key, least significant first.
struct Fnv1aHash {
  std::size_t operator()(std::uint32_t key) const noexcept;
};

/// The buckets a level of the table starts with; its maximum load factor is 1.
inline constexpr std::size_t kTransitionBuckets = 8;

using TransitionRow = std::unordered_map<std::uint32_t, TransitionCallback, Fnv1aHash>;
using TransitionTable = std::unordered_map<std::uint32_t, TransitionRow, Fnv1aHash>;

/// Puts `callback` under (from_state, input), replacing one that is there, and traces it.
void AddTransition(TransitionTable& table, std::uint32_t from_state, std::uint32_t input, TransitionCallback callback);

/// Traces the look-up and returns the callback of (state, input), or null when there is none. Changes nothing.
TransitionCallback NextState(const TransitionTable& table, std::uint32_t state, std::uint32_t input);

/// Adds the fifteen transitions of the machine.
void FillTransitionTable(TransitionTable& table);

}  // namespace zt

#endif  // ZT_ENGINE_TRANSITION_TABLE_H
