#include "platform/debugger.h"

#include <windows.h>

namespace zt {

void WriteDebuggerText(std::string_view text) {
  // The call wants a terminated string, and the system passes on no more than a page of it at a time: the text goes in pieces
  // of that size, by way of the stack because tracing must not need the heap.
  constexpr std::size_t kPieceCapacity = 4000;
  char piece[kPieceCapacity + 1];
  while (!text.empty()) {
    const std::size_t count = text.copy(piece, kPieceCapacity);
    piece[count] = '\0';
    OutputDebugStringA(piece);
    text.remove_prefix(count);
  }
}

void WriteDebuggerTextInCrash(std::string_view text) { WriteDebuggerText(text); }

}  // namespace zt
