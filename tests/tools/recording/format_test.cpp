// SPDX-License-Identifier: MIT
#include "recording/format.hpp"

#include <gmock/gmock.h>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

using ::testing::HasSubstr;

TEST(Format, HasANameThatLeadsBackToIt) {
    for (const Format format : {Format::Records, Format::Text, Format::Evt2, Format::Evt3}) {
        EXPECT_EQ(formatFromString(toString(format)), format);
    }
    EXPECT_EQ(toString(Format::Evt3), "evt3");
    EXPECT_FALSE(formatFromString("EVT3"));
    EXPECT_FALSE(formatFromString(""));
}

TEST(Format, FollowsFromTheExtensionOfAFileToWrite) {
    EXPECT_EQ(formatFromExtension("a/street.events.bin"), Format::Records);
    EXPECT_EQ(formatFromExtension("street.txt"), Format::Text);
    EXPECT_EQ(formatFromExtension("street.CSV"), Format::Text);
    EXPECT_EQ(formatFromExtension("street.raw"), Format::Evt3);
    EXPECT_EQ(formatFromExtension("street.evt3.raw"), Format::Evt3);
    EXPECT_EQ(formatFromExtension("street.evt2.raw"), Format::Evt2);
    EXPECT_EQ(formatFromExtension("street.Evt2"), Format::Evt2);
}

TEST(Format, DoesNotFollowFromOtherNames) {
    for (const char* name : {"street", "street.hdf5", "txt", "street.raw/", "dir.txt/street"}) {
        EXPECT_THROW(formatFromExtension(name), RecordingError) << name;
    }
}

TEST(Format, IsRefusedWithTheExtensionsToChooseFrom) {
    try {
        formatFromExtension("street.h5");
        FAIL();
    } catch (const RecordingError& error) {
        EXPECT_THAT(error.what(),
                    HasSubstr("street.h5: has a name without the extension of a supported format"));
        EXPECT_THAT(error.what(), HasSubstr(".bin"));
    }
}

}  // namespace
}  // namespace kelvora::recording
