// What is mapped where in this process, asked from a signal handler: without heap, as the system lists it at that moment.

#ifndef ZT_PLATFORM_POSIX_MAPPINGS_H
#define ZT_PLATFORM_POSIX_MAPPINGS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zt {

/// The file that lists the mappings. The thread's own: the list of the process is empty once its first thread has ended.
inline constexpr const char* kMappingsFile = "/proc/thread-self/maps";

/// One mapping.
struct Mapping {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;  ///< The first address behind it.
  bool executable = false;
  std::uint64_t file = 0;  ///< The file's inode; 0 when there is none.
  std::string_view path;   ///< As the system writes it; also e.g. "[stack]", or empty.
};

/// Reads a line of kMappingsFile, without its end. False when it is none.
bool ParseMapping(std::string_view line, Mapping& mapping);

/// Reads kMappingsFile one mapping at a time, by increasing address.
class MappingReader {
 public:
  MappingReader();
  MappingReader(const MappingReader&) = delete;  // Owns the open file.
  MappingReader& operator=(const MappingReader&) = delete;
  ~MappingReader();

  /// The next mapping; false when there are no more. Its path is valid until the next call, and cut off at 4 KiB.
  bool Next(Mapping& mapping);

 private:
  bool NextLine(std::string_view& line);
  bool Fill();

  int file_;
  std::array<char, 4608> buffer_;  // A line with the longest path that the system permits.
  std::size_t begin_ = 0;          // Of what is not delivered yet.
  std::size_t end_ = 0;            // Of what is read.
};

/// The mapping that holds `address`, without its path; false when there is none.
bool FindMapping(std::uintptr_t address, Mapping& mapping);

/// A place in a program, library or other mapped file.
struct ModulePlace {
  std::string_view module;    ///< The name without folders; empty when the address is in no module.
  std::uintptr_t offset = 0;  ///< From where the module's first mapping begins.
};

/// The mapped files, and what else is executable, by address. When there is no room for all, the last ones are missing. Large:
/// belongs into static storage.
class ModuleTable {
 public:
  /// Reads the mappings anew.
  void Read();

  /// What is at `address`; valid until the next Read.
  [[nodiscard]] ModulePlace Find(std::uintptr_t address) const;

 private:
  struct Entry {
    std::uintptr_t begin;
    std::uintptr_t end;
    std::uintptr_t module_begin;
    std::uint64_t file;
    std::string_view name;  // In names_.
  };

  bool Add(const Mapping& mapping);

  std::array<Entry, 1024> entries_ = {};
  std::size_t entry_count_ = 0;
  std::array<char, 16384> names_ = {};
  std::size_t names_used_ = 0;
};

}  // namespace zt

#endif  // ZT_PLATFORM_POSIX_MAPPINGS_H
