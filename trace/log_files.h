// The log files: their names, which of them is written to, and how they go.

#ifndef ZT_TRACE_LOG_FILES_H
#define ZT_TRACE_LOG_FILES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/append_file.h"
#include "trace/append_stream.h"
#include "trace/path_text.h"

namespace zt {

/// One file without a size limit ("zteng.log"), or two that take turns ("zteng_1.log" and "zteng_2.log"). Without a current
/// path it cannot be opened. Protected by the trace lock.
class LogFiles final : public AppendStream {
 public:
  constexpr LogFiles() = default;

  [[nodiscard]] bool IsOpen() const override { return file_.IsOpen(); }
  /// Opens the current file after making the folders on the way to it.
  std::optional<std::uint64_t> Open() override;
  std::size_t Append(std::string_view text) override { return file_.Append(text); }
  void Close() override { file_.Close(); }
  /// The other file is the first, or the second where the first is the current one.
  void StartNext() override;

  /// Where the files lie and what they are named after: "C:\Apps\logs\trace\" and "zteng.log". No file is current from here on.
  /// REQUIRES: it is not open.
  void SetPlace(std::string_view folder, std::string_view name);
  [[nodiscard]] const PathText& folder() const { return folder_; }
  [[nodiscard]] const PathText& name() const { return name_; }

  /// As TraceBuildLogPaths says, with folder and name known to be sound. False when the paths are too long.
  bool Build(std::string_view folder, std::string_view name, std::uint32_t size_limit, std::string_view process_part);

  /// No file is current until the next Build.
  void ClearCurrent() { current_.Clear(); }
  [[nodiscard]] const PathText& current() const { return current_; }
  [[nodiscard]] const PathText& first() const { return first_; }
  [[nodiscard]] const PathText& second() const { return second_; }

 private:
  void ChooseCurrent(std::int32_t byte_limit);

  PathText folder_;
  PathText name_;
  PathText current_;
  PathText first_;
  PathText second_;
  AppendFile file_;
};

/// The library's log files. They exist before any constructor runs and are never destroyed, as the trace state.
LogFiles& SharedLogFiles();

/// Builds the paths of the library's log files and chooses the one that is written to.
///
/// With a limit of 0 that is folder + name; the rotation files' paths stay as they are. Otherwise the open file is closed and
/// it is the rotation file that was changed last, unless that one has reached the limit: then the other one is deleted and
/// begun anew. Where TraceFlags has kTracePidInName, "_pid_" and the process id stand before the name's extension.
///
/// For this choice the limit in bytes is a signed 32-bit number that wraps. From 2048 to 4096 MiB it is negative or 0, which
/// any file has reached; from 4097 to 6143 MiB it is as from 1 to 2047; and so on, by turns.
///
/// @param folder      zero-terminated, ends in a separator; otherwise the last error is kNotReady
/// @param name        zero-terminated, not empty, without a separator; otherwise the last error is kInvalidParameter
/// @param size_limit  in MiB; 0 for a single file without limit
///
/// Returns whether there are paths now. REQUIRES: the trace lock is held, or the library is not started.
bool TraceBuildLogPaths(const char* folder, const char* name, std::uint32_t size_limit);

/// Deletes the plain log file and both rotation files. The path that the last of these steps chose stays: after a deletion the
/// log goes on in a rotation file even where there is no size limit. Users know it so. REQUIRES: as for TraceBuildLogPaths.
void TraceDeleteLogFiles();

}  // namespace zt

#endif  // ZT_TRACE_LOG_FILES_H
