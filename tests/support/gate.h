// What one thread waits for and another brings about.

#ifndef ZT_TESTS_SUPPORT_GATE_H
#define ZT_TESTS_SUPPORT_GATE_H

#include <condition_variable>
#include <mutex>

namespace zt::testing {

/// Closed until it is opened once.
class Gate {
 public:
  void Open() {
    const std::lock_guard lock(mutex_);
    is_open_ = true;
    changed_.notify_all();
  }
  void Wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return is_open_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool is_open_ = false;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_SUPPORT_GATE_H
