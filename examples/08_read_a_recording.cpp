// SPDX-License-Identifier: MIT
// Writes a recording, reads it back, and counts the clusters in it.
#include <filesystem>
#include <iostream>
#include <kelvora/grid_based_cluster_generator.hpp>
#include <kelvora/recording/recording.hpp>
#include <vector>

namespace recording = kelvora::recording;

// A square of 20 x 20 pixels, all of whose pixels become brighter within 400 us.
void writeSquare(const std::filesystem::path& path) {
    std::vector<kelvora::Event2D> events;
    for (unsigned i = 0; i < 400; ++i) {
        events.emplace_back(static_cast<unsigned short>(100 + i % 20),
                            static_cast<unsigned short>(60 + i / 20), 1, 1'000 + i);
    }
    // The name selects the format; recording::writableFormats() lists all formats.
    const auto writer =
        recording::createRecording(path, recording::formatFromExtension(path), {320, 240});
    writer->write(events);
    writer->close();
}

int main() {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "square.raw";
    try {
        writeSquare(path);

        const auto reader = recording::openRecording(path);
        const recording::SensorSize size = reader->sensorSize().value();
        std::cout << reader->format() << ", " << size.width << " x " << size.height << " pixels\n";

        const kelvora::GridBasedClusterGeneratorOptions options;
        kelvora::GridBasedClusterGenerator generator(size.width, size.height, options);
        std::vector<kelvora::Event2D> events;
        while (reader->read(events)) {
            generator.processEvents(events.data(), events.size());
        }
        std::vector<kelvora::ClusterGeometry> clusters;
        generator.generateClusters(2'000, clusters);
        std::cout << clusters.size() << " cluster\n";
        std::filesystem::remove(path);
        return clusters.size() == 1 ? 0 : 1;
    } catch (const recording::RecordingError& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
