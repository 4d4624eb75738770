// The settings that users keep for the library.

#ifndef ZT_TRACE_SETTINGS_H
#define ZT_TRACE_SETTINGS_H

#include <cstdint>

namespace zt {

/// The settings' key: values "flag" (TraceFlags) and "size" (the size limit in MiB).
inline constexpr const char kTraceSettingsKey[] = "SOFTWARE\\jqmlog\\zteng";
/// What a missing "flag" means: all tracing is off.
inline constexpr std::uint32_t kDefaultFlag = 0;
/// What a missing "size" means, in MiB.
inline constexpr std::uint32_t kDefaultSizeLimit = 512;

/// Reads the settings. An output whose value is missing is left untouched. Returns whether there was either of them.
bool TraceReadSettings(std::uint32_t* flag, std::uint32_t* size);

}  // namespace zt

#endif  // ZT_TRACE_SETTINGS_H
