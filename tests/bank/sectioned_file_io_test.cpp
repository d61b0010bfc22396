// CQZRFileIO, the reference lookup of sectioned banks: how sections and keys are found and
// what a value is.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bank/sectioned/QZRFileIO.h"
#include "bank_test_support.h"

namespace {

using namespace std::string_literals;
using qzr::bank::testing::Lines;
using qzr::bank::testing::TempFolder;

struct LookupRow {
    const char* label;
    std::string content;
    const char* section;
    const char* key;
    std::string expected;  // "1:value", or the result code
};

std::string Lookup(const CQZRFileIO& file, const char* section, const char* key) {
    const char* value = "untouched";
    const int result = file.GetKeyString(section, key, &value);
    return result == CQZRFileIO::kFound ? "1:" + std::string(value)
                                        : std::to_string(result) + ":" + value;
}

TEST(SectionedFileIO, LookupTable) {
    const char* m1 = "[Machine-1]";
    const std::vector<LookupRow> rows = {
        {"plain entry", Lines({m1, "Maker = Harlow"}), m1, "Maker", "1:Harlow"},
        {"LF line ends", Lines({m1, "Maker = Harlow"}, "\n"), m1, "Maker", "1:Harlow"},
        {"[Machine-1] is not [Machine-10]", Lines({"[Machine-10]", "Maker = Ten"}), m1, "Maker",
         "-1:untouched"},
        {"Maker is not MakerID", Lines({m1, "MakerID = 3", "Maker = Real"}), m1, "Maker", "1:Real"},
        {"tab before =", Lines({m1, "PlungerSpeed\t = 1.5"}), m1, "PlungerSpeed", "1:1.5"},
        {"key glued to =, later = in the value", Lines({m1, "Remark=a=b"}), m1, "Remark", "1:a=b"},
        {"only spaces are skipped before a value", Lines({m1, "Remark = \tin  "}), m1, "Remark",
         "1:\tin  "},
        {"nothing after =", Lines({m1, "Remark ="}), m1, "Remark", "1:"},
        {"key line without =", Lines({m1, "Remark"}), m1, "Remark", "1:"},
        {"section names are case-sensitive", Lines({"[fileheader]", "Version = 9000"}),
         "[FileHeader]", "Version", "-1:untouched"},
        {"an indented entry is no entry", Lines({m1, "  Maker = In", "Maker = Out"}), m1, "Maker",
         "1:Out"},
        {"header with text after a blank opens", Lines({"[Machine-1] old", "Maker = H"}), m1,
         "Maker", "1:H"},
        {"header glued to text is another name", Lines({"[Machine-1]x", "Maker = H"}), m1, "Maker",
         "-1:untouched"},
        {"key search runs past the next section",
         Lines({m1, "Maker = A", "[Machine-2]", "Maker = B", "Remark = two"}), m1, "Remark",
         "1:two"},
        {"the first of a repeated section opens the search",
         Lines({m1, "Maker = First", m1, "Maker = Second"}), m1, "Maker", "1:First"},
        {"the header line is not compared with the key", Lines({"Maker", "Maker = x"}), "Maker",
         "Maker", "1:x"},
        {"key before its section", Lines({"Maker = Early", m1}), m1, "Maker", "-1:untouched"},
        {"no such section", Lines({"[Machine-2]", "Maker = B"}), m1, "Maker", "-1:untouched"},
        {"line cut at 511 characters", Lines({m1, "Remark = " + std::string(600, 'r')}), m1,
         "Remark", "1:" + std::string(502, 'r')},
        {"rest of a long line read as a line", Lines({m1, std::string(511, 'x') + "Grade = G"}), m1,
         "Grade", "1:G"},
        {"lone CR belongs to the value", "[Machine-1]\r\nMaker = H\r\r\n", m1, "Maker", "1:H\r"},
        {"NUL ends the line", "[Machine-1]\r\nMaker = Ha\0rlow\r\n"s, m1, "Maker", "1:Ha"},
        {"no section given", Lines({m1, "Maker = A"}), nullptr, "Maker", "-1:untouched"},
        {"no key given", Lines({m1, "Maker = A"}), m1, nullptr, "-1:untouched"},
    };
    TempFolder folder;
    for (const LookupRow& row : rows) {
        SCOPED_TRACE(row.label);
        CQZRFileIO file;
        ASSERT_TRUE(file.OpenFile(folder.Write("lookup.bnk", row.content).c_str()));
        EXPECT_EQ(Lookup(file, row.section, row.key), row.expected);
    }
}

// Every lookup reads the file as it is at that moment.
TEST(SectionedFileIO, OpenFailuresAndChangesBetweenLookups) {
    TempFolder folder;
    CQZRFileIO file;
    EXPECT_FALSE(file.OpenFile(folder.File("missing.bnk").c_str()));
    EXPECT_EQ(Lookup(file, "[Machine-1]", "Maker"), "0:untouched");
    ASSERT_TRUE(file.OpenFile(folder.Write("b.bnk", Lines({"[Machine-1]", "Maker = A"})).c_str()));
    EXPECT_EQ(Lookup(file, "[Machine-1]", "Maker"), "1:A");
    folder.Write("b.bnk", Lines({"[Machine-1]", "Maker = B"}));
    EXPECT_EQ(Lookup(file, "[Machine-1]", "Maker"), "1:B");
    EXPECT_FALSE(file.OpenFile(nullptr)) << "and the earlier path is forgotten";
    EXPECT_EQ(Lookup(file, "[Machine-1]", "Maker"), "0:untouched");
}

}  // namespace
