// The fixture of tests that look at the library through a program that loads it.

#ifndef ZT_TESTS_DLL_HOST_FIXTURE_H
#define ZT_TESTS_DLL_HOST_FIXTURE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <future>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tests/tools/shell.h"
#include "trace/trace.h"

namespace zt::testing {

/// The library's own lines and the engine's go to the log file.
inline constexpr std::uint32_t kFileTrace = kTraceInfo | kTraceDebug | kTraceWarning | kTraceToFile;

/// How often `part` stands in the text.
inline std::size_t Count(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

/// Runs the host from a folder of its own, beside which the library keeps its log files.
class HostTest : public ::testing::Test {
 protected:
  explicit HostTest(const char* program = ZT_DLL_HOST) { std::filesystem::copy_file(program, Host()); }

  /// Returns the host's exit status.
  [[nodiscard]] int Run(const std::string& word) const {
    using replay::testing::Quoted;
    return replay::testing::RunCommandLine(Quoted(Host()) + " " + Quoted(ZT_LIBRARY_FILE) + " " + word + " > " +
                                           Quoted(folder_.Path("out")) + " 2> " + Quoted(folder_.Path("err")));
  }
  /// The same beside the test, for a word that begins with "watch". Returns when the host has loaded the library; it goes on
  /// after LetGo.
  [[nodiscard]] std::future<int> Start(const std::string& word) const {
    std::future<int> host = std::async(std::launch::async, [this, word] { return Run(word); });
    WaitUntil(host, [this] { return Output() == "watches\n"; });
    return host;
  }
  void LetGo() const { folder_.Write("go", ""); }
  /// Returns when `is_so` returns true, or the host has ended.
  template <typename Condition>
  static void WaitUntil(std::future<int>& host, const Condition& is_so) {
    while (!is_so() && host.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
    }
  }

  /// What it said, with line ends as everywhere.
  [[nodiscard]] std::string Output() const {
    std::string text = folder_.Read("out") + folder_.Read("err");
    std::erase(text, '\r');
    return text;
  }
  [[nodiscard]] std::string Log() const { return folder_.Read("logs/trace/zteng.log"); }
  /// The names of the log files that there are, in order.
  [[nodiscard]] std::vector<std::string> LogNames() const {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path() / "logs" / "trace", missing)) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }
  /// The sizes of the dumps beside the host.
  [[nodiscard]] std::vector<std::uintmax_t> Dumps() const {
    std::vector<std::uintmax_t> sizes;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(std::filesystem::path(Host()).filename().string() + " [") && name.ends_with(".dmp")) {
        sizes.push_back(entry.file_size());
      }
    }
    return sizes;
  }

  [[nodiscard]] std::string Host() const {
    return folder_.Path("host" + std::filesystem::path(ZT_DLL_HOST).extension().string());
  }
  [[nodiscard]] const ScratchFolder& folder() const { return folder_; }

 private:
  ScratchFolder folder_;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_DLL_HOST_FIXTURE_H
