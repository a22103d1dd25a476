// SPDX-License-Identifier: MIT
#include "results/pictures.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sessions/session.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

constexpr std::uint64_t kWindow = 10'000;
constexpr recording::SensorSize kSensor{64, 48};

/// A square of 10 by 10 pixels that moves to the right; window 5 has it twice.
std::vector<Event2D> eventsOf(std::uint64_t window) {
    std::vector<Event2D> events;
    for (std::uint64_t i = 0; i < (window == 5 ? 200U : 100U); ++i) {
        events.emplace_back(static_cast<unsigned short>(window / 2 + i % 10),
                            static_cast<unsigned short>(10 + i / 10),
                            static_cast<unsigned char>(i % 2), window * kWindow + i);
    }
    return events;
}

class PicturesTest : public testing::Test {
protected:
    PicturesTest() {
        settings.track.is_wanted = true;
        settings.track.min_hits = 1;
    }

    /// Draws pictures of more windows than a contact sheet keeps.
    void draw(const PictureOptions& options) const {
        Session session(settings, kSensor);
        Pictures pictures(options, kSensor);
        for (std::uint64_t i = 0; i < 60; ++i) {
            const std::vector<Event2D> events = eventsOf(i);
            const recording::Window window{i * kWindow, (i + 1) * kWindow, events.data(),
                                           events.data() + events.size()};
            pictures.add(window, session.cluster(window));
        }
        pictures.finish();
        pictures.close();
    }

    test::TemporaryDirectory directory;
    const std::filesystem::path frames = directory.file("frames");
    const std::filesystem::path overview = directory.file("overview.png");
    const std::filesystem::path plot3d = directory.file("plot.png");
    Settings settings;
};

TEST_F(PicturesTest, DrawEachPictureTheSameWithoutTheOthers) {
    draw({frames, overview, plot3d});
    const std::string overview_of_all = test::contentOf(overview);
    const std::string plot_of_all = test::contentOf(plot3d);
    EXPECT_TRUE(std::filesystem::exists(frames / "frame_000060.png"));
    draw({{}, overview, {}});
    EXPECT_EQ(test::contentOf(overview), overview_of_all);
    draw({{}, {}, plot3d});
    EXPECT_EQ(test::contentOf(plot3d), plot_of_all);
    draw({{}, overview, plot3d});
    EXPECT_EQ(test::contentOf(overview), overview_of_all);
    EXPECT_EQ(test::contentOf(plot3d), plot_of_all);
}

}  // namespace
}  // namespace kelvora::tool
