// A host that loads the library at run time and does what its command line says, word by word:
//
//   zt_dll_host LIBRARY WORD...
//
//   calls     loads the library, calls every export, says what each gave, and frees the library
//   cycles    loads and frees it two hundred times, with an event in between
//   hasty     the same without the event, so that it is freed as soon as it is loaded
//   ticks     loads and frees it five times, each time when its worker has written the log file beside this program
//   exit      loads it, feeds an event and ends the process with status 5 without freeing it
//   crash     loads it, feeds an event and crashes
//   freed     loads it, feeds an event, frees it and crashes
//
// These load it, say so and wait for a file "go" beside this program before they go on:
//
//   watch-exit      frees it
//   watch-crash     crashes
//   watch-overflow  overflows this thread's stack

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/dll/crash.h"
#include "tests/dll/loaded_library.h"
#include "tests/support/events.h"

namespace {

using zt::testing::LoadedLibrary;

constexpr int kCycles = 200;
constexpr int kTickingCycles = 5;
constexpr int kExitStatus = 5;
constexpr std::uint64_t kPid = 100;

void* AsHandle(std::uint64_t pid) { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(pid)); }

// All paths here are ASCII.
std::string Narrow(const std::wstring& text) {
  std::string narrow;
  for (const wchar_t unit : text) {
    narrow += static_cast<char>(unit);
  }
  return narrow;
}

std::vector<LOG_ITEM> Overwrite() {
  return {zt::testing::ProcessCreate(4, kPid, 1000, L"C:\\Tools\\Lock.exe"), zt::testing::Open(kPid, L"C:\\Docs\\Plan.docx"),
          zt::testing::Read(kPid, L"C:\\Docs\\Plan.docx"), zt::testing::Write(kPid, L"C:\\Docs\\Plan.docx")};
}

// The library's exports, under the names and with the types of the public header.
struct Exports {
  explicit Exports(const LoadedLibrary& library)
      : init(library.Function<decltype(ZtInitEngineCore)>("ZtInitEngineCore")),
        cleanup(library.Function<decltype(ZtCleanupEngineCore)>("ZtCleanupEngineCore")),
        insert(library.Function<decltype(ZtInsertLog)>("ZtInsertLog")),
        line_score(library.Function<decltype(ZtCalculateSingleLineScore)>("ZtCalculateSingleLineScore")),
        update(library.Function<decltype(ZtUpdateScore)>("ZtUpdateScore")),
        tree(library.Function<std::vector<void*>(std::shared_ptr<void>&, void*)>("ZtGetProcTree")),
        tree_paths(library.Function<void(std::shared_ptr<void>&, void*, std::map<void*, std::wstring>&)>("ZtGetProcTree")),
        search(library.Function<decltype(ZtSearchSimilarFile)>("ZtSearchSimilarFile")),
        reset(library.Function<decltype(ZtResetScore)>("ZtResetScore")),
        final_state(library.Function<decltype(ZtGetFinalStateFileByPid)>("ZtGetFinalStateFileByPid")) {}

  decltype(&ZtInitEngineCore) init;
  decltype(&ZtCleanupEngineCore) cleanup;
  decltype(&ZtInsertLog) insert;
  decltype(&ZtCalculateSingleLineScore) line_score;
  decltype(&ZtUpdateScore) update;
  std::vector<void*> (*tree)(std::shared_ptr<void>&, void*);
  void (*tree_paths)(std::shared_ptr<void>&, void*, std::map<void*, std::wstring>&);
  decltype(&ZtSearchSimilarFile) search;
  decltype(&ZtResetScore) reset;
  decltype(&ZtGetFinalStateFileByPid) final_state;
};

void SayFinalState(const Exports& library, std::shared_ptr<void>& engine) {
  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
  std::vector<std::wstring> paths;
  std::cout << "final state " << int{library.final_state(engine, AsHandle(kPid), files, paths)};
  for (const auto& [key, file] : files) {
    std::cout << ", file " << Narrow(key) << " = " << file.EngineId << " " << Narrow(file.Path) << " " << file.Restore;
  }
  for (const std::wstring& path : paths) {
    std::cout << ", path " << Narrow(path);
  }
  std::cout << "\n";
}

void SayFamily(const Exports& library, std::shared_ptr<void>& engine) {
  std::map<void*, std::wstring> images;
  library.tree_paths(engine, AsHandle(kPid), images);
  std::cout << "family";
  for (const void* pid : library.tree(engine, AsHandle(kPid))) {
    std::cout << " " << reinterpret_cast<std::uintptr_t>(pid);
  }
  for (const auto& [pid, image] : images) {
    std::cout << " " << reinterpret_cast<std::uintptr_t>(pid) << "=" << Narrow(image);
  }
  std::cout << "\n";
}

void SaySimilarFile(const Exports& library, const std::shared_ptr<void>& engine) {
  auto core = std::static_pointer_cast<_ZtEngineCore>(engine);
  ZT_PID_ITEM process;
  process.files[L"c:\\docs\\plan.docx"];
  const auto found = library.search(core, process, process.files, L"c:\\docs\\plan.docx.locked");
  std::cout << "similar " << (found == process.files.end() ? "none" : Narrow(found->first)) << "\n";
}

void Calls(const std::string& path) {
  const LoadedLibrary file(path);
  const Exports library(file);
  std::shared_ptr<void> engine;
  std::cout << "init " << int{library.init(engine, 7)} << "\n";
  std::vector<LOG_ITEM> events = Overwrite();
  for (LOG_ITEM& event : events) {
    std::cout << "insert " << library.insert(engine, &event) << "\n";
  }
  std::cout << "line " << library.line_score(engine, &events.back(), 41) << "\n";
  SayFamily(library, engine);
  SayFinalState(library, engine);
  SaySimilarFile(library, engine);
  library.update(engine, AsHandle(kPid), 0);
  SayFamily(library, engine);
  library.update(engine, AsHandle(kPid), 9);
  SayFamily(library, engine);
  // The penalty has time 0, which then is a second ago.
  library.reset(engine, 10000000, 999);
  SayFamily(library, engine);
  library.cleanup(engine);
  std::cout << "after clean-up " << library.insert(engine, &events.back()) << "\n";
}

void FeedOneEvent(const LoadedLibrary& file) {
  const Exports library(file);
  std::shared_ptr<void> engine;
  library.init(engine, 1);
  LOG_ITEM event = Overwrite().front();
  library.insert(engine, &event);
  library.cleanup(engine);
}

// Returns when the log file is larger than it was, which without many lines is the worker's doing.
void WaitForWorker(const std::filesystem::path& log, std::uintmax_t size_before) {
  std::error_code missing;
  for (std::uintmax_t size = size_before; size <= size_before;) {
    std::this_thread::yield();
    size = std::filesystem::exists(log) ? std::filesystem::file_size(log, missing) : 0;
  }
}

void Tick(const std::string& path, const std::filesystem::path& log) {
  const std::uintmax_t size_before = std::filesystem::exists(log) ? std::filesystem::file_size(log) : 0;
  const LoadedLibrary library(path);
  FeedOneEvent(library);
  WaitForWorker(log, size_before);
}

// Whoever runs this program changes the library's settings meanwhile.
void WaitForGo(const std::filesystem::path& folder) {
  while (!std::filesystem::exists(folder / "go")) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void Watch(const std::string& path, const std::filesystem::path& folder, void (*end)()) {
  zt::testing::PrepareForCrash();
  const LoadedLibrary library(path);
  std::cout << "watches" << std::endl;
  WaitForGo(folder);
  end();
}

void Do(std::string_view word, const std::string& path, const std::filesystem::path& folder) {
  const std::filesystem::path log = folder / "logs" / "trace" / "zteng.log";
  if (word == "calls") {
    Calls(path);
  } else if (word == "cycles") {
    for (int i = 0; i < kCycles; ++i) {
      FeedOneEvent(LoadedLibrary(path));
    }
    std::cout << kCycles << " cycles\n";
  } else if (word == "hasty") {
    for (int i = 0; i < kCycles; ++i) {
      const LoadedLibrary library(path);
    }
    std::cout << kCycles << " hasty cycles\n";
  } else if (word == "ticks") {
    for (int i = 0; i < kTickingCycles; ++i) {
      Tick(path, log);
    }
    std::cout << kTickingCycles << " ticking cycles\n";
  } else if (word == "exit") {
    const LoadedLibrary library(path);
    FeedOneEvent(library);
    std::cout << "exits" << std::endl;
    std::exit(kExitStatus);  // NOLINT(concurrency-mt-unsafe): there is no other thread of this program's.
  } else if (word == "crash") {
    zt::testing::PrepareForCrash();
    const LoadedLibrary library(path);
    FeedOneEvent(library);
    zt::testing::Crash();
  } else if (word == "freed") {
    zt::testing::PrepareForCrash();
    FeedOneEvent(LoadedLibrary(path));
    zt::testing::Crash();
  } else if (word == "watch-exit") {
    Watch(path, folder, [] {});
  } else if (word == "watch-crash") {
    Watch(path, folder, &zt::testing::Crash);
  } else if (word == "watch-overflow") {
    Watch(path, folder, &zt::testing::OverflowStack);
  }
}

}  // namespace

int main(int argument_count, char** arguments) {
  try {
    for (int i = 2; i < argument_count; ++i) {
      Do(arguments[i], arguments[1], std::filesystem::path(arguments[0]).parent_path());
    }
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return EXIT_FAILURE;
  }
}
