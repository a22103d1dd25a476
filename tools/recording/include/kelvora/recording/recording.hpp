// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Includes all of the library that reads and writes recordings.

#include "kelvora/recording/event_reader.hpp"
#include "kelvora/recording/event_writer.hpp"
#include "kelvora/recording/formats.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "kelvora/recording/text_layout.hpp"
