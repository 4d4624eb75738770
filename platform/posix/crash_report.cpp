// The dump of a crash: a report that a person reads. It tells most first, and every section is in the file before the next one
// begins, so that little is lost when the state of the process does not let it be finished.

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <span>

#include "platform/calendar.h"
#include "platform/crash_filter.h"
#include "platform/posix/crash_details.h"
#include "platform/posix/crash_registers.h"
#include "platform/posix/mappings.h"
#include "platform/posix/own_memory.h"
#include "platform/posix/report_writer.h"
#include "platform/posix/signal_names.h"

namespace zt {
namespace {

constexpr std::size_t kWordSize = sizeof(std::uintptr_t);
constexpr std::size_t kMaxStackWords = 512;
constexpr std::size_t kMaxFrames = 64;
// A frame that is larger than this is taken for the end of the chain.
constexpr std::uintptr_t kMaxFrameSize = 0x100000;
constexpr std::size_t kAddressDigits = 16;

// Static because it is too large for the stack of a signal handler, and the heap may be what broke.
constinit ModuleTable modules;

void Heading(ReportWriter& report, std::string_view text) {
  report.Flush();
  report.Text("\n");
  report.Text(text);
  report.Text("\n");
  for (std::size_t i = 0; i < text.size(); ++i) {
    report.Text("-");
  }
  report.Text("\n");
}

void Label(ReportWriter& report, std::string_view text) { report.Column(text, 12); }

void Address(ReportWriter& report, std::uint64_t value) {
  report.Text("0x");
  report.Hex(value, kAddressDigits);
}

// "  libc.so.6+0x27249", or nothing when the address is in no module.
void Place(ReportWriter& report, std::uintptr_t address) {
  const ModulePlace place = modules.Find(address);
  if (!place.module.empty()) {
    report.Text("  ");
    report.Name(place.module);
    report.Text("+0x");
    report.Hex(place.offset);
  }
}

void Time(ReportWriter& report) {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  const LocalTime time = CalendarTime(now.tv_sec);
  Label(report, "Time");
  report.Number(time.year, 4);
  report.Text("-");
  report.Number(time.month, 2);
  report.Text("-");
  report.Number(time.day, 2);
  report.Text(" ");
  report.Number(time.hour, 2);
  report.Text(":");
  report.Number(time.minute, 2);
  report.Text(":");
  report.Number(time.second, 2);
  report.Text(" UTC (");
  report.Number(now.tv_sec);
  report.Text(" s since 1970)\n");
}

void Signal(ReportWriter& report, const CrashDetails& details) {
  const siginfo_t& info = details.info;
  const SignalReason reason = ReasonOf(details.signal, info.si_code);
  Label(report, "Signal");
  report.Text(SignalName(details.signal));
  report.Text(" (");
  report.Number(details.signal);
  report.Text(")\n");
  Label(report, "Code");
  report.Text(reason.name);
  report.Text(" (");
  report.Number(info.si_code);
  report.Text("): ");
  report.Text(reason.meaning);
  report.Text("\n");
  if (!WasSent(info) && info.si_code != SI_KERNEL) {
    Label(report, "Address");
    Address(report, reinterpret_cast<std::uintptr_t>(info.si_addr));
    report.Text("\n");
  } else if (info.si_code == SI_USER || info.si_code == SI_TKILL || info.si_code == SI_QUEUE || info.si_code == SI_MESGQ) {
    Label(report, "Sent by");
    report.Text("process ");
    report.Number(info.si_pid);
    report.Text(", user ");
    report.Number(info.si_uid);
    report.Text("\n");
  }
}

void Process(ReportWriter& report) {
  Label(report, "Process");
  report.Number(getpid());
  report.Text("\n");

  std::array<char, 16> name = {};  // As long as the system keeps it, with its end.
  prctl(PR_GET_NAME, name.data());
  Label(report, "Thread");
  report.Number(gettid());
  report.Text(" \"");
  report.Name({name.data(), static_cast<std::size_t>(std::find(name.begin(), name.end(), '\0') - name.begin())});
  report.Text("\"\n");

  std::array<char, 4096> path;
  const ssize_t length = readlink("/proc/thread-self/exe", path.data(), path.size());
  Label(report, "Executable");
  report.Name({path.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))});
  report.Text("\n");
}

void Registers(ReportWriter& report, const CrashRegisters& registers) {
  Heading(report, "Registers");
  if (registers.count == 0) {
    report.Text("The registers of this processor are not known here.\n");
    return;
  }
  constexpr std::size_t kPerRow = 4;
  for (std::size_t i = 0; i < registers.count; ++i) {
    const bool ends_row = i % kPerRow == kPerRow - 1 || i + 1 == registers.count;
    report.Column(registers.registers[i].name, 9);
    report.Hex(registers.registers[i].value, kAddressDigits);
    report.Text(ends_row ? "\n" : "  ");
  }
}

void Frame(ReportWriter& report, std::size_t number, std::uintptr_t address) {
  report.Text("#");
  report.Number(static_cast<std::int64_t>(number), 2);
  report.Text("  ");
  Address(report, address);
  Place(report, address);
  report.Text("\n");
}

// Where every function keeps a frame pointer, the frames are a chain: each begins with the address of its caller's frame, then
// the address to which it returns.
void Frames(ReportWriter& report, const CrashRegisters& registers) {
  Heading(report, "Calls, as far as frame pointers lead");
  Frame(report, 0, registers.program_counter);
  std::uintptr_t frame = registers.frame_pointer;
  std::uintptr_t lower_end = registers.stack_pointer;
  for (std::size_t number = 1; number < kMaxFrames; ++number) {
    const bool plausible = frame % kWordSize == 0 && frame >= lower_end && frame - lower_end <= kMaxFrameSize;
    std::array<std::uintptr_t, 2> words;
    if (!plausible || ReadOwnMemory(frame, words) != words.size() || words[1] == 0) {
      return;
    }
    Frame(report, number, WithoutSignature(words[1]));
    lower_end = frame + kWordSize;
    frame = words[0];
  }
}

void StackRow(ReportWriter& report, std::uintptr_t address, std::uintptr_t word) {
  Address(report, address);
  report.Text("  ");
  report.Hex(word, kAddressDigits);
  Place(report, word);
  report.Text("\n");
}

void Stack(ReportWriter& report, std::uintptr_t stack_pointer) {
  Heading(report, "Stack");
  Mapping mapping;
  if (!FindMapping(stack_pointer, mapping)) {
    report.Text("The stack pointer leads to no memory.\n");
    return;
  }
  std::uintptr_t address = (stack_pointer + kWordSize - 1) / kWordSize * kWordSize;
  std::size_t left = std::min((mapping.end - address) / kWordSize, kMaxStackWords);
  std::array<std::uintptr_t, 64> words;
  while (left > 0) {
    const std::size_t count = ReadOwnMemory(address, std::span(words).first(std::min(left, words.size())));
    if (count == 0) {
      report.Text("From here on the memory cannot be read.\n");
      return;
    }
    for (std::size_t i = 0; i < count; ++i, address += kWordSize) {
      StackRow(report, address, words[i]);
    }
    left -= count;
  }
}

void Mappings(ReportWriter& report) {
  Heading(report, "Mappings");
  const int file = open(kMappingsFile, O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    report.Text("The list of mappings cannot be read.\n");
    return;
  }
  std::array<char, 1024> part;
  ssize_t count = 0;
  while ((count = read(file, part.data(), part.size())) > 0 || (count < 0 && errno == EINTR)) {
    report.Text({part.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))});
  }
  close(file);
}

void Report(ReportWriter& report, const CrashDetails& details) {
  report.Text("Crash report\n============\n\n");
  Signal(report, details);
  Time(report);
  Process(report);
  const CrashRegisters registers = RegistersOf(details.context);
  Registers(report, registers);
  report.Flush();
  modules.Read();
  Frames(report, registers);
  Stack(report, registers.stack_pointer);
  Mappings(report);
}

}  // namespace

void WriteCrashDump(const char* path, const CrashDetails& details) {
  // Neither a link nor a pipe that somebody has put at the path shall lead the report elsewhere or hold it up.
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const int file = open(path, kFlags, S_IRUSR | S_IWUSR);
  if (file < 0) {
    return;
  }
  {
    ReportWriter report(file);
    Report(report, details);
  }
  close(file);
}

}  // namespace zt
