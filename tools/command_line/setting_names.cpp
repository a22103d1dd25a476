// SPDX-License-Identifier: MIT
#include "command_line/setting_names.hpp"

namespace kelvora::tool {

std::string_view optionOf(recording::Setting setting) {
    using recording::Setting;
    switch (setting) {
        case Setting::Format:
            return "--input-format";
        case Setting::SensorSize:
            return "--sensor WIDTHxHEIGHT";
        case Setting::Columns:
            return "--columns";
        case Setting::TimeUnit:
            return "--time-unit";
        case Setting::None:
            break;
    }
    return "";
}

}  // namespace kelvora::tool
