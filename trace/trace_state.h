// The one state that all parts of the trace library share.

#ifndef ZT_TRACE_TRACE_STATE_H
#define ZT_TRACE_TRACE_STATE_H

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "platform/critical_section.h"
#include "trace/append_stream.h"
#include "trace/memory_ring.h"
#include "trace/trace_environment.h"

namespace zt {

/// Bytes of pending file output. A flush begins past three quarters of it, so what remains always takes one more line.
inline constexpr std::size_t kLineBufferCapacity = 0x20000;
/// Pending bytes up to which lines only collect.
inline constexpr std::size_t kFlushThreshold = 0x18000;
/// Characters of the module's name that are written.
inline constexpr std::size_t kMaxModuleNameLength = 32;

/// Invariants: the lock is initialised while `started` is set and while a user of it that saw that is under way (start_stop.h
/// says how); `fill` is at most kLineBufferCapacity.
struct TraceState {
  /// `buffer` has kLineBufferCapacity bytes and outlives the state.
  explicit constexpr TraceState(char* buffer) : line_buffer(buffer) {}

  // Read without the lock.
  std::atomic<bool> started{false};          ///< Set between start and stop.
  std::atomic<std::uint32_t> lock_users{0};  ///< Prints and ticks of the worker under way.
  std::atomic<const char*> module_name{""};  ///< Static text; empty while not started.
  std::atomic<std::int64_t> last_print{0};   ///< Performance counter at the start of the latest print.
  std::atomic<bool> stopping{false};         ///< Set from the beginning of a stop to the next start: one stop is enough.
  /// Set in a crash, from when the lock was taken to the next start: nothing waits then, and nothing takes a lock of the
  /// system's that the crashed thread may hold.
  std::atomic<bool> in_crash{false};
  std::atomic<bool> is_worker_left{false};  ///< A crash has halted the worker, which is still to be stopped.
  std::atomic<std::int64_t> utc_offset{0};  ///< Seconds by which local time was ahead of UTC lately (local_time.h).
  /// Key of the settings, static text; null where there is none and while not started.
  std::atomic<const char*> settings_key{nullptr};
  /// The system, or what a test puts in its place. Never null; changed only while the library is not started.
  const TraceEnvironment* environment = &kSystemEnvironment;

  CriticalSection lock;

  // Protected by `lock`, as are changes of TraceFlags.
  TraceMemLogHead* ring = nullptr;  ///< Owned; null while the flags do not ask for it.
  AppendStream* stream = nullptr;   ///< The log file, not owned; null where there is none to write to.
  std::uint64_t file_size = 0;      ///< Bytes in the log file while it is open.
  std::uint32_t size_limit = 0;     ///< MiB at which the log goes on in the other of two files; 0 for never.
  std::size_t fill = 0;             ///< Bytes pending in the line buffer.
  char* const line_buffer;          ///< kLineBufferCapacity bytes.
};

/// The state. It exists before any constructor runs and is never destroyed, so that tracing is safe at any time.
TraceState& SharedTraceState();

}  // namespace zt

#endif  // ZT_TRACE_TRACE_STATE_H
