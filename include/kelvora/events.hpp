// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <type_traits>
#include <unordered_map>

#include "kelvora/export.hpp"

/// \file
/// The records in which a caller hands events to the library, and the polarity filter of the
/// generators.
///
/// All records are standard-layout values with public fields, copied and moved field by field.
/// Times are microseconds; positions are pixels, counted from the top left corner of the sensor.

namespace kelvora {

/// One change of brightness at one pixel.
struct KELVORA_EXPORT Event2D {
    unsigned short x;              ///< Pixel column.
    unsigned short y;              ///< Pixel row.
    unsigned char polarity;        ///< 1: the pixel became brighter, 0: darker.
    unsigned long long timestamp;  ///< Microseconds.

    /// All fields 0.
    Event2D();
    /// Stores the values as they are.
    /// \param x,y  Pixel column and row.
    /// \param polarity  1 or true: the pixel became brighter.
    /// \param timestamp  Microseconds.
    Event2D(unsigned short x, unsigned short y, unsigned char polarity,
            unsigned long long timestamp);
    /// \cond field by field
    Event2D(const Event2D&) = default;
    Event2D(Event2D&&) = default;
    Event2D& operator=(const Event2D& other);
    Event2D& operator=(Event2D&& other) noexcept;
    ~Event2D() = default;
    /// \endcond
};

/// An event together with the frequency at which its pixel flickers.
struct KELVORA_EXPORT Event2DFrequency {
    unsigned short x;              ///< Pixel column.
    unsigned short y;              ///< Pixel row.
    bool polarity;                 ///< True: the pixel became brighter.
    unsigned long long timestamp;  ///< Microseconds.
    float frequency;               ///< Hertz; carried along, never read by the library.

    /// All fields 0.
    Event2DFrequency();
    /// Stores the values as they are.
    /// \param x,y  Pixel column and row.
    /// \param polarity  1 or true: the pixel became brighter.
    /// \param timestamp  Microseconds.
    /// \param frequency  Hertz.
    Event2DFrequency(unsigned short x, unsigned short y, bool polarity,
                     unsigned long long timestamp, float frequency);
    /// \cond field by field
    Event2DFrequency(const Event2DFrequency&) = default;
    Event2DFrequency(Event2DFrequency&&) = default;
    Event2DFrequency& operator=(const Event2DFrequency& other);
    Event2DFrequency& operator=(Event2DFrequency&& other) noexcept;
    ~Event2DFrequency() = default;
    /// \endcond
};

/// An event together with the period at which its pixel flickers.
///
/// An aggregate: build it as `Event2DPeriod<int>{x, y, polarity, timestamp, period}`.
///
/// \tparam T  `int`, `unsigned int`, `float`, `double`, `long long` or `unsigned long long`.
// No member function is declared: a constructor would make it something else than an aggregate, a
// move assignment would take away its copy constructor, and a copy assignment would make copying it
// a deprecated operation.
template <typename T>
struct Event2DPeriod {
    static_assert(
        std::disjunction_v<std::is_same<T, int>, std::is_same<T, unsigned int>,
                           std::is_same<T, float>, std::is_same<T, double>,
                           std::is_same<T, long long>, std::is_same<T, unsigned long long>>,
        "periods are int, unsigned int, float, double, long long or unsigned long long");

    unsigned short x;              ///< Pixel column.
    unsigned short y;              ///< Pixel row.
    unsigned char polarity;        ///< 1: the pixel became brighter, 0: darker.
    unsigned long long timestamp;  ///< Microseconds.
    T period;                      ///< Carried along, never read by the library.
};

/// An edge on an external trigger input.
///
/// \note The constructor takes the value before the id, whereas the record stores the id first and
/// the value last.
struct KELVORA_EXPORT EventTriggerIn {
    short trigger_id;              ///< Number of the input.
    unsigned long long timestamp;  ///< Microseconds.
    short trigger_value;           ///< Level after the edge.

    /// All fields 0.
    EventTriggerIn();
    /// Stores the values as they are.
    /// \param trigger_value  Level after the edge.
    /// \param trigger_id  Number of the input.
    /// \param timestamp  Microseconds.
    EventTriggerIn(short trigger_value, short trigger_id, unsigned long long timestamp);
    /// \cond field by field
    EventTriggerIn(const EventTriggerIn&) = default;
    EventTriggerIn(EventTriggerIn&&) = default;
    EventTriggerIn& operator=(const EventTriggerIn& other);
    EventTriggerIn& operator=(EventTriggerIn&& other) noexcept;
    ~EventTriggerIn() = default;
    /// \endcond
};

/// Two counts that an application passes around together; the library itself never reads or writes
/// them.
struct KELVORA_EXPORT KvStatisticInfo {
    unsigned long long first_count;   ///< The one count.
    unsigned long long second_count;  ///< The other.

    /// Both counts 0.
    KvStatisticInfo();
    /// Stores the values as they are.
    /// \param first_count,second_count  The counts.
    KvStatisticInfo(unsigned long long first_count, unsigned long long second_count);
    /// \cond field by field
    KvStatisticInfo(const KvStatisticInfo&) = default;
    KvStatisticInfo(KvStatisticInfo&&) = default;
    KvStatisticInfo& operator=(const KvStatisticInfo& other);
    KvStatisticInfo& operator=(KvStatisticInfo&& other) noexcept;
    ~KvStatisticInfo() = default;
    /// \endcond
};

/// Which events a generator ignores, by polarity.
enum EventFilterType : std::uint32_t {
    POLARITY_FREE = 0,  ///< None: both polarities are clustered together.
    POSITIVE_FREE = 1,  ///< Events of polarity 1 are ignored.
    NEGATIVE_FREE = 2,  ///< Events of polarity 0 are ignored.
    POLARITY_SEPARATE =
        3  ///< None, but the grid generator counts the polarities apart; the others refuse it.
};

/// The polarity that each filter type, used as index, drops. No event carries polarity 2: nothing
/// is dropped.
inline constexpr std::array<std::uint8_t, 4> kFilterTypeToRejectedPolarity = {2, 1, 0, 2};

/// Name of each filter type, spelled as in the code.
static const std::unordered_map<EventFilterType, std::string> kFilterTypeToName = {
    {POLARITY_FREE, "POLARITY_FREE"},
    {POSITIVE_FREE, "POSITIVE_FREE"},
    {NEGATIVE_FREE, "NEGATIVE_FREE"},
    {POLARITY_SEPARATE, "POLARITY_SEPARATE"}};

/// Filter type of each name, the inverse of `kFilterTypeToName`.
static const std::unordered_map<std::string, EventFilterType> kNameToFilterType = {
    {"POLARITY_FREE", POLARITY_FREE},
    {"POSITIVE_FREE", POSITIVE_FREE},
    {"NEGATIVE_FREE", NEGATIVE_FREE},
    {"POLARITY_SEPARATE", POLARITY_SEPARATE}};

}  // namespace kelvora
