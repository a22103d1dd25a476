// SPDX-License-Identifier: MIT
#include "sessions/recording_session.hpp"

namespace kelvora::tool {

std::string remarksOf(const Session& session, const WindowReader& reader) {
    const std::string of_session = session.remark();
    const std::string of_reader = reader.remark();
    const bool are_both = !of_session.empty() && !of_reader.empty();
    return of_session + (are_both ? "; " : "") + of_reader;
}

}  // namespace kelvora::tool
