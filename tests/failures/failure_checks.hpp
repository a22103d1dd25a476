// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "failures/failure_plan.hpp"
#include "failures/resources.hpp"
#include "support/event_builders.hpp"

/// \file
/// Checks that objects can be used after calls have failed. For tests that link `kelvora_failures`.

namespace kelvora::test {

/// During its lifetime, calls are counted, and fail as planned.
class FailingCalls {
public:
    explicit FailingCalls(const failures::Plan& plan) { failures::begin(plan); }
    ~FailingCalls() { failures::end(); }
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;

    static long calls(failures::Kind kind) {
        return failures::state().calls.at(static_cast<std::size_t>(kind));
    }
    static long failed() { return failures::state().failed; }
};

/// The largest number of failures of one kind in one way. KELVORA_FAILING_RUNS overrides it.
inline long mostFailures() {
    constexpr long kUsual = 60;
    const char* const text = std::getenv("KELVORA_FAILING_RUNS");
    return text == nullptr ? kUsual : std::atol(text);
}

/// Numbers of the calls to fail: all if there are few, otherwise one from each of equal stretches.
inline std::vector<long> callsToFail(long calls, Random& random) {
    const long count = std::min(calls, mostFailures());
    std::vector<long> numbers;
    for (long i = 0; i < count; ++i) {
        const long low = i * calls / count;
        const long high = (i + 1) * calls / count;
        numbers.push_back(low + randomInt(random, 1, static_cast<int>(high - low)));
    }
    return numbers;
}

/// A use of an object, and what comes first if the object is used again after an exception.
template <class Make, class Use, class Recover>
struct UseOfAnObject {
    Make make;        ///< Returns an object, or a pointer to one.
    Use use;          ///< Takes what `make` returns; returns a result that can be compared.
    Recover recover;  ///< Takes what `make` returns.
};
template <class Make, class Use, class Recover>
UseOfAnObject(Make, Use, Recover) -> UseOfAnObject<Make, Use, Recover>;

/// For uses that need no object.
constexpr auto kNoObject = [] { return 0; };
/// For objects that can be used again at once.
constexpr auto kNothing = [](const auto& /*object*/) {};

/// Makes a call fail. The use has to give the right result or to throw; then the same object has to
/// give the right result.
///
/// \returns whether a call has failed.
template <class Scenario, class Result>
bool expectRightResult(const Scenario& scenario, const failures::Plan& plan, const Result& right) {
    auto object = scenario.make();
    std::optional<Result> found;
    try {
        const FailingCalls failing(plan);
        found = scenario.use(object);
    } catch (const std::exception& error) {
        EXPECT_GT(FailingCalls::failed(), 0) << error.what();
    }
    const bool has_failed = FailingCalls::failed() > 0;
    if (!found) {
        EXPECT_NO_THROW({
            scenario.recover(object);
            found = scenario.use(object);
        });
    }
    EXPECT_EQ(found, right);
    return has_failed;
}

/// Makes calls of a kind fail, one after the other. Memory and descriptors must not get lost.
///
/// \param most_lost  Number of allocations that may get lost in a failure.
/// \returns the number of failures.
template <class Scenario, class Result>
long makeCallsFail(const Scenario& scenario, failures::Kind kind, long calls, const Result& right,
                   long most_lost) {
    Random random(1);
    long failed = 0;
    for (const failures::Mode mode : {failures::Mode::Once, failures::Mode::On}) {
        for (const long number : callsToFail(calls, random)) {
            SCOPED_TRACE(std::string(nameOf(kind)) + " number " + std::to_string(number));
            const long unfreed = failures::unfreedAllocations();
            const int open = failures::openDescriptors();
            failed += expectRightResult(
                scenario, {true, kind, mode, number, failures::usualError(kind)}, right);
            EXPECT_LE(failures::unfreedAllocations(), unfreed + most_lost);
            EXPECT_EQ(failures::openDescriptors(), open);
        }
    }
    return failed;
}

/// Makes calls of several kinds fail. Prints the number of failures.
template <class Scenario>
void expectRightResultsAfterFailures(const Scenario& scenario,
                                     const std::vector<failures::Kind>& kinds, long most_lost = 0) {
    std::vector<long> calls;
    const auto right = [&] {
        auto object = scenario.make();
        const FailingCalls counting({});
        return scenario.use(object);
    }();
    for (const failures::Kind kind : kinds) {
        calls.push_back(FailingCalls::calls(kind));
    }
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const long failed = makeCallsFail(scenario, kinds[i], calls[i], right, most_lost);
        EXPECT_GT(failed, 0) << "no call of kind " << nameOf(kinds[i]) << " failed";
        std::cout << failed << " failing runs\n";
    }
}

}  // namespace kelvora::test
