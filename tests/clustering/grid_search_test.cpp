// SPDX-License-Identifier: MIT
#include "clustering/grid_search.hpp"

#include <gtest/gtest.h>

#include "support/parallel_search_cases.hpp"
#include "support/points.hpp"
#include "support/rounds.hpp"

namespace kelvora::test {
namespace {

template <class Kind>
class GridSearchByItself : public ::testing::Test {};
TYPED_TEST_SUITE(GridSearchByItself, PointKinds, PointKindNames);

TYPED_TEST(GridSearchByItself, FindsTheSetsOfTheLiteralPassInSmallSets) {
    compareWithLiteralPass<TypeParam, GridSearch>(rounds(300), 120);
}

TYPED_TEST(GridSearchByItself, FindsTheSetsOfTheLiteralPassInLargerSets) {
    compareWithLiteralPass<TypeParam, GridSearch>(rounds(20), 3000);
}

}  // namespace
}  // namespace kelvora::test
