// Writing the pending lines to the log file in bulk.

#ifndef ZT_TRACE_LOG_FILE_H
#define ZT_TRACE_LOG_FILE_H

namespace zt {

/// Writes the pending text of the line buffer to the log file and empties the buffer; its bytes stay as they are until the next
/// line overwrites them. The file is opened when it is not open. Where there is no file to write to, or file output is off, or
/// the file cannot be opened, the pending text is discarded; the next flush tries again. When the file has reached the size
/// limit afterwards, the log goes on in the other of its two files.
///
/// @param end  where the pending text ends; it is then left to collect until it is longer than kFlushThreshold. Null: write all
///             that is pending now.
///
/// REQUIRES: the trace lock is held.
void TraceFlushFile(const char* end);

}  // namespace zt

#endif  // ZT_TRACE_LOG_FILE_H
