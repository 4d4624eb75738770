// Random calls to an engine, most of them about processes and files that earlier calls have made known.

#ifndef ZT_TESTS_MODEL_RANDOM_EVENTS_H
#define ZT_TESTS_MODEL_RANDOM_EVENTS_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "zteng/zteng.h"

namespace zt::model {

/// One call of one export.
struct Call {
  enum class Kind { kInsertLog, kCalculateSingleLineScore, kUpdateScore, kResetScore, kGetPids, kGetImages, kGetFinalState };

  Kind kind = Kind::kInsertLog;
  LOG_ITEM log = {};                 ///< For kInsertLog and kCalculateSingleLineScore.
  std::uint64_t pid = 0;             ///< For kUpdateScore and the three queries.
  std::int32_t value = 0;            ///< The score for kCalculateSingleLineScore and kUpdateScore.
  std::int64_t now = 0;              ///< For kResetScore.
  std::int64_t score_age_limit = 0;  ///< For kResetScore.
};

/// The call in words, for a failure's message.
std::string Describe(const Call& call);

/// How a copy's name differs from the original's.
struct Disguise {
  enum class Kind { kAppend, kPrefix, kNewExtension, kGrowStem, kDotToUnderscore, kInsert };
  Kind kind = Kind::kAppend;
  std::wstring text;
};

/// A stream of calls. The same seed gives the same stream in each run of one program; another compiler may draw in another
/// order.
///
/// Calls come from plays (short sequences such as: open, read, write a disguised copy, delete the original), several of which
/// run interleaved, and from single calls of any kind with any value. The stream remembers which paths each process opened, but
/// knows nothing of what an engine makes of them.
class RandomEvents {
 public:
  enum class Life : std::uint8_t {
    kShort,  ///< Few paths and frequent resets, so that everything happens within some hundred calls.
    kLong,   ///< Mostly documents that are touched for the first time, and rare resets: the engine fills.
  };

  explicit RandomEvents(std::uint64_t seed, Life life = Life::kShort);

  Call Next();

  /// Every process id that occurred so far.
  [[nodiscard]] const std::set<std::uint64_t>& pids() const { return pids_; }

 private:
  using Play = std::deque<Call>;

  // Chance: random_events.cpp.
  std::uint64_t Below(std::uint64_t bound) { return random_() % bound; }
  bool Percent(std::uint64_t chance) { return Below(100) < chance; }
  template <typename Container>
  const typename Container::value_type& OneOf(const Container& container) {
    return *std::next(container.begin(), static_cast<std::ptrdiff_t>(Below(container.size())));
  }
  std::int64_t Tick();

  // Values: random_values.cpp.
  std::uint64_t NewPid();
  std::uint64_t KnownPid();
  std::uint64_t ActingPid();
  std::wstring Folder();
  std::wstring Name();
  std::wstring Path();
  std::wstring NewDocument();
  std::wstring LongPath(std::size_t length);
  std::wstring OpenedPath(std::uint64_t pid);
  Disguise RandomDisguise();
  static std::wstring Disguised(const std::wstring& path, const Disguise& disguise);
  std::wstring MixCase(std::wstring path);
  std::wstring LengthText();
  std::uint64_t Position();
  std::uint32_t AnyBehavior();
  std::wstring ModulePath();

  // Calls: random_calls.cpp.
  Call Event(std::uint32_t behavior, std::uint64_t pid, const std::wstring& target, std::uint64_t target_pid);
  Call OpenFile(std::uint64_t pid, const std::wstring& path);
  Call ReadFile(std::uint64_t pid, const std::wstring& path);
  Call WriteFile(std::uint64_t pid, const std::wstring& path);
  Call WriteFile(std::uint64_t pid, const std::wstring& path, std::uint64_t offset);
  Call DeleteFile(std::uint64_t pid, const std::wstring& path);
  Call RenameFile(std::uint64_t pid, const std::wstring& source, const std::wstring& destination);
  Call SyncFile(std::uint64_t pid, const std::wstring& path);
  Call CreateProcess(std::uint64_t creator, std::uint64_t created);
  Call ExitProcess(std::uint64_t pid);
  Call Query(std::uint64_t pid);
  Call Reset();
  Call SetScore(std::uint64_t pid);
  Call SingleLineScore();
  Call SingleCall();
  Call AnyEvent();

  // Plays: random_plays.cpp.
  void Begin(Play play);
  void StartUp();
  void StartPlay();
  Play Overwrite(std::uint64_t pid);
  Play CopyAndDelete(std::uint64_t pid);
  Play DeleteAndWrite(std::uint64_t pid);
  Play DeleteAndRename(std::uint64_t pid);
  Play DeleteAndCreate(std::uint64_t pid);
  Play SyncAndCopy(std::uint64_t pid);
  Play SyncAndRename(std::uint64_t pid);
  Play RenameAndSync(std::uint64_t pid);
  Play MoveCopies(std::uint64_t pid);
  Play MoveToBareName(std::uint64_t pid);
  Play CopyOfUnreadFile(std::uint64_t pid);
  Play DisguiseMany(std::uint64_t pid);
  Play ChargeTwice(std::uint64_t pid);
  Play ParentsFile(std::uint64_t pid);
  Play RenameOntoTracked(std::uint64_t pid);
  Play BareNames(std::uint64_t pid);
  Play ManyWrites(std::uint64_t pid);
  Play Descendants(std::uint64_t pid);
  Play Circle(std::uint64_t pid);
  Play LinkAnew(std::uint64_t pid);
  Play FamilyExit(std::uint64_t pid);
  Play RaiseScores(std::uint64_t pid);

  const Life life_;
  std::uint64_t documents_ = 0;  ///< How many there are.
  std::mt19937_64 random_;
  std::int64_t clock_ = 0;
  std::vector<std::int64_t> stamps_;                           ///< Some times of earlier events.
  std::vector<std::uint64_t> known_;                           ///< Created processes, the newest last.
  std::map<std::uint64_t, std::vector<std::wstring>> opened_;  ///< Paths by process, the newest last.
  std::set<std::uint64_t> pids_;
  Disguise habit_;  ///< The disguise that most copies share for a while.
  std::vector<Play> plays_;
};

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_RANDOM_EVENTS_H
