// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kelvora::test {

/// A unique directory, removed with its contents, because tests run in parallel.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "kelvora_XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary directory can be created");
        }
        directory = name;
    }
    ~TemporaryDirectory() { std::filesystem::remove_all(directory); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return directory; }

    std::filesystem::path file(std::string_view name) const { return directory / name; }

    /// Writes a file.
    std::filesystem::path file(std::string_view name, std::string_view content) const {
        std::ofstream(directory / name, std::ios::binary) << content;
        return directory / name;
    }

    /// Number of files and directories directly in it.
    std::size_t fileCount() const {
        const std::filesystem::directory_iterator files(directory);
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

private:
    std::filesystem::path directory;
};

/// The whole content of a file.
inline std::string contentOf(const std::filesystem::path& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

}  // namespace kelvora::test
