// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace kelvora::scoring {

/// A file with this content, as long as it lives.
class TableFile {
public:
    explicit TableFile(const std::string& content)
        : file(std::filesystem::path(testing::TempDir()) /
               ("kelvora_table_" + std::to_string(::getpid()) + "_" + std::to_string(++count))) {
        std::ofstream(file, std::ios::binary) << content;
    }
    ~TableFile() { std::filesystem::remove(file); }
    TableFile(const TableFile&) = delete;
    TableFile& operator=(const TableFile&) = delete;

    const std::filesystem::path& path() const { return file; }

private:
    inline static int count = 0;
    std::filesystem::path file;
};

}  // namespace kelvora::scoring
