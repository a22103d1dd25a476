// SPDX-License-Identifier: MIT
#include "clustering/wide_grid_search.hpp"

#include <gtest/gtest.h>

#include "support/parallel_search_cases.hpp"
#include "support/points.hpp"
#include "support/rounds.hpp"

namespace kelvora::test {
namespace {

template <class Kind>
class WideGridSearchByItself : public ::testing::Test {};
TYPED_TEST_SUITE(WideGridSearchByItself, PointKinds, PointKindNames);

TYPED_TEST(WideGridSearchByItself, FindsTheSetsOfTheLiteralPassInSmallSets) {
    compareWithLiteralPass<TypeParam, WideGridSearch>(rounds(300), 120);
}

TYPED_TEST(WideGridSearchByItself, FindsTheSetsOfTheLiteralPassInLargerSets) {
    compareWithLiteralPass<TypeParam, WideGridSearch>(rounds(20), 3000);
}

}  // namespace
}  // namespace kelvora::test
