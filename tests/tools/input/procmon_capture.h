// Captures of Process Monitor for tests, in its default columns.

#ifndef ZT_TESTS_TOOLS_INPUT_PROCMON_CAPTURE_H
#define ZT_TESTS_TOOLS_INPUT_PROCMON_CAPTURE_H

#include <string>
#include <string_view>

#include "tests/tools/input/reading.h"

namespace replay::testing {

/// One row: its time is 1:00:00 AM, its process 100, "a.exe", where nothing else is said.
struct Row {
  std::string_view operation;
  std::string_view path;
  std::string_view result;
  std::string_view detail;
  std::string_view pid = "100";
  std::string_view name = "a.exe";
  std::string_view time = "1:00:00.0000000 AM";
};

inline std::string Quote(std::string_view field) {
  std::string quoted = "\"";
  for (const char c : field) {
    quoted.append(c == '"' ? 2 : 1, c);
  }
  return quoted + '"';
}

inline std::string CsvOf(std::initializer_list<Row> rows) {
  std::string csv = "\xEF\xBB\xBF\"Time of Day\",\"Process Name\",\"PID\",\"Operation\",\"Path\",\"Result\",\"Detail\"\r\n";
  for (const Row& row : rows) {
    csv += Quote(row.time) + ',' + Quote(row.name) + ',' + Quote(row.pid) + ',' + Quote(row.operation) + ',' + Quote(row.path) +
           ',' + Quote(row.result) + ',' + Quote(row.detail) + "\r\n";
  }
  return csv;
}

inline Reading ReadRows(std::initializer_list<Row> rows) { return ReadCapture(CaptureFormat::kProcmon, CsvOf(rows)); }

}  // namespace replay::testing

#endif  // ZT_TESTS_TOOLS_INPUT_PROCMON_CAPTURE_H
