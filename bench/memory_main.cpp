// What a tracked file and a process cost: every allocation is counted as the bytes that the engine asked for and as the bytes
// that the heap gave. Prints a line "name bytes" for each figure.

#include <malloc.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include "bench/folder.h"

namespace {

constexpr std::size_t kCount = 10000;
constexpr std::size_t kChunkHeader = sizeof(std::size_t);  // Of each chunk of the heap, beside what it can hold.

std::size_t asked_for = 0;
std::size_t given = 0;

/// The sizes asked for are kept in front of the blocks, so that they can be subtracted again.
void* Allocate(std::size_t size) {
  constexpr std::size_t kFront = alignof(std::max_align_t);
  auto* const block = static_cast<std::size_t*>(std::malloc(size + kFront));
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  *block = size;
  asked_for += size;
  // As the heap would have given without the front: chunks grow by 16 bytes, so the front is a chunk step.
  given += malloc_usable_size(block) + kChunkHeader - kFront;
  return reinterpret_cast<char*>(block) + kFront;
}

void Free(void* memory) {
  if (memory == nullptr) {
    return;
  }
  constexpr std::size_t kFront = alignof(std::max_align_t);
  auto* const block = reinterpret_cast<std::size_t*>(static_cast<char*>(memory) - kFront);
  asked_for -= *block;
  given -= malloc_usable_size(block) + kChunkHeader - kFront;
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { Free(memory); }

// An aligned block lies in a larger one, whose address stands in front of it.
void* operator new(std::size_t size, std::align_val_t alignment) {
  std::size_t space = size + static_cast<std::size_t>(alignment);
  void* const block = Allocate(sizeof(void*) + space);
  void* aligned = static_cast<void**>(block) + 1;
  std::align(static_cast<std::size_t>(alignment), size, aligned, space);
  static_cast<void**>(aligned)[-1] = block;
  return aligned;
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
  if (memory != nullptr) {
    Free(static_cast<void**>(memory)[-1]);
  }
}
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t alignment) noexcept {
  operator delete(memory, alignment);
}

namespace zt::bench {
namespace {

/// 60 units: "C:\Users\Ann\Documents\Projects\2026\Budget1000042-Plan.docx".
std::wstring LongPathOf(std::size_t number) {
  return L"C:\\Users\\Ann\\Documents\\Projects\\2026\\Budget" + std::to_wstring(1000000 + number) + L"-Plan.docx";
}

/// Prints what one of kCount things costs that were made since `asked_before` and `given_before`.
void PrintCost(const char* thing, std::size_t asked_before, std::size_t given_before) {
  std::printf("%s_asked %.1f\n", thing, static_cast<double>(asked_for - asked_before) / kCount);
  std::printf("%s_given %.1f\n", thing, static_cast<double>(given - given_before) / kCount);
}

void MeasureFiles() {
  RealEngine engine;
  LOG_ITEM create = MakeRecord(0, BehaviorProcessCreate, L"C:\\Windows\\app.exe", kPid);
  engine.InsertLog(&create);
  const std::size_t asked_before = asked_for;
  const std::size_t given_before = given;
  for (std::size_t file = 0; file < kCount; ++file) {
    LOG_ITEM open = MakeRecord(kPid, BehaviorCreate, LongPathOf(file), 4096);
    engine.InsertLog(&open);
  }
  PrintCost("file", asked_before, given_before);
}

void MeasureProcesses() {
  RealEngine engine;
  LOG_ITEM root = MakeRecord(0, BehaviorProcessCreate, L"C:\\Windows\\app.exe", kPid);
  engine.InsertLog(&root);
  const std::size_t asked_before = asked_for;
  const std::size_t given_before = given;
  for (std::size_t child = 0; child < kCount; ++child) {
    LOG_ITEM create = MakeRecord(kPid, BehaviorProcessCreate, L"C:\\Windows\\System32\\svchost.exe", 2000 + child);
    engine.InsertLog(&create);
  }
  PrintCost("process", asked_before, given_before);
}

}  // namespace
}  // namespace zt::bench

int main() {
  zt::bench::MeasureFiles();
  zt::bench::MeasureProcesses();
}
