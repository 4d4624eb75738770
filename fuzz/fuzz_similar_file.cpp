// The engine's similar-file search against the model's, on folders made from the input.
//
// Layout of an input. Byte 0: the number of keys, modulo 64. Then texts, each up to a line feed or the end: first the keys, as
// many as there are, then the targets, which are searched in turn with one learned difference. Byte b of a text stands for
// entry b modulo 16 of kPieces; a line feed is therefore no piece, but 0x1A, 0x2A, ... are the same one.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include "engine/similar_file.h"
#include "tests/model/model_similar.h"

namespace {

/// What names are made of: few letters, so that they share stems; units around the dot and the backslash in their order; the
/// ends of the range of units; and a whole folder, so that many names stand in one.
constexpr std::wstring_view kPieces[16] = {
    L"a",   L"b",      L"c",  L".",       L"\\", L"-", L" ", std::wstring_view(L"\0", 1),
    L"\x1", L"\xffff", L"ab", L"c:\\d\\", L".x", L"]", L"/", L":",
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
      text += kPieces[*next_ % 16];
    }
    return text;
  }

 private:
  const std::uint8_t* next_;
  const std::uint8_t* end_;
};

/// One folder, for the engine and for the model.
struct Folder {
  ZT_PID_ITEM process;
  zt::model::FileMap files;
  std::wstring map_name_diff;  ///< What the search by the map alone has learned; process.NameDiff is that of the index.
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

/// Searches by the index, by the map alone and by the model; ends the program where they differ.
void Search(Folder& folder, const std::wstring& target) {
  ZT_PID_ITEM& process = folder.process;
  const Outcome indexed = OutcomeOf(zt::SearchSimilarFile(process.NameDiff, process.files, &process.FileIndex, target),
                                    process.files, process.NameDiff);
  const Outcome alone = OutcomeOf(zt::SearchSimilarFile(folder.map_name_diff, process.files, nullptr, target), process.files,
                                  folder.map_name_diff);
  const Outcome model = OutcomeOf(zt::model::SearchSimilarFile(folder.model_name_diff, folder.files, target, folder.trace),
                                  folder.files, folder.model_name_diff);
  if (indexed == model && alone == model) {
    return;
  }
  for (const auto& [key, file] : folder.files) {
    Print("key", key);
  }
  Print("target", target);
  for (const auto& [name, outcome] : {std::pair("index", indexed), std::pair("map alone", alone), std::pair("model", model)}) {
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
    folder.process.files.try_emplace(key);
    folder.files.try_emplace(key);
  }
  while (!texts.IsAtEnd()) {
    Search(folder, texts.Next());
  }
  return 0;
}
