// A folder of a test's own.

#ifndef ZT_TESTS_SUPPORT_SCRATCH_FOLDER_H
#define ZT_TESTS_SUPPORT_SCRATCH_FOLDER_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace zt::testing {

/// Makes an empty folder and removes it with all that is in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() / ("zteng-test-" + std::to_string(random()) + std::to_string(random()));
    std::filesystem::create_directory(path_);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  /// The full path of `name` in the folder.
  [[nodiscard]] std::string Path(std::string_view name) const { return (path_ / name).string(); }

  /// Writes a file and returns its full path.
  // NOLINTNEXTLINE(modernize-use-nodiscard): some tests know the path already.
  std::string Write(std::string_view name, std::string_view content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }
  [[nodiscard]] std::string Read(std::string_view name) const { return ReadFile(Path(name)); }
  [[nodiscard]] bool Has(std::string_view name) const { return std::filesystem::exists(path_ / name); }
  /// How many entries the folder has, hidden ones included.
  [[nodiscard]] std::size_t Size() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(path_), std::filesystem::directory_iterator()));
  }

  static std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

 private:
  std::filesystem::path path_;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_SUPPORT_SCRATCH_FOLDER_H
