// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace kelvora {

/// The number of events of the last report. Labels them by the clusters of their points.
class ReportedEvents {
public:
    /// Replaces the events. None of them is clustered yet.
    void replace(std::size_t count) {
        events = count;
        clustered = 0;
    }

    /// Sets how many of the newest events the clusters refer to. With 0, every label is -1.
    void setClustered(std::size_t count) { clustered = count; }

    /// Replaces `labels` by the cluster of each event, or -1.
    ///
    /// \param clusters  Indices into the newest events.
    void label(const std::vector<std::vector<std::size_t>>& clusters,
               std::vector<int>& labels) const {
        labels.assign(events, -1);
        if (clustered == 0) {
            return;
        }
        const std::size_t older = events - clustered;
        for (std::size_t cluster = 0; cluster < clusters.size(); ++cluster) {
            for (const std::size_t point : clusters[cluster]) {
                labels[older + point] = static_cast<int>(cluster);
            }
        }
    }

private:
    std::size_t events = 0;
    std::size_t clustered = 0;
};

}  // namespace kelvora
