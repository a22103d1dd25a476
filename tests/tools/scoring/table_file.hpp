// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "support/temporary_directory.hpp"

namespace kelvora::scoring {

/// A file with this content, removed by the destructor.
class TableFile {
public:
    explicit TableFile(const std::string& content) : file(directory.file("table", content)) {}

    const std::filesystem::path& path() const { return file; }

private:
    test::TemporaryDirectory directory;
    std::filesystem::path file;
};

}  // namespace kelvora::scoring
