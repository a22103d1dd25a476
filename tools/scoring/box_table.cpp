// SPDX-License-Identifier: MIT
#include "scoring/box_table.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "scoring/table_reader.hpp"

namespace kelvora::scoring {
namespace {

double length(const TableReader& table, std::string_view column) {
    const double value = table.number(column);
    if (value < 0.0) {
        table.refuseField(column, "a number of at least 0");
    }
    return value;
}

Box box(const TableReader& table) {
    return {table.number("x"), table.number("y"), length(table, "width"), length(table, "height")};
}

bool isMoving(const TableReader& table) {
    if (!table.has("moving")) {
        return true;
    }
    const std::string& text = table.text("moving");
    if (text != "0" && text != "1") {
        table.refuseField("moving", "0 or 1");
    }
    return text == "1";
}

double visibility(const TableReader& table) {
    if (!table.has("visibility")) {
        return 1.0;
    }
    const double value = table.number("visibility");
    if (value < 0.0 || value > 1.0) {
        table.refuseField("visibility", "a number from 0 to 1");
    }
    return value;
}

enum class State { Reported, Tentative, Untracked };

State state(const TableReader& table) {
    const std::string text = table.has("state") ? table.text("state") : "confirmed";
    if (text == "none") {
        return State::Untracked;
    }
    if (text == "tentative") {
        return State::Tentative;
    }
    if (text != "confirmed" && text != "hidden") {
        table.refuseField("state", "confirmed, hidden, tentative or none");
    }
    return State::Reported;
}

std::uint64_t track(const TableReader& table) {
    const std::uint64_t id = table.countingNumber("track_id");
    if (id == 0) {
        table.refuseField("track_id", "a whole number of at least 1");
    }
    return id;
}

/// Rejects two boxes with the same name at the same time.
template <class Id>
class UniqueIds {
public:
    void add(const TableReader& table, std::uint64_t time, Id id, std::string_view what) {
        if (!seen.emplace(time, id).second) {
            table.refuse(fmt::format("has {} {} twice at {} us", what, id, time),
                         "give one row per time to each");
        }
    }

private:
    std::set<std::pair<std::uint64_t, Id>> seen;
};

}  // namespace

std::vector<TruthBox> readTruth(const std::filesystem::path& path,
                                const std::function<void()>& check) {
    TableReader table(path, {"timestamp_us", "id", "x", "y", "width", "height"}, check);
    std::vector<TruthBox> rows;
    UniqueIds<std::int64_t> ids;
    while (table.next()) {
        rows.push_back({table.countingNumber("timestamp_us"), box(table), table.wholeNumber("id"),
                        visibility(table), isMoving(table)});
        ids.add(table, rows.back().timestamp_us, rows.back().id, "object");
    }
    return rows;
}

ClusterTable readClusters(const std::filesystem::path& path, bool with_tentative,
                          const std::function<void()>& check) {
    TableReader table(path, {"timestamp_us", "x", "y", "width", "height"}, check);
    ClusterTable result;
    result.has_tracks = table.has("track_id");
    UniqueIds<std::uint64_t> tracks;
    while (table.next()) {
        const State row_state = state(table);
        ClusterBox row = {table.countingNumber("timestamp_us"), box(table), 0};
        if (row_state == State::Untracked) {
            ++result.untracked;
            continue;
        }
        if (result.has_tracks) {
            row.track = track(table);
            tracks.add(table, row.timestamp_us, row.track, "track");
        }
        if (row_state == State::Tentative && !with_tentative) {
            ++result.tentative;
        } else {
            result.clusters.push_back(row);
        }
    }
    return result;
}

}  // namespace kelvora::scoring
