// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kelvora/events.hpp"
#include "support/grid_settings.hpp"

namespace kelvora::test {

/// Settings of a grid generator, and the calls to make.
struct GridCase {
    struct Batch {
        std::vector<Event2D> before_reset;
        bool reset;
        std::vector<Event2D> events;
    };

    GridSettings settings;
    std::vector<Batch> batches;
};

/// The case of a seed: small sensors, often not divisible into whole cells, thresholds of 0 and
/// more, all filters and count modes, one to four batches with a `reset` in some.
GridCase randomGridCase(std::uint64_t seed);

enum class Feeding { kOneByOne, kInBatches };

/// Runs a case through a generator built with `settings` (the same as in the case, or different
/// ones to check that this is detected) and through the literal model.
/// \returns the first difference in clusters or pixel counts, if there is one.
std::optional<std::string> compareWithModel(const GridCase& grid_case, const GridSettings& settings,
                                            Feeding feeding = Feeding::kOneByOne);

}  // namespace kelvora::test
