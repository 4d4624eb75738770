// The rows of a CSV file that Process Monitor saved, column by column.

#ifndef ZT_TOOLS_REPLAY_INPUT_PROCMON_ROWS_H
#define ZT_TOOLS_REPLAY_INPUT_PROCMON_ROWS_H

#include <csv.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/replay/input/line_reader.h"

namespace replay {

/// The columns that are used. People choose columns and their order; a capture may have any others beside these.
enum class Column : std::size_t {
  kTimeOfDay,
  kDateAndTime,
  kRelativeTime,
  kProcessName,
  kPid,
  kTid,
  kParentPid,
  kImagePath,
  kOperation,
  kPath,
  kResult,
  kDetail,
};
inline constexpr std::size_t kColumnCount = 12;

struct ProcmonRow {
  std::uint64_t line = 0;  ///< Where the row starts in the file: physical lines, from 1.
  std::array<std::string, kColumnCount> fields;

  /// A field as UTF-8; empty where the capture lacks the column.
  [[nodiscard]] const std::string& operator[](Column column) const { return fields[static_cast<std::size_t>(column)]; }
};

/// How many columns of Process Monitor the first line of a text names, whatever separates them.
std::size_t CountProcmonColumns(std::string_view first_line);

class ProcmonRows {
 public:
  explicit ProcmonRows(std::unique_ptr<ByteSource> source);
  ProcmonRows(const ProcmonRows&) = delete;  // The parser below must not be copied, and callbacks hold this address.
  ProcmonRows& operator=(const ProcmonRows&) = delete;
  ~ProcmonRows();

  /// Reads the next row; false at the end. Throws InputError: a header without the columns that are needed, a row with more or
  /// fewer fields than the header, quotes out of place, a row longer than 16 MiB.
  bool Next(ProcmonRow& row);

  [[nodiscard]] const std::string& name() const { return lines_.name(); }

 private:
  static void OnField(void* text, std::size_t size, void* self);
  static void OnRow(int end, void* self);

  bool ReadRow(ProcmonRow& row);
  void Parse(std::string_view line);
  void ReadHeader();
  void TakeHeader();

  LineReader lines_;
  csv_parser parser_ = {};
  std::vector<std::optional<Column>> header_;  // What each field of a row is; nothing for columns that are not used.
  std::vector<std::string> names_;             // The fields of the header while it is read.
  bool header_read_ = false;

  // The row that is being read.
  ProcmonRow* row_ = nullptr;
  std::size_t field_count_ = 0;
  std::size_t row_size_ = 0;
  bool row_complete_ = false;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_PROCMON_ROWS_H
