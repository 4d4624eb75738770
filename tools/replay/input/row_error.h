// What is wrong with a row of a capture, before anybody has said where the row stands.

#ifndef ZT_TOOLS_REPLAY_INPUT_ROW_ERROR_H
#define ZT_TOOLS_REPLAY_INPUT_ROW_ERROR_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace replay {

/// Thrown by the functions that read rows; the readers make an InputError of it.
class RowError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The start of a text from a capture, in quotes, for messages.
inline std::string Quoted(std::string_view text) { return '"' + std::string(text.substr(0, 60)) + '"'; }

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_ROW_ERROR_H
