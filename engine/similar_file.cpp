// The similar-file search. A process that transforms files applies one name difference to all of them: an added extension, an
// added prefix, a changed stem. The search walks the process's files, works out by which difference the target's name would
// come from each file's name, and compares it with the difference that the process showed last. A new difference is learned, so
// the first file of a series only teaches it; from the second on, the file is recognised.

#include "engine/similar_file.h"

#include "engine/context.h"
#include "engine/file_order.h"
#include "engine/name_match.h"
#include "engine/paths.h"

namespace zt {
namespace {

/// Up to so many files a walk over all of them is cheaper than look-ups.
constexpr std::size_t kFilesToWalk = 8;

/// The search as it is defined: the first entry in order that stands in the target as it is, or matches by name.
ZtFileMap::iterator WalkFiles(std::wstring& name_diff, ZtFileMap& files, std::wstring_view target) {
  const std::wstring_view target_folder = Folder(target);
  const TargetName target_name(target);
  for (auto entry = files.begin(); entry != files.end(); ++entry) {
    const std::wstring_view key = entry->first;
    if (target.find(key) != std::wstring_view::npos) {
      return entry;
    }
    if (Folder(key) == target_folder && MatchName(name_diff, target_name, Name(key))) {
      return entry;
    }
  }
  return files.end();
}

/// The same without the entries that cannot match: only the smallest key that stands in the target ends the walk as it is, and
/// only entries of the target's folder whose stem stands in its name do anything before that.
ZtFileMap::iterator SearchByOrder(std::wstring& name_diff, ZtFileMap& files, ZtFileIndex* index, std::wstring_view target) {
  FileOrder order(files, index);
  const auto contained = order.SmallestKeyIn(target);
  const TargetName target_name(target);
  FoundFiles found;
  order.FindStemsIn(Folder(target), target_name.name, contained, found);
  for (const auto& entry : found.SortedByKey()) {
    if (contained != files.end() && entry->first >= contained->first) {
      break;
    }
    if (MatchName(name_diff, target_name, Name(entry->first))) {
      return entry;
    }
  }
  return contained;
}

}  // namespace

ZtFileMap::iterator SearchSimilarFile(std::wstring& name_diff, ZtFileMap& files, ZtFileIndex* index, std::wstring_view target) {
  return files.size() <= kFilesToWalk ? WalkFiles(name_diff, files, target) : SearchByOrder(name_diff, files, index, target);
}

}  // namespace zt

ZtFileMap::iterator ZtSearchSimilarFile(std::shared_ptr<_ZtEngineCore>& engine, ZT_PID_ITEM& process, ZtFileMap& files,
                                        std::wstring target) {  // NOLINT(performance-unnecessary-value-param): the interface.
  if (!engine || !engine->Lock.IsInitialised()) {
    return files.end();
  }
  // Without the process's index: the map is the host's, who changes it as it likes.
  return zt::SearchSimilarFile(process.NameDiff, files, nullptr, target);
}
