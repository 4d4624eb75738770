#include "tools/replay/input/procmon_reader.h"

#include <utility>

#include "tools/replay/input/row_error.h"

namespace replay {

ProcmonReader::ProcmonReader(std::unique_ptr<ByteSource> source)
    : rows_(std::move(source)),
      ahead_([this](ProcmonRow& row) { return rows_.Next(row); }, [this](const ProcmonRow& row) { mapping_.Learn(row); }) {}

bool ProcmonReader::Next(Call& call) {
  ProcmonRow row;
  while (!mapping_.events().Pop(call)) {
    if (!ahead_.Next(row)) {
      return false;
    }
    try {
      mapping_.Map(row);
    } catch (const RowError& error) {
      throw InputError(rows_.name(), row.line, error.what());
    }
  }
  return true;
}

}  // namespace replay
