// The trace library's life as the library file's entry point sees it.

#ifndef ZT_TRACE_LIBRARY_H
#define ZT_TRACE_LIBRARY_H

namespace zt {

/// Starts the trace library: reads the settings, chooses the log file, starts the worker, installs the crash filter and makes
/// the memory ring where the settings ask for them, and prints a banner with kTraceInfo.
///
/// Nothing is returned; where it could not be started the thread's last error is kAlreadyExists (it is started) or kNotReady
/// (there is no folder for the log files). One thread at a time for this and the stops, but for a crash.
void TraceStart();

/// Stops the trace library: prints "trace stopped", writes and closes the log file, deletes the log files where the settings do
/// not ask for file output any more, and ends the worker, for which it waits. Nothing when the library is not started or is
/// being stopped. Safe while other threads print; their lines are written before or dropped.
void TraceStop();

/// TraceStop on the way of a crash: the memory ring stays where it is, for the dump to have it, and the heap, which may be what
/// is broken, is not touched. The next start takes the ring over.
///
/// Waits for two seconds at most for a thread that holds the trace lock; where that does not go on, the pending lines are lost.
/// Waits as long for a tick of the worker. The worker is halted, and ended by the next TraceStop or TraceStart.
///
/// @param print_last_words  prints what is to be said before "trace stopped"; not called where the lock could not be had
void TraceStopInCrash(void (*print_last_words)());

/// TraceStop for a process whose other threads the system has ended, wherever they were. Does nothing where one of them ended
/// while it held the trace lock, since what it was about to do cannot be finished.
void TraceStopWithoutThreads();

}  // namespace zt

#endif  // ZT_TRACE_LIBRARY_H
