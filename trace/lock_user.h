// Who may take the trace lock.

#ifndef ZT_TRACE_LOCK_USER_H
#define ZT_TRACE_LOCK_USER_H

#include "trace/trace_state.h"

namespace zt {

/// Counts the calling thread among those that may take the trace lock, so that a stop leaves the lock to it. Counting comes
/// before the look at `started`, and a stop clears `started` before it looks at the count: at least one of the two sees the
/// other.
class LockUser {
 public:
  explicit LockUser(TraceState& state) : state_(state) { ++state_.lock_users; }
  ~LockUser() { --state_.lock_users; }
  LockUser(const LockUser&) = delete;
  LockUser& operator=(const LockUser&) = delete;

 private:
  TraceState& state_;
};

}  // namespace zt

#endif  // ZT_TRACE_LOCK_USER_H
