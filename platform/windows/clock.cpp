#include "platform/clock.h"

#include <windows.h>

namespace zt {
namespace {

using FileTimeSource = void(WINAPI*)(FILETIME*);

std::uint64_t ToUnits(const FILETIME& time) {
  return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

FILETIME FromUnits(std::uint64_t units) {
  FILETIME time = {};
  time.dwLowDateTime = static_cast<DWORD>(units);
  time.dwHighDateTime = static_cast<DWORD>(units >> 32);
  return time;
}

// The precise source is looked up at run time because systems before Windows 8 do not have it.
FileTimeSource FindFileTimeSource() {
  const HMODULE kernel = GetModuleHandleA("kernel32");
  if (kernel != nullptr) {
    if (const FARPROC precise = GetProcAddress(kernel, "GetSystemTimePreciseAsFileTime"); precise != nullptr) {
      // By way of void*, since compilers warn of a cast between function types that do not match.
      return reinterpret_cast<FileTimeSource>(reinterpret_cast<void*>(precise));
    }
  }
  return &GetSystemTimeAsFileTime;
}

}  // namespace

std::int64_t PerformanceCounter() {
  LARGE_INTEGER now = {};
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

std::int64_t PerformanceFrequency() {
  LARGE_INTEGER frequency = {};
  QueryPerformanceFrequency(&frequency);
  return frequency.QuadPart;
}

std::int64_t SteadyNanoseconds() {
  constexpr std::int64_t kNanosecondsPerSecond = 1000000000;
  const std::int64_t frequency = PerformanceFrequency();
  const std::int64_t ticks = PerformanceCounter();
  // Whole seconds and the rest apart: the product of all ticks and 1e9 would overflow within hours.
  return ticks / frequency * kNanosecondsPerSecond + ticks % frequency * kNanosecondsPerSecond / frequency;
}

std::uint32_t SystemUptimeMilliseconds() { return GetTickCount(); }

std::uint64_t FileTimeNow() {
  static const FileTimeSource kSource = FindFileTimeSource();
  FILETIME now = {};
  kSource(&now);
  return ToUnits(now);
}

LocalTime ToLocalTime(std::int64_t unix_seconds) {
  const FILETIME time = FromUnits(kUnixEpochAsFileTime + static_cast<std::uint64_t>(unix_seconds) * kFileTimePerSecond);
  SYSTEMTIME utc = {};
  SYSTEMTIME local = {};
  if (!FileTimeToSystemTime(&time, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) {
    return {};
  }
  return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

}  // namespace zt
