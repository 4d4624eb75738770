// The similar-file search. A process that transforms files applies one name difference to all of them: an added extension, an
// added prefix, a changed stem. The search goes through the process's files in order, works out by which difference the
// target's name would come from each file's name, and compares it with the difference that the process showed last. A new
// difference is learned, so the first file of a series only teaches it; from the second on, the file is recognised.

#include "engine/similar_file.h"

#include <algorithm>

#include "engine/context.h"
#include "engine/name_match.h"
#include "engine/paths.h"
#include "engine/similar_candidates.h"
#include "engine/text.h"

namespace zt {

// Files whose stem does not occur in the target's name do nothing, but for the smallest key that occurs in the target: it ends
// the search.
TrackedFile* SearchSimilarFile(std::u16string& name_diff, FileTable& files, PathName& target) {
  if (files.empty()) {
    return nullptr;
  }
  TrackedFile* const contained = SmallestKeyIn(target, files);
  const TargetName target_name(target);
  SimilarCandidates candidates(target, target_name, files);
  for (auto next = candidates.Next(); next.file != nullptr; next = candidates.Next()) {
    if (contained != nullptr && !KeyLess()(next.file, contained)) {
      break;
    }
    const std::u16string_view name = Name(next.file->key.Lower());
    const bool is_known = next.position != SimilarCandidates::kUnknown;
    if (MatchName(name_diff, target_name, name, is_known ? next.position : target_name.Find(name))) {
      return next.file;
    }
  }
  return contained;
}

namespace {

/// Copies one kind of text to the other. Allocates only where `to` has no room.
template <typename To, typename From>
void Assign(To& to, const From& from) {
  to.resize(from.size());
  std::copy(from.begin(), from.end(), to.begin());
}

/// Puts what was learned back into the host's record, also where the search ends by an exception.
class LearnedDifference {
 public:
  /// `longest` is the length of the longest difference that can be learned.
  LearnedDifference(std::wstring& shown, std::size_t longest) : shown_(shown), units_(ToUnits(shown)) {
    shown_.reserve(std::max(shown.size(), longest));
  }
  ~LearnedDifference() { Assign(shown_, units_); }
  LearnedDifference(const LearnedDifference&) = delete;
  LearnedDifference& operator=(const LearnedDifference&) = delete;

  std::u16string& units() { return units_; }

 private:
  std::wstring& shown_;
  std::u16string units_;
};

}  // namespace
}  // namespace zt

// The host's map is walked, as nobody but the host knows what it did to it.
ZtFileMap::iterator ZtSearchSimilarFile(std::shared_ptr<_ZtEngineCore>& engine, ZT_PID_ITEM& process, ZtFileMap& files,
                                        std::wstring target) {  // NOLINT(performance-unnecessary-value-param): the interface.
  if (!engine || !engine->Lock.IsInitialised() || files.empty()) {
    return files.end();
  }
  const std::u16string target_units = zt::ToUnits(target);
  const std::u16string_view target_folder = zt::Folder(target_units);
  const zt::TargetName target_name(target_units);
  zt::LearnedDifference name_diff(process.NameDiff, target.size());
  std::u16string key;
  for (auto entry = files.begin(); entry != files.end(); ++entry) {
    zt::Assign(key, entry->first);
    if (target_units.find(key) != std::u16string::npos) {
      return entry;
    }
    const std::u16string_view name = zt::Name(key);
    if (zt::Folder(key) == target_folder && zt::MatchName(name_diff.units(), target_name, name, target_name.Find(name))) {
      return entry;
    }
  }
  return files.end();
}
