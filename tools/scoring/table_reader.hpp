// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "recording/input_file.hpp"

namespace kelvora::scoring {

/// A table with named columns, read row by row: CSV with a header line, or JSON lines (recognised
/// by a leading `{`), whose columns are the members of the first object.
///
/// Columns may be in any order. Blank lines and blanks around fields are skipped. Quoted CSV fields
/// are not supported.
///
/// All functions throw `recording::RecordingError` for unreadable or malformed input.
class TableReader {
public:
    /// \param required  Columns that must exist.
    /// \param check  Called before each piece of the file is read, and when a signal arrives during
    ///     a wait for it. May throw to end reading.
    TableReader(const std::filesystem::path& path, const std::vector<std::string>& required,
                const std::function<void()>& check = {});

    /// Whether the table has this column.
    bool has(std::string_view column) const;

    /// Moves to the next row.
    ///
    /// \returns false at the end.
    bool next();

    /// The text of a field of the row. For all functions below, the table must have the column.
    const std::string& text(std::string_view column) const;

    /// \throws recording::RecordingError  also if it is infinite.
    double number(std::string_view column) const;

    std::int64_t wholeNumber(std::string_view column) const;

    /// \throws recording::RecordingError  also if it is negative.
    std::uint64_t countingNumber(std::string_view column) const;

    /// Reports an error in the row.
    ///
    /// \throws recording::RecordingError  always.
    [[noreturn]] void refuse(const std::string& problem, const std::string& remedy) const;

    /// Reports an error in a field of the row.
    ///
    /// \param expected  The end of "is not ...", such as "a number".
    /// \throws recording::RecordingError  always.
    [[noreturn]] void refuseField(std::string_view column, const std::string& expected) const;

private:
    bool nextLine();
    bool fillBuffer();
    void readNames();
    void requireColumns(const std::vector<std::string>& required) const;
    void readCsvRow();
    void readJsonRow();
    template <class Number>
    Number parse(std::string_view column, const char* expected) const;

    std::function<void()> check_reading;
    recording::InputFile file;
    bool is_json = false;
    bool has_row = false;  ///< The first line was a row and not a header.
    std::vector<std::string> names;
    std::vector<std::string> fields;
    std::string line;
    std::uint64_t line_number = 0;
    std::string buffer;
    std::size_t buffer_position = 0;
};

}  // namespace kelvora::scoring
