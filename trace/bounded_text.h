// Text in a buffer of fixed size.

#ifndef ZT_TRACE_BOUNDED_TEXT_H
#define ZT_TRACE_BOUNDED_TEXT_H

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace zt {

/// Appends text to a buffer that the caller owns. What no longer fits is dropped, character by character.
class BoundedText {
 public:
  /// `capacity` is the number of characters that `buffer` has room for; none is reserved for a terminating NUL.
  BoundedText(char* buffer, std::size_t capacity) : buffer_(buffer), capacity_(capacity) {}

  void Append(char character) {
    if (size_ < capacity_) {
      buffer_[size_++] = character;
    }
  }
  void Append(std::string_view text) { size_ += text.copy(buffer_ + size_, capacity_ - size_); }
  void Fill(std::size_t count, char character) {
    count = std::min(count, capacity_ - size_);
    std::fill_n(buffer_ + size_, count, character);
    size_ += count;
  }
  /// Overwrites the last character, if there is one.
  void ReplaceLast(char character) {
    if (size_ > 0) {
      buffer_[size_ - 1] = character;
    }
  }

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool is_full() const { return size_ == capacity_; }
  [[nodiscard]] std::string_view view() const { return {buffer_, size_}; }

 private:
  char* buffer_;
  std::size_t capacity_;
  std::size_t size_ = 0;
};

}  // namespace zt

#endif  // ZT_TRACE_BOUNDED_TEXT_H
