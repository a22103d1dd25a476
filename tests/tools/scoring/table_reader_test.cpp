// SPDX-License-Identifier: MIT
#include "scoring/table_reader.hpp"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "kelvora/recording/recording_error.hpp"
#include "tools/scoring/table_file.hpp"

namespace kelvora::scoring {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// The column b of all rows.
std::vector<std::int64_t> columnB(const std::string& content) {
    const TableFile file(content);
    TableReader table(file.path(), {"b"});
    std::vector<std::int64_t> values;
    while (table.next()) {
        values.push_back(table.wholeNumber("b"));
    }
    return values;
}

/// The message without the name of the file.
std::string errorOf(const std::string& content) {
    const TableFile file(content);
    try {
        TableReader table(file.path(), {"b"});
        while (table.next()) {
            static_cast<void>(table.wholeNumber("b"));
        }
    } catch (const recording::RecordingError& error) {
        const std::string message = error.what();
        EXPECT_THAT(message, testing::StartsWith(file.path().string() + ": "));
        return message.substr(file.path().string().size() + 2);
    }
    return "";
}

TEST(TableReader, FindsColumnsByName) {
    EXPECT_THAT(columnB("a,b\n1,2\n3,4\n"), ElementsAre(2, 4));
    EXPECT_THAT(columnB("b,a\n1,2\n3,4\n"), ElementsAre(1, 3));
}

TEST(TableReader, AcceptsBlanksBlankLinesCarriageReturnsAndNoNewlineAtTheEnd) {
    EXPECT_THAT(columnB("a , b\r\n1, 2\r\n\r\n 3 ,4"), ElementsAre(2, 4));
    EXPECT_THAT(columnB("\xEF\xBB\xBF"
                        "b\n-7\n"),
                ElementsAre(-7));
}

TEST(TableReader, OfAHeaderAloneHasNoRows) {
    EXPECT_TRUE(columnB("a,b\n").empty());
}

TEST(TableReader, ReadsJsonLinesWithMembersInAnyOrder) {
    EXPECT_THAT(columnB("{\"a\": 1, \"b\": 2}\r\n\n{\"b\": 4, \"c\": [1], \"a\": null}"),
                ElementsAre(2, 4));
}

TEST(TableReader, ReadsNumbersExactlyFromCsvAndJson) {
    for (const std::string content :
         {"t,x\n18446744073709551615,0.1\n", "{\"t\":18446744073709551615,\"x\":0.1}\n"}) {
        const TableFile file(content);
        TableReader table(file.path(), {});
        ASSERT_TRUE(table.next());
        EXPECT_EQ(table.countingNumber("t"), 18'446'744'073'709'551'615U);
        EXPECT_EQ(table.number("x"), 0.1);
        EXPECT_TRUE(table.has("x"));
        EXPECT_FALSE(table.has("y"));
        EXPECT_FALSE(table.next());
    }
}

TEST(TableReader, ReadsATableThatIsLongerThanItsBuffer) {
    std::string content = "a,b\n";
    for (int i = 0; i < 50'000; ++i) {
        content += "0," + std::to_string(i) + "\n";
    }
    const std::vector<std::int64_t> values = columnB(content);
    ASSERT_EQ(values.size(), 50'000U);
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(values[i], static_cast<std::int64_t>(i));
    }
}

TEST(TableReader, CanBeEndedBetweenThePiecesOfATable) {
    std::string content = "b\n";
    for (int i = 0; i < 100'000; ++i) {
        content += "1\n";
    }
    const TableFile file(content);
    bool is_over = false;
    TableReader table(file.path(), {"b"}, [&is_over] {
        if (is_over) {
            throw std::domain_error("over");
        }
    });
    is_over = true;
    EXPECT_THROW(
        {
            while (table.next()) {
            }
        },
        std::domain_error);
}

TEST(TableReader, RefusesAFileThatIsMissingOrEmpty) {
    EXPECT_THROW(TableReader("/nowhere/table.csv", {}), recording::RecordingError);
    EXPECT_THAT(errorOf(""), HasSubstr("is empty, give a CSV file"));
    EXPECT_THAT(errorOf(" \r\n\n"), HasSubstr("is empty, give a CSV file"));
}

TEST(TableReader, NamesAColumnThatIsMissing) {
    EXPECT_EQ(
        errorOf("a,c\n1,2\n"),
        "has no column b, line 1, name the columns in the first line, with commas in between");
    EXPECT_EQ(errorOf("{\"a\":1}\n"),
              "has no column b, line 1, give each row a member of this name");
    EXPECT_EQ(errorOf("{\"b\":1}\n{\"a\":1}\n"),
              "has a row without 'b', line 2, give each row the members of the first");
}

TEST(TableReader, RefusesAColumnNamedTwice) {
    EXPECT_EQ(errorOf("b,a,a\n1,2,3\n"), "has two columns 'a', line 1, rename one of them");
}

TEST(TableReader, RefusesARowWithTheWrongNumberOfFields) {
    const std::string remedy = "give each row as many fields as the header";
    EXPECT_EQ(errorOf("a,b\n1,2\n\n3\n"), "has 1 fields instead of 2, line 4, " + remedy);
    EXPECT_EQ(errorOf("a,b\n1,2,3\n"), "has 3 fields instead of 2, line 2, " + remedy);
    EXPECT_EQ(errorOf("a,b\n1,2,\n"), "has 3 fields instead of 2, line 2, " + remedy);
}

TEST(TableReader, RefusesFieldsThatAreNotNumbers) {
    for (const std::string field : {"", "x", "1.5", "1x", "+1", "0x1", "99999999999999999999"}) {
        EXPECT_EQ(errorOf(fmt::format("a,b\n1,{}\n", field)),
                  fmt::format("has b = '{}', which is not a whole number, line 2, correct the line",
                              field));
    }
    EXPECT_THAT(errorOf("{\"b\":null}\n"), HasSubstr("has b = 'null'"));
    EXPECT_THAT(errorOf("b\n\x01" + std::string(100, 'y') + "\n"),
                HasSubstr("has b = '?yyyyyyyyyyyyyyyyyyyyyyy...'"));
}

TEST(TableReader, RefusesNumbersThatAreInfiniteOrNegativeWhereTheyMustNotBe) {
    const TableFile file("x,t\nnan,-1\ninf,1.0\n1e999,\n");
    TableReader table(file.path(), {});
    while (table.next()) {
        EXPECT_THROW(table.number("x"), recording::RecordingError);
        EXPECT_THROW(table.countingNumber("t"), recording::RecordingError);
    }
}

TEST(TableReader, RefusesLinesThatAreNotJsonObjects) {
    for (const std::string line : {"{\"b\":", "1,2", "[1]", "{\"b\":1}}"}) {
        EXPECT_EQ(errorOf("{\"b\":1}\n" + line + "\n"),
                  "has a line that is not a JSON object, line 2, give one object per line");
    }
    EXPECT_THAT(errorOf("{b\n"), HasSubstr("not a JSON object, line 1"));
}

TEST(TableReader, RefusesALineWithoutEnd) {
    EXPECT_THAT(errorOf("b\n" + std::string(300'000, '1')), HasSubstr("a line of more than 65536"));
    EXPECT_THROW(TableReader("/dev/zero", {"b"}), recording::RecordingError);
}

}  // namespace
}  // namespace kelvora::scoring
