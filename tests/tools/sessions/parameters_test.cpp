// SPDX-License-Identifier: MIT
#include "sessions/parameters.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>

#include "sessions/parameter_error.hpp"

namespace kelvora::tool {
namespace {

TEST(Parameters, HaveDistinctNamesAndTheDefaultsOfSettings) {
    std::set<std::string> names;
    for (const Parameter& parameter : parameterTable()) {
        EXPECT_TRUE(names.insert(parameter.keyword).second) << parameter.keyword;
        EXPECT_TRUE(names.insert(parameter.option).second) << parameter.option;
        EXPECT_EQ(findParameter(parameter.keyword), &parameter);
    }
    EXPECT_EQ(findParameter("cell_width")->defaultText(), "5");
    EXPECT_EQ(findParameter("window_us")->defaultText(), "10ms");
    EXPECT_EQ(findParameter("capacity")->defaultText(), "all");
    EXPECT_EQ(findParameter("time_length_us")->defaultText(), "all");
    EXPECT_EQ(findParameter("from_us")->defaultText(), "0s");
    EXPECT_EQ(findParameter("max_window_events")->defaultText(),
              "as many as fit into --max-memory");
    EXPECT_EQ(findParameter("k")->defaultText(), "");
    EXPECT_EQ(findParameter("polarity")->defaultText(), "all");
    EXPECT_EQ(findParameter("method")->defaultText(), "grid");
    EXPECT_EQ(findParameter("nothing"), nullptr);
}

TEST(Parameters, AreReadFromText) {
    EXPECT_EQ(findParameter("cell_width")->parse("7"), Value(std::int64_t{7}));
    EXPECT_EQ(findParameter("eps")->parse("2.5"), Value(2.5));
    EXPECT_EQ(findParameter("window_us")->parse("5ms"), Value(std::int64_t{5000}));
    EXPECT_EQ(findParameter("polarity")->parse("on"), Value(std::string("on")));
    EXPECT_THROW(findParameter("window_us")->parse("5"), ParameterError);
}

TEST(Parameters, KeepTheSizeOfNumbersThatAreTooLarge) {
    const Parameter& parameter = *findParameter("min_cluster_size");
    EXPECT_EQ(parameter.parse("99999999999999999999"), Value(1e20));
    EXPECT_EQ(parameter.parse("-99999999999999999999"), Value(-1e20));
    EXPECT_EQ(parameter.parse("1e999"), Value(std::string("1e999")));
}

}  // namespace
}  // namespace kelvora::tool
