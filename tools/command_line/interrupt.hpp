// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora::tool {

/// Exit status of a program ended by Ctrl-C, as shells report it.
constexpr int kExitInterrupted = 130;

/// From now on, the first Ctrl-C only sets a flag, so that the program can finish its current step.
/// A second one ends the program at once.
void catchInterrupts();

/// Whether Ctrl-C was pressed.
bool isInterrupted();

}  // namespace kelvora::tool
