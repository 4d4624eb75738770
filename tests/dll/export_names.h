// The names under which the exports leave the library.

#ifndef ZT_TESTS_DLL_EXPORT_NAMES_H
#define ZT_TESTS_DLL_EXPORT_NAMES_H

#include <string>
#include <vector>

namespace zt::testing {

/// The symbols of the ten exports. They hold the types of the arguments, as this target's compiler and C++ library name them: a
/// host that declares an export with other types does not find it.
std::vector<std::string> ExportNames();

}  // namespace zt::testing

#endif  // ZT_TESTS_DLL_EXPORT_NAMES_H
