// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <type_traits>
#include <unordered_map>

#include "kelvora/export.hpp"

/// \file
/// Event records, and the polarity filter of the generators.
///
/// All records are standard-layout values with public fields, copied and moved field by field.
/// Times are in microseconds. Positions are in pixels, from the top left corner of the sensor.
///
/// \code{.cpp}
/// const kelvora::Event2D event(120, 45, 1, 5000);
/// const kelvora::Event2DPeriod<float> flicker{120, 45, 1, 5000, 10000.0F};  // 100 Hz
/// const auto filter = kelvora::kNameToFilterType.at("POSITIVE_FREE");
/// const bool is_ignored = event.polarity == kelvora::kFilterTypeToRejectedPolarity[filter];
/// std::cout << (is_ignored ? "ignored" : "used") << ", period " << flicker.period << " us\n";
/// \endcode

namespace kelvora {

/// One change of brightness at one pixel.
struct KELVORA_EXPORT Event2D {
    unsigned short x;              ///< Pixel column.
    unsigned short y;              ///< Pixel row.
    unsigned char polarity;        ///< 1: the pixel became brighter, 0: darker.
    unsigned long long timestamp;  ///< Microseconds.

    /// Sets all fields to 0.
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
    float frequency;               ///< Hertz; never read by the library.

    /// Sets all fields to 0.
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
// No member function is declared. With a constructor this would not be an aggregate; a move
// assignment would delete the copy constructor; a copy assignment would make the implicit copy
// constructor deprecated.
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
    T period;                      ///< Never read by the library.
};

/// An edge on an external trigger input.
///
/// \note The constructor takes the value before the id, but the record stores the id first and the
/// value last.
struct KELVORA_EXPORT EventTriggerIn {
    short trigger_id;              ///< Number of the input.
    unsigned long long timestamp;  ///< Microseconds.
    short trigger_value;           ///< Level after the edge.

    /// Sets all fields to 0.
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

/// Two counts for use by applications. The library never reads or writes them.
struct KELVORA_EXPORT KvStatisticInfo {
    unsigned long long first_count;   ///< First count.
    unsigned long long second_count;  ///< Second count.

    /// Sets both counts to 0.
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

/// The polarity that a generator ignores.
enum EventFilterType : std::uint32_t {
    POLARITY_FREE = 0,  ///< Ignores none; both polarities are clustered together.
    POSITIVE_FREE = 1,  ///< Ignores events of polarity 1.
    NEGATIVE_FREE = 2,  ///< Ignores events of polarity 0.
    POLARITY_SEPARATE =
        3  ///< Ignores none; the grid generator counts each polarity, the others refuse it.
};

/// The polarity that each filter type ignores, indexed by filter type. 2 stands for none, because
/// no event has this polarity.
inline constexpr std::array<std::uint8_t, 4> kFilterTypeToRejectedPolarity = {2, 1, 0, 2};

/// Name of each filter type.
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
