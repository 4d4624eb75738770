// Plays random calls to the model, and what comes back from a call to either engine.

#ifndef ZT_TESTS_MODEL_PLAY_CALL_H
#define ZT_TESTS_MODEL_PLAY_CALL_H

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/model/model_engine.h"
#include "tests/model/random_events.h"
#include "zteng/zteng.h"

namespace zt::model {

/// All that a call gives back. The outputs are not empty before the call: an engine keeps what it does not overwrite.
struct Outcome {
  std::int64_t result = 0;
  std::vector<std::uint64_t> pids;
  std::map<std::uint64_t, std::wstring> images = {{4, L"overwritten or kept"}, {123456, L"kept"}};
  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files = {{L"c:\\kept", {}}};
  std::vector<std::wstring> paths = {L"stays at the end"};

  friend bool operator==(const Outcome& left, const Outcome& right);
  friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome);
};

/// Makes the call to the model.
Outcome Play(ModelEngine& model, const Call& call);

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_PLAY_CALL_H
