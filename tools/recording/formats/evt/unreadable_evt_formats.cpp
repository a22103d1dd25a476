// SPDX-License-Identifier: MIT
#include "recording/formats/evt/unreadable_evt_formats.hpp"

#include "recording/formats/evt/evt_header.hpp"

namespace kelvora::recording {

Format otherEvtFormat() {
    Format format;
    format.title = "an EVT recording of another version";
    format.recognises = [](Bytes head) {
        const EvtHeader header = parseEvtHeader(head);
        return !header.evt_version.empty() && !isReadEvtVersion(header.evt_version);
    };
    format.problem = [](Bytes head) {
        return problemOfEvtVersion(parseEvtHeader(head).evt_version);
    };
    format.remedy = Remedy(kConvertEvt);
    return format;
}

Format unversionedEvtFormat() {
    Format format;
    format.title = "an EVT recording of unknown version";
    format.recognises = [](Bytes head) {
        const EvtHeader header = parseEvtHeader(head);
        return header.length > 0 && header.evt_version.empty();
    };
    format.problem = [](Bytes /*head*/) { return "has a header without an EVT version"; };
    format.remedy = Remedy("give it with {} evt2 or {} evt3", Setting::Format);
    return format;
}

}  // namespace kelvora::recording
