// SPDX-License-Identifier: MIT
#include "simulation/pixel_array.hpp"

#include <algorithm>

namespace kelvora::simulation {

namespace {

// Thresholds far from the mean would make a pixel silent or hot.
constexpr double kLowestRelativeThreshold = 0.5;
constexpr double kHighestRelativeThreshold = 1.5;

/// The interval between two pictures, and the output for its events.
class Exposure {
public:
    Exposure(std::uint64_t begin_us_, std::uint64_t end_us_, std::vector<Event2D>& events_)
        : begin_us(begin_us_), duration_us(end_us_ - begin_us_), events(events_) {}

    void emit(int x, int y, bool on, double elapsed_share) const {
        const double elapsed = elapsed_share * static_cast<double>(duration_us);
        // A crossing at the very end must not fall into the next step, whose events are sorted
        // separately.
        const auto whole = std::min(static_cast<std::uint64_t>(elapsed), duration_us - 1);
        events.emplace_back(static_cast<unsigned short>(x), static_cast<unsigned short>(y),
                            static_cast<unsigned char>(on ? 1 : 0), begin_us + whole);
    }

private:
    std::uint64_t begin_us;
    std::uint64_t duration_us;
    std::vector<Event2D>& events;
};

}  // namespace

PixelArray::PixelArray(const Canvas& canvas, int width_, int height_, double threshold,
                       double threshold_spread, RandomNumbers random)
    : width(static_cast<std::size_t>(width_)) {
    pixels.reserve(width * static_cast<std::size_t>(height_));
    for (int y = 0; y < height_; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const double relative = std::clamp(1 + threshold_spread * random.bell(),
                                               kLowestRelativeThreshold, kHighestRelativeThreshold);
            const double own_threshold = threshold * relative;
            const float seen = canvas.row(y)[x];
            // The last event of a pixel at rest was some time ago, at a brightness less than a
            // threshold away.
            const double past = own_threshold * random.uniform(-0.5, 0.5);
            pixels.push_back(
                {seen, static_cast<float>(seen + past), static_cast<float>(own_threshold)});
        }
    }
}

void PixelArray::expose(const Canvas& canvas, const Region& region, std::uint64_t begin_us,
                        std::uint64_t end_us, std::vector<Event2D>& events) {
    const Exposure exposure(begin_us, end_us, events);
    const auto emitCrossings = [&](Pixel& pixel, float seen, int x, int y) {
        const float change = seen - pixel.last_seen;
        while (seen - pixel.reference >= pixel.threshold) {
            pixel.reference += pixel.threshold;
            exposure.emit(x, y, true, (pixel.reference - pixel.last_seen) / change);
        }
        while (pixel.reference - seen >= pixel.threshold) {
            pixel.reference -= pixel.threshold;
            exposure.emit(x, y, false, (pixel.reference - pixel.last_seen) / change);
        }
    };
    for (int y = region.y_begin; y < region.y_end; ++y) {
        const float* const picture = canvas.row(y);
        Pixel* const row = pixels.data() + static_cast<std::size_t>(y) * width;
        for (int x = region.x_begin; x < region.x_end; ++x) {
            if (picture[x] != row[x].last_seen) {
                emitCrossings(row[x], picture[x], x, y);
                row[x].last_seen = picture[x];
            }
        }
    }
}

}  // namespace kelvora::simulation
