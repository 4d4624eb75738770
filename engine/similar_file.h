// Finds the file of which a path is a transformed copy.

#ifndef ZT_ENGINE_SIMILAR_FILE_H
#define ZT_ENGINE_SIMILAR_FILE_H

#include <string>
#include <string_view>

#include "zteng/zt_items.h"

namespace zt {

/// The entry of `files` that `target` is a transformed copy of, or the end. See ZtSearchSimilarFile.
///
/// @param name_diff  the name difference that the process showed last; a new one is learned
/// @param index      that of `files`, or null
ZtFileMap::iterator SearchSimilarFile(std::wstring& name_diff, ZtFileMap& files, ZtFileIndex* index, std::wstring_view target);

}  // namespace zt

#endif  // ZT_ENGINE_SIMILAR_FILE_H
