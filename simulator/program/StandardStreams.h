// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PROGRAM_STANDARD_STREAMS_H
#define MURLINK_SIMULATOR_PROGRAM_STANDARD_STREAMS_H

namespace simulator {

// Opens /dev/null in place of every standard stream that was closed when the program started: an input
// at its end, an output that nobody reads. Otherwise the next file or socket would take its place.
// Call it first; it may start the program anew, with the same arguments.
void openClosedStandardStreams(char** argv);

}  // namespace simulator

#endif
