// CQZRFileIO, the reference lookup of sectioned banks: how sections and keys are found and
// what a value is.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bank/sectioned/QZRFileIO.h"
#include "sectioned_test_support.h"

namespace {

using namespace std::string_literals;
using qzr::sectioned::testing::JoinLines;
using qzr::sectioned::testing::ScratchFolder;

struct LookupRow {
    const char* label;
    std::string content;
    const char* section;
    const char* key;
    int result;
    std::string value;  // checked when found
};

TEST(SectionedFileIO, LookupTable) {
    const std::string longLine = "Remark = " + std::string(600 - 9, 'r');
    const std::string splitKey = std::string(511, 'x') + "Grade = continued";
    const std::vector<LookupRow> rows = {
        {"plain entry", JoinLines({"[Machine-1]", "Maker = Harlow"}), "[Machine-1]", "Maker", 1,
         "Harlow"},
        {"LF line ends", JoinLines({"[Machine-1]", "Maker = Harlow"}, "\n"), "[Machine-1]", "Maker",
         1, "Harlow"},
        {"[Machine-1] is not found at [Machine-10]", JoinLines({"[Machine-10]", "Maker = Ten"}),
         "[Machine-1]", "Maker", -1, ""},
        {"[Machine-10] is not found at [Machine-1]", JoinLines({"[Machine-1]", "Maker = One"}),
         "[Machine-10]", "Maker", -1, ""},
        {"Maker does not match MakerID", JoinLines({"[Machine-1]", "MakerID = 3", "Maker = Real"}),
         "[Machine-1]", "Maker", 1, "Real"},
        {"tab between PlungerSpeed and =", JoinLines({"[Machine-1]", "PlungerSpeed\t = 1.5"}),
         "[Machine-1]", "PlungerSpeed", 1, "1.5"},
        {"Maker, eight spaces and a tab", JoinLines({"[Machine-1]", "Maker        \t = Ostrava"}),
         "[Machine-1]", "Maker", 1, "Ostrava"},
        {"second = stays in the value", JoinLines({"[Machine-1]", "Remark = a=b"}), "[Machine-1]",
         "Remark", 1, "a=b"},
        {"tab after = stays", JoinLines({"[Machine-1]", "Remark =\tindented"}), "[Machine-1]",
         "Remark", 1, "\tindented"},
        {"trailing blanks stay", JoinLines({"[Machine-1]", "Remark = spaced  \t"}), "[Machine-1]",
         "Remark", 1, "spaced  \t"},
        {"nothing after =", JoinLines({"[Machine-1]", "Remark ="}), "[Machine-1]", "Remark", 1, ""},
        {"key line without =", JoinLines({"[Machine-1]", "Remark"}), "[Machine-1]", "Remark", 1,
         ""},
        {"key right before =", JoinLines({"[Machine-1]", "Remark=tight"}), "[Machine-1]", "Remark",
         1, "tight"},
        {"[fileheader] does not open [FileHeader]", JoinLines({"[fileheader]", "Version = 9000"}),
         "[FileHeader]", "Version", -1, ""},
        {"entry that begins with spaces is no entry",
         JoinLines({"[Machine-1]", "  Maker = Indented", "Maker = Second"}), "[Machine-1]", "Maker",
         1, "Second"},
        {"header with text after a space still opens",
         JoinLines({"[Machine-1] old entry", "Maker = Harlow"}), "[Machine-1]", "Maker", 1,
         "Harlow"},
        {"header glued to text is another name", JoinLines({"[Machine-1]x", "Maker = Harlow"}),
         "[Machine-1]", "Maker", -1, ""},
        {"missing key taken from a later section",
         JoinLines({"[Machine-1]", "Maker = A", "", "[Machine-2]", "Maker = B", "Remark = two"}),
         "[Machine-1]", "Remark", 1, "two"},
        {"first occurrence of a duplicated section opens the search",
         JoinLines({"[Machine-1]", "Maker = First", "[Machine-1]", "Maker = Second"}),
         "[Machine-1]", "Maker", 1, "First"},
        {"the header line is not compared with the key", JoinLines({"Maker", "Maker = x"}), "Maker",
         "Maker", 1, "x"},
        {"key before its section is not seen",
         JoinLines({"Maker = Early", "[Machine-1]", "Grade = G"}), "[Machine-1]", "Maker", -1, ""},
        {"empty file", "", "[Machine-1]", "Maker", -1, ""},
        {"no such section", JoinLines({"[Machine-2]", "Maker = B"}), "[Machine-1]", "Maker", -1,
         ""},
        {"line of 600 characters is cut at 511", JoinLines({"[Machine-1]", longLine}),
         "[Machine-1]", "Remark", 1, std::string(511 - 9, 'r')},
        {"rest of a long line is scanned as a line", JoinLines({"[Machine-1]", splitKey}),
         "[Machine-1]", "Grade", 1, "continued"},
        {"lone CR belongs to the value", "[Machine-1]\r\nMaker = Harlow\r\r\n", "[Machine-1]",
         "Maker", 1, "Harlow\r"},
        {"Ctrl-Z ends the file", "[Machine-1]\r\n\x1aMaker = Hidden\r\n", "[Machine-1]", "Maker",
         -1, ""},
        {"NUL ends the line text", "[Machine-1]\r\nMaker = Ha\0rlow\r\n"s, "[Machine-1]", "Maker",
         1, "Ha"},
        {"no section name given", JoinLines({"[Machine-1]", "Maker = A"}), nullptr, "Maker", -1,
         ""},
        {"no key given", JoinLines({"[Machine-1]", "Maker = A"}), "[Machine-1]", nullptr, -1, ""},
    };
    ScratchFolder folder;
    for (const LookupRow& row : rows) {
        SCOPED_TRACE(row.label);
        const std::string path = folder.Write("lookup.bnk", row.content);
        CQZRFileIO file;
        ASSERT_TRUE(file.OpenFile(path.c_str()));
        const char* value = "untouched";
        EXPECT_EQ(file.GetKeyString(row.section, row.key, &value), row.result);
        if (row.result == 1) {
            EXPECT_EQ(std::string(value), row.value);
        } else {
            EXPECT_STREQ(value, "untouched");
        }
    }
}

TEST(SectionedFileIO, GetKeyIntParsesTheStartOfTheValue) {
    struct IntRow {
        const char* value;
        int result;
        int expected;
        bool converted;
    };
    const IntRow rows[] = {
        {"9000", 1, 9000, true}, {"9000abc", 1, 9000, true}, {"  -12", 1, -12, true},
        {"+7", 1, 7, true},      {"abc", 1, 55, false},      {"", 1, 55, false},
        {"\t42", 1, 42, true},   {"4.9", 1, 4, true},
    };
    ScratchFolder folder;
    for (const IntRow& row : rows) {
        SCOPED_TRACE(std::string("value '") + row.value + "'");
        const std::string path = folder.Write(
            "int.bnk", JoinLines({"[FileHeader]", std::string("Version = ") + row.value}));
        CQZRFileIO file;
        ASSERT_TRUE(file.OpenFile(path.c_str()));
        int number = 55;
        bool converted = !row.converted;
        EXPECT_EQ(file.GetKeyInt("[FileHeader]", "Version", &number, &converted), row.result);
        EXPECT_EQ(number, row.expected);
        EXPECT_EQ(converted, row.converted);
    }
}

TEST(SectionedFileIO, OpenFailuresAndChangesBetweenLookups) {
    ScratchFolder folder;
    CQZRFileIO file;
    EXPECT_FALSE(file.OpenFile(folder.File("missing.bnk").c_str()));
    EXPECT_FALSE(file.OpenFile(nullptr));
    const char* value = nullptr;
    int number = 3;
    EXPECT_EQ(file.GetKeyString("[Machine-1]", "Maker", &value), 0);
    EXPECT_EQ(file.GetKeyInt("[Machine-1]", "Maker", &number), 0);
    EXPECT_EQ(number, 3);

    const std::string path = folder.Write("bank.bnk", JoinLines({"[Machine-1]", "Maker = A"}));
    ASSERT_TRUE(file.OpenFile(path.c_str()));
    ASSERT_EQ(file.GetKeyString("[Machine-1]", "Maker", &value), 1);
    EXPECT_STREQ(value, "A");
    // Nothing is cached: the next lookup sees the file as it is now.
    folder.Write("bank.bnk", JoinLines({"[Machine-1]", "Maker = B"}));
    ASSERT_EQ(file.GetKeyString("[Machine-1]", "Maker", &value), 1);
    EXPECT_STREQ(value, "B");
    std::filesystem::remove(path);
    EXPECT_EQ(file.GetKeyString("[Machine-1]", "Maker", &value), 0);
    // A failed OpenFile forgets the earlier path.
    folder.Write("bank.bnk", JoinLines({"[Machine-1]", "Maker = C"}));
    EXPECT_FALSE(file.OpenFile(folder.File("other.bnk").c_str()));
    EXPECT_EQ(file.GetKeyString("[Machine-1]", "Maker", &value), 0);
}

}  // namespace
