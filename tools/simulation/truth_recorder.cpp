// SPDX-License-Identifier: MIT
#include "simulation/truth_recorder.hpp"

#include <algorithm>
#include <cstddef>

namespace kelvora::simulation {

namespace {

std::vector<float> coverageOfRow(const SceneObject& object, int y, int x_begin, int x_end) {
    std::vector<float> coverage(static_cast<std::size_t>(x_end - x_begin));
    object.shape.coverRow(object.pose, y, x_begin, x_end, coverage.data());
    return coverage;
}

double sum(const std::vector<float>& values) {
    double total = 0;
    for (const float value : values) {
        total += static_cast<double>(value);
    }
    return total;
}

// Subtracts the part of a row's coverage that an object in front hides.
void hide(const SceneObject& front, int y, int x_begin, std::vector<float>& coverage) {
    const int x_end = x_begin + static_cast<int>(coverage.size());
    const Region overlap = intersect(front.shape.region(front.pose), {x_begin, y, x_end, y + 1});
    if (isEmpty(overlap)) {
        return;
    }
    const std::vector<float> hidden = coverageOfRow(front, y, overlap.x_begin, overlap.x_end);
    float* const covered = coverage.data() + (overlap.x_begin - x_begin);
    for (std::size_t i = 0; i < hidden.size(); ++i) {
        covered[i] *= 1 - hidden[i];
    }
}

void hideOffSensor(const Scene& scene, int y, int x_begin, std::vector<float>& coverage) {
    for (std::size_t i = 0; i < coverage.size(); ++i) {
        const int x = x_begin + static_cast<int>(i);
        if (y < 0 || y >= scene.height() || x < 0 || x >= scene.width()) {
            coverage[i] = 0;
        }
    }
}

double visibilityOf(const Scene& scene, std::size_t index) {
    const std::vector<SceneObject>& objects = scene.objects();
    const SceneObject& object = objects[index];
    const Region region = object.shape.region(object.pose);
    double whole = 0;
    double visible = 0;
    for (int y = region.y_begin; y < region.y_end; ++y) {
        std::vector<float> coverage = coverageOfRow(object, y, region.x_begin, region.x_end);
        whole += sum(coverage);
        hideOffSensor(scene, y, region.x_begin, coverage);
        for (std::size_t front = index + 1; front < objects.size(); ++front) {
            hide(objects[front], y, region.x_begin, coverage);
        }
        visible += sum(coverage);
    }
    return whole > 0 ? visible / whole : 0;
}

Box clipped(const Box& box, const Scene& scene) {
    return {std::max(box.left, 0.0), std::max(box.top, 0.0),
            std::min(box.right, static_cast<double>(scene.width())),
            std::min(box.bottom, static_cast<double>(scene.height()))};
}

}  // namespace

std::vector<double> visibilitiesOf(const Scene& scene) {
    std::vector<double> visibilities;
    for (std::size_t i = 0; i < scene.objects().size(); ++i) {
        visibilities.push_back(visibilityOf(scene, i));
    }
    return visibilities;
}

void TruthRecorder::begin(const Scene& scene) {
    boxes.clear();
    for (const SceneObject& object : scene.objects()) {
        boxes.push_back(object.shape.bounds(object.pose));
    }
    measureVisibility(scene);
}

void TruthRecorder::follow(const Scene& scene) {
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const SceneObject& object = scene.objects()[i];
        boxes[i] = unite(boxes[i], object.shape.bounds(object.pose));
    }
}

void TruthRecorder::measureVisibility(const Scene& scene) {
    visibilities = visibilitiesOf(scene);
}

void TruthRecorder::finish(const Scene& scene, std::vector<GroundTruth>& truth) const {
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const SceneObject& object = scene.objects()[i];
        const Box box = clipped(boxes[i], scene);
        if (box.right <= box.left || box.bottom <= box.top) {
            continue;
        }
        const double speed = length(object.velocity);
        truth.push_back(
            {scene.timeUs(), static_cast<int>(i) + 1, object.kind, static_cast<float>(box.left),
             static_cast<float>(box.top), static_cast<float>(box.right - box.left),
             static_cast<float>(box.bottom - box.top), static_cast<float>(visibilities[i]),
             speed > 0 || object.turn_rate != 0, static_cast<float>(speed)});
    }
}

}  // namespace kelvora::simulation
