// A locale as a host may set it.

#ifndef ZT_TESTS_SUPPORT_LOCALE_GUARD_H
#define ZT_TESTS_SUPPORT_LOCALE_GUARD_H

#include <array>
#include <clocale>
#include <cwctype>

namespace zt::testing {

/// While it lives, the process has a locale whose lower-casing knows letters beyond A to Z, where the system has one. One at a
/// time in a process.
class LocaleGuard {
 public:
  LocaleGuard() {
    for (const char* name : std::array{"C.UTF-8", "en_US.UTF-8", "de_DE.UTF-8", ".UTF8", "German", ""}) {
      if (std::setlocale(LC_ALL, name) != nullptr && KnowsUmlauts()) {
        return;
      }
    }
  }
  ~LocaleGuard() { std::setlocale(LC_ALL, "C"); }
  LocaleGuard(const LocaleGuard&) = delete;
  LocaleGuard& operator=(const LocaleGuard&) = delete;

  /// Whether such a locale was found: "\u00C4" has a lower-case form in it.
  [[nodiscard]] static bool KnowsUmlauts() { return std::towlower(L'\u00C4') == L'\u00E4'; }
};

}  // namespace zt::testing

#endif  // ZT_TESTS_SUPPORT_LOCALE_GUARD_H
