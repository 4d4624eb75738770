// Many programs that encrypt: each opens, reads, overwrites and renames its documents.

#ifndef ZT_BENCH_OFFICE_H
#define ZT_BENCH_OFFICE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench/folder.h"

namespace zt::bench {

/// The events of `processes` processes under one parent, each with `documents` documents of its own. In portions, as all of
/// them would take a gigabyte.
class Office {
 public:
  enum class Life : std::uint8_t {
    kInTurn,    ///< One process after the other.
    kTogether,  ///< All alive at once, document by document.
  };

  Office(std::size_t processes, std::size_t documents, Life life) : processes_(processes), documents_(documents), life_(life) {}

  [[nodiscard]] std::size_t events() const { return 1 + processes_ * (2 + 4 * documents_); }

  /// The next events; none at the end. Valid until the next call.
  std::vector<LOG_ITEM>& Next();

 private:
  static constexpr std::uint64_t kParent = 4;
  static constexpr std::uint64_t kFirst = 1000;

  void PutStart(std::size_t process);
  void PutExit(std::size_t process);
  void PutDocument(std::size_t process, std::size_t document);

  std::size_t processes_;
  std::size_t documents_;
  Life life_;
  std::size_t portion_ = 0;
  std::vector<LOG_ITEM> events_;
};

inline std::vector<LOG_ITEM>& Office::Next() {
  events_.clear();
  if (portion_ == 0) {
    events_.push_back(MakeRecord(0, BehaviorProcessCreate, L"C:\\Windows\\explorer.exe", kParent));
  }
  if (life_ == Life::kInTurn) {
    if (portion_ < processes_) {
      PutStart(portion_);
      for (std::size_t document = 0; document < documents_; ++document) {
        PutDocument(portion_, document);
      }
      PutExit(portion_);
    }
  } else {
    for (std::size_t process = 0; process < processes_; ++process) {
      if (portion_ == 0) {
        PutStart(process);
      } else if (portion_ <= documents_) {
        PutDocument(process, portion_ - 1);
      } else if (portion_ == documents_ + 1) {
        PutExit(process);
      }
    }
  }
  ++portion_;
  return events_;
}

inline void Office::PutStart(std::size_t process) {
  events_.push_back(MakeRecord(kParent, BehaviorProcessCreate, L"C:\\Users\\Ann\\Downloads\\app.exe", kFirst + process));
}

inline void Office::PutExit(std::size_t process) {
  events_.push_back(MakeRecord(kFirst + process, BehaviorProcessExit, {}, 0));
}

inline void Office::PutDocument(std::size_t process, std::size_t document) {
  const std::wstring path = PathOf(process * documents_ + document);
  const std::uint64_t pid = kFirst + process;
  events_.push_back(MakeRecord(pid, BehaviorCreate, path, 4096));
  events_.push_back(MakeRecord(pid, BehaviorRead, path, 4096));
  events_.push_back(MakeRecord(pid, BehaviorWrite, path + L"|4096", 0));
  events_.push_back(MakeRecord(pid, BehaviorRename, path + L"|" + path + L".locked", 0));
}

}  // namespace zt::bench

#endif  // ZT_BENCH_OFFICE_H
