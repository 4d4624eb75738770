#include "engine/event.h"

#include <algorithm>
#include <iterator>

#include "engine/paths.h"

namespace zt {
namespace {

constexpr char16_t kPartSeparator = u'|';

std::size_t TargetLength(const LOG_ITEM& record) {
  return static_cast<std::size_t>(std::find(std::begin(record.Target), std::end(record.Target), ZtWideChar{0}) -
                                  std::begin(record.Target));
}

}  // namespace

Event::Event(const LOG_ITEM& record) : size_(TargetLength(record)) {  // NOLINT(cppcoreguidelines-pro-type-member-init)
  log.Time = record.Time;
  log.Pid = record.Pid;
  log.Tid = record.Tid;
  log.TargetPid = record.TargetPid;
  std::copy(std::begin(record.Path), std::end(record.Path), std::begin(log.Path));
  log.Behavior = record.Behavior;
  log.Context = record.Context;
  for (std::size_t unit = 0; unit < size_; ++unit) {
    target_[unit] = static_cast<char16_t>(record.Target[unit]);
    lower_[unit] = ToLower(target_[unit]);
  }
}

std::u16string TargetOf(const LOG_ITEM& log) { return {std::begin(log.Target), std::begin(log.Target) + TargetLength(log)}; }

EventPaths::EventPaths(const Event& event) {
  const std::u16string_view target = event.lower_target();
  const bool is_rename = event.log.Behavior == BehaviorRename;
  if (!is_rename && event.log.Behavior != BehaviorWrite) {
    path.emplace(target, event.target());
    return;
  }
  const std::size_t separator = target.find(kPartSeparator);
  if (separator == std::u16string_view::npos) {
    return;
  }
  const std::u16string_view first = target.substr(0, separator);
  const std::u16string_view second = target.substr(separator + 1);
  path.emplace(first, first);
  if (!is_rename) {
    length_text = second;
    return;
  }
  completed = second.find(u'\\') == std::u16string_view::npos;
  if (completed) {
    completed_destination_ = first.substr(0, first.rfind(u'\\') + 1);  // Nothing where the source has no folder.
    completed_destination_ += second;
    destination.emplace(completed_destination_, completed_destination_);
  } else {
    destination.emplace(second, second);
  }
}

}  // namespace zt
