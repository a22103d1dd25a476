// SPDX-License-Identifier: MIT
#include "recording/formats/format_table.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "kelvora/recording/formats.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "recording/formats/evt/evt2_format.hpp"
#include "recording/formats/evt/evt3_format.hpp"
#include "recording/formats/evt/unreadable_evt_formats.hpp"
#include "recording/formats/records/records_format.hpp"
#include "recording/formats/text/text_format.hpp"
#include "recording/formats/unreadable_formats.hpp"

namespace kelvora::recording {
namespace {

std::vector<Format> makeTable() {
    std::vector<Format> table = {recordsFormat(), textFormat(), unversionedEvtFormat()};
    const std::vector<Format> unreadable = unreadableFormats();
    table.insert(table.end(), unreadable.begin(), unreadable.end());
    table.push_back(otherEvtFormat());
    table.push_back(evt2Format());
    table.push_back(evt3Format());
    return table;
}

[[noreturn]] void refuse(const Format& format, Bytes head, const std::string& file) {
    const std::string problem = format.problem
                                    ? format.problem(head)
                                    : fmt::format("is {}, which is not supported", format.title);
    throw RecordingError(ErrorKind::UnusableFormat, file, problem, {}, *format.remedy);
}

[[noreturn]] void refuseUnknown(const std::string& file) {
    const std::vector<std::string> names = readableFormats();
    throw RecordingError(
        ErrorKind::UnusableFormat, file, "has an unknown format", {},
        {fmt::format(
             "use a recording in one of the formats {} and {}; if it has one of them, state "
             "the format with {{}}",
             fmt::join(names.begin(), std::prev(names.end()), ", "), names.back()),
         Setting::Format});
}

}  // namespace

const std::vector<Format>& formatTable() {
    static const std::vector<Format> kTable = makeTable();
    return kTable;
}

const Format* findFormat(std::string_view name) {
    const std::vector<Format>& table = formatTable();
    const auto found = std::find_if(table.begin(), table.end(), [name](const Format& format) {
        return !name.empty() && format.name == name;
    });
    return found == table.end() ? nullptr : &*found;
}

const Format& detectFormat(Bytes head, const std::string& file) {
    const std::vector<Format>& table = formatTable();
    const auto found = std::find_if(table.rbegin(), table.rend(), [head](const Format& format) {
        return format.recognises(head);
    });
    if (found == table.rend()) {
        refuseUnknown(file);
    }
    if (!found->open) {
        refuse(*found, head, file);
    }
    return *found;
}

}  // namespace kelvora::recording
