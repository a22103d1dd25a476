// SPDX-License-Identifier: MIT
#include "simulation/random_scene.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "simulation/random_numbers.hpp"

namespace kelvora::simulation {

namespace {

constexpr std::uint64_t kSceneStream = 1;
constexpr int kSideWithAllObjects = 120;
constexpr int kPlacesTried = 24;

struct Range {
    double low;
    double high;
};

struct Ranges {
    Range diameter;  ///< Pixels.
    Range speed;     ///< Pixels per second.
};

// On small sensors, objects stay large enough to be recognisable, and fast enough to make events in
// every window.
Ranges rangesFor(const SceneOptions& options) {
    const double scale = std::min(options.width / 640.0, options.height / 480.0);
    const double slowest = 90 * std::max(scale, 1.0);
    return {{std::max(32 * scale, 6.0), std::max(80 * scale, 10.0)},
            {slowest, std::max(600 * scale, 2.5 * slowest)}};
}

int countFor(const SceneOptions& options, const std::optional<int>& asked, int usual) {
    const int side = std::min(options.width, options.height);
    const int fitting = (usual * side + kSideWithAllObjects - 1) / kSideWithAllObjects;
    return asked.value_or(std::min(usual, fitting));
}

// The corners of regular polygons, as constants because sine and cosine may differ between
// machines.
const std::array<std::vector<Point>, 4> kRegularCorners = {{
    {{1, 0}, {-0.5, 0.8660254037844386}, {-0.5, -0.8660254037844386}},
    {{1, 0}, {0, 1}, {-1, 0}, {0, -1}},
    {{1, 0},
     {0.30901699437494745, 0.9510565162951535},
     {-0.8090169943749475, 0.5877852522924731},
     {-0.8090169943749475, -0.5877852522924731},
     {0.30901699437494745, -0.9510565162951535}},
    {{1, 0},
     {0.5, 0.8660254037844386},
     {-0.5, 0.8660254037844386},
     {-1, 0},
     {-0.5, -0.8660254037844386},
     {0.5, -0.8660254037844386}},
}};

/// Draws the objects of a scene one after the other.
class SceneMaker {
public:
    SceneMaker(const SceneOptions& options_, int moving_objects)
        : options(options_),
          ranges(rangesFor(options_)),
          random(options_.seed, kSceneStream),
          sizes(drawShares(moving_objects)),
          speeds(drawShares(moving_objects)) {}

    void addLight();
    void addDisc();
    void addBar(bool turns);
    void addPolygon(bool turns);

    std::vector<SceneObject> take() { return std::move(objects); }

private:
    std::vector<double> drawShares(int count);
    double takeDiameter();
    void add(SceneObject object);
    void addMoving(ObjectKind kind, Shape shape, const Point& heading, const Point& direction,
                   bool turns);
    Point drawDirection();
    Point drawNearAxis();
    double drawTurnRate();
    Point drawPlace(double radius);
    double distanceToOthers(const Point& place) const;
    double drawContrast(double speed);

    const SceneOptions& options;
    Ranges ranges;
    RandomNumbers random;
    // The size of each remaining object relative to its range, from 0 to 1. The last is used first.
    std::vector<double> sizes;
    std::vector<double> speeds;  // The same for speeds.
    std::vector<SceneObject> objects;
};

// Divides [0, 1) into equal parts and draws one value from each, in random order.
std::vector<double> SceneMaker::drawShares(int count) {
    std::vector<double> shares;
    shares.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        shares.push_back((i + random.uniform()) / count);
    }
    for (std::size_t i = shares.size(); i > 1; --i) {
        std::swap(shares[i - 1], shares[random.below(i)]);
    }
    return shares;
}

double SceneMaker::takeDiameter() {
    const double share = sizes.back();
    sizes.pop_back();
    return ranges.diameter.low + (ranges.diameter.high - ranges.diameter.low) * share;
}

void SceneMaker::addLight() {
    const double radius = ranges.diameter.low / 3;
    const auto period_us =
        static_cast<std::uint64_t>(std::llround(1e6 / options.light_frequency_hz));
    add({ObjectKind::kLight,
         Shape::disc(radius),
         0.7,
         {drawPlace(2 * radius), {1, 0}},
         {0, 0},
         0,
         period_us});
}

// Compilers may evaluate arguments and operands in any order, so each number is drawn in a separate
// statement.
void SceneMaker::addDisc() {
    const double radius = takeDiameter() / 2;
    const Point heading = drawDirection();
    addMoving(ObjectKind::kDisc, Shape::disc(radius), heading, {1, 0}, false);
}

void SceneMaker::addBar(bool turns) {
    const double length =
        std::max(takeDiameter(), (ranges.diameter.low + ranges.diameter.high) / 2);
    const double thickness = std::max(length * random.uniform(0.12, 0.2), 2.0);
    // A path near an axis of the sensor still crosses the bar after a reflection at a border. The
    // bar leans by about 25 to 35 degrees, so that its ends move across pixels, too.
    const Point heading = drawNearAxis();
    const double lean = random.uniform(0.22, 0.32);
    const Point across =
        turned({-heading.y, heading.x}, angleFromHalfTangent(random.coin() ? lean : -lean));
    addMoving(ObjectKind::kBar, Shape::bar(length, thickness), heading, across, turns);
}

void SceneMaker::addPolygon(bool turns) {
    const double radius = takeDiameter() / 2;
    std::vector<Point> corners = kRegularCorners[random.below(kRegularCorners.size())];
    // Shifting corners along a circle keeps the polygon convex, and small shifts keep the centre
    // inside.
    for (Point& corner : corners) {
        corner = turned(corner, angleFromHalfTangent(random.uniform(-0.12, 0.12)));
        corner = {corner.x * radius, corner.y * radius};
    }
    const Point heading = drawDirection();
    const Point direction = drawDirection();
    addMoving(ObjectKind::kPolygon, Shape::polygon(std::move(corners)), heading, direction, turns);
}

void SceneMaker::add(SceneObject object) {
    objects.push_back(std::move(object));
}

void SceneMaker::addMoving(ObjectKind kind, Shape shape, const Point& heading,
                           const Point& direction, bool turns) {
    const double share = speeds.back();
    speeds.pop_back();
    // Squaring makes slow objects more frequent.
    const double speed = ranges.speed.low + (ranges.speed.high - ranges.speed.low) * share * share;
    const double turn_rate = turns ? drawTurnRate() : 0;
    const Point place = drawPlace(shape.radius());
    add({kind,
         std::move(shape),
         drawContrast(speed),
         {place, direction},
         {heading.x * speed, heading.y * speed},
         turn_rate});
}

Point SceneMaker::drawDirection() {
    while (true) {
        const Point point{random.uniform(-1, 1), random.uniform(-1, 1)};
        const double distance = length(point);
        if (distance > 0.1 && distance < 1) {
            return normalised(point);
        }
    }
}

Point SceneMaker::drawNearAxis() {
    constexpr std::array<Point, 4> kAxes = {{{1, 0}, {0, 1}, {-1, 0}, {0, -1}}};
    const Point& axis = kAxes[random.below(4)];
    return turned(axis, angleFromHalfTangent(random.uniform(-0.15, 0.15)));
}

double SceneMaker::drawTurnRate() {
    const double magnitude = random.uniform(1.5, 4.5);
    return random.coin() ? magnitude : -magnitude;
}

// Of several random positions, the one furthest from the existing objects.
Point SceneMaker::drawPlace(double radius) {
    const double margin = std::min({radius, options.width / 3.0, options.height / 3.0});
    Point best{};
    double best_distance = -1;
    for (int i = 0; i < kPlacesTried; ++i) {
        const Point place{random.uniform(margin, options.width - margin),
                          random.uniform(margin, options.height - margin)};
        const double distance = distanceToOthers(place);
        if (distance > best_distance) {
            best = place;
            best_distance = distance;
        }
    }
    return best;
}

double SceneMaker::distanceToOthers(const Point& place) const {
    double nearest = options.width + options.height;
    for (const SceneObject& other : objects) {
        const Point& centre = other.pose.centre;
        const double distance = length({place.x - centre.x, place.y - centre.y});
        nearest = std::min(nearest, std::max(distance - other.shape.radius(), 0.0));
    }
    return nearest;
}

double SceneMaker::drawContrast(double speed) {
    const double lowest = std::clamp(80 / speed, 0.5, 0.9);
    const double magnitude = random.uniform(lowest, 1.2);
    // Every second object is darker than the background.
    return objects.size() % 2 == 0 ? magnitude : -magnitude;
}

}  // namespace

Scene randomScene(const SceneOptions& options) {
    options.validate();
    const int discs = countFor(options, options.discs, SceneOptions::kUsualDiscs);
    const int bars = countFor(options, options.bars, SceneOptions::kUsualBars);
    const int polygons = countFor(options, options.polygons, SceneOptions::kUsualPolygons);
    SceneMaker maker(options, discs + bars + polygons);
    for (int i = 0; i < options.lights; ++i) {
        maker.addLight();
    }
    for (int i = 0; i < discs; ++i) {
        maker.addDisc();
    }
    for (int i = 0; i < bars; ++i) {
        maker.addBar(i % 2 == 1);
    }
    for (int i = 0; i < polygons; ++i) {
        maker.addPolygon(i % 2 == 0);
    }
    return {options.width, options.height, maker.take()};
}

}  // namespace kelvora::simulation
