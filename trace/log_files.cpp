#include "trace/log_files.h"

#include <array>

#include "platform/last_error.h"
#include "trace/bounded_text.h"
#include "trace/number_text.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

// A union does not destroy its member.
union Immortal {
  constexpr Immortal() : files() {}
  ~Immortal() {}  // NOLINT(modernize-use-equals-default): a defaulted one would be deleted.
  Immortal(const Immortal&) = delete;
  Immortal& operator=(const Immortal&) = delete;

  LogFiles files;
};

constinit Immortal immortal;

// "_pid_1234", or nothing where the flags do not ask for it.
class ProcessPart {
 public:
  ProcessPart() {
    if ((TraceFlags.load(std::memory_order_relaxed) & kTracePidInName) != 0) {
      text_.Append("_pid_");
      text_.Append(Digits(SharedTraceState().environment->process_id()).view());
    }
  }
  [[nodiscard]] std::string_view view() const { return text_.view(); }

 private:
  std::array<char, 16> storage_ = {};
  BoundedText text_{storage_.data(), storage_.size()};
};

}  // namespace

std::optional<std::uint64_t> LogFiles::Open() {
  if (current_.empty() || !MakeFoldersFor(current_.c_str())) {
    return std::nullopt;
  }
  return file_.Open(current_.c_str());
}

void LogFiles::StartNext() {
  current_ = current_ == first_ ? second_ : first_;
  DeleteFileAt(current_.c_str());
}

void LogFiles::SetPlace(std::string_view folder, std::string_view name) {
  folder_ = PathText(folder);
  name_ = PathText(name);
  current_.Clear();
  first_.Clear();
  second_.Clear();
}

bool LogFiles::Build(std::string_view folder, std::string_view name, std::uint32_t size_limit, std::string_view process_part) {
  const std::string_view stem = name.substr(0, name.rfind('.'));
  const std::string_view extension = name.substr(stem.size());
  if (size_limit == 0) {
    current_.Clear();
    return current_.Append(folder, stem, process_part, extension);
  }
  Close();
  first_.Clear();
  second_.Clear();
  if (!first_.Append(folder, stem, "_1", process_part, extension) ||
      !second_.Append(folder, stem, "_2", process_part, extension)) {
    return false;
  }
  ChooseCurrent(static_cast<std::int32_t>(size_limit << 20));
  return true;
}

void LogFiles::ChooseCurrent(std::int32_t byte_limit) {
  const FileFacts first = FactsOf(first_.c_str());
  const FileFacts second = FactsOf(second_.c_str());
  const bool is_second_latest = first.modified < second.modified;
  const bool is_latest_full = static_cast<std::int64_t>((is_second_latest ? second : first).size) >= byte_limit;
  current_ = is_second_latest == is_latest_full ? first_ : second_;
  if (is_latest_full) {
    DeleteFileAt(current_.c_str());
  }
}

LogFiles& SharedLogFiles() { return immortal.files; }

bool TraceBuildLogPaths(const char* folder, const char* name, std::uint32_t size_limit) {
  if (!IsFolderPath(folder)) {
    SetLastErrorCode(ErrorCode::kNotReady);
    return false;
  }
  if (!IsFileName(name) || !SharedLogFiles().Build(folder, name, size_limit, ProcessPart().view())) {
    SetLastErrorCode(ErrorCode::kInvalidParameter);
    return false;
  }
  return true;
}

void TraceDeleteLogFiles() {
  LogFiles& files = SharedLogFiles();
  const char* const folder = files.folder().c_str();
  const char* const name = files.name().c_str();
  if (TraceBuildLogPaths(folder, name, 0)) {
    DeleteFileAt(files.current().c_str());
  }
  if (TraceBuildLogPaths(folder, name, 1)) {
    DeleteFileAt(files.first().c_str());
    DeleteFileAt(files.second().c_str());
  }
}

}  // namespace zt
