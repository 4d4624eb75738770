// The dearest single event that chosen names lead to: names of one letter, of dots, of stems inside stems. Each shape is
// tracked by one process, and writes to paths that it does not track make the similar-file search look at them. Measured
// without a trace, and with debug lines on against a plain walk over the same names.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/cpu_time.h"
#include "bench/folder.h"
#include "bench/sizes.h"
#include "engine/context.h"
#include "engine/tracing.h"

namespace zt::bench {
namespace {

struct Shape {
  std::vector<std::wstring> paths;
  std::wstring target;
};

const std::wstring kFolder = L"C:\\d\\";

std::wstring Letters(std::size_t count, wchar_t letter = L'a') { return std::wstring(count, letter); }
std::size_t FileCount() { return Sized(100000, 300); }

/// 240 files "aaa!", one of each length.
Shape OneLetterAndMark() {
  Shape shape;
  for (std::size_t length = 1; length <= 240; ++length) {
    shape.paths.push_back(kFolder + Letters(length) + L"!");
  }
  shape.target = kFolder + Letters(240) + L".x";
  return shape;
}

/// "a.17": one stem, any number of extensions.
Shape OneStem() {
  Shape shape;
  for (std::size_t number = 0; number < FileCount(); ++number) {
    shape.paths.push_back(kFolder + L"a." + std::to_wstring(number));
  }
  shape.target = kFolder + Letters(240) + L".e";
  return shape;
}

/// "aaa.17.x": stems that hold a dot, of 100 lengths.
Shape DottedStems() {
  Shape shape;
  for (std::size_t number = 0; number < FileCount(); ++number) {
    shape.paths.push_back(kFolder + Letters(1 + number % 100) + L"." + std::to_wstring(number) + L".x");
  }
  shape.target = kFolder + Letters(240) + L".e.x";
  return shape;
}

/// "aaa.y17": every length of a stem, some 400 extensions each.
Shape EveryStem() {
  Shape shape;
  for (std::size_t number = 0; number < FileCount(); ++number) {
    shape.paths.push_back(kFolder + Letters(1 + number % 240) + L".y" + std::to_wstring(number));
  }
  shape.target = kFolder + Letters(240) + L".x";
  return shape;
}

/// "...17" against dots.
Shape Dots() {
  Shape shape;
  for (std::size_t number = 0; number < FileCount(); ++number) {
    shape.paths.push_back(kFolder + Letters(1 + number % 240, L'.') + std::to_wstring(number / 240));
  }
  shape.target = kFolder + Letters(240, L'.');
  return shape;
}

/// "aaa.bbb.17": 8,000 stems inside each other, 12 extensions each.
Shape StemsInsideStems() {
  Shape shape;
  for (std::size_t number = 0; number < FileCount(); ++number) {
    const std::size_t stem = number / 12;
    shape.paths.push_back(kFolder + Letters(1 + stem % 200) + L"." + Letters(1 + stem / 200, L'b') + L"." +
                          std::to_wstring(number % 12));
  }
  shape.target = kFolder + Letters(200) + L"." + Letters(40, L'b');
  return shape;
}

/// 500 keys "aaa!" without a folder, which may be anywhere in a target of 523 units.
Shape KeysWithoutFolder() {
  Shape shape;
  for (std::size_t length = 1; length <= 500; ++length) {
    shape.paths.push_back(Letters(length) + L"!");
  }
  shape.target = Letters(519);
  return shape;
}

/// Every part of one name of 255 units, so that as many files as can be occur in the target's name.
Shape EveryPart() {
  std::mt19937 random(1);
  std::wstring name;
  for (std::size_t unit = 0; unit < Sized(255, 20); ++unit) {
    name += static_cast<wchar_t>(L'a' + random() % 26);
  }
  Shape shape;
  for (std::size_t begin = 0; begin < name.size(); ++begin) {
    for (std::size_t length = 1; begin + length <= name.size(); ++length) {
      shape.paths.push_back(kFolder + name.substr(begin, length));
    }
  }
  shape.target = kFolder + L"x" + name + L".y";
  return shape;
}

/// Ordinary names, for comparison.
Shape People() {
  Shape shape;
  for (std::size_t number = 0; number < FileCount(); ++number) {
    shape.paths.push_back(PathOf(number));
  }
  shape.target = PathOf(10000000) + L".locked";
  return shape;
}

/// A process that tracks the files of a shape.
class Attack {
 public:
  explicit Attack(const Shape& shape) {
    Insert(MakeRecord(0, BehaviorProcessCreate, L"C:\\Windows\\app.exe", kPid));
    for (const std::wstring& path : shape.paths) {
      Insert(MakeRecord(kPid, BehaviorCreate, path, 4096));
    }
  }

  /// Seconds of one write to the target.
  double Write(const std::wstring& target) {
    LOG_ITEM write = MakeRecord(kPid, BehaviorWrite, target + L"|4096", 0);
    const double start = CpuSeconds();
    engine_.InsertLog(&write);
    return CpuSeconds() - start;
  }

 private:
  void Insert(LOG_ITEM record) { engine_.InsertLog(&record); }

  RealEngine engine_;
};

constexpr int kRepeats = 10;

void HostileNames(benchmark::State& state, Shape (*make)()) {
  const Shape shape = make();
  Attack attack(shape);
  double worst = 0;
  for (auto _ : state) {
    const double time = attack.Write(shape.target);
    state.SetIterationTime(time);
    worst = std::max(worst, time);
  }
  state.counters["worst_us"] = worst * 1e6;
  state.counters["files"] = static_cast<double>(shape.paths.size());
}

/// The search of the export, which walks the map.
double Walk(ZT_PID_ITEM& process, const std::wstring& target) {
  static std::shared_ptr<_ZtEngineCore> engine = std::make_shared<_ZtEngineCore>(1);
  const double start = CpuSeconds();
  ZtSearchSimilarFile(engine, process, process.files, target);
  return CpuSeconds() - start;
}

/// Debug lines on, without an output, so that what is compared is all but their writing.
void TracedNames(benchmark::State& state, Shape (*make)()) {
  const Shape shape = make();
  Attack attack(shape);
  ZT_PID_ITEM process;
  for (const std::wstring& path : shape.paths) {
    std::wstring key;
    std::transform(path.begin(), path.end(), std::back_inserter(key),
                   [](wchar_t unit) { return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit; });
    process.files.try_emplace(key);
  }
  std::wstring target;
  std::transform(shape.target.begin(), shape.target.end(), std::back_inserter(target),
                 [](wchar_t unit) { return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit; });
  TraceFlags = kTraceDebug;
  double engine = 0;
  double walk = 0;
  for (auto _ : state) {
    const double time = attack.Write(shape.target);
    state.SetIterationTime(time);
    engine += time;
    walk += Walk(process, target);
  }
  TraceFlags = 0;
  state.counters["to_walk"] = engine / walk;
}

struct NamedShape {
  const char* name;
  Shape (*make)();
};

[[maybe_unused]] const bool kRegistered = [] {
  for (const NamedShape& shape :
       {NamedShape{"people", People}, NamedShape{"one_letter_and_mark", OneLetterAndMark}, NamedShape{"one_stem", OneStem},
        NamedShape{"dotted_stems", DottedStems}, NamedShape{"every_stem", EveryStem}, NamedShape{"dots", Dots},
        NamedShape{"stems_inside_stems", StemsInsideStems}, NamedShape{"keys_without_folder", KeysWithoutFolder},
        NamedShape{"every_part", EveryPart}}) {
    benchmark::RegisterBenchmark((std::string("Hostile/") + shape.name).c_str(), HostileNames, shape.make)
        ->Iterations(kRepeats)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((std::string("Traced/") + shape.name).c_str(), TracedNames, shape.make)
        ->Iterations(kRepeats)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

}  // namespace
}  // namespace zt::bench
