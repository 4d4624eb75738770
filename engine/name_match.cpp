#include "engine/name_match.h"

#include <algorithm>

#include "engine/suspicious_extensions.h"
#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {
namespace {

/// Whether the process showed this difference last; if not, learns it.
bool MatchesOrLearn(std::u16string& name_diff, std::u16string_view difference) {
  if (name_diff == difference) {
    return true;
  }
  name_diff = difference;
  return false;
}

/// The item's whole name stands in the target's at `position`: what was put around it is the difference.
bool MatchContainedName(std::u16string& name_diff, const TargetName& target, std::u16string_view item_name,
                        std::size_t position) {
  const std::u16string_view before = target.name.substr(0, position);
  const std::u16string_view after = target.name.substr(position + item_name.size());
  ZT_TRACE_DEBUG_AT(233, "Name diff: %ws", (Widen(before) + Widen(after)).c_str());
  if (name_diff.size() == before.size() + after.size() && name_diff.starts_with(before) && name_diff.ends_with(after)) {
    return true;
  }
  name_diff.reserve(before.size() + after.size());
  name_diff.assign(before).append(after);
  return false;
}

/// Whether an extension in common use is spelled exactly so: without a dot.
bool IsCommon(std::u16string_view extension) {
  return !extension.starts_with(u'.') &&
         std::find(SuspiciousExtensions.begin(), SuspiciousExtensions.end(), extension) != SuspiciousExtensions.end();
}

/// The extension is new. Its dot makes it differ from every common extension, which are listed without: none is excused.
bool MatchNewExtension(std::u16string& name_diff, const TargetName& target, std::u16string_view item_stem) {
  return !IsCommon(target.dotted) && item_stem.size() == target.stem.size() && MatchesOrLearn(name_diff, target.dotted);
}

/// The extension stayed and the stem has grown: its tail is the difference.
bool MatchGrownStem(std::u16string& name_diff, const TargetName& target, std::u16string_view item_name,
                    std::u16string_view item_stem) {
  const std::u16string_view difference = target.stem.substr(item_stem.size());
  ZT_TRACE_DEBUG_AT(255, "Ext diff: %ws, targetname: %ws, itemname: %ws", Widen(difference).c_str(), Widen(target.name).c_str(),
                    Widen(item_name).c_str());
  return MatchesOrLearn(name_diff, difference);
}

}  // namespace

// Text that repeats itself makes a comparison at each place long, so a hash is asked first where there is one.
std::size_t TargetName::Find(std::u16string_view part) const {
  constexpr std::size_t kShort = 8;
  if (hash_ == nullptr || part.size() < kShort) {
    return name.find(part);
  }
  const std::uint64_t part_hash = (*hash_)(part);
  for (std::size_t begin = 0; begin + part.size() <= name.size(); ++begin) {
    if (hash_->OfPart(beginnings_, begin, begin + part.size()) == part_hash &&
        SameUnits(name.substr(begin, part.size()), part)) {
      return begin;
    }
  }
  return std::u16string_view::npos;
}

bool MatchName(std::u16string& name_diff, const TargetName& target, std::u16string_view item_name, std::size_t position) {
  if (position != std::u16string_view::npos) {
    return MatchContainedName(name_diff, target, item_name, position);
  }
  const std::u16string_view item_stem = Stem(item_name);
  const std::size_t stem_position = target.dotted.empty() ? std::u16string_view::npos : target.Find(item_stem);
  if (stem_position == std::u16string_view::npos) {
    return false;
  }
  const std::u16string_view item_dotted = DottedExtension(item_name);
  ZT_TRACE_DEBUG_AT(242, "Extension is %ws, extension2 is %ws, itemext is %ws", Widen(target.dotted).c_str(),
                    Widen(target.after_first_dot).c_str(), Widen(item_dotted).c_str());
  // The extension took the dot's place: the item's name is as long as the target's stem.
  if (UpToZero(item_name).size() == UpToZero(target.stem).size() &&
      target.Find(LastExtension(item_name)) != std::u16string_view::npos) {
    return MatchesOrLearn(name_diff, target.dotted);
  }
  const bool is_in_stem = stem_position + item_stem.size() <= target.stem.size();
  if (target.dotted == target.after_first_dot || target.dotted != item_dotted || !is_in_stem) {
    return MatchNewExtension(name_diff, target, item_stem);
  }
  return MatchGrownStem(name_diff, target, item_name, item_stem);
}

}  // namespace zt
