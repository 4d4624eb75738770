// A last look at a crash of the process before the system ends it.

#ifndef ZT_PLATFORM_CRASH_FILTER_H
#define ZT_PLATFORM_CRASH_FILTER_H

namespace zt {

/// What the system tells of a crash; opaque, and valid until the handler returns.
struct CrashDetails;

/// Called on the crashing thread, whose state may be anything: a handler must not use the heap, and must not wait for what the
/// crashed code may hold. Afterwards the crash goes its way as if there were no filter.
using CrashHandler = void (*)(const CrashDetails& details);

/// Makes room for a handler on the calling thread, for when its stack runs out. To be called by the thread that loads the
/// library, whether or not it installs the filter, since another thread that does so later cannot do it instead. Windows:
/// nothing. Elsewhere: an alternate signal stack of 128 KiB, where the thread has none.
void PrepareThreadForCrashes();

/// Has `handler` called when the process crashes; with a filter in place already, only the handler is replaced. REQUIRES: the
/// handler is not null. None of the functions here may run at the same time as another, except WriteCrashDump.
///
/// Windows: the process's filter of unhandled exceptions; the one from before is kept for RemoveOwnCrashFilter, and is not
/// called. Elsewhere: actions for SIGSEGV, SIGBUS, SIGILL, SIGFPE and SIGABRT, which are spent after the first crash, so that
/// the handler runs once; and for the calling thread, when it has none of 128 KiB at least, an alternate signal stack.
void InstallCrashFilter(CrashHandler handler);

/// Takes the filter away. Windows: whatever filter is installed, and the one from before is not given back: the system's own
/// handling remains. Elsewhere: as RemoveOwnCrashFilter.
void RemoveCrashFilter();

/// Takes the filter away and gives back what was there before; leaves in place what others have installed since. To be called
/// before this library is unloaded. Alternate stacks of PrepareThreadForCrashes and InstallCrashFilter go when the thread that
/// got one is the one that calls.
void RemoveOwnCrashFilter();

/// Writes what is known about the crash to a file, replacing one that is there: on Windows a minidump, elsewhere a report to be
/// read by people. Errors leave a part of it, or nothing. To be called by a handler, one call at a time; keeps within 16 KiB of
/// stack. `path`: terminated, in the encoding of the system's narrow calls.
void WriteCrashDump(const char* path, const CrashDetails& details);

}  // namespace zt

#endif  // ZT_PLATFORM_CRASH_FILTER_H
