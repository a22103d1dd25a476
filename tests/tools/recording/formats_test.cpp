// SPDX-License-Identifier: MIT
#include "kelvora/recording/formats.hpp"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;

TEST(Formats, HaveDistinctNames) {
    const std::vector<std::string> names = readableFormats();
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
    EXPECT_THAT(names, IsSupersetOf({"records", "text", "evt2", "evt3"}));
}

TEST(Formats, CanBeReadIfTheyCanBeWritten) {
    EXPECT_THAT(readableFormats(), IsSupersetOf(writableFormats()));
    EXPECT_THAT(writableFormats(), Not(IsEmpty()));
}

TEST(FormatFromExtension, FollowsFromTheExtensionOfAFileToWrite) {
    EXPECT_EQ(formatFromExtension("a/street.events.bin"), "records");
    EXPECT_EQ(formatFromExtension("street.txt"), "text");
    EXPECT_EQ(formatFromExtension("street.CSV"), "text");
    EXPECT_EQ(formatFromExtension("street.raw"), "evt3");
    EXPECT_EQ(formatFromExtension("street.evt3.raw"), "evt3");
    EXPECT_EQ(formatFromExtension("street.evt2.raw"), "evt2");
    EXPECT_EQ(formatFromExtension("street.Evt2"), "evt2");
}

TEST(FormatFromExtension, DoesNotFollowFromOtherNames) {
    for (const char* name : {"street", "street.hdf5", "txt", "street.raw/", "dir.txt/street"}) {
        EXPECT_THROW(formatFromExtension(name), RecordingError) << name;
    }
}

TEST(FormatFromExtension, IsRefusedWithTheExtensionsToChooseFrom) {
    try {
        formatFromExtension("street.h5");
        FAIL();
    } catch (const RecordingError& error) {
        EXPECT_THAT(error.what(),
                    EndsWith("street.h5: has a name without the extension of a supported format, "
                             "use .bin (records), .txt or .csv (text), .evt2.raw or .evt3.raw"));
    }
}

}  // namespace
}  // namespace kelvora::recording
