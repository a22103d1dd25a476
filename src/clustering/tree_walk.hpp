// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "clustering/flat_tree.hpp"

namespace kelvora {

/// Some points of a leaf: their number, and a bit for the lane of each.
struct LanesOfLeaf {
    std::uint32_t leaf;
    std::uint16_t lanes;
    std::uint16_t count;
};

/// A code for each lane: its bit, and a 1 above all lane bits. The sum of several codes holds both
/// their bits and their number.
template <typename Integer, std::size_t lanes, unsigned count_shift>
constexpr std::array<Integer, lanes> laneCodes() {
    std::array<Integer, lanes> codes{};
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        codes[lane] = (Integer{1} << count_shift) + (Integer{1} << lane);
    }
    return codes;
}

/// Visits the leaves of a tree within a radius, nearer ones first. Order and arithmetic are
/// nanoflann's, so that rounding leads to the same leaves. Each thread needs its own walk.
template <int DIM, typename T>
class TreeWalk {
public:
    TreeWalk(const FlatTree<DIM, T>& tree_, T squared_radius_)
        : tree(tree_), squared_radius(squared_radius_), branches(tree_.depth) {
        branch_sides.fill(std::vector<T>(tree_.depth));
    }

    /// Calls `onLeaf(near)` for each leaf with the points closer than the radius, possibly none,
    /// until it returns false.
    template <class OnLeaf>
    void neighboursOf(std::uint32_t slot, OnLeaf onLeaf) {
        visitAround(
            tree.coordinatesAt(slot), [](std::uint32_t) { return false; }, onLeaf);
    }

    /// The same around any position. Also calls `takePart(number)` for each node: if it returns
    /// true, the leaves below the node are not visited.
    ///
    /// \param center  By value, so that the compiler knows that nothing else changes it.
    template <class TakePart, class OnLeaf>
    void visitAround(std::array<T, DIM> center, TakePart takePart, OnLeaf onLeaf) {
        std::uint32_t number = 0;
        T squared_distance = 0;
        std::array<T, DIM> squared_sides{};  // the share of each axis in the distance
        std::size_t waiting = 0;
        while (true) {
            const Node* node = &tree.nodes[number];
            bool is_taken = takePart(number);
            while (!is_taken && node->axis != FlatTree<DIM, T>::kLeaf) {
                const T value = center[node->axis];
                const bool is_first_nearer = node->isFirstNearer(value);
                const T difference = is_first_nearer ? value - node->high : value - node->low;
                const T squared_side = difference * difference;
                // In this order: both roundings matter.
                const T farther = squared_distance + squared_side - squared_sides[node->axis];
                const std::uint32_t first = number + 1;
                number = is_first_nearer ? first : node->other;
                // Also false for NaN.
                if (farther <= squared_radius) {
                    branches[waiting] = {is_first_nearer ? node->other : first, farther};
                    for (std::size_t axis = 0; axis < DIM; ++axis) {
                        branch_sides[axis][waiting] = squared_sides[axis];
                    }
                    branch_sides[node->axis][waiting] = squared_side;
                    ++waiting;
                }
                node = &tree.nodes[number];
                is_taken = takePart(number);
            }
            if ((!is_taken && !onLeaf(nearPoints(center, node->other))) || waiting == 0) {
                return;
            }
            --waiting;
            number = branches[waiting].node;
            squared_distance = branches[waiting].squared_distance;
            for (std::size_t axis = 0; axis < DIM; ++axis) {
                squared_sides[axis] = branch_sides[axis][waiting];
            }
        }
    }

private:
    using Node = typename FlatTree<DIM, T>::Node;
    static constexpr std::size_t kLanes = FlatTree<DIM, T>::kLanes;
    static constexpr unsigned kCountBits = 16;

    // Explicit vectors: the compiler would unroll the loops over lanes before
    // it could vectorize them.
    using Integer = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    static constexpr std::size_t kVectorBytes = 16;
    static constexpr std::size_t kWidth = kVectorBytes / sizeof(T);
    // NOLINTNEXTLINE(modernize-use-using): a vector of a dependent type needs typedef.
    typedef T Values __attribute__((vector_size(kVectorBytes)));
    // NOLINTNEXTLINE(modernize-use-using)
    typedef Integer Integers __attribute__((vector_size(kVectorBytes)));

    static constexpr auto kLaneCodes = laneCodes<Integer, kLanes, kCountBits>();

    /// A node still to be visited, and the least distance of its points from the centre.
    struct Branch {
        std::uint32_t node;
        T squared_distance;
    };

    /// Squares are summed as in `squaredDistance`, for several lanes at a time.
    LanesOfLeaf nearPoints(const std::array<T, DIM>& center, std::uint32_t leaf) const {
        const T* const lanes = tree.lanesOf(leaf);
        Integers near = {};
        for (std::size_t first = 0; first < kLanes; first += kWidth) {
            Values sums = {};
            for (std::size_t axis = 0; axis < DIM; ++axis) {
                Values values;
                std::memcpy(&values, lanes + axis * kLanes + first, sizeof(values));
                const Values differences = center[axis] - values;
                sums += differences * differences;
            }
            Integers codes;
            std::memcpy(&codes, kLaneCodes.data() + first, sizeof(codes));
            near += codes & reinterpret_cast<Integers>(sums < squared_radius);
        }
        Integer sum = 0;
        for (std::size_t k = 0; k < kWidth; ++k) {
            sum += near[k];
        }
        return {leaf, static_cast<std::uint16_t>(sum),
                static_cast<std::uint16_t>(sum >> kCountBits)};
    }

    const FlatTree<DIM, T>& tree;
    T squared_radius;
    std::vector<Branch> branches;  ///< The next one to visit is the last.
    // The share of each axis in the distance of each branch. One array per axis: numbers that are
    // written one by one should be read one by one.
    std::array<std::vector<T>, DIM> branch_sides;
};

}  // namespace kelvora
