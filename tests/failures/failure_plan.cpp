// SPDX-License-Identifier: MIT
#include "failures/failure_plan.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>

#include "failures/next_function.hpp"

// No function here allocates: allocations are among the calls that are counted.

namespace kelvora::failures {
namespace {

struct KindText {
    const char* name;
    int error;
};

constexpr std::array<KindText, kKinds> kKindTexts = {{{"allocation", ENOMEM},
                                                      {"thread", EAGAIN},
                                                      {"open", EMFILE},
                                                      {"read", EIO},
                                                      {"write", ENOSPC},
                                                      {"close", EIO},
                                                      {"sync", EIO},
                                                      {"rename", EIO},
                                                      {"link", EIO},
                                                      {"remove", EIO},
                                                      {"truncate", EIO},
                                                      {"mkdir", ENOSPC}}};

constexpr std::array<std::string_view, 4> kModes = {"once", "on", "short", "full"};

State own_state;
State* current_state = &own_state;
thread_local int uncounted = 0;

/// Cuts the text up to the next colon off.
std::string_view cutField(std::string_view& text) {
    const std::size_t end = std::min(text.find(':'), text.size());
    const std::string_view field = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return field;
}

template <class Number>
bool toNumber(std::string_view text, Number& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool isTurn(const Plan& plan, long call) {
    return plan.mode == Mode::On || plan.mode == Mode::Full ? call >= plan.number
                                                            : call == plan.number;
}

}  // namespace

const char* nameOf(Kind kind) {
    return kKindTexts[static_cast<std::size_t>(kind)].name;
}

int usualError(Kind kind) {
    return kKindTexts[static_cast<std::size_t>(kind)].error;
}

bool parse(std::string_view text, Plan& plan) {
    plan = {};
    if (text == "count") {
        return true;
    }
    plan.has_failure = true;
    const std::string_view kind = cutField(text);
    const auto* const found =
        std::find_if(kKindTexts.begin(), kKindTexts.end(),
                     [&](const KindText& known) { return known.name == kind; });
    const auto* const mode = std::find(kModes.begin(), kModes.end(), cutField(text));
    if (found == kKindTexts.end() || mode == kModes.end() ||
        !toNumber(cutField(text), plan.number)) {
        return false;
    }
    plan.kind = static_cast<Kind>(found - kKindTexts.begin());
    plan.mode = static_cast<Mode>(mode - kModes.begin());
    plan.error = usualError(plan.kind);
    return text.empty() || toNumber(text, plan.error);
}

State& state() {
    return *current_state;
}

void share(State& other) {
    current_state = &other;
}

void begin(const Plan& plan) {
    state().is_active = false;
    state().plan = plan;
    for (std::atomic<long>& calls : state().calls) {
        calls = 0;
    }
    state().failed = 0;
    state().left_open = 0;
    state().is_active = true;
}

void end() {
    state().is_active = false;
}

bool isCounting() {
    return state().is_active && uncounted == 0;
}

Order count(Kind kind) {
    if (!isCounting()) {
        return Order::Work;
    }
    State& now = state();
    const long call = ++now.calls[static_cast<std::size_t>(kind)];
    const Plan& plan = now.plan;
    if (!plan.has_failure || plan.kind != kind || !isTurn(plan, call)) {
        return Order::Work;
    }
    ++now.failed;
    if (plan.mode == Mode::Short || (plan.mode == Mode::Full && call == plan.number)) {
        return Order::WorkInPart;
    }
    errno = plan.error;
    return Order::Fail;
}

bool fails(Kind kind) {
    return count(kind) == Order::Fail;
}

Uncounted::Uncounted() {
    ++uncounted;
}

Uncounted::~Uncounted() {
    --uncounted;
}

}  // namespace kelvora::failures

// For programs in other languages.
extern "C" {

KELVORA_VISIBLE int kelvora_failures_begin(const char* text) {
    kelvora::failures::Plan plan;
    const bool is_plan = kelvora::failures::parse(text, plan);
    if (is_plan) {
        kelvora::failures::begin(plan);
    }
    return is_plan ? 1 : 0;
}

KELVORA_VISIBLE void kelvora_failures_end() {
    kelvora::failures::end();
}

/// \param kind  The number of a `Kind`.
KELVORA_VISIBLE long kelvora_failures_calls(int kind) {
    return kelvora::failures::state().calls.at(static_cast<std::size_t>(kind));
}

KELVORA_VISIBLE long kelvora_failures_failed() {
    return kelvora::failures::state().failed;
}
}
