#include "tools/replay/replay_command.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/terminal.h"
#include "tools/replay/input/byte_source.h"
#include "tools/replay/input/capture_reader.h"
#include "tools/replay/options.h"
#include "tools/replay/output_file.h"
#include "tools/replay/progress.h"
#include "tools/replay/restore_list.h"
#include "tools/replay/session.h"
#include "tools/replay/summary.h"
#include "tools/replay/summary_json.h"
#include "tools/replay/text.h"

namespace replay {
namespace {

void PutOnStandardError(std::string_view text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));  // There is nobody else to tell of a failure.
}

bool WantsColors(zt::StandardStream stream) { return std::getenv("NO_COLOR") == nullptr && zt::ShowsColors(stream); }

/// An output with the writer that fills it, where the output is asked for.
template <typename Writer>
class Output {
 public:
  explicit Output(const std::optional<std::string>& path) {
    if (path) {
      file_ = std::make_unique<OutputFile>(*path);
      writer_.emplace([this](std::string_view bytes) { file_->Write(bytes); });
    }
  }
  Output(const Output&) = delete;  // The writer's sink refers to it.
  Output& operator=(const Output&) = delete;
  ~Output() = default;

  Writer* writer() { return writer_ ? &*writer_ : nullptr; }
  void Commit() {
    if (file_) {
      file_->Commit();
    }
  }

 private:
  std::unique_ptr<OutputFile> file_;
  std::optional<Writer> writer_;
};

/// A capture that is open for reading. The reader owns the source.
struct OpenCapture {
  explicit OpenCapture(const Options& options) {
    std::unique_ptr<ByteSource> opened = OpenByteSource(options.capture);
    const CaptureFormat format = options.format ? *options.format : DetectFormat(*opened);
    source = opened.get();
    reader = MakeReader(format, std::move(opened));
  }

  ByteSource* source = nullptr;
  std::unique_ptr<CaptureReader> reader;
};

std::string NothingFed(const ReadCounts& read) {
  std::string what = fmt::format("nothing in it could be fed ({} rows read)", read.rows);
  for (const auto& [reason, rows] : read.skipped) {
    what += fmt::format("; {} skipped: {}", rows, reason);
  }
  return what;
}

/// Feeds the whole capture. Throws InputError, also when there was nothing to feed.
void FeedAll(OpenCapture& capture, Session& session) {
  std::optional<Progress> progress;
  if (zt::IsTerminal(zt::StandardStream::kError)) {
    progress.emplace(*capture.source, PutOnStandardError);
  }
  Call call;
  while (capture.reader->Next(call)) {
    session.Feed(call);
    if (progress) {
      progress->Tell(session.counts().events + session.counts().others);
    }
  }
  if (session.counts().events + session.counts().others == 0) {
    throw InputError(capture.source->name(), NothingFed(capture.reader->counts()));
  }
  session.Finish();
}

void PrintSummary(const Options& options, const Summary& summary) {
  if (options.UsesStandardOutput()) {
    PutOnStandardError(SummaryText(summary, WantsColors(zt::StandardStream::kError)));
    return;
  }
  OutputFile output("-");
  output.Write(options.json ? SummaryJson(summary) : SummaryText(summary, WantsColors(zt::StandardStream::kOutput)));
  output.Commit();
}

ExitStatus Replay(const Options& options) {
  OpenCapture capture(options);
  Output<ResultsWriter> results(options.results);
  Output<EventsWriter> events(options.events);
  Output<ExplainWriter> explain(options.explain);
  Output<ByteSink> restore_list(options.restore_list);

  Session session(options, {results.writer(), events.writer(), explain.writer()}, restore_list.writer() != nullptr);
  const auto start = std::chrono::steady_clock::now();
  FeedAll(capture, session);
  Summary summary = {capture.source->name(), options.alarm, capture.reader->counts(), session.counts(), 0, {}, {}, {}};
  summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  AddProcesses(summary, session.ledger());
  if (restore_list.writer() != nullptr) {
    WriteRestoreList(session.ledger(), *restore_list.writer(),
                     options.restore_list == "-" && zt::IsTerminal(zt::StandardStream::kOutput));
  }
  results.Commit();
  events.Commit();
  explain.Commit();
  restore_list.Commit();
  PrintSummary(options, summary);
  return summary.culprits.empty() ? ExitStatus::kQuiet : ExitStatus::kAlarm;
}

ExitStatus Answer(const Reply& reply) {
  if (reply.status == ExitStatus::kFailure) {
    PutOnStandardError(reply.text);
    return reply.status;
  }
  OutputFile output("-");
  output.Write(reply.text);
  output.Commit();
  return reply.status;
}

ExitStatus Run(int argc, const char* const* argv) {
  const std::variant<Options, Reply> command = ParseOptions(argc, argv);
  if (const Reply* reply = std::get_if<Reply>(&command); reply != nullptr) {
    return Answer(*reply);
  }
  return Replay(std::get<Options>(command));
}

}  // namespace

int ReplayCommand(int argc, const char* const* argv) {
  ExitStatus status = ExitStatus::kFailure;
  try {
    status = Run(argc, argv);
  } catch (const std::bad_alloc&) {
    PutOnStandardError("ztreplay: out of memory\n");
  } catch (const std::exception& error) {
    PutOnStandardError(ShownText(error.what()) + "\n");
  }
  return static_cast<int>(status);
}

}  // namespace replay
