// A map that forgets its oldest entries, for what is learned from a capture of any length.

#ifndef ZT_TOOLS_REPLAY_INPUT_BOUNDED_MAP_H
#define ZT_TOOLS_REPLAY_INPUT_BOUNDED_MAP_H

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <utility>

namespace replay {

/// Holds at most `capacity` entries and forgets the key that was added longest ago when another is added. (A key that was
/// erased and added again may be forgotten a little earlier.)
///
/// Ordered, not hashed: a capture chooses the keys, and with keys that share one bucket every look-up would be a walk.
template <typename Value>
class BoundedMap {
 public:
  using Entries = std::map<std::string, Value>;

  /// Some tens of megabytes of paths: far more files than a program touches between two looks at the same one.
  static constexpr std::size_t kDefaultCapacity = std::size_t{1} << 17;

  explicit BoundedMap(std::size_t capacity = kDefaultCapacity) : capacity_(capacity) {}

  /// The value of `key`, or null.
  [[nodiscard]] Value* Find(const std::string& key) {
    const auto found = entries_.find(key);
    return found == entries_.end() ? nullptr : &found->second;
  }
  [[nodiscard]] const Value* Find(const std::string& key) const {
    const auto found = entries_.find(key);
    return found == entries_.end() ? nullptr : &found->second;
  }

  /// Adds or replaces; true when the key is new.
  bool Set(const std::string& key, Value value) {
    const bool added = entries_.insert_or_assign(key, std::move(value)).second;
    if (!added) {
      return false;
    }
    order_.push_back(key);
    if (order_.size() > capacity_) {
      entries_.erase(order_.front());
      order_.pop_front();
    }
    return true;
  }

  /// True when the key was there.
  bool Erase(const std::string& key) { return entries_.erase(key) > 0; }

  [[nodiscard]] std::size_t size() const { return entries_.size(); }

 private:
  std::size_t capacity_;
  Entries entries_;
  std::deque<std::string> order_;  // Keys as they were added, those erased since included: never more than capacity_.
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_BOUNDED_MAP_H
