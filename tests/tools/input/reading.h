// Short ways to read captures in tests.

#ifndef ZT_TESTS_TOOLS_INPUT_READING_H
#define ZT_TESTS_TOOLS_INPUT_READING_H

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/replay/input/capture_reader.h"
#include "tools/replay/input/peekable_source.h"

namespace replay::testing {

/// A source over text in memory, called "capture".
class TextSource : public PeekableSource {
 public:
  /// Gives at most `step` bytes at a time.
  explicit TextSource(std::string text, std::size_t step = 4096) : text_(std::move(text)), step_(step) {}

  [[nodiscard]] const std::string& name() const override { return name_; }
  [[nodiscard]] std::uint64_t consumed() const override { return at_; }
  [[nodiscard]] std::uint64_t total() const override { return 0; }

 protected:
  std::size_t ReadMore(char* buffer, std::size_t size) override {
    const std::size_t count = std::min({size, step_, text_.size() - at_});
    std::memcpy(buffer, text_.data() + at_, count);
    at_ += count;
    return count;
  }

 private:
  std::string name_ = "capture";
  std::string text_;
  std::size_t step_;
  std::size_t at_ = 0;
};

inline std::unique_ptr<ByteSource> SourceOf(std::string text, std::size_t step = 4096) {
  return std::make_unique<TextSource>(std::move(text), step);
}

/// All that a source still has.
inline std::string ReadAll(ByteSource& source) {
  std::string all;
  char block[777];
  while (const std::size_t count = source.Read(block, sizeof block)) {
    all.append(block, count);
  }
  return all;
}

/// The units of a target up to its terminator, those beyond ASCII as "<4E00>".
inline std::string TargetText(const LOG_ITEM& record) {
  std::string text;
  for (const auto unit : record.Target) {
    if (unit == 0) {
      break;
    }
    if (unit < 0x80) {
      text += static_cast<char>(unit);
    } else {
      text += fmt::format("<{:04X}>", static_cast<unsigned>(unit));
    }
  }
  return text;
}

inline std::string PathText(const LOG_ITEM& record) { return {record.Path, strnlen(record.Path, sizeof record.Path)}; }

/// An event as "CODE PID TARGET_PID TARGET".
inline std::string EventText(const Call& call) {
  const LOG_ITEM& record = call.record;
  return fmt::format("{:04x} {} {} {}", record.Behavior, record.Pid, record.TargetPid, TargetText(record));
}

/// What a reader makes of a capture: the calls before an error, and the error.
struct Reading {
  std::vector<Call> calls;
  ReadCounts counts;
  std::string error;  ///< Empty where there is none.

  [[nodiscard]] std::vector<std::string> Events() const {
    std::vector<std::string> events;
    for (const Call& call : calls) {
      events.push_back(EventText(call));
    }
    return events;
  }

  /// Without the creations of processes, for tests of what is done to files.
  [[nodiscard]] std::vector<std::string> EventsButCreations() const {
    std::vector<std::string> events = Events();
    events.erase(std::remove_if(events.begin(), events.end(), [](const auto& text) { return text.starts_with("c003"); }),
                 events.end());
    return events;
  }
};

inline Reading ReadAllCalls(CaptureReader& reader) {
  Reading reading;
  try {
    Call call;
    while (reader.Next(call)) {
      reading.calls.push_back(call);
    }
  } catch (const InputError& error) {
    reading.error = error.what();
  }
  reading.counts = reader.counts();
  return reading;
}

inline Reading ReadCapture(CaptureFormat format, std::string text, std::size_t step = 4096) {
  return ReadAllCalls(*MakeReader(format, SourceOf(std::move(text), step)));
}

/// What an InputError says; empty where `action` throws none.
template <typename Action>
std::string ErrorOf(const Action& action) {
  try {
    action();
  } catch (const InputError& error) {
    return error.what();
  }
  return {};
}

}  // namespace replay::testing

#endif  // ZT_TESTS_TOOLS_INPUT_READING_H
