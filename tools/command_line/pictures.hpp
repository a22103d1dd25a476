// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "drawing/contact_sheet.hpp"
#include "drawing/frame_renderer.hpp"
#include "kelvora/cluster_geometry.hpp"
#include "recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

/// Where pictures go; an empty path means that they are not wanted.
struct PictureOptions {
    std::filesystem::path frames_dir;
    std::filesystem::path overview;
};

/// Draws the windows of a recording with their clusters: each into a file of its own, and some on
/// one sheet.
class Pictures {
public:
    /// Makes the directory of frames if it is missing.
    /// \throws std::runtime_error  if a file or directory cannot be written; likewise the other
    ///     operations.
    Pictures(const PictureOptions& options_, recording::SensorSize sensor);

    void add(const recording::Window& window, const std::vector<ClusterGeometry>& clusters);

    /// Writes the overview of all windows so far.
    void finish() const;

private:
    PictureOptions options;
    std::optional<drawing::FrameRenderer> frames;
    std::optional<drawing::ContactSheet> overview;
    std::optional<std::uint64_t> first_start;  ///< Captions count the time from here.
    std::uint64_t frame_number = 0;
};

}  // namespace kelvora::tool
