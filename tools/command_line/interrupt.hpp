// SPDX-License-Identifier: MIT
#pragma once

#include <exception>

namespace kelvora::tool {

/// From now on, the first Ctrl-C, SIGTERM or SIGHUP only sets a flag, so that the program can end in
/// good order. A second one, of any kind, ends the program at once. A SIGHUP or SIGTERM that was ignored (nohup)
/// remains ignored.
///
/// A pipe that nobody reads and a file beyond the limit of the shell become errors of the output.
void catchSignals();

/// Whether one of the signals has arrived.
bool isInterrupted();

/// Whether it was SIGTERM or SIGHUP, after which outputs remain incomplete.
bool isTerminated();

/// 0, or the status that shells report for the signal: 130 for Ctrl-C.
int exitStatus();

/// Ends the current step because of a signal. `what` names it: "interrupted by Ctrl-C".
class Interrupted : public std::exception {
public:
    const char* what() const noexcept override;
};

/// Throws `Interrupted` if a signal has arrived.
void throwIfInterrupted();

/// Throws `Interrupted` if SIGTERM or SIGHUP has arrived.
void throwIfTerminated();

/// Ends the program by SIGPIPE, as systems end programs whose output nobody reads. Returns if the
/// program was started with this signal ignored.
void endByBrokenPipe();

}  // namespace kelvora::tool
