// Rows of a capture, read some way ahead of the one in hand.

#ifndef ZT_TOOLS_REPLAY_INPUT_LOOK_AHEAD_H
#define ZT_TOOLS_REPLAY_INPUT_LOOK_AHEAD_H

#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <utility>

#include "tools/replay/input/call.h"

namespace replay {

/// Hands out the rows that `read` gives in their order, each after `learn` has seen the `rows_ahead` that follow it. An error
/// in a row ahead comes to light only when all before it are handed out.
template <typename Row>
class LookAhead {
 public:
  /// Programs look at what they have opened within some rows, between which those of other programs stand.
  static constexpr std::size_t kRowsAhead = 256;

  LookAhead(std::function<bool(Row&)> read, std::function<void(const Row&)> learn, std::size_t rows_ahead = kRowsAhead)
      : read_(std::move(read)), learn_(std::move(learn)), rows_ahead_(rows_ahead) {}

  /// Moves the next row to `row`; false at the end. Throws InputError.
  bool Next(Row& row) {
    Fill();
    if (rows_.empty()) {
      if (error_) {
        std::rethrow_exception(error_);
      }
      return false;
    }
    row = std::move(rows_.front());
    rows_.pop_front();
    return true;
  }

 private:
  void Fill() {
    while (!ended_ && rows_.size() <= rows_ahead_) {
      try {
        Row row;
        ended_ = !read_(row);
        if (ended_) {
          return;
        }
        learn_(row);
        rows_.push_back(std::move(row));
      } catch (const InputError&) {
        error_ = std::current_exception();
        ended_ = true;
      }
    }
  }

  std::function<bool(Row&)> read_;
  std::function<void(const Row&)> learn_;
  std::size_t rows_ahead_;
  std::deque<Row> rows_;
  std::exception_ptr error_;
  bool ended_ = false;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_LOOK_AHEAD_H
