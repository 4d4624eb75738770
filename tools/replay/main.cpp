// ztreplay: feeds a capture of process and file events into the engine and reports what it found. See docs/ztreplay.md.

#include "platform/terminal.h"
#include "tools/replay/replay_command.h"

int main(int argc, char** argv) {
  zt::PrepareStandardStreams();
  return replay::ReplayCommand(argc, argv);
}
