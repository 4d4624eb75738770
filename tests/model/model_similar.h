// The similar-file search, one entry after the other with a temporary string for every part of a name.

#ifndef ZT_TESTS_MODEL_MODEL_SIMILAR_H
#define ZT_TESTS_MODEL_MODEL_SIMILAR_H

#include <string>

#include "tests/model/model_records.h"
#include "tests/model/model_trace.h"

namespace zt::model {

/// The first entry of `files`, in map order, of which `target` is a transformed copy, or the end. `name_diff` learns each
/// difference that is seen.
FileMap::iterator SearchSimilarFile(std::wstring& name_diff, FileMap& files, const std::wstring& target, ModelTrace& trace);

/// The file name of a path: what follows the last "\", "/" or ":" that something other than a separator follows.
std::wstring FileNameOf(const std::wstring& path);

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_MODEL_SIMILAR_H
