// When the library was built.

#ifndef ZT_TRACE_BUILD_STAMP_H
#define ZT_TRACE_BUILD_STAMP_H

namespace zt {

/// Such as "Tue Jul 15 09:24:23 2025", in UTC: when the latest change of the library's sources was built, or the moment that
/// SOURCE_DATE_EPOCH named then.
extern const char* const kBuildStamp;

}  // namespace zt

#endif  // ZT_TRACE_BUILD_STAMP_H
