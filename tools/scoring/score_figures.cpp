// SPDX-License-Identifier: MIT
#include "scoring/score_figures.hpp"

namespace kelvora::scoring {
namespace {

std::optional<double> ratio(double part, double whole) {
    return whole > 0.0 ? std::optional(part / whole) : std::nullopt;
}

}  // namespace

std::optional<double> ScoreFigures::precision() const {
    return ratio(static_cast<double>(matches), static_cast<double>(clusters - ignored_clusters));
}

std::optional<double> ScoreFigures::recall() const {
    return ratio(static_cast<double>(matches), static_cast<double>(objects));
}

std::optional<double> ScoreFigures::mota() const {
    const std::uint64_t errors = misses() + falsePositives() + (has_tracks ? switches : 0);
    const auto error_rate = ratio(static_cast<double>(errors), static_cast<double>(objects));
    return error_rate ? std::optional(1.0 - *error_rate) : std::nullopt;
}

std::optional<double> ScoreFigures::motp() const {
    return ratio(iou_sum, static_cast<double>(matches));
}

std::optional<double> ScoreFigures::switchesPerTenSeconds(std::uint64_t interval_us) const {
    constexpr double kTenSecondsPerUs = 1e-7;
    if (!has_tracks) {
        return std::nullopt;
    }
    return ratio(
        static_cast<double>(switches),
        static_cast<double>(objects) * static_cast<double>(interval_us) * kTenSecondsPerUs);
}

}  // namespace kelvora::scoring
