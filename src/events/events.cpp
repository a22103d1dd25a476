// SPDX-License-Identifier: MIT
#include "kelvora/events.hpp"

namespace kelvora {

Event2D::Event2D() : Event2D(0, 0, 0, 0) {}

Event2D::Event2D(unsigned short x_, unsigned short y_, unsigned char polarity_,
                 unsigned long long timestamp_)
    : x(x_), y(y_), polarity(polarity_), timestamp(timestamp_) {}

Event2D& Event2D::operator=(const Event2D&) = default;
Event2D& Event2D::operator=(Event2D&&) noexcept = default;

Event2DFrequency::Event2DFrequency() : Event2DFrequency(0, 0, false, 0, 0.0F) {}

Event2DFrequency::Event2DFrequency(unsigned short x_, unsigned short y_, bool polarity_,
                                   unsigned long long timestamp_, float frequency_)
    : x(x_), y(y_), polarity(polarity_), timestamp(timestamp_), frequency(frequency_) {}

Event2DFrequency& Event2DFrequency::operator=(const Event2DFrequency&) = default;
Event2DFrequency& Event2DFrequency::operator=(Event2DFrequency&&) noexcept = default;

EventTriggerIn::EventTriggerIn() : EventTriggerIn(0, 0, 0) {}

EventTriggerIn::EventTriggerIn(short trigger_value_, short trigger_id_,
                               unsigned long long timestamp_)
    : trigger_id(trigger_id_), timestamp(timestamp_), trigger_value(trigger_value_) {}

EventTriggerIn& EventTriggerIn::operator=(const EventTriggerIn&) = default;
EventTriggerIn& EventTriggerIn::operator=(EventTriggerIn&&) noexcept = default;

KvStatisticInfo::KvStatisticInfo() : KvStatisticInfo(0, 0) {}

KvStatisticInfo::KvStatisticInfo(unsigned long long first_count_, unsigned long long second_count_)
    : first_count(first_count_), second_count(second_count_) {}

KvStatisticInfo& KvStatisticInfo::operator=(const KvStatisticInfo&) = default;
KvStatisticInfo& KvStatisticInfo::operator=(KvStatisticInfo&&) noexcept = default;

}  // namespace kelvora
