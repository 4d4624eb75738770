#include "tools/replay/input/procmon_detail.h"

#include <algorithm>
#include <array>
#include <limits>

#include "tools/replay/input/ascii.h"

namespace replay {
namespace {

using Keys = std::string_view;

constexpr std::array kCreateFile = {Keys("Desired Access"), Keys("Disposition"),    Keys("Options"),       Keys("Attributes"),
                                    Keys("ShareMode"),      Keys("AllocationSize"), Keys("Impersonating"), Keys("OpenResult")};
constexpr std::array kTransfer = {Keys("Offset"), Keys("Length"), Keys("I/O Flags"), Keys("Priority")};
constexpr std::array kRename = {Keys("ReplaceIfExists"), Keys("Flags")};
constexpr std::array kDisposition = {Keys("Delete"), Keys("Flags")};
constexpr std::array kSize = {Keys("EndOfFile"), Keys("AllocationSize"), Keys("ValidDataLength")};
constexpr std::array kSection = {Keys("SyncType"), Keys("PageProtection")};
constexpr std::array kQuery = {
    Keys("CreationTime"),  Keys("LastAccessTime"), Keys("LastWriteTime"),       Keys("ChangeTime"), Keys("FileAttributes"),
    Keys("Attributes"),    Keys("ReparseTag"),     Keys("AllocationSize"),      Keys("EndOfFile"),  Keys("NumberOfLinks"),
    Keys("DeletePending"), Keys("Directory"),      Keys("IndexNumber"),         Keys("EaSize"),     Keys("Access"),
    Keys("Position"),      Keys("Mode"),           Keys("AlignmentRequirement")};
constexpr std::array kProcessCreate = {Keys("PID")};
constexpr std::array kProcessStart = {Keys("Parent PID")};

// The key that stands at the start of `text`, followed by a colon; empty where none does.
std::string_view KeyAt(std::string_view text, const DetailKeys& keys) {
  const auto stands = [text](std::string_view key) {
    return !key.empty() && text.size() > key.size() && text.starts_with(key) && text[key.size()] == ':';
  };
  const auto found = std::find_if(keys.keys.begin(), keys.keys.end(), stands);
  if (found != keys.keys.end()) {
    return *found;
  }
  return stands(keys.free_text) ? keys.free_text : std::string_view();
}

// Where the next ", Key:" starts; the text's size where none follows.
std::size_t NextKey(std::string_view text, const DetailKeys& keys) {
  constexpr std::string_view kComma = ", ";
  std::size_t comma = text.find(kComma);
  while (comma != std::string_view::npos && KeyAt(text.substr(comma + kComma.size()), keys).empty()) {
    comma = text.find(kComma, comma + 1);
  }
  return std::min(comma, text.size());
}

constexpr std::size_t kGroup = 3;  // Digits of a group; but for the last some locales have two.

std::size_t DigitsAt(std::string_view text) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
}

// What stands between groups of digits: one character of those that locales use, or all up to the next ASCII character.
std::string_view SeparatorAt(std::string_view text) {
  constexpr std::string_view kSeparators = ",.' ";
  if (!text.empty() && kSeparators.find(text.front()) != std::string_view::npos) {
    return text.substr(0, 1);
  }
  const auto* const end = std::find_if(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

// The number with further digits behind it, or nothing where 64 bits do not hold it.
std::optional<std::uint64_t> Appended(std::uint64_t number, std::string_view digits) {
  for (const char c : digits) {
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (number > (std::numeric_limits<std::uint64_t>::max() - digit) / 10) {
      return std::nullopt;
    }
    number = number * 10 + digit;
  }
  return number;
}

}  // namespace

const DetailKeys kCreateFileKeys = {kCreateFile};
const DetailKeys kTransferKeys = {kTransfer};
const DetailKeys kRenameKeys = {kRename, "FileName"};
const DetailKeys kDispositionKeys = {kDisposition};
const DetailKeys kSizeKeys = {kSize};
const DetailKeys kSectionKeys = {kSection};
const DetailKeys kQueryKeys = {kQuery};
const DetailKeys kProcessCreateKeys = {kProcessCreate, "Command line"};
const DetailKeys kProcessStartKeys = {kProcessStart, "Command line"};

std::optional<std::string_view> DetailValue(std::string_view detail, std::string_view key, const DetailKeys& keys) {
  while (!detail.empty()) {
    const std::string_view here = KeyAt(detail, keys);
    if (!here.empty()) {
      detail.remove_prefix(here.size() + 1);
      if (detail.starts_with(' ')) {
        detail.remove_prefix(1);
      }
    }
    const bool free_text = !here.empty() && here == keys.free_text;
    const std::size_t end = free_text ? detail.size() : NextKey(detail, keys);
    if (here == key) {
      return detail.substr(0, end);
    }
    detail.remove_prefix(std::min(end + 2, detail.size()));
  }
  return std::nullopt;
}

bool HasItem(std::string_view list, std::string_view item) {
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(", "), list.size());
    if (list.substr(0, end) == item) {
      return true;
    }
    list.remove_prefix(std::min(end + 2, list.size()));
  }
  return false;
}

std::optional<std::uint64_t> GroupedNumber(std::string_view text) {
  const bool negative = text.starts_with('-');
  text.remove_prefix(negative ? 1 : 0);
  const std::size_t first = DigitsAt(text);
  std::optional<std::uint64_t> number = Appended(0, text.substr(0, first));
  text.remove_prefix(first);
  const std::string_view separator = SeparatorAt(text);
  if (first == 0 || (!text.empty() && first > kGroup)) {
    return std::nullopt;
  }
  while (number && !text.empty()) {
    if (separator.empty() || !text.starts_with(separator)) {
      return std::nullopt;
    }
    text.remove_prefix(separator.size());
    const std::size_t digits = DigitsAt(text);
    const bool last = digits == text.size();
    if (digits > kGroup || digits < (last ? kGroup : kGroup - 1)) {
      return std::nullopt;
    }
    number = Appended(*number, text.substr(0, digits));
    text.remove_prefix(digits);
  }
  return number && negative ? 0 - *number : number;
}

}  // namespace replay
