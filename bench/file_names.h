// File names as people give them.

#ifndef ZT_BENCH_FILE_NAMES_H
#define ZT_BENCH_FILE_NAMES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zt::bench {

/// Words with twenty initials.
inline constexpr std::array<std::wstring_view, 60> kWords = {
    L"Annual",  L"Agenda",    L"Account", L"Budget",   L"Board",    L"Brief",    L"Contract", L"Client",   L"Calendar",
    L"Design",  L"Draft",     L"Data",    L"Employee", L"Estimate", L"Event",    L"Final",    L"Forecast", L"Form",
    L"General", L"Guide",     L"Growth",  L"Holiday",  L"House",    L"Hours",    L"Invoice",  L"Index",    L"Insurance",
    L"Journal", L"Job",       L"Key",     L"Kitchen",  L"Letter",   L"List",     L"Logo",     L"Meeting",  L"Minutes",
    L"Memo",    L"Notes",     L"News",    L"Network",  L"Offer",    L"Order",    L"Outline",  L"Plan",     L"Project",
    L"Photo",   L"Quarterly", L"Quote",   L"Report",   L"Review",   L"Receipt",  L"Summary",  L"Sales",    L"Schedule",
    L"Tax",     L"Travel",    L"Update",  L"Vacation", L"Vendor",   L"Workshop",
};
inline constexpr std::array<std::wstring_view, 4> kExtensions = {L".docx", L".xlsx", L".pdf", L".jpg"};

/// The name of the file of a number, such as "Budget Meeting 17.docx": two words, the number and an extension. Equal numbers,
/// equal names; the words are spread evenly.
inline std::wstring NameOf(std::size_t number) {
  std::uint64_t mixed = (number + 1) * 0x9E3779B97F4A7C15;  // Fibonacci hashing.
  mixed ^= mixed >> 29;
  std::wstring name(kWords[mixed % kWords.size()]);
  name += L' ';
  name += kWords[mixed / kWords.size() % kWords.size()];
  name += L' ';
  name += std::to_wstring(number);
  name += kExtensions[mixed / (kWords.size() * kWords.size()) % kExtensions.size()];
  return name;
}

/// The same in a folder of documents.
inline std::wstring PathOf(std::size_t number) { return L"C:\\Users\\Ann\\Documents\\" + NameOf(number); }

}  // namespace zt::bench

#endif  // ZT_BENCH_FILE_NAMES_H
