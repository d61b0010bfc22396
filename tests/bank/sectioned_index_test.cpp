// The one-pass index of a load must answer every (section, key) exactly as CQZRFileIO does:
// crafted files with the lookup's quirks, then random bank texts.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "bank/sectioned/MachineSectionFormat.h"
#include "bank/sectioned/QZRFileIO.h"
#include "bank/sectioned/SectionedBankIndex.h"
#include "bank_test_support.h"
#include "platform/CNumbers.h"

namespace {

using namespace std::string_literals;
using qzr::bank::SectionedBankIndex;
using qzr::bank::testing::Lines;
using qzr::bank::testing::TempFolder;

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
        const std::string name = qzr::platform::FormatC("[Machine-%ld]", section);
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

TEST(SectionedIndex, AgreesWithTheReferenceOnCraftedFiles) {
    const std::string pad(505, 'p');
    const std::pair<const char*, std::string> files[] = {
        {"keys taken from later sections",
         Lines({"[Machine-1]", "Maker = A", "", "[Machine-2]", "Maker = B", "Remark = r"})},
        {"repeated and unordered sections",
         Lines({"[Machine-3]", "Maker = C", "[Machine-1]", "Grade = A1", "[Machine-1]",
                "Maker = Dup", "[Machine-2]", "Grade = B1"})},
        {"names that are not machine n",
         Lines({"[Machine-10]", "Maker = Ten", "[Machine-01]", "Maker = Z", "[Machine-]",
                "[Machine-+1]", "[machine-1]", "[Machine-1 ]", "[Machine-1]Maker = glued",
                "Maker = after", "[Machine-99999]", "Grade = g"})},
        {"511-character pieces", Lines({"[Machine-1]", "Remark = " + pad, pad + "Grade = split",
                                        std::string(511, 'z') + "[Machine-2]",
                                        "[Machine-3]" + std::string(600, ' '), "Maker = M"})},
        {"tabs, blanks and = in values",
         Lines({"[Machine-1]", "Maker        \t = T", "Grade\t=\tG=H", "\tMaker = hidden",
                " Grade = hidden", "Controller"})},
        {"line ends, Ctrl-Z and NUL",
         "[Machine-1]\rMaker = x\r\n[Machine-1]\nMaker = y\r\r\nGra\0de = g\r\n\x1a[Machine-2]\r\n"s},
        {"no sections", Lines({"Maker = A", "Grade = B"})},
    };
    TempFolder folder;
    const std::vector<std::string> keys = qzr::bank::IMMSectionFormat().KeysInReadOrder();
    for (const auto& [label, content] : files) {
        SCOPED_TRACE(label);
        ExpectSameAsReference(folder.Write("crafted.bnk", content), keys, 12);
    }
    ExpectSameAsReference(folder.File("missing.bnk"), keys, 2);
}

TEST(SectionedIndex, SectionsBeyond65535AreNeverAnswered) {
    TempFolder folder;
    const SectionedBankIndex index(
        folder.Write("limit.bnk", Lines({"[Machine-65535]", "[Machine-65536]", "Maker = M"})),
        {"Maker"});
    const char* value = nullptr;
    ASSERT_EQ(index.GetKeyString(65535, 0, &value), CQZRFileIO::kFound);
    EXPECT_STREQ(value, "M");
    for (long section : {65536L, 0L, -1L}) {
        EXPECT_EQ(index.GetKeyString(section, 0, &value), CQZRFileIO::kNotFound) << section;
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

TEST(SectionedIndex, AgreesWithTheReferenceOnRandomBankTexts) {
    TempFolder folder;
    std::mt19937 random(20240611u);
    const std::vector<std::string> keys = {"Maker", "Grade", "Remark", "Controller"};
    int found = 0;
    for (int file = 0; file < 100 && !HasFailure(); ++file) {
        const std::string text = RandomBankText(random);
        SCOPED_TRACE(::testing::PrintToString(text));
        found += ExpectSameAsReference(folder.Write("random.bnk", text), keys, 5);
    }
    EXPECT_GT(found, 150) << "the texts are dense enough that many lookups find a value";
}

}  // namespace
