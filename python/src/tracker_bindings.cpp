// SPDX-License-Identifier: MIT
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

#include "bindings.hpp"
#include "cluster_rows.hpp"
#include "kelvora/cluster_tracker.hpp"
#include "ownership.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

constexpr const char* kDoc =
    R"(Tracker(*, max_distance=20.0, max_size_change=15.0, max_missed=10, min_hits=3)

Track objects from window to window, and give each a number.

Tracking is deterministic: the same clusters give the same tracks.

Parameters
----------
max_distance : float
    Largest distance between a cluster and the predicted position of its track, pixels.
max_size_change : float
    Largest difference in width, and in height, between a cluster and its track, pixels.
max_missed : int
    Number of windows that a track survives without a cluster.
min_hits : int
    Number of windows with a cluster after which a track is confirmed.

Examples
--------
>>> import numpy as np
>>> import kelvora
>>> fields = [('timestamp', 'i8'), ('x', 'f4'), ('y', 'f4'), ('width', 'f4'), ('height', 'f4')]
>>> tracker = kelvora.Tracker(min_hits=2)
>>> for i in range(3):
...     tracker.update(np.array([(i * 10_000, 100 + 2 * i, 50, 20, 20)], fields)).tolist()
[1]
[1]
[1]
>>> tracker.tracks()[['id', 'x', 'confirmed', 'hits']].tolist()
[(1, 104.0, True, 3)]
)";

constexpr const char* kUpdateDoc =
    R"(update(clusters)

Track the clusters of the next window.

Parameters
----------
clusters : numpy.ndarray
    Clusters as returned by `generate`, all with the timestamp of the window, which must not be
    lower than before. Needs the fields ``timestamp``, ``x``, ``y``, ``width`` and ``height``.
    May be empty.

Returns
-------
numpy.ndarray
    The track number of each cluster, ``int64``; 0 for none.

Raises
------
TypeError, ValueError
    If fields are missing, or for a timestamp lower than before. The tracker is unchanged then.
)";

constexpr const char* kTracksDoc =
    R"(tracks()

The tracks after the last `update`, by ascending number.

Returns
-------
numpy.ndarray
    A row for each track: ``id``, starting at 1 and never reused; ``timestamp``, ``x``, ``y``,
    ``width`` and ``height`` of its cluster or, without one, of its predicted box; ``vx`` and
    ``vy``, pixels per second; ``cluster``, the row in the last update, -1 for none; ``hits`` and
    ``missed``, the number of updates with a cluster and, since the last of them, without one;
    ``confirmed``; and ``hidden``, whether the predicted box lies within a cluster that is not
    assigned to the track.
)";

constexpr const char* kResetDoc =
    R"(reset()

End all tracks. Numbers are not reused, and time must not go back.
)";

/// One track, as `tracks` returns it.
struct TrackRow {
    std::int64_t id;
    std::int64_t timestamp;
    float x;
    float y;
    float width;
    float height;
    float vx;
    float vy;
    std::int64_t cluster;
    std::int64_t hits;
    std::int64_t missed;
    bool confirmed;
    bool hidden;
};

/// Assigns field by field, because assigning a whole row may also copy its padding.
void fillRow(const ClusterTracker::Track& track, TrackRow& row) {
    row.id = track.id;
    row.timestamp = static_cast<std::int64_t>(track.box.timestamp);
    row.x = track.box.x;
    row.y = track.box.y;
    row.width = track.box.width;
    row.height = track.box.height;
    row.vx = track.vx;
    row.vy = track.vy;
    row.cluster = track.cluster;
    row.hits = track.hits;
    row.missed = track.missed;
    row.confirmed = track.state == ClusterTracker::State::Confirmed;
    row.hidden = track.is_hidden;
}

/// A thread-safe tracker. As with `Clusterer`, callers must not hold the GIL.
class Tracker {
public:
    Tracker(float max_distance, float max_size_change, int max_missed, int min_hits)
        : tracker(max_distance, max_size_change, max_missed, min_hits) {}

    std::vector<int> update(const std::vector<ClusterGeometry>& clusters) {
        const std::lock_guard<std::mutex> lock(mutex);
        return tracker.update(clusters);
    }

    std::vector<ClusterTracker::Track> tracks() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return tracker.getTracks();
    }

    void reset() {
        const std::lock_guard<std::mutex> lock(mutex);
        tracker.reset();
    }

private:
    mutable std::mutex mutex;
    ClusterTracker tracker;
};

py::array_t<std::int64_t> update(Tracker& self, const py::object& rows) {
    const std::vector<ClusterGeometry> clusters = toClusters(rows);
    std::vector<int> ids;
    {
        const py::gil_scoped_release release;
        ids = self.update(clusters);
    }
    py::array_t<std::int64_t> array(static_cast<py::ssize_t>(ids.size()));
    std::copy(ids.begin(), ids.end(), array.mutable_data());
    return array;
}

py::array tracks(const Tracker& self) {
    std::vector<ClusterTracker::Track> found;
    {
        const py::gil_scoped_release release;
        found = self.tracks();
    }
    py::array_t<TrackRow> array(static_cast<py::ssize_t>(found.size()));
    // Rows end with padding, which must be initialised.
    std::memset(static_cast<void*>(array.mutable_data()), 0,
                static_cast<std::size_t>(array.nbytes()));
    TrackRow* row = array.mutable_data();
    for (const ClusterTracker::Track& track : found) {
        fillRow(track, *row++);
    }
    return array;
}

std::unique_ptr<Tracker> makeTracker(float max_distance, float max_size_change, int max_missed,
                                     int min_hits) {
    return std::make_unique<Tracker>(max_distance, max_size_change, max_missed, min_hits);
}

}  // namespace

void bindTracker(py::module_& module) {
    PYBIND11_NUMPY_DTYPE(TrackRow, id, timestamp, x, y, width, height, vx, vy, cluster, hits,
                         missed, confirmed, hidden);
    py::class_<Tracker> type(module, "Tracker", kDoc);
    defineConstructor(type, &makeTracker, py::kw_only(),
                      py::arg("max_distance") = ClusterTracker::kDefaultMaxDistance,
                      py::arg("max_size_change") = ClusterTracker::kDefaultMaxSizeChange,
                      py::arg("max_missed") = ClusterTracker::kDefaultMaxMissed,
                      py::arg("min_hits") = ClusterTracker::kDefaultMinHits);
    type.def("update", &update, py::arg("clusters"), kUpdateDoc);
    type.def("tracks", &tracks, kTracksDoc);
    type.def("reset", &Tracker::reset, py::call_guard<py::gil_scoped_release>(), kResetDoc);
}

}  // namespace kelvora::python
