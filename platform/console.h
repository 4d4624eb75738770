// Text on standard output, in color where somebody looks at it.

#ifndef ZT_PLATFORM_CONSOLE_H
#define ZT_PLATFORM_CONSOLE_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace zt {

/// Colors of console text. The values are the text attributes that Windows consoles know them by.
enum class ConsoleColor : std::uint16_t { kBrightGreen = 10, kBrightRed = 12, kBrightYellow = 14 };

/// What standard output's color was, to be given back to RestoreConsoleColor. Empty when there is nothing to restore.
using SavedConsoleColor = std::optional<std::uint16_t>;

/// Writes the text to standard output, byte for byte, and does not leave any of it in a buffer. Failures are ignored.
void WriteConsoleText(std::string_view text);

/// As WriteConsoleText, in a crash: takes no lock that the crashed thread may hold, and what cannot be written without waiting
/// is lost. Windows, where no write is sure not to wait, writes nothing.
void WriteConsoleTextInCrash(std::string_view text);

/// Sets the color of the text that follows and returns the one before. Nothing happens when standard output is not a console.
SavedConsoleColor SetConsoleColor(ConsoleColor color);

/// Sets the color that SetConsoleColor returned.
void RestoreConsoleColor(SavedConsoleColor saved);

}  // namespace zt

#endif  // ZT_PLATFORM_CONSOLE_H
