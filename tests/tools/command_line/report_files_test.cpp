// SPDX-License-Identifier: MIT
#include "command_line/report_files.hpp"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

class ReportFilesTest : public testing::Test {
protected:
    /// Writes a report and returns the printed text.
    std::string output(const std::filesystem::path& json, bool is_complete = true) const {
        testing::internal::CaptureStdout();
        {
            ReportFiles files({json, {}});
            files.write("table\n", {{"figure", 1}});
            if (is_complete) {
                files.close();
            }
        }
        return testing::internal::GetCapturedStdout();
    }

    test::TemporaryDirectory directory;
    const std::filesystem::path path = directory.file("report.json");
};

TEST_F(ReportFilesTest, PrintsTheTable) {
    EXPECT_EQ(output(""), "table\n");
}

TEST_F(ReportFilesTest, WritesJsonToAFile) {
    EXPECT_EQ(output(path), "table\n");
    EXPECT_EQ(test::contentOf(path), "{\n  \"figure\": 1\n}\n");
}

TEST_F(ReportFilesTest, PrintsJsonInsteadOfTheTable) {
    EXPECT_EQ(output("-"), "{\n  \"figure\": 1\n}\n");
}

TEST_F(ReportFilesTest, ReplacesBytesThatAreNotUtf8) {
    ReportFiles files({path, {}});
    files.write("", {{"recording", "a\xe9.bin"}});
    files.close();
    EXPECT_EQ(test::contentOf(path), "{\n  \"recording\": \"a\xef\xbf\xbd.bin\"\n}\n");
}

TEST_F(ReportFilesTest, KeepsAnIncompleteReportAsPartial) {
    output(path, false);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(test::contentOf(directory.file("report.json.partial")), "{\n  \"figure\": 1\n}\n");
}

TEST_F(ReportFilesTest, HasOptions) {
    CLI::App program;
    ReportOptions options;
    declareOptions(program, options);
    program.parse("--json a --no-overwrite");
    EXPECT_EQ(options.json, "a");
    EXPECT_FALSE(options.write.overwrite);
}

}  // namespace
}  // namespace kelvora::tool
