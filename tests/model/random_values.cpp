// The values that random calls are made of.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/model/random_events.h"

namespace zt::model {
namespace {

std::size_t NameStart(const std::wstring& path) {
  const std::size_t pos = path.rfind(L'\\');
  return pos == std::wstring::npos ? 0 : pos + 1;
}

}  // namespace

std::uint64_t RandomEvents::NewPid() {
  // Few, so that ids are used again; some with zero low 32 bits, some that look negative, some beyond 32 bits.
  static const std::vector<std::uint64_t> kPids = {0,
                                                   4,
                                                   8,
                                                   12,
                                                   16,
                                                   20,
                                                   24,
                                                   28,
                                                   32,
                                                   36,
                                                   40,
                                                   0x80000001,
                                                   0xFFFFFFFF,
                                                   0x100000000,
                                                   0x100000004,
                                                   0x200000000,
                                                   0xFFFFFFFFFFFFFFFF};
  const std::uint64_t pid = OneOf(kPids);
  pids_.insert(pid);
  return pid;
}

std::uint64_t RandomEvents::KnownPid() { return known_.empty() ? NewPid() : OneOf(known_); }

std::uint64_t RandomEvents::ActingPid() {
  if (Percent(2)) {
    // Never seen, or seen long ago.
    const std::uint64_t pid = 1000 + Below(300);
    pids_.insert(pid);
    return pid;
  }
  // The newest few act most, so that their files and scores get far.
  if (Percent(70) && known_.size() > 4) {
    return known_[known_.size() - 1 - Below(4)];
  }
  return KnownPid();
}

std::wstring RandomEvents::Folder() {
  static const std::vector<std::wstring> kFolders = {
      L"C:\\d\\",     L"C:\\d\\",    L"C:\\d\\", L"C:\\d\\e\\", L"C:\\D\\e\\f\\",
      L"C:\\out\\",   L"C:\\out2\\", L"C:\\",    L"D:\\d\\",    L"\\\\s\\share\\",
      L"C:\\a.doc\\", L"C:/d/",      L"",        L"x\\",        L"\\??\\C:\\d\\"};
  return OneOf(kFolders);
}

std::wstring RandomEvents::Name() {
  static const std::vector<std::wstring> kStems = {
      L"a", L"b",      L"ab", L"ba",        L"a",      L"report", L"report_v2",    L"x_a", L"doc", L"A",  L"a_b",
      L"x", L"data 1", L"",   L"\xC9t\xE9", L"\xD83D", L"\xDE00", L"\xD83D\xDE00", L"a.b", L"a.",  L"..", L"\x212A"};
  static const std::vector<std::wstring> kExtensions = {L".doc", L".doc", L".doc", L".txt",   L".enc", L".DOC",
                                                        L"",     L".",    L".a.b", L"..b",    L". x",  L".doc ",
                                                        L".d",   L"doc",  L".zip", L".\xD800"};
  return OneOf(kStems) + OneOf(kExtensions);
}

std::wstring RandomEvents::Path() {
  if (life_ == Life::kLong && Percent(80)) {
    return NewDocument();
  }
  if (Percent(2)) {
    return LongPath(Percent(50) ? 524 : 500 + Below(24));
  }
  if (Percent(2)) {
    // Odd ones: each is part of many others.
    static const std::vector<std::wstring> kOdd = {L"a",     L"\\",  L".", L"x", L"x\\x",    L"a\\a",  L"C:",
                                                   L"C:\\d", L"d\\", L"|", L" ", L"C:\\d\\", L"\xD800"};
    return OneOf(kOdd);
  }
  return MixCase(Folder() + Name());
}

std::wstring RandomEvents::NewDocument() {
  static const std::vector<std::wstring> kWords = {L"Annual", L"Budget",  L"Contract", L"Draft",   L"Estimate",
                                                   L"Final",  L"Invoice", L"Meeting",  L"Project", L"Report"};
  static const std::vector<std::wstring> kExtensions = {L".docx", L".xlsx", L".pdf", L".jpg"};
  const std::wstring name = OneOf(kWords) + L" " + OneOf(kWords) + L" " + std::to_wstring(++documents_);
  return L"C:\\Users\\Ann\\" + std::to_wstring(2020 + Below(4)) + L"\\" + name + OneOf(kExtensions);
}

std::wstring RandomEvents::LongPath(std::size_t length) {
  std::wstring path = Folder();
  while (path.size() < length) {
    path += L"long name "[Below(10)];
  }
  return path;
}

std::wstring RandomEvents::OpenedPath(std::uint64_t pid) {
  const std::vector<std::wstring>& paths = opened_[pid];
  if (paths.empty() || Percent(5)) {
    return Path();
  }
  // Mostly one of the newest.
  const std::size_t reach = Percent(80) ? std::min<std::size_t>(paths.size(), 6) : paths.size();
  return paths[paths.size() - 1 - Below(reach)];
}

Disguise RandomEvents::RandomDisguise() {
  static const std::vector<std::wstring> kTexts = {L".enc", L".locked", L"_v2",     L"x_", L".doc",
                                                   L"1",    L"..e",     L".\xD800", L". x"};
  return {static_cast<Disguise::Kind>(Below(6)), OneOf(kTexts)};
}

std::wstring RandomEvents::Disguised(const std::wstring& path, const Disguise& disguise) {
  const std::size_t start = NameStart(path);
  const std::wstring folder = path.substr(0, start);
  const std::wstring name = path.substr(start);
  const std::size_t dot = std::min(name.rfind(L'.'), name.size());
  const std::wstring stem = name.substr(0, dot);
  const std::wstring extension = name.substr(dot);
  switch (disguise.kind) {
    case Disguise::Kind::kAppend:
      return path + disguise.text;
    case Disguise::Kind::kPrefix:
      return folder + disguise.text + name;
    case Disguise::Kind::kNewExtension:
      return folder + stem + (disguise.text.find(L'.') == std::wstring::npos ? L"." : L"") + disguise.text;
    case Disguise::Kind::kGrowStem:
      return folder + stem + disguise.text + extension;
    case Disguise::Kind::kDotToUnderscore:
      return folder + stem + L"_" + extension.substr(std::min<std::size_t>(extension.size(), 1)) + disguise.text;
    case Disguise::Kind::kInsert:
      return folder + name.substr(0, name.size() / 2) + disguise.text + name.substr(name.size() / 2);
  }
  return path;
}

std::wstring RandomEvents::MixCase(std::wstring path) {
  const bool mix = Percent(20);
  for (wchar_t& unit : path) {
    if (mix && unit >= L'a' && unit <= L'z' && Percent(30)) {
      unit = static_cast<wchar_t>(unit - L'a' + L'A');
    }
  }
  return path;
}

std::wstring RandomEvents::LengthText() {
  static const std::vector<std::wstring> kTexts = {L"100",
                                                   L"100",
                                                   L"100",
                                                   L"4096",
                                                   L"512",
                                                   L"1",
                                                   L" +12x",
                                                   L"-5",
                                                   L"-1",
                                                   L"",
                                                   L"abc",
                                                   L"99999999999",
                                                   L"-99999999999999999999999999",
                                                   L"2147483647",
                                                   L"2147483648",
                                                   L"-2147483648",
                                                   L"-2147483649",
                                                   L"4294967295",
                                                   L"12|7",
                                                   L"\t\v8",
                                                   L"+ 3",
                                                   L"--4",
                                                   L"007",
                                                   L"0x10",
                                                   L"\x0661"};
  return OneOf(kTexts);
}

std::uint64_t RandomEvents::Position() {
  static const std::vector<std::uint64_t> kPositions = {0,
                                                        1,
                                                        100,
                                                        100,
                                                        200,
                                                        5,
                                                        0x7FFFFFFF,
                                                        0x80000000,
                                                        0x80000001,
                                                        0xFFFFFFFF,
                                                        0xFFFFFFFE,
                                                        0x100000000,
                                                        0x100000064,
                                                        0x7FFFFFFFFFFFFFFF,
                                                        0x8000000000000000,
                                                        0xFFFFFFFFFFFFFFFF};
  return OneOf(kPositions);
}

std::uint32_t RandomEvents::AnyBehavior() {
  static const std::vector<std::uint32_t> kBehaviors = {
      0x4001, 0x4002, 0x4003, 0x4004, 0x4005, 0x4006, 0x4007, 0x4008, 0x400B, 0x4009, 0x400A,  0x400C,     0x4000,
      0x7FFF, 0x8000, 0x8001, 0xC000, 0xC001, 0xC002, 0xC003, 0xC004, 0,      1,      0x14001, 0xFFFFFFFF, 0x80004004};
  // The ordinary ones, the first nine, come more often.
  return Percent(60) ? kBehaviors[Below(9)] : OneOf(kBehaviors);
}

std::wstring RandomEvents::ModulePath() {
  static const std::vector<std::wstring> kNames = {L"bcrypt.dll", L"cryptbase.dll", L"bcryptprimitives.dll", L"cryptsp.dll",
                                                   L"BCrypt.dll", L"CRYPTSP.DLL",   L"kernel32.dll",         L"bcrypt.dll\\",
                                                   L"bcrypt.dl",  L"xbcrypt.dll",   L"bcrypt.dll:",          L"bcrypt.dll "};
  static const std::vector<std::wstring> kFolders = {
      L"C:\\Windows\\System32\\", L"C:/Windows/", L"C:", L"", L"\\", L"C:\\\\", L"\\\\?\\"};
  return OneOf(kFolders) + OneOf(kNames);
}

}  // namespace zt::model
