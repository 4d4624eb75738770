// One event as the engine works with it.

#ifndef ZT_ENGINE_EVENT_H
#define ZT_ENGINE_EVENT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/files/path_name.h"
#include "engine/step_outcome.h"
#include "engine/text.h"
#include "zteng/zteng.h"

namespace zt {

/// A private copy of a record, of which the host may use its own again, and its target in lower case. Touches nothing of an
/// engine, so it is made before the lock is taken.
class Event {
 public:
  explicit Event(const LOG_ITEM& record);
  Event(const Event&) = delete;  // The views are of the object itself.
  Event& operator=(const Event&) = delete;

  LOG_ITEM log;  ///< But for Target, which is not copied.

  /// In the event's own letter case.
  [[nodiscard]] std::u16string_view target() const { return {target_.data(), size_}; }
  /// In lower case: the form of all keys and lists.
  [[nodiscard]] std::u16string_view lower_target() const { return {lower_.data(), size_}; }

 private:
  static constexpr std::size_t kCapacity = sizeof(LOG_ITEM::Target) / sizeof(ZtWideChar);

  std::size_t size_ = 0;
  std::array<char16_t, kCapacity> target_;
  std::array<char16_t, kCapacity> lower_;
};

/// A record's Target up to its terminator or the record's end. Throws std::bad_alloc.
std::u16string TargetOf(const LOG_ITEM& log);

/// The paths that a file event names, taken off its target once for both passes. A target of two parts has them at its first
/// "|".
class EventPaths {
 public:
  explicit EventPaths(const Event& event);
  EventPaths(const EventPaths&) = delete;
  EventPaths& operator=(const EventPaths&) = delete;

  /// The file, or the source of a rename; none where the behaviour wants two parts and there are not.
  std::optional<PathName> path;
  std::optional<PathName> destination;  ///< Of a rename.
  std::u16string_view length_text;      ///< Of a write.
  bool completed = false;               ///< The destination had no folder and was given the source's.

 private:
  std::u16string completed_destination_;
};

/// An event on its way through the engine, under the lock.
struct Insertion {
  explicit Insertion(const Event& inserted) : event(inserted) {}

  /// What the event's paths are; made by the first call. Throws std::bad_alloc.
  EventPaths& Paths() {
    if (!paths_) {
      paths_.emplace(event);
    }
    return *paths_;
  }

  /// The path that a penalty is charged for: that which the file that stepped last was filled with, for a renamed copy its
  /// first one. REQUIRES: a file stepped.
  PathName& ChargedPath() {
    const PathText& text = outcome.stepped()->Path;
    if (SameUnits(text.Lower(), Paths().path->lower())) {
      return *Paths().path;
    }
    return charged_path_.emplace(text);
  }

  const Event& event;
  StepOutcome outcome;

 private:
  std::optional<EventPaths> paths_;
  std::optional<PathName> charged_path_;
};

}  // namespace zt

#endif  // ZT_ENGINE_EVENT_H
