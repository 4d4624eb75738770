// The model's own records: nothing but lists, maps and numbers.

#ifndef ZT_TESTS_MODEL_MODEL_RECORDS_H
#define ZT_TESTS_MODEL_MODEL_RECORDS_H

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zt::model {

/// Process id and start time.
using Key = std::pair<std::uint64_t, std::int64_t>;

/// One file of one process.
struct FileItem {
  bool written = false;
  bool similar = false;
  bool renamed = false;
  bool similar_mark = false;
  bool created = false;
  bool read_started = false;
  bool penalized = false;
  std::uint32_t state = 0;
  std::int64_t first_time = 0;
  std::uint64_t context = 0;
  std::uint64_t read_info = 0;
  std::wstring path;
  std::uint32_t create_info = 0;
};

/// Full lower-case path to file.
using FileMap = std::map<std::wstring, FileItem>;

/// One process.
struct ProcessItem {
  std::uint32_t exiting = 0;
  std::int32_t score = 0;
  std::uint32_t last_length = 0xFFFFFFFF;
  std::uint32_t last_offset = 0xFFFFFFFF;
  std::uint32_t last_diff = 0xFFFFFFFF;
  std::uint64_t pid = 0;
  std::int64_t score_time = 0;
  std::wstring name_diff;
  FileMap files;
  std::vector<std::wstring> quarantine_list;
  std::vector<std::wstring> created_files_list;
  std::wstring prev_folder;
  std::wstring image_path;
};

/// One node of the process tree.
struct TreeEntry {
  Key own_key;
  Key parent_key;
  std::vector<Key> children;
  std::uint32_t live_count = 0;
  std::int32_t exited = 0;
  ProcessItem item;
};

using Tree = std::map<Key, TreeEntry>;

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_MODEL_RECORDS_H
