// SPDX-License-Identifier: MIT
#include "recording/output_file.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <thread>

#include "kelvora/recording/recording_error.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

class OutputFileTest : public ::testing::Test {
protected:
    OutputFileTest() {
        options.on_partial = [this](const std::filesystem::path& name) {
            partials.push_back(name.filename().string());
        };
    }

    std::string errorOf(const std::filesystem::path& name) const {
        try {
            OutputFile file(name, options);
            file.write("new");
            file.close();
        } catch (const RecordingError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryDirectory directory;
    std::filesystem::path path = directory.file("a", "old");
    std::filesystem::path partial = directory.file("a.partial");
    WriteOptions options;
    std::vector<std::string> partials;
};

TEST_F(OutputFileTest, ReplacesAFileAtTheEnd) {
    OutputFile file(path, options);
    file.writeHeader("new ");
    file.write("content");
    EXPECT_EQ(test::contentOf(path), "old");
    file.close();
    EXPECT_EQ(test::contentOf(path), "new content");
    EXPECT_EQ(directory.fileCount(), 1U);
    EXPECT_NO_THROW(file.close());
}

TEST_F(OutputFileTest, KeepsTheContentBeforeAFailureAsPartial) {
    {
        OutputFile file(path, options);
        file.writeHeader("head ");
        file.write("content");
    }
    EXPECT_EQ(test::contentOf(path), "old");
    EXPECT_EQ(test::contentOf(partial), "head content");
    EXPECT_EQ(partials, std::vector<std::string>{"a.partial"});
    EXPECT_EQ(directory.fileCount(), 2U);
}

TEST_F(OutputFileTest, KeepsNoHeaderAlone) {
    { OutputFile(path, options).writeHeader("head"); }
    EXPECT_EQ(test::contentOf(path), "old");
    EXPECT_EQ(directory.fileCount(), 1U);
    EXPECT_TRUE(partials.empty());
}

TEST_F(OutputFileTest, CompletesAFileWithNothingButAHeader) {
    OutputFile file(path, options);
    file.writeHeader("head");
    file.close();
    EXPECT_EQ(test::contentOf(path), "head");
}

TEST_F(OutputFileTest, IgnoresExceptionsOfTheCallbackForPartialFiles) {
    options.on_partial = [](const std::filesystem::path&) { throw std::runtime_error("no"); };
    { OutputFile(path, options).write("new"); }
    EXPECT_EQ(test::contentOf(partial), "new");
}

TEST_F(OutputFileTest, ReplacesNothingUnlessAllowedTo) {
    options.overwrite = false;
    EXPECT_EQ(errorOf(path), path.string() + ": exists already, choose another name");
    EXPECT_EQ(errorOf(directory.file("b")), "");
    EXPECT_EQ(test::contentOf(path), "old");
    EXPECT_EQ(directory.fileCount(), 2U);
}

TEST_F(OutputFileTest, ReplacesNoFileThatAppearsMeanwhileUnlessAllowedTo) {
    options.overwrite = false;
    {
        OutputFile file(directory.file("b"), options);
        file.write("new");
        directory.file("b", "of another program");
        EXPECT_THROW(file.close(), RecordingError);
    }
    EXPECT_EQ(test::contentOf(directory.file("b")), "of another program");
    EXPECT_EQ(test::contentOf(directory.file("b.partial")), "new");
}

TEST_F(OutputFileTest, WritesThroughSymbolicLinks) {
    std::filesystem::create_symlink("a", directory.file("link"));
    EXPECT_EQ(errorOf(directory.file("link")), "");
    EXPECT_EQ(test::contentOf(path), "new");
    EXPECT_EQ(std::filesystem::read_symlink(directory.file("link")), "a");
}

TEST_F(OutputFileTest, CreatesTheFileOfALinkThatLeadsNowhere) {
    std::filesystem::create_symlink("b", directory.file("link"));
    options.overwrite = false;
    EXPECT_EQ(errorOf(directory.file("link")), "");
    EXPECT_EQ(test::contentOf(directory.file("b")), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(directory.file("link")));
}

TEST_F(OutputFileTest, LeavesOtherNamesOfAFileAlone) {
    std::filesystem::create_hard_link(path, directory.file("b"));
    EXPECT_EQ(errorOf(path), "");
    EXPECT_EQ(test::contentOf(path), "new");
    EXPECT_EQ(test::contentOf(directory.file("b")), "old");
}

TEST_F(OutputFileTest, RefusesDirectoriesAndPathsWhereNothingCanBeCreated) {
    EXPECT_THAT(errorOf(directory.path()), HasSubstr(": cannot be created (Is a directory), "));
    EXPECT_THAT(errorOf(directory.file("no/b")), HasSubstr("(No such file or directory)"));
    EXPECT_THAT(errorOf(directory.file("b/")), HasSubstr(": cannot be created ("));
    EXPECT_THAT(errorOf(path / "b"), HasSubstr("(Not a directory)"));
    EXPECT_THAT(errorOf(""), HasSubstr("(No such file or directory)"));
    EXPECT_EQ(directory.fileCount(), 1U);
}

TEST_F(OutputFileTest, RefusesLinksWithoutEnd) {
    std::filesystem::create_symlink("link", directory.file("link"));
    EXPECT_THAT(errorOf(directory.file("link")), HasSubstr("(Too many levels of symbolic links)"));
}

TEST_F(OutputFileTest, RefusesFilesThatAreReadOnly) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "permissions do not apply to root";
    }
    std::filesystem::permissions(path, std::filesystem::perms(0444));
    EXPECT_THAT(errorOf(path), EndsWith(": cannot be created (Permission denied), check the path "
                                        "and its permissions"));
    EXPECT_EQ(test::contentOf(path), "old");
}

TEST_F(OutputFileTest, RefusesDirectoriesThatAreReadOnly) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "permissions do not apply to root";
    }
    std::filesystem::permissions(directory.path(), std::filesystem::perms(0555));
    const std::string remedy = "(Permission denied), check the permissions of its directory";
    EXPECT_THAT(errorOf(path), EndsWith(": cannot be replaced " + remedy));
    EXPECT_THAT(errorOf(directory.file("b")), EndsWith(": cannot be created " + remedy));
    std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
    EXPECT_EQ(test::contentOf(path), "old");
}

TEST_F(OutputFileTest, WritesDevicesDirectly) {
    options.overwrite = false;
    EXPECT_EQ(errorOf("/dev/null"), "");
    EXPECT_EQ(errorOf("/dev/full"),
              "/dev/full: cannot be written (No space left on device), check the free space of the "
              "disk");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(OutputFileTest, WritesPipesDirectly) {
    const std::filesystem::path pipe = directory.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::string content;
    std::thread reader([&] { content = test::contentOf(pipe); });
    EXPECT_EQ(errorOf(pipe), "");
    reader.join();
    EXPECT_EQ(content, "new");
}

TEST_F(OutputFileTest, AppendsToFilesThatAreOpenAlready) {
    const int opened = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    const std::string name = "/dev/fd/" + std::to_string(opened);
    EXPECT_EQ(errorOf(name), "");
    ::close(opened);
    EXPECT_EQ(test::contentOf(path), "oldnew");
    EXPECT_THAT(errorOf(name), HasSubstr("cannot be "));
}

TEST_F(OutputFileTest, NamesStandardOutputInWords) {
    EXPECT_EQ(OutputFile("-").name(), "standard output");
    EXPECT_EQ(OutputFile(path).name(), path.string());
}

TEST_F(OutputFileTest, SaysThatTheReaderOfAPipeHasEnded) {
    int ends[2] = {};
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ::close(ends[0]);
    const auto old_handler = std::signal(SIGPIPE, SIG_IGN);
    try {
        OutputFile("/dev/fd/" + std::to_string(ends[1])).write("new");
        FAIL();
    } catch (const RecordingError& error) {
        EXPECT_EQ(error.kind(), ErrorKind::ReaderEnded);
    }
    static_cast<void>(std::signal(SIGPIPE, old_handler));
    ::close(ends[1]);
}

/// While this exists, files end after so many bytes, as with `ulimit -f`.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t bytes) : old_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &old_limit), 0);
        const rlimit limit{bytes, old_limit.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~SizeLimit() {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &old_limit), 0);
        static_cast<void>(std::signal(SIGXFSZ, old_handler));
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

private:
    rlimit old_limit{};
    void (*old_handler)(int);
};

TEST_F(OutputFileTest, NeverCompletesAFileAfterAFailedWrite) {
    OutputFile file(path, options);
    {
        const SizeLimit limit(6);
        try {
            file.write("new content");
            FAIL();
        } catch (const RecordingError& error) {
            EXPECT_THAT(error.what(), EndsWith(": cannot be written (File too large), check the "
                                               "limit on the size of files"));
        }
    }
    EXPECT_NO_THROW(file.close());
    EXPECT_EQ(test::contentOf(path), "old");
    EXPECT_EQ(test::contentOf(partial), "new co");
}

/// While this exists, signals arrive again and again.
class Alarm {
public:
    Alarm() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        EXPECT_EQ(::sigaction(SIGALRM, &action, &old_action), 0);
        const itimerval often{{0, 1000}, {0, 1000}};
        EXPECT_EQ(::setitimer(ITIMER_REAL, &often, nullptr), 0);
    }
    ~Alarm() {
        const itimerval never{};
        EXPECT_EQ(::setitimer(ITIMER_REAL, &never, nullptr), 0);
        EXPECT_EQ(::sigaction(SIGALRM, &old_action, nullptr), 0);
    }
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;

private:
    struct sigaction old_action {};
};

TEST_F(OutputFileTest, LetsSignalsEndTheWaitForAReader) {
    const std::filesystem::path pipe = directory.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    int signals = 0;
    options.on_signal = [&] {
        if (++signals == 3) {
            throw std::runtime_error("enough");
        }
    };
    const Alarm alarm;
    EXPECT_THROW(OutputFile(pipe, options), std::runtime_error);
    EXPECT_EQ(signals, 3);
}

TEST_F(OutputFileTest, LetsSignalsEndTheWaitForRoomInAPipe) {
    int ends[2] = {};
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    options.on_signal = [] { throw std::runtime_error("enough"); };
    {
        OutputFile file("/dev/fd/" + std::to_string(ends[1]), options);
        const Alarm alarm;
        EXPECT_THROW(file.write(std::string(1'000'000, 'x')), std::runtime_error);
    }
    ::close(ends[0]);
    ::close(ends[1]);
}

}  // namespace
}  // namespace kelvora::recording
