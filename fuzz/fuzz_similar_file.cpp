// The engine's similar-file search against the model's, on folders made from the input.
//
// Layout of an input. Byte 0: the number of keys, modulo 64; from 128 on, groups of eight files count as small. Then texts,
// each up to a line feed or the end: first the keys, as many as there are, then the targets, which are searched in turn with
// one learned difference. Byte b of a text stands for entry b modulo 16 of kPieces; a line feed is therefore no piece, but
// 0x1A, 0x2A, ... are the same one.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "engine/context.h"
#include "engine/similar_file.h"
#include "engine/text.h"
#include "tests/model/model_similar.h"

namespace {

/// What names are made of: few letters, so that they share stems; units around the dot and the backslash in their order; the
/// ends of the range of units; and a whole folder, so that many names stand in one.
constexpr std::wstring_view kPieces[16] = {
    L"a", L"b", L"c", L".", L"\\", L"-", L" ", L"x", L"\x1", L"\xffff", L"ab", L"c:\\d\\", L".x", L"]", L"/", L":",
};

/// Takes the texts off the input, one after the other.
class Texts {
 public:
  Texts(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

  [[nodiscard]] bool IsAtEnd() const { return next_ == end_; }

  std::wstring Next() {
    std::wstring text;
    for (; next_ != end_; ++next_) {
      if (*next_ == '\n') {
        ++next_;
        break;
      }
      if (text.size() < kLongest) {
        text += kPieces[*next_ % 16];
      }
    }
    return text;
  }

 private:
  static constexpr std::size_t kLongest = 515;  ///< And the longest piece: as long as a record's target.

  const std::uint8_t* next_;
  const std::uint8_t* end_;
};

/// One folder, for each way to search.
struct Folder {
  zt::FileTable table;
  std::u16string table_name_diff;
  std::shared_ptr<_ZtEngineCore> engine = std::make_shared<_ZtEngineCore>(1);
  ZT_PID_ITEM process;
  zt::model::FileMap files;
  std::wstring model_name_diff;
  zt::model::ModelTrace trace{0};
};

/// Prints units beyond ASCII as numbers.
void Print(const char* what, std::wstring_view text) {
  std::fprintf(stderr, "%s: \"", what);
  for (const wchar_t unit : text) {
    if (unit >= L' ' && unit < 0x7F) {
      std::fputc(static_cast<int>(unit), stderr);
    } else {
      std::fprintf(stderr, "<%x>", static_cast<unsigned>(unit));
    }
  }
  std::fputs("\"\n", stderr);
}

/// What a search shows: the key found, or that there is none, and the difference known afterwards.
struct Outcome {
  std::wstring found = L"(nothing)";
  std::wstring learned;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

template <typename Files>
Outcome OutcomeOf(typename Files::iterator found, const Files& files, const std::wstring& name_diff) {
  return found == files.end() ? Outcome{.learned = name_diff} : Outcome{found->first, name_diff};
}

/// Asks the table.
Outcome SearchTable(Folder& folder, const std::wstring& target) {
  const std::u16string units = zt::ToUnits(target);
  zt::PathName path(units, units);
  const zt::TrackedFile* const found = zt::SearchSimilarFile(folder.table_name_diff, folder.table, path);
  const std::wstring learned = zt::Widen(folder.table_name_diff);
  return found == nullptr ? Outcome{.learned = learned} : Outcome{zt::Widen(found->key.Lower()), learned};
}

/// Searches by the table, by the export and by the model; ends the program where they differ.
void Search(Folder& folder, const std::wstring& target) {
  ZT_PID_ITEM& process = folder.process;
  const Outcome table = SearchTable(folder, target);
  const Outcome exported =
      OutcomeOf(ZtSearchSimilarFile(folder.engine, process, process.files, target), process.files, process.NameDiff);
  const Outcome model = OutcomeOf(zt::model::SearchSimilarFile(folder.model_name_diff, folder.files, target, folder.trace),
                                  folder.files, folder.model_name_diff);
  if (table == model && exported == model) {
    return;
  }
  for (const auto& [key, file] : folder.files) {
    Print("key", key);
  }
  Print("target", target);
  for (const auto& [name, outcome] : {std::pair("table", table), std::pair("export", exported), std::pair("model", model)}) {
    std::fprintf(stderr, "%s:\n", name);
    Print("  found", outcome.found);
    Print("  learned", outcome.learned);
  }
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  Texts texts(data + 1, size - 1);
  Folder folder;
  for (int keys = data[0] % 64; keys > 0 && !texts.IsAtEnd(); --keys) {
    const std::wstring key = texts.Next();
    const std::u16string units = zt::ToUnits(key);
    zt::PathName path(units, units);
    folder.table.FindOrAdd(path);
    folder.process.files.try_emplace(key);
    folder.files.try_emplace(key);
  }
  while (!texts.IsAtEnd()) {
    Search(folder, texts.Next());
  }
  return 0;
}
