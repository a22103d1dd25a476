// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace kelvora::recording {

/// What is wrong with a recording.
enum class ErrorKind {
    NoAccess,        ///< The file cannot be opened, read, created or written.
    UnusableFormat,  ///< The format is unknown, not supported, or another one than stated.
    Damaged,         ///< The content breaks the rules of the format.
    CannotHold,      ///< The format cannot hold an event that is to be written.
    NoSensorSize,    ///< The recording does not state the size of its sensor, which is needed.
    NotSuitable      ///< The file is sound, but cannot be used for this purpose.
};

/// Where in a recording something is wrong.
struct ErrorPlace {
    enum class Unit {
        WholeFile,  ///< No particular place.
        Byte,       ///< Counted from 0.
        Line,       ///< Counted from 1.
        Event,      ///< Counted from 0.
        EventAt     ///< Time of the event, microseconds.
    };

    Unit unit = Unit::WholeFile;
    std::uint64_t number = 0;  ///< Meaning as given by `unit`.
};

/// "byte 12", "line 3", "event 7", "event at 17 us", or nothing for the whole file.
std::string toString(const ErrorPlace& place);

/// A setting that a remedy tells the user to change. Programs call it by different names: a member
/// of `ReadOptions`, a command-line option or a keyword.
enum class Setting { None, Format, SensorSize, Columns, TimeUnit };

/// How the user can fix a problem.
struct Remedy {
    /// \param text_  With "{}" wherever the name of the setting belongs.
    Remedy(std::string text_, Setting setting_ = Setting::None)
        : text(std::move(text_)), setting(setting_) {}
    Remedy(const char* text_, Setting setting_ = Setting::None) : text(text_), setting(setting_) {}

    std::string text;
    Setting setting;
};

/// Thrown for a recording that cannot be read or written.
///
/// The message is one line that needs no context: `FILE: problem, where, what to do`.
class RecordingError : public std::runtime_error {
public:
    /// Gives a setting the name it has in a program.
    using SettingNames = std::string_view (*)(Setting setting);

    /// \param file  Path of the recording, as the user gave it.
    /// \param problem  The problem, as a sentence whose subject is the file: "is empty".
    RecordingError(ErrorKind kind, const std::string& file, const std::string& problem,
                   const ErrorPlace& place, const Remedy& remedy);

    ErrorKind kind() const { return parts->kind; }
    const std::string& file() const { return parts->file; }
    const std::string& problem() const { return parts->problem; }
    const ErrorPlace& place() const { return parts->place; }

    /// The setting that the remedy names, if any.
    Setting setting() const { return parts->remedy.setting; }

    /// The remedy with the program's name for its setting.
    std::string remedy(SettingNames names) const;

    /// The whole message, with the program's names for settings. `what` has the names of C++, such
    /// as `ReadOptions::format`.
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
