// ZtEngineCore: behaviour scoring for ransomware detection.
//
// A host feeds the engine one LOG_ITEM for each process or file-system event that its monitor sees. The engine keeps a
// process tree, a small state machine for every file a process touches and a score for every process; on request it tells
// which processes of a family have become suspicious and which files have to be restored.
//
// Threads. ZtInsertLog, ZtUpdateScore, ZtResetScore and ZtGetFinalStateFileByPid may be called from any thread at any time
// between ZtInitEngineCore and ZtCleanupEngineCore: one lock per engine serialises them. ZtGetProcTree,
// ZtCalculateSingleLineScore and ZtSearchSimilarFile take no lock; see each of them for what the host has to keep apart.
//
// What a host has to know first, beside docs/embedding.md:
// - A process that runs already when the engine is built has to be announced by a BehaviorProcessCreate event, like one that
//   starts later. Events of an unknown process change nothing and return 0.
// - "|" separates the two parts of a target, so it cannot be part of a path.
// - A host calls ZtResetScore regularly, for example once a minute: nothing else forgets files, processes or scores, and an
// engine
//   that is never reset grows for ever.
// - Every ancestor of a process is charged with what the process does. The process to stop is the deepest one that reached the
//   host's alarm score, never an ancestor that was only charged; see ZtGetProcTree.
//
// Strings. A std::wstring holds UTF-16 code units on every system, one unit in each element, as on Windows.
//
// Errors. With an empty handle, a null record or an engine that was cleaned up, every export gives its neutral result (0, an
// empty container, an untouched output, the end) and changes nothing. The only exception that leaves an export is
// std::bad_alloc, and ZtInsertLog does not even let that one out.

#ifndef ZTENG_ZTENG_H
#define ZTENG_ZTENG_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "zteng/zt_items.h"

// ZTENG_STATIC: the engine is linked statically, and nothing leaves the program.
#if defined(ZTENG_STATIC)
#define ZT_API
#elif !defined(_WIN32)
#define ZT_API __attribute__((visibility("default")))
#elif defined(ZTENG_BUILD_DLL)
#define ZT_API __declspec(dllexport)
#else
#define ZT_API __declspec(dllimport)
#endif

#if defined(_WIN32)
using ZtWideChar = wchar_t;
#else
using ZtWideChar = char16_t;
#endif

/// A signed 32-bit number: `long` where that has 32 bits, as on Windows, so that names and calls agree with hosts there.
using ZtLong = std::conditional_t<sizeof(long) == 4, long, std::int32_t>;

// Behaviour codes of LOG_ITEM::Behavior. Hosts send and store these values: never renumber them.
// 0x4001 to 0x7FFF are file behaviours; they are fed to the acting process and to its parent.

/// A file is created or opened. LOG_ITEM::TargetPid is 0 when a new file was made, else the file existed already.
inline constexpr std::uint32_t BehaviorCreate = 0x4001;
/// A create that marks the file as created by the process, so that BehaviorDeleteAlt counts for it.
inline constexpr std::uint32_t BehaviorCreateNew = 0x4002;
/// A read. LOG_ITEM::TargetPid is the position in bytes that the read reached; the engine takes it as the file's size.
inline constexpr std::uint32_t BehaviorRead = 0x4003;
/// A write that is about to happen. Target is "path|length" (decimal bytes), TargetPid the offset in bytes.
inline constexpr std::uint32_t BehaviorWrite = 0x4004;
/// A delete.
inline constexpr std::uint32_t BehaviorDelete = 0x4005;
/// A rename. Target is "source|destination".
inline constexpr std::uint32_t BehaviorRename = 0x4006;
/// The file's size was set. Marks a tracked file for restoring.
inline constexpr std::uint32_t BehaviorSizeChange = 0x4007;
/// A memory-map section of the file is synchronised.
inline constexpr std::uint32_t BehaviorSectionSync = 0x4008;
/// A delete on close; counts only for a file that BehaviorCreateNew marked.
inline constexpr std::uint32_t BehaviorDeleteAlt = 0x400B;
/// A module is loaded. Target is the module's path.
inline constexpr std::uint32_t BehaviorModuleLoad = 0xC001;
/// The process Pid is exiting. Target is empty.
inline constexpr std::uint32_t BehaviorProcessExit = 0xC002;
/// Pid created the process TargetPid, which started at Time from the image Target.
inline constexpr std::uint32_t BehaviorProcessCreate = 0xC003;

/// One event. A binary interface: 1136 bytes, little-endian, every field at the offset asserted below, on every system.
struct _LOG_ITEM {
  std::int64_t Time;        ///< Time of the event in 100 ns ticks; for a process creation the new process's start time.
  std::uint64_t Pid;        ///< Process that acted.
  std::uint64_t Tid;        ///< Thread that acted; only printed.
  std::uint64_t TargetPid;  ///< Created process, file position, offset or existed-before mark: see the behaviour codes.
  std::uint32_t Reserved1;  ///< Not read.
  char Path[36];            ///< Acting side as narrow text, zero-terminated unless full; only printed.
  std::uint32_t Behavior;   ///< One of the behaviour codes; others change nothing.
  std::uint32_t Reserved2;  ///< Not read.
  ZtWideChar Target[524];   ///< Object acted on, UTF-16, zero-terminated unless full.
  std::uint64_t Context;    ///< The host's own value; handed back in ZT_FILE_ITEM_PUBLIC::Context.
};
using LOG_ITEM = _LOG_ITEM;

static_assert(sizeof(ZtWideChar) == 2, "a record's Target holds UTF-16 code units");
static_assert(std::is_trivially_copyable_v<LOG_ITEM> && std::is_standard_layout_v<LOG_ITEM>);
static_assert(sizeof(LOG_ITEM) == 1136 && alignof(LOG_ITEM) == 8);
static_assert(offsetof(LOG_ITEM, Time) == 0 && offsetof(LOG_ITEM, Pid) == 8);
static_assert(offsetof(LOG_ITEM, Tid) == 16 && offsetof(LOG_ITEM, TargetPid) == 24);
static_assert(offsetof(LOG_ITEM, Reserved1) == 32 && offsetof(LOG_ITEM, Path) == 36);
static_assert(offsetof(LOG_ITEM, Behavior) == 72 && offsetof(LOG_ITEM, Reserved2) == 76);
static_assert(offsetof(LOG_ITEM, Target) == 80 && offsetof(LOG_ITEM, Context) == 1128);

/// One file that a process changed and that may have to be restored; see ZtGetFinalStateFileByPid.
struct ZT_FILE_ITEM_PUBLIC {
  std::uint32_t EngineId = 0;        ///< The identifier given to ZtInitEngineCore by the engine that reports the file.
  std::wstring Path;                 ///< The file's path in the letter case in which the process opened it.
  std::uint32_t Restore = 0;         ///< 1 when the file ended overwritten or section-synchronised (states 3 and 4), else 0.
  std::uint64_t Context = 0;         ///< LOG_ITEM::Context of the event that first filled the file's record.
  unsigned char Reserved[512] = {};  ///< Zero.
};

/// Builds an engine and stores it in `engine`, replacing (and so releasing) an engine that the handle held before.
///
/// @param engine  receives the handle; the engine lives until the last copy of the handle is dropped
/// @param id      the host's own identifier of this engine, copied into every ZT_FILE_ITEM_PUBLIC; not interpreted
/// @return 1, always
/// @throws std::bad_alloc with `engine` as it was
///
/// Threads: not while another call on the same handle runs. Any number of engines may exist side by side.
ZT_API unsigned char ZtInitEngineCore(std::shared_ptr<void>& engine, std::uint32_t id);

/// Ends an engine: deletes its lock. The last call on an engine; later ones give neutral results. The handle is not reset and
/// the engine's memory is freed when the host drops the last copy of the handle. A second clean-up does nothing.
///
/// Threads: not while another call on the same engine runs.
ZT_API void ZtCleanupEngineCore(std::shared_ptr<void>& engine);

/// Feeds one event. The record is copied at once and belongs to the caller again when the call returns.
///
/// @param engine  the engine
/// @param log     the event; not changed
/// @return 0 when the event raised no score, else the score to which the process has risen: the larger of its own and its
///         parent's, 1 to 0x7FFFFFFF. (Scores multiply and wrap at 32 bits. The score of a higher ancestor is charged with
///         the same penalty; it may wrap, to 0 even, and is not clamped.)
///
/// Threads: any; serialised by the engine's lock. No exception leaves the call.
///
/// When memory is exhausted it returns 0, with the lock released and the engine's tables sound. A penalty is then charged to
/// nobody, neither to the process nor to an ancestor, and the next event like it charges it. What a lost event can leave
/// behind: a file record in its first state, a list entry, a step without a penalty, a learned name difference, the length and
/// offset of the write, and all this for the process without the same for its parent.
ZT_API ZtLong ZtInsertLog(std::shared_ptr<void>& engine, LOG_ITEM* log);

/// The score that a process has after one event line of its own. Stores nothing.
///
/// @param engine  the engine
/// @param item    the event line; not changed
/// @param score   the process's score before the line
/// @return 0 for a null line or a score of 0 (an ignored process stays ignored); score + 1, wrapping at 32 bits, when the line
///         is the load (BehaviorModuleLoad) of a watched cryptographic library, named in exactly the watched spelling; else
///         the score unchanged
///
/// Threads: takes no lock. Safe beside any other call but ZtInitEngineCore and ZtCleanupEngineCore.
ZT_API ZtLong ZtCalculateSingleLineScore(std::shared_ptr<void>& engine, LOG_ITEM* item, ZtLong score);

/// Sets the score of the newest process known under a process id. 0 makes the engine ignore the process until ZtResetScore
/// lifts it to 1 again.
///
/// @param engine  the engine
/// @param pid     the process id
/// @param value   the new score
///
/// A process that is not in the tree is left alone; its id is then remembered with start time 0.
///
/// Threads: any; serialised by the engine's lock.
/// @throws std::bad_alloc with nothing changed
ZT_API void ZtUpdateScore(std::shared_ptr<void>& engine, void* pid, ZtLong value);

/// The suspicious members of a process's family: those with a score of 2 or more. The family is the subtree under the
/// process's ancestor at most four levels up.
///
/// Not the list of whom to stop: every ancestor is charged with what a process does, so the shell and the service manager are
/// on it, too. Stop the deepest process that reached the alarm (it has no descendant that did) and its descendants, and spare
/// the system's own processes.
///
/// @param engine  the engine
/// @param pid     the process id; the newest process known under it is meant
/// @return the process ids, a process before its children and children in order of creation; empty for an unknown id, which
///         is then remembered with start time 0
///
/// Threads: takes no lock. The host keeps this call apart from every other call on the same engine that may change the tree
/// (ZtInsertLog, ZtResetScore, ZtUpdateScore) and from further ZtGetProcTree calls.
/// @throws std::bad_alloc with nothing changed
ZT_API std::vector<void*> ZtGetProcTree(std::shared_ptr<void>& engine, void* pid);

/// The same family as the other form, as image paths.
///
/// @param engine  the engine
/// @param pid     the process id
/// @param procs   receives procs[id] = image path for each suspicious member; other entries are kept
///
/// Threads: as for the other form.
/// @throws std::bad_alloc with some of the members stored
ZT_API void ZtGetProcTree(std::shared_ptr<void>& engine, void* pid, std::map<void*, std::wstring>& procs);

/// Looks in a process's file records for a file of which `target` is a transformed copy: the same name with something
/// appended, inserted or substituted, in the same folder, by the one name difference that the process applies.
///
/// @param engine   the engine
/// @param process  the process's record; its NameDiff learns each difference that is seen, also when nothing matches
/// @param files    that record's `files`
/// @param target   full path, compared exactly (the engine's own keys are lower-case)
/// @return the matching entry of `files`, or its end
///
/// Threads: takes no lock. Records are the engine's own; nobody else may use `process` meanwhile.
/// @throws std::bad_alloc with NameDiff as the last completed step left it
ZT_API std::map<std::wstring, _ZT_FILE_ITEM>::iterator ZtSearchSimilarFile(std::shared_ptr<_ZtEngineCore>& engine,
                                                                           _ZT_PID_ITEM& process,
                                                                           std::map<std::wstring, _ZT_FILE_ITEM>& files,
                                                                           std::wstring target);

/// The periodic clean-up, for example once a minute: nothing else lets scores age or frees what is tracked. Sets the score of
/// every process whose last penalty is old back to 1 (an ignored process counts again then), forgets file records that are
/// older than 15 minutes (900000 age units) and need no recovery, and removes processes whose whole subtree has exited; such a
/// process survives one further call.
///
/// @param engine          the engine
/// @param now             current time in the unit of LOG_ITEM::Time (100 ns ticks)
/// @param scoreAgeLimit   in age units of 10000 ticks, so milliseconds: a penalty older than this is old; any value
///
/// Ages are (now - stamp) / 10000, where the subtraction wraps at 64 bits and the division truncates toward zero.
///
/// Threads: any; holds the engine's lock for the whole pass, which is linear in what is tracked.
/// @throws std::bad_alloc with the lock released
ZT_API void ZtResetScore(std::shared_ptr<void>& engine, std::int64_t now, std::int64_t scoreAgeLimit);

/// The files of a process that are to be restored.
///
/// @param engine  the engine
/// @param pid     the process id; the newest process known under it is meant
/// @param files   receives an entry for each file whose original the process replaced, deleted or moved away, keyed by its
///                lower-case path; an entry of the same key is overwritten, others are kept. The images of suspicious family
///                members (score 2 or more) are left out, and a path is reported once.
/// @param paths   receives, at its front and in order, the process's quarantine list: lower-case paths of files that the
///                process made, changed or moved
/// @return 1, also for an unknown process, which leaves both outputs as they are; 0 for an empty handle
///
/// Threads: any; serialised by the engine's lock. The outputs are the caller's.
/// @throws std::bad_alloc with some of the output stored and the lock released
ZT_API unsigned char ZtGetFinalStateFileByPid(std::shared_ptr<void>& engine, void* pid,
                                              std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files,
                                              std::vector<std::wstring>& paths);

#endif  // ZTENG_ZTENG_H
