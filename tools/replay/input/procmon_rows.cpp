#include "tools/replay/input/procmon_rows.h"

#include <algorithm>
#include <new>
#include <utility>

#include "tools/replay/input/ascii.h"
#include "tools/replay/input/call.h"
#include "tools/replay/input/row_error.h"
#include "tools/replay/input/utf8_source.h"

namespace replay {
namespace {

// In the order of Column.
constexpr std::array<std::string_view, kColumnCount> kColumnNames = {
    "Time of Day", "Date & Time", "Relative Time", "Process Name", "PID",    "TID",
    "Parent PID",  "Image Path",  "Operation",     "Path",         "Result", "Detail"};

constexpr std::array kNeeded = {Column::kPid, Column::kOperation, Column::kPath, Column::kResult, Column::kDetail};

std::optional<Column> ColumnOf(std::string_view name) {
  const auto* const found = std::find_if(kColumnNames.begin(), kColumnNames.end(),
                                         [name](std::string_view known) { return EqualNoCase(known, name); });
  if (found == kColumnNames.end()) {
    return std::nullopt;
  }
  return static_cast<Column>(found - kColumnNames.begin());
}

// Rows end with a line feed outside quotes. A carriage return stands before it, but also alone inside values (the environment
// of "Process Start"), so it is a blank: dropped at the end of a row, kept in a value.
int IsBlank(unsigned char c) { return c == ' ' || c == '\t' || c == '\r' ? 1 : 0; }
int IsRowEnd(unsigned char c) { return c == '\n' ? 1 : 0; }

// What separates the fields: the first of the three that stands outside quotes. Spreadsheets use others than the comma.
char SeparatorOf(std::string_view text) {
  bool quoted = false;
  for (const char c : text) {
    if (c == '"') {
      quoted = !quoted;
    }
    if (!quoted && (c == ',' || c == ';' || c == '\t')) {
      return c;
    }
    if (!quoted && c == '\n') {
      break;
    }
  }
  return ',';
}

}  // namespace

std::size_t CountProcmonColumns(std::string_view first_line) {
  std::size_t count = 0;
  while (!first_line.empty()) {
    const std::size_t end = std::min(first_line.find_first_of(",;\t\r\n"), first_line.size());
    std::string_view name = first_line.substr(0, end);
    if (name.size() >= 2 && name.front() == '"' && name.back() == '"') {
      name = name.substr(1, name.size() - 2);
    }
    if (ColumnOf(name)) {
      ++count;
    }
    if (end < first_line.size() && first_line[end] == '\n') {
      break;
    }
    first_line.remove_prefix(std::min(end + 1, first_line.size()));
  }
  return count;
}

ProcmonRows::ProcmonRows(std::unique_ptr<ByteSource> source) : lines_(OpenAsUtf8(std::move(source))) {
  if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0) {
    throw std::bad_alloc();
  }
  csv_set_blk_size(&parser_, std::size_t{64} * 1024);  // Its field buffer grows by so much; by 128 bytes it would crawl.
  csv_set_space_func(&parser_, &IsBlank);
  csv_set_term_func(&parser_, &IsRowEnd);
}

ProcmonRows::~ProcmonRows() { csv_free(&parser_); }

bool ProcmonRows::Next(ProcmonRow& row) {
  if (!header_read_) {
    ReadHeader();
  }
  if (!ReadRow(row)) {
    return false;
  }
  if (field_count_ == header_.size()) {
    return true;
  }
  throw InputError(
      name(), row.line,
      "the row has " + std::to_string(field_count_) + " fields where the header has " + std::to_string(header_.size()));
}

bool ProcmonRows::ReadRow(ProcmonRow& row) {
  row.line = lines_.number() + 1;
  row_ = &row;
  field_count_ = 0;
  row_size_ = 0;
  row_complete_ = false;
  std::string_view line;
  while (!row_complete_) {
    if (!lines_.Next(line)) {
      if (csv_fini(&parser_, &OnField, &OnRow, this) != 0) {
        throw InputError(name(), row.line, "the capture ends inside quotes");
      }
      return row_complete_;
    }
    Parse(line);
  }
  return true;
}

// Hands a line to the parser. Blank lines between rows are passed over.
void ProcmonRows::Parse(std::string_view line) {
  const bool starts_row = row_size_ == 0;
  if (starts_row && IsBlankLine(line)) {
    row_->line = lines_.number() + 1;
    return;
  }
  if (starts_row && !header_read_) {
    csv_set_delim(&parser_, static_cast<unsigned char>(SeparatorOf(line)));
  }
  row_size_ += line.size();
  if (row_size_ > LineReader::kLongestLine) {
    lines_.Fail("the row is longer than 16 MiB: is a closing quote missing?");
  }
  if (csv_parse(&parser_, line.data(), line.size(), &OnField, &OnRow, this) == line.size()) {
    return;
  }
  if (csv_error(&parser_) == CSV_ENOMEM) {
    throw std::bad_alloc();
  }
  lines_.Fail("a quote stands where none may");
}

void ProcmonRows::OnField(void* text, std::size_t size, void* self) {
  auto& rows = *static_cast<ProcmonRows*>(self);
  const std::string_view field(static_cast<const char*>(text), size);
  const std::size_t index = rows.field_count_++;
  if (!rows.header_read_) {
    rows.names_.emplace_back(field);
  } else if (index < rows.header_.size() && rows.header_[index]) {
    rows.row_->fields[static_cast<std::size_t>(*rows.header_[index])] = field;
  }
}

void ProcmonRows::OnRow(int, void* self) { static_cast<ProcmonRows*>(self)->row_complete_ = true; }

void ProcmonRows::ReadHeader() {
  ProcmonRow first;
  if (!ReadRow(first)) {
    throw InputError(name(), "is empty");
  }
  TakeHeader();
  header_read_ = true;
}

void ProcmonRows::TakeHeader() {
  for (const std::string& column : names_) {
    header_.push_back(ColumnOf(column));
  }
  for (const Column needed : kNeeded) {
    if (std::find(header_.begin(), header_.end(), std::optional(needed)) == header_.end()) {
      throw InputError(name(), 1,
                       "the column " + Quoted(kColumnNames[static_cast<std::size_t>(needed)]) +
                           " is missing: show it in Process Monitor and save the capture again");
    }
  }
  names_.clear();
}

}  // namespace replay
