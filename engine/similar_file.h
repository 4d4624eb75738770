// Finds the file of which a path is a transformed copy.

#ifndef ZT_ENGINE_SIMILAR_FILE_H
#define ZT_ENGINE_SIMILAR_FILE_H

#include <string_view>

#include "zteng/zt_items.h"

namespace zt {

/// The entry of `files` (those of `process`) that `target` is a transformed copy of, or the end. See ZtSearchSimilarFile.
ZtFileMap::iterator SearchSimilarFile(ZT_PID_ITEM& process, ZtFileMap& files, std::wstring_view target);

}  // namespace zt

#endif  // ZT_ENGINE_SIMILAR_FILE_H
