#include "tools/replay/input/capture_reader.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "tools/replay/input/json_line.h"
#include "tools/replay/input/jsonl_reader.h"
#include "tools/replay/input/procmon_reader.h"
#include "tools/replay/input/records_reader.h"
#include "tools/replay/input/sandbox_reader.h"
#include "tools/replay/input/utf8_source.h"

namespace replay {
namespace {

// Enough for some dozens of records, and for the first line of any text capture but one with enormous buffers in it.
constexpr std::size_t kLookedAt = std::size_t{64} * 1024;

bool IsBehavior(std::uint32_t code) { return (code >= 0x4001 && code <= 0x7FFF) || (code >= 0xC001 && code <= 0xC003); }

// Binary content with a behaviour code at the place of one.
bool LooksLikeRecords(std::string_view bytes) {
  if (bytes.substr(0, sizeof(LOG_ITEM)).find('\0') == std::string_view::npos) {
    return false;
  }
  for (std::size_t at = offsetof(LOG_ITEM, Behavior); at + 4 <= bytes.size(); at += sizeof(LOG_ITEM)) {
    std::uint32_t code = 0;
    std::memcpy(&code, bytes.data() + at, sizeof code);
    if (IsBehavior(code)) {
      return true;
    }
  }
  return false;
}

std::string TextOf(std::string_view bytes) {
  const TextForm form = TextFormOf(bytes);
  bytes.remove_prefix(form.mark_size);
  if (form.encoding == TextEncoding::kUtf8) {
    return std::string(bytes);
  }
  std::string text;
  AppendUtf16AsUtf8(bytes, form.encoding, text);
  return text;
}

std::string_view FirstLine(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  return text.substr(0, text.find('\n'));
}

bool Mentions(std::string_view line, std::string_view member) {
  return line.find('"' + std::string(member) + '"') != std::string_view::npos;
}

// A line that is no whole JSON object is an event script's all the same, so that its reader says what is wrong where.
CaptureFormat JsonFormat(std::string_view line) {
  try {
    JsonLine json;
    json.Parse(line);
    const bool logged = json.Find("api") != nullptr || json.Find("process_id") != nullptr;
    return logged ? CaptureFormat::kSandbox : CaptureFormat::kJsonl;
  } catch (const RowError&) {
    const bool logged = Mentions(line, "api") || Mentions(line, "process_id");
    return logged && !Mentions(line, "behavior") && !Mentions(line, "call") ? CaptureFormat::kSandbox : CaptureFormat::kJsonl;
  }
}

}  // namespace

CaptureFormat DetectFormat(ByteSource& source) {
  const std::string_view bytes = source.Peek(kLookedAt);
  if (bytes.empty()) {
    throw InputError(source.name(), "is empty");
  }
  const std::string text = TextOf(bytes);
  const std::string_view line = FirstLine(text);
  if (CountProcmonColumns(line) >= 2) {
    return CaptureFormat::kProcmon;
  }
  if (LooksLikeRecords(bytes)) {
    return CaptureFormat::kRecords;
  }
  if (line.starts_with('{')) {
    return JsonFormat(line);
  }
  const bool process_monitor = bytes.starts_with("PML_") || line.starts_with("<?xml") || line.starts_with("<procmon>");
  throw InputError(source.name(), process_monitor
                                      ? "is no capture of a known format; save a Process Monitor capture as CSV"
                                      : "is no capture of a known format (event script, records, Process Monitor CSV, "
                                        "sandbox call log)");
}

std::unique_ptr<CaptureReader> MakeReader(CaptureFormat format, std::unique_ptr<ByteSource> source) {
  switch (format) {
    case CaptureFormat::kJsonl:
      return std::make_unique<JsonlReader>(std::move(source));
    case CaptureFormat::kRecords:
      return std::make_unique<RecordsReader>(std::move(source));
    case CaptureFormat::kProcmon:
      return std::make_unique<ProcmonReader>(std::move(source));
    case CaptureFormat::kSandbox:
      return std::make_unique<SandboxReader>(std::move(source));
  }
  throw InputError(source->name(), "unknown format");
}

}  // namespace replay
