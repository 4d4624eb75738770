// Where the log files lie.

#ifndef ZT_TRACE_LOG_FOLDER_H
#define ZT_TRACE_LOG_FOLDER_H

#include <string_view>

#include "trace/path_text.h"

namespace zt {

/// The folder as it is configured: "logs\trace\" beside the running program. Empty where the program's path is not known or has
/// no folder.
PathText ConfiguredLogFolder();

/// The folder that a configured one means: "%appdata%", in whatever letters, is the folder for the user's application data with
/// "\Orvanta\logs\trace\" after it; an empty one is "logs\trace\" beside the running program; any other is what it says. Empty
/// where that cannot be told.
PathText ResolveLogFolder(std::string_view configured);

}  // namespace zt

#endif  // ZT_TRACE_LOG_FOLDER_H
