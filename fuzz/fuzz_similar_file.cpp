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
  std::wstring name_diff;
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

/// Searches with both; ends the program where they differ.
void Search(Folder& folder, const std::wstring& target) {
  constexpr std::wstring_view kNothing = L"(nothing)";
  const auto found = zt::SearchSimilarFile(folder.process, folder.process.files, target);
  const auto expected = zt::model::SearchSimilarFile(folder.name_diff, folder.files, target, folder.trace);
  const bool engine_found = found != folder.process.files.end();
  const bool model_found = expected != folder.files.end();
  if (engine_found == model_found && (!engine_found || found->first == expected->first) &&
      folder.process.NameDiff == folder.name_diff) {
    return;
  }
  for (const auto& [key, file] : folder.files) {
    Print("key", key);
  }
  Print("target", target);
  Print("engine found", engine_found ? std::wstring_view(found->first) : kNothing);
  Print("model found", model_found ? std::wstring_view(expected->first) : kNothing);
  Print("engine learned", folder.process.NameDiff);
  Print("model learned", folder.name_diff);
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
