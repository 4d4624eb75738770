// Finds the file of which a path is a transformed copy. docs/similar-search.md explains how.

#ifndef ZT_ENGINE_SIMILAR_FILE_H
#define ZT_ENGINE_SIMILAR_FILE_H

#include <string>

#include "engine/files/file_table.h"
#include "engine/files/path_name.h"

namespace zt {

/// The file of which `target` is a transformed copy, or null: what a walk over all files in the order of their keys would find.
/// See ZtSearchSimilarFile.
///
/// @param name_diff  the name difference that the process showed last; a new one is learned
///
/// Throws std::bad_alloc with `name_diff` as the last completed step left it.
TrackedFile* SearchSimilarFile(std::u16string& name_diff, FileTable& files, PathName& target);

}  // namespace zt

#endif  // ZT_ENGINE_SIMILAR_FILE_H
