#include "platform/critical_section.h"

#include <windows.h>

#include <new>

namespace zt {
namespace {

// Init made the section in the storage, so the storage holds one wherever this is called.
CRITICAL_SECTION* SectionIn(std::byte* storage) { return std::launder(reinterpret_cast<CRITICAL_SECTION*>(storage)); }

}  // namespace

CriticalSection::~CriticalSection() { Delete(); }

void CriticalSection::Init() {
  static_assert(sizeof(CRITICAL_SECTION) <= sizeof(storage_));
  InitializeCriticalSection(new (storage_) CRITICAL_SECTION);
  initialised_ = true;
}

void CriticalSection::Delete() {
  if (initialised_) {
    initialised_ = false;
    DeleteCriticalSection(SectionIn(storage_));
  }
}

void CriticalSection::Enter() { EnterCriticalSection(SectionIn(storage_)); }

bool CriticalSection::TryEnter() { return TryEnterCriticalSection(SectionIn(storage_)) != FALSE; }

// The system has no such call.
bool CriticalSection::TryEnterFor(std::uint32_t milliseconds) {
  constexpr std::uint32_t kStepMs = 10;
  for (std::uint32_t waited = 0; !TryEnter(); waited += kStepMs) {
    if (waited >= milliseconds) {
      return false;
    }
    Sleep(kStepMs);
  }
  return true;
}

void CriticalSection::Leave() { LeaveCriticalSection(SectionIn(storage_)); }

}  // namespace zt
