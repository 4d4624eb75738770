#include "platform/settings_store.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/file_system.h"

namespace zt {
namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

// A file's first bytes.
class FileStart {
 public:
  explicit FileStart(const char* path) {
    // A pipe without a writer must not keep the caller waiting.
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
      return;
    }
    while (size_ < text_.size()) {
      const ssize_t count = read(descriptor, text_.data() + size_, text_.size() - size_);
      if (count > 0) {
        size_ += static_cast<std::size_t>(count);
      } else if (count == 0 || errno != EINTR) {
        break;
      }
    }
    close(descriptor);
  }

  [[nodiscard]] std::string_view view() const { return {text_.data(), size_}; }

 private:
  std::array<char, 0x4000> text_;
  std::size_t size_ = 0;
};

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::optional<std::uint32_t> ToNumber(std::string_view text) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [after, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || after != end) {
    return std::nullopt;
  }
  return number;
}

void ReadLine(std::string_view line, std::span<NumberSetting> settings) {
  line = line.substr(0, line.find('#'));
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) {
    return;
  }
  const std::string_view name = Trim(line.substr(0, equals));
  for (NumberSetting& setting : settings) {
    if (name == setting.name) {
      setting.value = ToNumber(Trim(line.substr(equals + 1)));
    }
  }
}

void ReadFile(const char* path, std::span<NumberSetting> settings) {
  const FileStart file(path);
  std::string_view rest = file.view();
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    ReadLine(rest.substr(0, end), settings);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
}

// "SOFTWARE\jqmlog\zteng" is "/etc/jqmlog/zteng.conf".
void ReadSystemFile(const char* key, std::span<NumberSetting> settings) {
  constexpr std::string_view kFolder = "/etc/jqmlog/";
  constexpr std::string_view kExtension = ".conf";
  std::string_view name = key;
  name.remove_prefix(name.rfind('\\') + 1);  // Nothing where there is none: npos + 1 is 0.
  std::array<char, kMaxPathSize> path = {};
  if (kFolder.size() + name.size() + kExtension.size() >= path.size()) {
    return;
  }
  char* end = path.data();
  for (const std::string_view part : {kFolder, name, kExtension}) {
    end += part.copy(end, part.size());
  }
  ReadFile(path.data(), settings);
}

}  // namespace

void ReadNumberSettings(const char* key, std::span<NumberSetting> settings) {
  for (NumberSetting& setting : settings) {
    setting.value.reset();
  }
  // Nothing where the program has other rights than the user who starts it: that user shall not make files with them.
  const char* const named = secure_getenv("JQMLOG_SETTINGS");
  if (named != nullptr && *named != '\0') {
    ReadFile(named, settings);
  } else {
    ReadSystemFile(key, settings);
  }
}

}  // namespace zt
