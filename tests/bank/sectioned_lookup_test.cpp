// Looking values up in sectioned banks: CQZRFileIO, the reference lookup, on crafted lines;
// and the one-pass index of a load, which must answer every (section, key) exactly as
// CQZRFileIO does, on crafted files and on random bank texts.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "BankBuilders.h"
#include "TempFolder.h"
#include "bank/sectioned/QZRFileIO.h"
#include "bank/sectioned/SectionedBankIndex.h"

using qzr::bank::CQZRFileIO;

namespace {

using namespace std::string_literals;
using qzr::bank::SectionedBankIndex;
using qzr::test::Lines;
using qzr::test::TempFolder;

std::string Answer(int result, const char* value) {
    return result == CQZRFileIO::kFound ? "1:" + std::string(value) : std::to_string(result);
}

// Compares every lookup of sections 1..lastSection; returns how many the reference found.
int ExpectSameAsReference(const std::string& path, const std::vector<std::string>& keys,
                          long lastSection) {
    CQZRFileIO reference;
    const bool opened = reference.OpenFile(path.c_str());
    const SectionedBankIndex index(path, keys);
    EXPECT_EQ(index.IsOpen(), opened);
    int found = 0;
    for (long section = 1; section <= lastSection; ++section) {
        const std::string name = "[Machine-" + std::to_string(section) + "]";
        for (size_t slot = 0; slot < keys.size(); ++slot) {
            const char* want = nullptr;
            const char* got = nullptr;
            const int result = reference.GetKeyString(name.c_str(), keys[slot].c_str(), &want);
            const int indexResult = index.GetKeyString(section, slot, &got);
            EXPECT_EQ(Answer(indexResult, got), Answer(result, want)) << name << " " << keys[slot];
            found += result == CQZRFileIO::kFound;
        }
    }
    return found;
}

std::string Lookup(const CQZRFileIO& file, const char* section, const char* key) {
    const char* value = "untouched";
    const int result = file.GetKeyString(section, key, &value);
    return result == CQZRFileIO::kFound ? "1:" + std::string(value)
                                        : std::to_string(result) + ":" + value;
}

// Each row looks up a key of "[Machine-1]" with CQZRFileIO; the index must answer every
// lookup of the row's file as CQZRFileIO does.
TEST(SectionedLookup, CraftedLines) {
    const std::string m1 = "[Machine-1]\r\n";
    const std::string r511 = std::string(511, 'r');
    const struct {
        const char* label;
        std::string content;
        const char* key;
        std::string expected;  // "1:value", or the result code and the untouched value
    } rows[] = {
        {"LF line ends", "[Machine-1]\nMaker = Harlow\n", "Maker", "1:Harlow"},
        {"[Machine-1] is not [Machine-10]", "[Machine-10]\r\nMaker = Ten\r\n", "Maker",
         "-1:untouched"},
        {"names are case-sensitive", "[machine-1]\r\nMaker = x\r\n", "Maker", "-1:untouched"},
        {"Maker is not MakerID", m1 + "MakerID = 3\r\nMaker = Real\r\n", "Maker", "1:Real"},
        {"tab before =", m1 + "PlungerSpeed\t = 1.5\r\n", "PlungerSpeed", "1:1.5"},
        {"key glued to =, later = in the value", m1 + "Remark=a=b\r\n", "Remark", "1:a=b"},
        {"only spaces are skipped before a value", m1 + "Remark = \tin  \r\n", "Remark",
         "1:\tin  "},
        {"nothing after =", m1 + "Remark =\r\n", "Remark", "1:"},
        {"key line without =", m1 + "Remark\r\n", "Remark", "1:"},
        {"an indented entry is no entry", m1 + "  Maker = In\r\nMaker = Out\r\n", "Maker", "1:Out"},
        {"header with text after a blank", "[Machine-1] old\r\nMaker = H\r\n", "Maker", "1:H"},
        {"[Machine-01] and [Machine-+1] are other names",
         "[Machine-01]\r\nMaker = Z\r\n[Machine-+1]\r\nMaker = P\r\n", "Maker", "-1:untouched"},
        {"header glued to text", "[Machine-1]x\r\nMaker = H\r\n", "Maker", "-1:untouched"},
        {"the search runs past the next section", m1 + "[Machine-2]\r\nRemark = 2\r\n", "Remark",
         "1:2"},
        {"the first of a repeated section", m1 + "Maker = 1st\r\n" + m1 + "Maker = 2nd\r\n",
         "Maker", "1:1st"},
        {"key before its section", "Maker = Early\r\n" + m1, "Maker", "-1:untouched"},
        {"lines cut at 511", m1 + "Remark = " + r511 + "\r\n", "Remark", "1:" + r511.substr(9)},
        {"the rest of a long line is a line", m1 + r511 + "Grade = G\r\n", "Grade", "1:G"},
        {"lone CR belongs to the value", m1 + "Maker = H\r\r\n", "Maker", "1:H\r"},
        {"NUL ends the line", m1 + "Maker = Ha\0rlow\r\n"s, "Maker", "1:Ha"},
        {"no key given", m1 + "Maker = A\r\n", nullptr, "-1:untouched"},
    };
    TempFolder folder;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        CQZRFileIO file;
        const std::string path = folder.Write("lookup.bnk", row.content);
        ASSERT_TRUE(file.OpenFile(path.c_str()));
        EXPECT_EQ(Lookup(file, "[Machine-1]", row.key), row.expected);
        EXPECT_EQ(Lookup(file, nullptr, "Maker"), "-1:untouched");
        ExpectSameAsReference(path, {"Maker", "Grade", "Remark", "PlungerSpeed"}, 3);
    }
}

// Lines drawn from the pieces that matter to a lookup: headers near and far from the real
// names, entries with every kind of separator, long lines, stray bytes and line ends.
std::string RandomBankText(std::mt19937& random) {
    static const char* const kHeads[] = {"[Machine-1]",  "[Machine-2]",   "[Machine-3]",
                                         "[Machine-4]",  "[Machine-02]",  "[machine-1]",
                                         "[Machine-1]x", "[Machine-2] y", "[FileHeader]"};
    static const char* const kKeys[] = {"Maker", "Grade",   "Remark", "Controller", "Maker",
                                        "Grade", "MakerID", "maker",  " Maker",     "\tGrade"};
    static const char* const kSeparators[] = {" = ", "=", "\t = ", " =", "  ", "= "};
    static const char* const kValues[] = {"", "1.5", "a=b", "  x ", "\t7", "9000abc", "="};
    static const char* const kEnds[] = {"\r\n", "\r\n", "\r\n", "\n", "\r", "\r\r\n"};
    auto pick = [&random](auto& choices) {
        return choices[std::uniform_int_distribution<size_t>(0, std::size(choices) - 1)(random)];
    };
    std::string text;
    for (int line = std::uniform_int_distribution<int>(1, 40)(random); line > 0; --line) {
        const int kind = std::uniform_int_distribution<int>(0, 59)(random);
        std::string piece = std::string(pick(kKeys)) + pick(kSeparators) + pick(kValues);
        if (kind < 15) piece = pick(kHeads);
        if (kind == 15) piece = std::string(510 + random() % 2, 'L') + pick(kHeads);
        if (kind == 16) piece = "Mak\0er = n"s;
        if (kind == 17) piece = "\x1a";
        text += piece + pick(kEnds);
    }
    return text;
}

TEST(SectionedLookup, IndexAgreesWithTheReferenceOnRandomFiles) {
    TempFolder folder;
    ExpectSameAsReference(folder.File("missing.bnk"), {"Maker"}, 2);
    std::mt19937 random(20240611u);
    int found = 0;
    for (int file = 0; file < 100 && !HasFailure(); ++file) {
        const std::string text = RandomBankText(random);
        SCOPED_TRACE(::testing::PrintToString(text));
        found += ExpectSameAsReference(folder.Write("random.bnk", text),
                                       {"Maker", "Grade", "Remark", "Controller"}, 5);
    }
    EXPECT_GT(found, 150) << "the texts are dense enough that many lookups find a value";
}

}  // namespace
