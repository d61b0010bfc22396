// Looking values up in sectioned banks: CQZRFileIO, the reference lookup, on crafted lines;
// and the one-pass index of a load, which must answer every (section, key) exactly as
// CQZRFileIO does, on crafted files and on random bank texts.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "DataRows.h"
#include "TempFolder.h"
#include "bank/sectioned/QZRFileIO.h"
#include "bank/sectioned/SectionedBankIndex.h"

using qzr::bank::CQZRFileIO;

namespace {

using namespace std::string_literals;
using qzr::bank::SectionedBankIndex;
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

// Each row of tests/data/lookups.txt looks up a key of "[Machine-1]" with CQZRFileIO; the index
// must answer every lookup of the row's file as CQZRFileIO does.
TEST(SectionedLookup, CraftedLines) {
    const std::vector<qzr::test::DataRow> rows = qzr::test::ReadDataRows("lookups.txt");
    ASSERT_FALSE(rows.empty());
    TempFolder folder;
    for (const qzr::test::DataRow& row : rows) {  // key, answer, bank
        SCOPED_TRACE(row.where);
        CQZRFileIO file;
        const std::string path = folder.Write("lookup.bnk", row.fields[2]);
        ASSERT_TRUE(file.OpenFile(path.c_str()));
        const std::string& key = row.fields[0];
        EXPECT_EQ(Lookup(file, "[Machine-1]", key == "-" ? nullptr : key.c_str()), row.fields[1]);
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
    // Sections and values enough that the index's storage grows past its first blocks.
    std::string large;
    for (int section = 1; section <= 300; ++section) {
        large += "[Machine-" + std::to_string(section) +
                 "]\r\nMaker = " + std::string(section % 6 * 95, 'm') + std::to_string(section) +
                 "\r\nGrade = G\r\n";
    }
    EXPECT_EQ(ExpectSameAsReference(folder.Write("large.bnk", large), {"Maker", "Grade"}, 301),
              600);
}

}  // namespace
