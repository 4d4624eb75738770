// The settings that users keep for the library's tracing.

#ifndef ZT_TESTS_DLL_TRACE_SETTINGS_H
#define ZT_TESTS_DLL_TRACE_SETTINGS_H

#include <cstdint>
#include <string>

#include "tests/support/scratch_folder.h"

namespace zt::testing {

/// For a scope, programs that this process starts find these settings where the library looks for them. On Windows they are the
/// machine's own and are gone afterwards, so no two of these may live at once there.
class TraceSettings {
 public:
  /// @param flag  bits of trace/trace.h
  /// @param size  limit of a log file in MiB, 0 for none
  TraceSettings(std::uint32_t flag, std::uint32_t size);
  ~TraceSettings();
  TraceSettings(const TraceSettings&) = delete;
  TraceSettings& operator=(const TraceSettings&) = delete;

  /// Changes them; whoever reads them meanwhile finds the old ones or the new ones.
  void Change(std::uint32_t flag, std::uint32_t size) const;
  /// Where they are kept; empty where that is no file.
  [[nodiscard]] std::string File() const;

 private:
  ScratchFolder folder_;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_DLL_TRACE_SETTINGS_H
