// The program ztreplay.

#ifndef ZT_TOOLS_REPLAY_REPLAY_COMMAND_H
#define ZT_TOOLS_REPLAY_REPLAY_COMMAND_H

namespace replay {

/// Runs the program with its command line, on the standard streams, and returns its exit status. Lets no exception out.
/// REQUIRES: zt::PrepareStandardStreams was called.
int ReplayCommand(int argc, const char* const* argv);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_REPLAY_COMMAND_H
