// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "kelvora/recording/event_writer.hpp"
#include "recording/coding/bytes.hpp"
#include "recording/pending_file.hpp"

namespace kelvora::recording {

/// Writes a file from front to back.
///
/// A file gets its name when it is complete; an existing one of that name stays as it is until
/// then. Behind a symbolic link, the file that the link names is replaced. Other names of a
/// replaced file (hard links) keep the old content. "-" is standard output; it, devices and pipes
/// are written directly.
///
/// All functions throw `RecordingError` if the file cannot be written, as on a full disk.
class OutputFile {
public:
    /// \throws RecordingError  also if the path names a directory, a file that is read-only, or one
    ///     that exists and must not be overwritten.
    explicit OutputFile(const std::filesystem::path& path, WriteOptions options_ = {});

    /// Without `close`, the file is incomplete: its content is kept as `NAME.partial`.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Writes the beginning. A file that holds nothing else is not kept if it remains incomplete.
    void writeHeader(Bytes bytes);

    void write(Bytes bytes);

    /// Completes the file. After a failure, keeps it as incomplete instead. Does nothing if the file
    /// is already closed.
    void close(NameSync sync = NameSync::Now);

    /// The path as given by the user, for messages.
    const std::string& name() const { return file_name; }

private:
    void open(const std::filesystem::path& target);
    void openExisting(const std::filesystem::path& target);
    void complete(NameSync sync);
    void keep() noexcept;
    void handleSignal() const;

    std::string file_name;
    WriteOptions options;
    std::optional<PendingFile> pending;  ///< Empty if the output is written directly.
    int descriptor = -1;
    bool has_content = false;
    bool is_damaged = false;  ///< Whether something could not be written.
};

}  // namespace kelvora::recording
