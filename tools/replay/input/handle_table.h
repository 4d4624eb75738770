// The files behind the handles of each process, with their positions.

#ifndef ZT_TOOLS_REPLAY_INPUT_HANDLE_TABLE_H
#define ZT_TOOLS_REPLAY_INPUT_HANDLE_TABLE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace replay {

class HandleTable {
 public:
  struct File {
    std::string name;
    std::uint64_t position = 0;  ///< Where the next read or write starts, in bytes.
  };

  /// `handle` stands for a newly opened file from now on.
  File& Open(std::uint64_t pid, std::uint64_t handle, std::string_view name);

  /// `target` becomes a second handle to the file of `source`: they share the position. Nothing happens when `source` stands
  /// for no file.
  void Duplicate(std::uint64_t pid, std::uint64_t source, std::uint64_t target);

  void Close(std::uint64_t pid, std::uint64_t handle);
  void CloseAll(std::uint64_t pid);

  /// The file behind a handle, or null.
  [[nodiscard]] File* Find(std::uint64_t pid, std::uint64_t handle);

 private:
  using Handles = std::unordered_map<std::uint64_t, std::shared_ptr<File>>;
  std::unordered_map<std::uint64_t, Handles> processes_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_HANDLE_TABLE_H
