// SPDX-License-Identifier: MIT
#include "results/pictures.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "drawing/caption.hpp"
#include "drawing/png_encoder.hpp"
#include "drawing/space_time_plot.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "sessions/cluster_rows.hpp"

namespace kelvora::tool {

namespace {

constexpr std::size_t kLongestTrail = 100;  // windows

/// The number that selects the colour of each event: its track if objects are tracked, so that
/// events and boxes match, otherwise its cluster.
std::vector<int> colourLabels(const WindowClusters& found) {
    if (found.tracks.empty()) {
        return found.labels;
    }
    std::vector<int> track_of_cluster(found.clusters.size(), kNoCluster);
    for (const ClusterTracker::Track& track : found.tracks) {
        if (track.cluster >= 0 && isFollowed(track)) {
            track_of_cluster[static_cast<std::size_t>(track.cluster)] = track.id;
        }
    }
    std::vector<int> labels = found.labels;
    for (int& label : labels) {
        label =
            label == kNoCluster ? kNoCluster : track_of_cluster[static_cast<std::size_t>(label)];
    }
    return labels;
}

std::string frameName(std::uint64_t number) {
    return fmt::format("frame_{:06}.png", number);
}

bool holdsFrames(const std::filesystem::path& directory) {
    const std::filesystem::directory_iterator files(directory);
    return std::any_of(begin(files), end(files), [](const std::filesystem::directory_entry& file) {
        return Pictures::isFrame(file.path().filename());
    });
}

/// Makes the directory for frames. If nothing may be overwritten, it must hold no frames.
void makeDirectory(const std::filesystem::path& directory, bool overwrite) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        throw recording::RecordingError(recording::ErrorKind::NoAccess, directory.string(),
                                        "cannot be created (" + error.message() + ")", {},
                                        "check the path and its permissions");
    }
    if (!overwrite && holdsFrames(directory)) {
        throw recording::RecordingError(recording::ErrorKind::NoAccess, directory.string(),
                                        "has frames already", {}, "choose another directory");
    }
}

}  // namespace

Pictures::Pictures(PictureOptions options_, recording::SensorSize sensor_,
                   recording::WriteOptions write_)
    : options(std::move(options_)),
      write(std::move(write_)),
      sensor(sensor_.width, sensor_.height) {
    if (!options.frames_dir.empty()) {
        makeDirectory(options.frames_dir, write.overwrite);
        frames.emplace(sensor);
    }
    if (!options.overview.empty()) {
        overview.emplace(options.overview, write);
        sheet.emplace(sensor);
    }
    if (!options.plot3d.empty()) {
        plot3d.emplace(options.plot3d, write);
    }
}

bool Pictures::isFrame(const std::filesystem::path& name) {
    return name.string().rfind("frame_", 0) == 0 && name.extension() == ".png";
}

void Pictures::add(const recording::Window& window, const WindowClusters& found) {
    if (!options.isWanted()) {
        return;
    }
    first_start = first_start.value_or(window.start_time);
    extendTrails(found);
    const bool is_busiest = plot3d && window.size() > busiest.events.size();
    if (frames || is_busiest || (sheet && sheet->wantsNext())) {
        draw(window, found, is_busiest);
    } else if (sheet) {
        sheet->add({nullptr, 0}, {}, {});
    }
}

void Pictures::draw(const recording::Window& window, const WindowClusters& found, bool is_busiest) {
    const std::vector<int> labels = colourLabels(found);
    const drawing::EventSpan events(window.first, window.size(),
                                    labels.empty() ? nullptr : labels.data());
    const std::string caption = drawing::windowCaption(
        window.start_time - *first_start, window.end_time - *first_start, found.clusters.size());
    const drawing::Overlay overlay = makeOverlay(found);
    if (frames) {
        writeFrame(frames->render(events, overlay, caption));
    }
    if (sheet) {
        sheet->add(events, overlay, caption);
    }
    if (is_busiest) {
        busiest = {
            window.start_time, window.end_time, {window.begin(), window.end()}, labels, caption};
    }
}

void Pictures::writeFrame(const cv::Mat& picture) {
    recording::OutputFile file(options.frames_dir / frameName(++frame_number), write);
    file.write(drawing::encodePng(picture));
    file.close(recording::NameSync::Later);
}

/// Adds the positions of tracked objects, and removes the trails of ended tracks.
void Pictures::extendTrails(const WindowClusters& found) {
    std::map<int, std::vector<cv::Point2f>> live_trails;
    for (const ClusterTracker::Track& track : found.tracks) {
        std::vector<cv::Point2f>& trail = live_trails[track.id] = std::move(trails[track.id]);
        trail.emplace_back(track.box.getCenter());
        if (trail.size() > kLongestTrail) {
            trail.erase(trail.begin());
        }
    }
    trails = std::move(live_trails);
}

/// Draws clusters of confirmed tracks as tracks.
drawing::Overlay Pictures::makeOverlay(const WindowClusters& found) const {
    drawing::Overlay overlay;
    for (const ClusterCentroid& centroid : found.centroids) {
        overlay.centroids.emplace_back(static_cast<float>(centroid.x),
                                       static_cast<float>(centroid.y));
    }
    std::vector<bool> is_marked(found.clusters.size());
    for (const ClusterTracker::Track& track : found.tracks) {
        if (isFollowed(track)) {
            overlay.tracks.push_back({track.id, track.box, trails.at(track.id)});
        }
        if (isFollowed(track) && track.cluster >= 0) {
            is_marked[static_cast<std::size_t>(track.cluster)] = true;
        }
    }
    for (std::size_t i = 0; i < found.clusters.size(); ++i) {
        if (!is_marked[i]) {
            overlay.clusters.push_back(found.clusters[i]);
        }
    }
    return overlay;
}

void Pictures::finish() {
    if (sheet) {
        const cv::Mat picture = sheet->compose();
        if (picture.empty()) {
            overview.reset();
        } else {
            overview->write(drawing::encodePng(picture));
        }
    }
    if (plot3d && busiest.events.empty()) {
        plot3d.reset();
    }
    if (!busiest.events.empty()) {
        const drawing::EventSpan events(busiest.events.data(), busiest.events.size(),
                                        busiest.labels.empty() ? nullptr : busiest.labels.data());
        plot3d->write(drawing::encodePng(drawing::plotSpaceTime(
            events, sensor, busiest.start_time, busiest.end_time, busiest.caption)));
    }
}

void Pictures::close() {
    if (frames) {
        recording::syncNames(options.frames_dir);
    }
    if (overview) {
        overview->close();
    }
    if (plot3d) {
        plot3d->close();
    }
}

}  // namespace kelvora::tool
