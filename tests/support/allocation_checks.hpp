// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <iostream>
#include <new>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "support/allocations.hpp"
#include "support/long_stream.hpp"

/// \file
/// Checks of the allocations of every generator. For tests that link `allocations.cpp`.

namespace kelvora::test {

/// Makes each allocation of `work` fail in turn.
template <class Work>
void expectAllIsFreedWheneverAnAllocationFails(const Work& work, std::size_t fewest_allocations) {
    std::size_t needed = 0;
    {
        const AllocationWatch watch;
        work();
        needed = watch.allocations();
    }
    ASSERT_GE(needed, fewest_allocations);
    std::size_t failures = 0;
    for (std::size_t allowed = 0; allowed < needed; ++allowed) {
        std::ptrdiff_t unfreed = 0;
        {
            const AllocationWatch watch(allowed);
            try {
                work();
            } catch (const std::exception&) {
                ++failures;
            }
            unfreed = watch.unfreed();
        }
        EXPECT_EQ(unfreed, 0) << "after " << allowed << " allocations";
    }
    EXPECT_EQ(failures, needed);
}

/// Does `work(object)` on an object from `make` for each allocation that it needs, and lets this
/// allocation fail. Calls `check(object)` after each failure.
///
/// \returns the number of failures.
template <class Make, class Work, class Check>
std::size_t failEachAllocation(const Make& make, const Work& work, const Check& check) {
    for (std::size_t allowed = 0;; ++allowed) {
        auto object = make();
        bool has_failed = false;
        {
            const AllocationWatch watch(allowed);
            try {
                work(object);
            } catch (const std::bad_alloc&) {
                has_failed = true;
            }
        }
        if (!has_failed) {
            return allowed;
        }
        check(object);
    }
}

/// Feeds millions of events, and generates clusters after every `batch` of them.
template <class Generator>
void expectEventsOfALongStreamNeedNoAllocation(Generator& generator, std::size_t batch) {
    DenseStream stream;
    std::vector<ClusterGeometry> clusters;
    std::size_t allocations = 0;
    std::size_t events = 0;
    long memory_at_first = 0;
    while (events < eventsToFeed()) {
        {
            const AllocationWatch watch;
            for (std::size_t i = 0; i < batch; ++i) {
                const Event2D event = stream.next();
                generator.processEvent(&event);
            }
            allocations += watch.allocations();
        }
        events += batch;
        generator.generateClusters(events / 12, clusters);
        ASSERT_FALSE(clusters.empty());
        if (events == 5 * batch) {
            memory_at_first = residentMemory();
        }
    }
    EXPECT_EQ(allocations, 0U);
    const long growth = residentMemory() - memory_at_first;
    std::cout << events << " events, " << clusters.size() << " clusters at last, memory "
              << memory_at_first << " kB after five calls, " << growth << " kB more at last\n";
    if (kIsMemoryMeasurable) {
        EXPECT_GT(memory_at_first, 1000);
        EXPECT_LT(growth, 4096);
    }
}

}  // namespace kelvora::test
