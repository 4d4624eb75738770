// The names of the files that an interruption removes, where a signal handler can read them.

#ifndef ZT_PLATFORM_TEMPORARY_NAMES_H
#define ZT_PLATFORM_TEMPORARY_NAMES_H

#include <array>
#include <atomic>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <mutex>

namespace zt {

/// Some names. Only ForEach may be called from a signal handler, or while another thread adds and removes.
class TemporaryNames {
 public:
  using Character = std::filesystem::path::value_type;

  /// Returns the place to give to Remove; one beyond the last where there is none left.
  std::size_t Add(const std::filesystem::path& name) {
    const std::lock_guard hold(mutex_);
    std::size_t place = 0;
    while (place < names_.size() && names_.at(place).load() != nullptr) {
      ++place;
    }
    if (place < names_.size()) {
      names_.at(place).store(texts_.emplace_back(name.native()).c_str());
    }
    return place;
  }

  void Remove(std::size_t place) {
    if (place < names_.size()) {
      names_.at(place).store(nullptr);
    }
  }

  template <typename Visit>
  void ForEach(Visit visit) const {
    for (const auto& entry : names_) {
      if (const Character* name = entry.load(); name != nullptr) {
        visit(name);
      }
    }
  }

 private:
  static_assert(std::atomic<const Character*>::is_always_lock_free, "a signal handler cannot wait for a lock");

  std::array<std::atomic<const Character*>, 8> names_ = {};
  std::mutex mutex_;
  /// Kept to the end of the process: a handler on another thread may still read one.
  std::deque<std::filesystem::path::string_type> texts_;
};

}  // namespace zt

#endif  // ZT_PLATFORM_TEMPORARY_NAMES_H
