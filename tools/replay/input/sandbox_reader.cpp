#include "tools/replay/input/sandbox_reader.h"

#include <utility>

#include "tools/replay/input/row_error.h"

namespace replay {

SandboxReader::SandboxReader(std::unique_ptr<ByteSource> source)
    : lines_(std::move(source)),
      ahead_([this](SandboxCall& call) { return ReadCall(call); }, [this](const SandboxCall& call) { Learn(call); }) {}

bool SandboxReader::Next(Call& call) {
  SandboxCall row;
  while (!mapping_.events().Pop(call)) {
    if (!ahead_.Next(row)) {
      return false;
    }
    try {
      mapping_.Map(row);
    } catch (const RowError& error) {
      throw InputError(lines_.name(), row.line, error.what());
    }
  }
  return true;
}

bool SandboxReader::ReadCall(SandboxCall& call) {
  std::string_view line;
  do {
    if (!lines_.Next(line)) {
      return false;
    }
  } while (IsBlankLine(line));
  call.line = lines_.number();
  try {
    call.json.Parse(line);
  } catch (const RowError& error) {
    lines_.Fail(error.what());
  }
  return true;
}

void SandboxReader::Learn(const SandboxCall& call) {
  try {
    mapping_.Learn(call);
  } catch (const RowError& error) {
    throw InputError(lines_.name(), call.line, error.what());
  }
}

}  // namespace replay
