// The events that the rows of a capture are mapped to, on their way to the caller of a reader.

#ifndef ZT_TOOLS_REPLAY_INPUT_EVENT_QUEUE_H
#define ZT_TOOLS_REPLAY_INPUT_EVENT_QUEUE_H

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "tools/replay/input/call.h"
#include "tools/replay/input/capture_reader.h"

namespace replay {

/// Who does something, and when.
struct Actor {
  std::int64_t time = 0;  ///< 100 ns ticks.
  std::uint64_t pid = 0;
  std::uint64_t tid = 0;
  std::string_view image;  ///< UTF-8; its end becomes the record's Path.
};

class EventQueue {
 public:
  /// How often an event is fed. A row that stands for many equal calls costs no more memory than one.
  struct Repeat {
    std::uint64_t times = 1;
    std::uint64_t step = 0;  ///< Added to TargetPid from one time to the next: a read or write moves on.
  };

  /// Adds an event.
  void Add(const Actor& actor, std::uint32_t behavior, std::uint64_t target_pid, std::string_view target,
           Repeat repeat = {1, 0});

  /// Counts the present row as no input.
  void Skip(const char* reason) { ++counts_.skipped[reason]; }

  void CountRow() { ++counts_.rows; }

  /// Takes the oldest event, numbered from 1 on; false when there is none.
  bool Pop(Call& call);

  [[nodiscard]] const ReadCounts& counts() const { return counts_; }

 private:
  struct Waiting {
    Call call;
    Repeat repeat;
  };
  std::deque<Waiting> waiting_;
  std::uint64_t last_number_ = 0;
  ReadCounts counts_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_EVENT_QUEUE_H
