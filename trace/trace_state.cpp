#include "trace/trace_state.h"

namespace zt {
namespace {

// Apart from the state, so that its zeros take no room in the library file.
constinit char line_buffer[kLineBufferCapacity] = {};

// A union does not destroy its member.
union Immortal {
  constexpr Immortal() : state(line_buffer) {}
  ~Immortal() {}  // NOLINT(modernize-use-equals-default): a defaulted one would be deleted.
  Immortal(const Immortal&) = delete;
  Immortal& operator=(const Immortal&) = delete;

  TraceState state;
};

constinit Immortal immortal;

}  // namespace

TraceState& SharedTraceState() { return immortal.state; }

}  // namespace zt
