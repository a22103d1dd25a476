// SPDX-License-Identifier: MIT
#include "command_line/file_check.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>

#include "command_line/usage_error.hpp"
#include "recording/file_identity.hpp"
#include "recording/file_target.hpp"
#include "results/pictures.hpp"

namespace kelvora::tool {

namespace {

/// A file with its name and identity.
struct KnownFile {
    std::string name;
    recording::FileTarget target;
    recording::FileIdentity identity = recording::FileIdentity(target);
};

std::vector<KnownFile> inputsOf(const CommandFiles& files) {
    std::vector<KnownFile> known;
    for (const NamedFile& file : files.inputs) {
        known.push_back({file.name, recording::targetOf(file.path)});
    }
    return known;
}

/// Messages and the results of most commands go to the standard streams without an option.
void addStream(std::vector<KnownFile>& known, const char* name, int descriptor) {
    const bool is_named = std::any_of(
        known.begin(), known.end(),
        [descriptor](const KnownFile& file) { return file.target.descriptor == descriptor; });
    if (!is_named) {
        known.push_back({name, {"", descriptor}});
    }
}

std::vector<KnownFile> outputsOf(const CommandFiles& files) {
    std::vector<KnownFile> known;
    for (const NamedFile& file : files.outputs) {
        if (!file.path.empty()) {
            const bool is_stream = file.path == "-";
            known.push_back({is_stream ? "standard output (" + file.name + ")" : file.name,
                             recording::targetOfOutput(file.path)});
        }
    }
    if (!files.frames_dir.empty()) {
        known.push_back({"--frames", recording::targetOf(files.frames_dir)});
    }
    addStream(known, "standard output", STDOUT_FILENO);
    addStream(known, "standard error", STDERR_FILENO);
    return known;
}

bool areMixed(const KnownFile& a, const KnownFile& b) {
    if (a.target.descriptor && b.target.descriptor) {
        // Standard output and standard error often go to the same place.
        return a.target.descriptor == b.target.descriptor;
    }
    return a.identity == b.identity && !a.identity.isDevice();
}

[[noreturn]] void refuse(const KnownFile& file, const KnownFile& other) {
    throw UsageError(fmt::format("{}: must not be the same file as {}", file.name, other.name));
}

/// Refuses files that have the name of a frame, in the directory of the frames.
void checkFrames(const std::filesystem::path& directory, const std::vector<KnownFile>& files) {
    const recording::FileIdentity identity(recording::targetOf(directory));
    for (const KnownFile& file : files) {
        const std::filesystem::path& path = file.target.path;
        if (Pictures::isFrame(path.filename()) &&
            recording::FileIdentity({path.parent_path()}) == identity) {
            throw UsageError(
                fmt::format("{}: must not be one of the pictures of --frames", file.name));
        }
    }
}

}  // namespace

void checkFiles(const CommandFiles& files) {
    const std::vector<KnownFile> inputs = inputsOf(files);
    const std::vector<KnownFile> outputs = outputsOf(files);
    for (auto output = outputs.begin(); output != outputs.end(); ++output) {
        for (const KnownFile& input : inputs) {
            if (input.identity == output->identity && !input.identity.isDevice()) {
                refuse(*output, input);
            }
        }
        for (auto other = outputs.begin(); other != output; ++other) {
            if (areMixed(*output, *other)) {
                refuse(*output, *other);
            }
        }
    }
    if (!files.frames_dir.empty()) {
        checkFrames(files.frames_dir, inputs);
        checkFrames(files.frames_dir, outputs);
    }
}

}  // namespace kelvora::tool
