// ztreplay: feeds a capture of process and file events into the engine and reports what it found. See docs/ztreplay.md.

#include "platform/terminal.h"
#include "tools/replay/replay_command.h"
#include "trace/library.h"

int main(int argc, char** argv) {
  zt::PrepareStandardStreams();
  // As the library file does for its hosts: the trace settings hold for the engine in here, too.
  zt::TraceStart();
  const int status = replay::ReplayCommand(argc, argv);
  zt::TraceStop();
  return status;
}
