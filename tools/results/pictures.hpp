// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "drawing/contact_sheet.hpp"
#include "drawing/frame_renderer.hpp"
#include "kelvora/recording/event_writer.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "recording/output_file.hpp"
#include "recording/window_slicer.hpp"
#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

/// Where pictures are written. An empty path disables the picture.
struct PictureOptions {
    std::filesystem::path frames_dir;
    std::filesystem::path overview;
    std::filesystem::path plot3d;

    bool isWanted() const { return !frames_dir.empty() || !overview.empty() || !plot3d.empty(); }
};

/// Draws the windows of a recording with their clusters: one file per window, an overview sheet of
/// some windows, and a space-time plot of the busiest window.
class Pictures {
public:
    /// Creates the directory for frames if it is missing.
    /// \throws recording::RecordingError  if a file or directory cannot be written. The other
    ///     functions throw the same.
    Pictures(PictureOptions options_, recording::SensorSize sensor,
             recording::WriteOptions write_ = {});

    /// Whether a file of this name in the directory for frames would be overwritten.
    static bool isFrame(const std::filesystem::path& name);

    void add(const recording::Window& window, const WindowClusters& found);

    /// Writes the overview of all windows so far, and the plot of the window with the most events.
    void finish();

    /// Completes the files of both. Without windows, there are none. Frames are complete already, but
    /// only now are their names certain to be on the disk.
    void close();

private:
    /// A copy of the window with the most events so far.
    struct BusiestWindow {
        std::uint64_t start_time = 0;
        std::uint64_t end_time = 0;
        std::vector<Event2D> events;
        std::vector<int> labels;
        std::string caption;
    };

    void draw(const recording::Window& window, const WindowClusters& found, bool is_busiest);
    void writeFrame(const cv::Mat& picture);
    void extendTrails(const WindowClusters& found);
    drawing::Overlay makeOverlay(const WindowClusters& found) const;

    PictureOptions options;
    recording::WriteOptions write;
    std::optional<recording::OutputFile> overview;
    std::optional<recording::OutputFile> plot3d;
    std::optional<drawing::FrameRenderer> frames;
    std::optional<drawing::ContactSheet> sheet;
    cv::Size sensor;
    BusiestWindow busiest;
    std::optional<std::uint64_t> first_start;  ///< Captions show times relative to this.
    std::uint64_t frame_number = 0;
    std::map<int, std::vector<cv::Point2f>> trails;  ///< One per active track.
};

}  // namespace kelvora::tool
