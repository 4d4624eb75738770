// The file state machine: a list of rows that is searched from the front, and a function a row.

#ifndef ZT_TESTS_MODEL_MODEL_MACHINE_H
#define ZT_TESTS_MODEL_MODEL_MACHINE_H

#include <cstdint>
#include <string>
#include <vector>

#include "tests/model/model_records.h"
#include "tests/model/model_trace.h"
#include "zteng/zteng.h"

namespace zt::model {

/// What a callback sees.
struct Transition {
  FileItem* item = nullptr;
  std::uint32_t prev_state = 0;
  const LOG_ITEM* log = nullptr;
  std::wstring file_path;
  std::uint64_t read_info = 0;
  bool similar_found = false;
  bool section_renamed = false;
  std::wstring* prev_folder = nullptr;
  std::wstring source_path;
  std::wstring dest_path;
};

/// Moves the item on and returns the penalty.
using Callback = std::uint64_t (*)(Transition& transition, ModelTrace& trace);

class Machine {
 public:
  /// Adds the fifteen rows, tracing each.
  void Fill(ModelTrace& trace);
  /// The callback of (state, input), or null.
  Callback NextState(std::uint32_t state, std::uint32_t input, ModelTrace& trace) const;

 private:
  struct Row {
    std::uint32_t state;
    std::uint32_t input;
    Callback callback;
  };
  void Add(std::uint32_t state, std::uint32_t input, Callback callback, ModelTrace& trace);

  std::vector<Row> rows_;
};

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_MODEL_MACHINE_H
