// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <memory>
#include <optional>

#include "command_line/centroid_method.hpp"
#include "command_line/density_method.hpp"
#include "command_line/grid_method.hpp"
#include "command_line/output_options.hpp"
#include "command_line/point_options.hpp"
#include "command_line/polarity.hpp"
#include "command_line/quantities.hpp"
#include "command_line/recording_options.hpp"
#include "command_line/track_options.hpp"

namespace kelvora::tool {

enum class Method { Grid, Density, Centroid };

/// `kelvora cluster`: finds the clusters of a recording, window by window.
class ClusterCommand {
public:
    /// Adds the command and its options to the program.
    explicit ClusterCommand(CLI::App& program);

    /// Whether the user asked for this command.
    bool isChosen() const { return command->parsed(); }

    /// \returns the exit status of the program.
    /// \throws std::runtime_error  for bad input or output, once all that could be computed is
    ///     written.
    int run() const;

private:
    void declareOptions();
    void checkOptions() const;
    void checkPointOptions() const;
    void checkCentroidOptions() const;
    void checkTrackOptions() const;
    std::unique_ptr<ClusteringMethod> makeMethod(recording::SensorSize sensor) const;

    CLI::App* command;
    RecordingOptions recording;
    Duration window{10'000};
    Duration from;
    std::optional<Duration> to;
    Polarity polarity = Polarity::All;
    Method method = Method::Grid;
    GridOptions grid;
    PointOptions point;
    DensityOptions density;
    CentroidOptions centroid;
    TrackOptions track;
    OutputOptions output;
};

}  // namespace kelvora::tool
