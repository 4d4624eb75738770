#include "platform/posix/report_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <limits>
#include <string>

namespace zt {
namespace {

// What arrives in a file when `write` has been done.
std::string Written(const std::function<void(ReportWriter&)>& write) {
  const int file = memfd_create("report", MFD_CLOEXEC);
  {
    ReportWriter report(file);
    write(report);
  }
  std::string content(100000, '\0');
  const ssize_t size = pread(file, content.data(), content.size(), 0);
  close(file);
  content.resize(static_cast<std::size_t>(size));
  return content;
}

TEST(ReportWriterTest, Numbers) {
  EXPECT_EQ(Written([](ReportWriter& report) { report.Number(0); }), "0");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Number(-6); }), "-6");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Number(7, 2); }), "07");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Number(2025, 2); }), "2025");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Number(std::numeric_limits<std::int64_t>::min()); }),
            "-9223372036854775808");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Number(std::numeric_limits<std::int64_t>::max()); }),
            "9223372036854775807");
}

TEST(ReportWriterTest, Hexadecimal) {
  EXPECT_EQ(Written([](ReportWriter& report) { report.Hex(0); }), "0");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Hex(0xAB12); }), "ab12");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Hex(0xAB12, 16); }), "000000000000ab12");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Hex(std::numeric_limits<std::uint64_t>::max(), 16); }),
            "ffffffffffffffff");
}

TEST(ReportWriterTest, ColumnsAreFilledAndNeverCut) {
  EXPECT_EQ(Written([](ReportWriter& report) { report.Column("rax", 5); }), "rax  ");
  EXPECT_EQ(Written([](ReportWriter& report) { report.Column("eflags", 5); }), "eflags");
}

TEST(ReportWriterTest, NamesHaveNoControlCharacters) {
  EXPECT_EQ(Written([](ReportWriter& report) { report.Name("a\nb\x1b[0m\x7f\xC3\xA4"); }), "a?b?[0m?\xC3\xA4");
}

TEST(ReportWriterTest, TextLargerThanTheBuffer) {
  std::string text;
  for (int i = 0; text.size() < 5000; ++i) {
    text += std::to_string(i) + " ";
  }
  EXPECT_EQ(Written([&](ReportWriter& report) { report.Text(text); }), text);
  EXPECT_EQ(Written([&](ReportWriter& report) {
              for (const char& character : text) {
                report.Text({&character, 1});
              }
            }),
            text);
}

TEST(ReportWriterTest, FlushWritesAtOnce) {
  EXPECT_EQ(Written([](ReportWriter& report) {
              report.Text("one");
              report.Flush();
              report.Flush();
              report.Text("two");
            }),
            "onetwo");
}

TEST(ReportWriterTest, AfterAnErrorTheRestIsDropped) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
  const int capacity = fcntl(ends[1], F_SETPIPE_SZ, 4096);
  ASSERT_GT(capacity, 0);
  std::string content(static_cast<std::size_t>(capacity) * 2, '\0');
  {
    ReportWriter report(ends[1]);
    report.Text(std::string(static_cast<std::size_t>(capacity) + 1, 'x'));  // One more than the pipe takes.
    report.Flush();
    EXPECT_EQ(read(ends[0], content.data(), content.size()), capacity);
    report.Text("late");
  }
  EXPECT_EQ(read(ends[0], content.data(), content.size()), -1) << "there is room again, but the text would have a hole";
  close(ends[0]);
  close(ends[1]);
}

}  // namespace
}  // namespace zt
