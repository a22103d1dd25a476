// SPDX-License-Identifier: MIT
#include "command_line/bench_command.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "command_line/setting_names.hpp"
#include "kelvora/recording/recording_error.hpp"

namespace kelvora::tool {
namespace {

using testing::HasSubstr;

class BenchCommandTest : public testing::Test {
protected:
    BenchCommandTest() {
        std::string pattern = testing::TempDir() + "bench_XXXXXX";
        folder = mkdtemp(pattern.data());
        write(0);
    }

    ~BenchCommandTest() override { std::filesystem::remove_all(folder); }

    std::string recording() const { return (folder / "events.txt").string(); }
    std::string path(const std::string& name) const { return (folder / name).string(); }

    /// 400 events of one square in 40 ms, 10 per millisecond, followed by the given defects.
    void write(int defects) {
        std::ofstream file(recording());
        for (int i = 0; i < 400; ++i) {
            file << 5000 + i * 100 << ' ' << 10 + i % 10 << ' ' << 20 + i / 10 % 10 << " 1\n";
        }
        for (int i = 0; i < defects; ++i) {
            file << "nonsense\n";
        }
    }

    std::string run(const std::string& arguments) {
        CLI::App program;
        const BenchCommand command(program);
        program.parse("bench " + arguments);
        EXPECT_TRUE(command.isChosen());
        testing::internal::CaptureStdout();
        error = nullptr;
        try {
            EXPECT_EQ(command.run(), 0);
        } catch (const recording::RecordingError&) {
            error = std::current_exception();
        }
        return testing::internal::GetCapturedStdout();
    }

    nlohmann::json runForJson(const std::string& options = "") {
        return nlohmann::json::parse(run(recording() + " --sensor 100x80 --json - " + options));
    }

    /// The message of the last exception.
    std::string message() const {
        try {
            if (error) {
                std::rethrow_exception(error);
            }
        } catch (const recording::RecordingError& caught) {
            return caught.message(optionOf);
        }
        return "";
    }

private:
    std::filesystem::path folder;
    std::exception_ptr error;
};

TEST_F(BenchCommandTest, PrintsARowForEachMethod) {
    const std::string table = run(recording() + " --sensor 100x80");
    EXPECT_THAT(table, HasSubstr("400 events in 5 windows of 10ms, 0.039900 s, 100 x 80 pixels\n"));
    std::istringstream lines(table);
    std::string line;
    std::string names;
    std::size_t length = 0;
    std::getline(lines, line);
    std::getline(lines, line);
    EXPECT_EQ(line, "");
    while (std::getline(lines, line)) {
        EXPECT_EQ(line.size(), length == 0 ? line.size() : length) << line;
        length = line.size();
        names += line.substr(0, line.find(' ')) + ' ';
    }
    EXPECT_EQ(names, "method (reading) grid density2d density3d centroid2d ");
}

TEST_F(BenchCommandTest, WritesFiguresThatAgreeWithOneAnother) {
    const auto json = runForJson("--methods grid,centroid3d --clusters 3");
    EXPECT_EQ(json["format"], "text");
    EXPECT_EQ(json["window_us"], 10'000);
    EXPECT_EQ(json["reading"]["events"], 400);
    EXPECT_EQ(json["reading"]["windows"], 5);
    ASSERT_EQ(json["methods"].size(), 2U);
    EXPECT_EQ(json["methods"][0]["name"], "grid");
    EXPECT_EQ(json["methods"][0]["clusters"], 3);  // too small in the first and last windows
    EXPECT_EQ(json["methods"][1]["clusters"], 15);
    for (const auto& method : json["methods"]) {
        const double seconds = method["seconds"];
        ASSERT_GT(seconds, 0);
        EXPECT_EQ(method["events"], 400);
        EXPECT_EQ(method["windows"], 5);
        EXPECT_NEAR(method["events_per_s"].get<double>() * seconds, 400, 1e-6);
        EXPECT_NEAR(method["windows_per_s"].get<double>() * seconds, 5, 1e-6);
        EXPECT_NEAR(method["real_time_factor"].get<double>() * seconds, 0.0399, 1e-9);
        EXPECT_LE(method["window_median_ms"], method["window_p99_ms"]);
        EXPECT_LE(method["window_p99_ms"].get<double>() * 1e-3, 1.01 * seconds);
        if (!method["peak_memory_bytes"].is_null()) {
            EXPECT_GT(method["peak_memory_bytes"], 1'000'000);
        }
    }
}

TEST_F(BenchCommandTest, TakesThePartOfTheRecordingThatIsAskedFor) {
    const auto json = runForJson("--methods grid --window 5ms --from 10ms --to 20ms");
    EXPECT_EQ(json["reading"]["events"], 100);
    EXPECT_EQ(json["methods"][0]["windows"], 2);
    EXPECT_EQ(json["methods"][0]["recorded_us"], 9900);
}

TEST_F(BenchCommandTest, WritesJsonToAFileBesidesTheTable) {
    const std::string table =
        run(recording() + " --sensor 100x80 --methods grid --json " + path("bench.json"));
    EXPECT_THAT(table, HasSubstr("(reading)"));
    std::ifstream file(path("bench.json"));
    EXPECT_EQ(nlohmann::json::parse(file)["methods"].size(), 1U);
}

TEST_F(BenchCommandTest, ShowsNoRatesWithoutEvents) {
    const auto json = runForJson("--methods grid --from 10s");
    EXPECT_EQ(json["methods"][0]["events"], 0);
    EXPECT_TRUE(json["methods"][0]["events_per_s"].is_null());
    EXPECT_TRUE(json["methods"][0]["window_median_ms"].is_null());
    EXPECT_TRUE(json["reading"]["real_time_factor"].is_null());
}

TEST_F(BenchCommandTest, MeasuresTheEventsBeforeADefectAndThenReportsIt) {
    write(1);
    const auto json = runForJson("--methods grid");
    EXPECT_EQ(json["methods"][0]["events"], 400);
    EXPECT_THAT(message(), HasSubstr(recording() + ": "));
    EXPECT_THAT(message(), HasSubstr("line 401"));
}

TEST_F(BenchCommandTest, RefusesAPipeAsItCannotBeReadAgain) {
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(run(path("pipe") + " --sensor 100x80"), "");
    EXPECT_THAT(message(), HasSubstr("has to be read several times"));
}

TEST_F(BenchCommandTest, NeedsTheSizeOfTheSensor) {
    EXPECT_EQ(run(recording()), "");
    EXPECT_THAT(message(), HasSubstr("--sensor"));
}

TEST_F(BenchCommandTest, RefusesOptionsOfMethodsThatAreNotListed) {
    const std::string command = recording() + " --sensor 100x80 --methods ";
    try {
        run(command + "grid,centroid2d --eps 3");
        FAIL();
    } catch (const CLI::ParseError& refusal) {
        EXPECT_STREQ(refusal.what(), "--eps: is not used with --methods grid,centroid2d");
    }
    EXPECT_THAT(run(command + "grid,density2d --eps 3"), HasSubstr("density2d"));
}

TEST_F(BenchCommandTest, RefusesOptionsThatMakeNoSense) {
    const std::string start = recording() + " --sensor 100x80 ";
    EXPECT_THROW(run(start + "--window 0ms"), CLI::ValidationError);
    EXPECT_THROW(run(start + "--window 2000s"), CLI::ValidationError);
    EXPECT_THROW(run(start + "--methods grid,fast"), CLI::ValidationError);
    EXPECT_THROW(run(start + "--from 2s --to 1s"), CLI::ValidationError);
    EXPECT_THROW(run(start + "--clusters 0"), CLI::ValidationError);
    EXPECT_NO_THROW(run(start + "--window 2000s --methods grid,density2d"));
}

}  // namespace
}  // namespace kelvora::tool
