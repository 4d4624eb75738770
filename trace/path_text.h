// A path in memory of its own, so that paths can be built while the process starts, ends or has crashed.

#ifndef ZT_TRACE_PATH_TEXT_H
#define ZT_TRACE_PATH_TEXT_H

#include <cstddef>
#include <string_view>

#include "platform/file_system.h"

namespace zt {

/// A zero-terminated path of less than kMaxPathSize bytes.
class PathText {
 public:
  constexpr PathText() = default;
  /// A path longer than there is room for is empty.
  explicit PathText(std::string_view text) { Append(text); }

  void Clear() {
    size_ = 0;
    text_[0] = '\0';
  }
  /// Appends all the parts; returns false, with the path emptied, when they do not fit.
  template <typename... Parts>
  bool Append(const Parts&... parts) {
    if ((... && AppendOne(parts))) {
      return true;
    }
    Clear();
    return false;
  }

  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] const char* c_str() const { return text_; }
  [[nodiscard]] std::string_view view() const { return {text_, size_}; }
  friend bool operator==(const PathText& left, const PathText& right) { return left.view() == right.view(); }

 private:
  bool AppendOne(std::string_view part) {
    if (part.size() >= kMaxPathSize - size_) {
      return false;
    }
    size_ += part.copy(text_ + size_, part.size());
    text_[size_] = '\0';
    return true;
  }

  char text_[kMaxPathSize] = {};
  std::size_t size_ = 0;
};

/// A path cut after its last separator: "C:\Apps\host.exe" is "C:\Apps\" and "host.exe". Without a separator the folder is
/// empty.
struct SplitPath {
  std::string_view folder;  ///< With its closing separator.
  std::string_view name;
};

/// The parts of `path`, which has to outlive them.
inline SplitPath Split(std::string_view path) {
  const std::size_t name = path.rfind(kPathSeparator) + 1;  // 0 where there is no separator: npos + 1.
  return {path.substr(0, name), path.substr(name)};
}

/// Whether this is a folder that names can be appended to.
inline bool IsFolderPath(std::string_view folder) { return folder.ends_with(kPathSeparator); }

/// Whether this is the name of a file in a folder: not empty, and without a separator.
inline bool IsFileName(std::string_view name) { return !name.empty() && name.find(kPathSeparator) == std::string_view::npos; }

}  // namespace zt

#endif  // ZT_TRACE_PATH_TEXT_H
