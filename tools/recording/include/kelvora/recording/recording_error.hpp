// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "kelvora/recording/export.hpp"

namespace kelvora::recording {

/// The kind of problem with a recording.
enum class ErrorKind {
    NoAccess,        ///< The file cannot be opened, read, created or written.
    UnusableFormat,  ///< The format is unknown, not supported, or another one than stated.
    Damaged,         ///< The content breaks the rules of the format.
    ReaderEnded,     ///< The file is a pipe, and the program that reads it has ended.
    CannotHold,      ///< The format cannot store an event to be written.
    NoSensorSize,    ///< The recording does not state the size of its sensor, which is needed.
    NotSuitable      ///< The file is sound, but cannot be used for this purpose.
};

/// Where in a recording something is wrong.
struct ErrorPlace {
    /// Unit of `number`.
    enum class Unit {
        WholeFile,  ///< No particular place.
        Byte,       ///< Counted from 0.
        Line,       ///< Counted from 1.
        Event,      ///< Counted from 0.
        EventAt     ///< Time of the event, microseconds.
    };

    Unit unit = Unit::WholeFile;  ///< Unit of `number`.
    std::uint64_t number = 0;     ///< 0 for the whole file.
};

/// A place in words.
///
/// \param place  The place.
/// \return "byte 12", "line 3", "event 7", "event at 17 us", or nothing for the whole file.
KELVORA_RECORDING_EXPORT std::string toString(const ErrorPlace& place);

/// A setting that a remedy tells the user to change. Programs call it by different names: a member
/// of `ReadOptions`, a command-line option or a keyword.
enum class Setting {
    None,        ///< The remedy is about no setting.
    Format,      ///< `ReadOptions::format`.
    SensorSize,  ///< `ReadOptions::sensor_size`.
    Columns,     ///< `TextLayout::columns`.
    TimeUnit     ///< `TextLayout::time_unit`.
};

/// How the user can fix a problem.
struct Remedy {
    /// \param text_     See `text`.
    /// \param setting_  See `setting`.
    Remedy(std::string text_, Setting setting_ = Setting::None)
        : text(std::move(text_)), setting(setting_) {}

    /// \param text_     See `text`.
    /// \param setting_  See `setting`.
    Remedy(const char* text_, Setting setting_ = Setting::None) : text(text_), setting(setting_) {}

    std::string text;  ///< What to do. "{}" is where the name of the setting belongs.
    Setting setting;   ///< What to change.
};

/// Thrown for a recording that cannot be read or written.
///
/// The message is one line that needs no context: `FILE: problem, where, what to do`.
class KELVORA_RECORDING_EXPORT RecordingError : public std::runtime_error {
public:
    /// Gives a setting the name it has in a program.
    using SettingNames = std::string_view (*)(Setting setting);

    /// \param kind     Kind of problem.
    /// \param file     Path of the recording, as the user gave it.
    /// \param problem  The problem, as a sentence whose subject is the file: "is empty".
    /// \param place    Where in the file.
    /// \param remedy   How the user can fix the problem.
    RecordingError(ErrorKind kind, const std::string& file, const std::string& problem,
                   const ErrorPlace& place, const Remedy& remedy);

    /// \return the kind of problem.
    ErrorKind kind() const { return parts->kind; }

    /// \return Path of the recording, as the user gave it.
    const std::string& file() const { return parts->file; }

    /// \return The problem, as a sentence whose subject is the file: "is empty".
    const std::string& problem() const { return parts->problem; }

    /// \return Where in the file.
    const ErrorPlace& place() const { return parts->place; }

    /// \return The setting that the remedy names, if any.
    Setting setting() const { return parts->remedy.setting; }

    /// How the user can fix the problem.
    ///
    /// \param names  Gives the setting its name.
    /// \return The remedy, which begins with a verb.
    std::string remedy(SettingNames names) const;

    /// The whole message. `what` returns it with the names of C++, such as `ReadOptions::format`.
    ///
    /// \param names  Gives the setting its name.
    /// \return One line: `FILE: problem, where, what to do`.
    std::string message(SettingNames names) const;

private:
    struct Parts {
        ErrorKind kind;
        std::string file;
        std::string problem;
        ErrorPlace place;
        Remedy remedy;
    };

    std::shared_ptr<const Parts> parts;  ///< Shared, because copying an exception must not throw.
};

}  // namespace kelvora::recording
