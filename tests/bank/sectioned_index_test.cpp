// The one-pass index of a load against CQZRFileIO, the lookup it must agree with on every
// (section, key): crafted files with the lookup's quirks, then many random bank texts.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "bank/sectioned/MachineSectionFormat.h"
#include "bank/sectioned/QZRFileIO.h"
#include "bank/sectioned/SectionedBankIndex.h"
#include "platform/CNumbers.h"
#include "sectioned_test_support.h"

namespace {

using namespace std::string_literals;
using qzr::bank::SectionedBankIndex;
using qzr::sectioned::testing::JoinLines;
using qzr::sectioned::testing::ScratchFolder;

std::string Answer(int result, const char* value) {
    return result == 1 ? "1:" + std::string(value) : std::to_string(result);
}

// Every lookup of sections 1..lastSection and every key, by both; returns how many were found.
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
            const char* expected = nullptr;
            const int expectedResult =
                reference.GetKeyString(name.c_str(), keys[slot].c_str(), &expected);
            const std::string want = Answer(expectedResult, expected);
            const char* got = nullptr;
            const int result = index.GetKeyString(section, slot, &got);
            const std::string have = Answer(result, got);
            EXPECT_EQ(have, want) << name << " " << keys[slot];
            found += expectedResult == 1;
        }
    }
    return found;
}

const std::vector<std::string>& IMMKeys() {
    static const std::vector<std::string> keys = qzr::bank::IMMSectionFormat().KeysInReadOrder();
    return keys;
}

TEST(SectionedIndex, AgreesWithTheReferenceOnCraftedFiles) {
    const std::string pad(505, 'p');
    const std::vector<std::pair<const char*, std::string>> files = {
        {"missing keys taken from later sections",
         JoinLines({"[Machine-1]", "Maker = A", "Grade = A1", "", "[Machine-2]", "Maker = B",
                    "Grade = B1", "Remark = only here", "Controller = 4"})},
        {"duplicated section names",
         JoinLines({"[Machine-1]", "Maker = First", "Grade = G1", "[Machine-1]", "Maker = Dup",
                    "Grade = G2", "Remark = r"})},
        {"sections out of order",
         JoinLines({"[Machine-3]", "Maker = C", "[Machine-1]", "Maker = A", "Grade = A1",
                    "[Machine-2]", "Grade = B1", "Maker = B"})},
        {"[Machine-1] and [Machine-10]",
         JoinLines({"[Machine-10]", "Maker = Ten", "[Machine-1]", "Maker = One", "[Machine-01]",
                    "Maker = ZeroOne", "[Machine-11]", "Grade = Eleven"})},
        {"511-character splits", JoinLines({"[Machine-1]", "Remark = " + pad, pad + "Grade = split",
                                            std::string(511, 'q') + "Maker",
                                            "[Machine-2]" + std::string(600, ' '), "Maker = M2"})},
        {"header split off a long line",
         JoinLines({std::string(511, 'z') + "[Machine-1]", "Maker = fromSplit"})},
        {"tabs and = in values",
         JoinLines({"[Machine-1]", "Maker        \t = Tabbed", "Grade\t=\tG=H", "Remark=a=b=c",
                    "\tMaker = hidden", " Grade = hidden", "Controller"})},
        {"LF only", JoinLines({"[Machine-1]", "Maker = A", "Grade = B", "[Machine-2]"}, "\n")},
        {"lone CR and Ctrl-Z",
         "[Machine-1]\rMaker = x\r\n[Machine-1]\r\nMaker = y\r\r\nGrade = g\r\n\x1a[Machine-2]\r\n"
         "Maker = z\r\n"},
        {"NUL bytes",
         "[Machine-1]\r\nMa\0ker = a\r\nMaker = b\0c\r\n\0Grade = g\r\n[Machine-2\0]\r\n"s},
        {"header names that are not machine sections",
         JoinLines({"[Machine-]", "[Machine-+1]", "[Machine--1]", "[Machine-1 ]", "[machine-1]",
                    "[Machine-1]Maker = glued", "Maker = after", "[Machine-99999]", "Grade = g"})},
        {"empty file", ""},
        {"keys but no sections", JoinLines({"Maker = A", "Grade = B"})},
    };
    ScratchFolder folder;
    for (const auto& [label, content] : files) {
        SCOPED_TRACE(label);
        ExpectSameAsReference(folder.Write("crafted.bnk", content), IMMKeys(), 12);
    }
    // A file that cannot be opened: both say so.
    ExpectSameAsReference(folder.File("missing.bnk"), IMMKeys(), 2);
}

TEST(SectionedIndex, SectionsBeyondTheLimitAreNeverAnswered) {
    ScratchFolder folder;
    const std::string path = folder.Write(
        "limit.bnk", JoinLines({"[Machine-65535]", "[Machine-65536]", "Maker = M", "Grade = G"}));
    const SectionedBankIndex index(path, {"Maker"});
    const char* value = nullptr;
    ASSERT_EQ(index.GetKeyString(65535, 0, &value), 1);
    EXPECT_STREQ(value, "M");
    EXPECT_EQ(index.GetKeyString(65536, 0, &value), -1);
    EXPECT_EQ(index.GetKeyString(0, 0, &value), -1);
    EXPECT_EQ(index.GetKeyString(-1, 0, &value), -1);
    EXPECT_EQ(index.GetKeyString(65535, 1, &value), -1);
}

// Random small bank texts from a fixed seed: every (section, key) lookup of both must agree.
class RandomBankText {
  public:
    explicit RandomBankText(uint32_t seed) : m_random(seed) {}

    std::string Next() {
        std::string text;
        const int lines = Pick(1, 40);
        for (int i = 0; i < lines; ++i) {
            text += Line();
            text += LineEnd();
        }
        return text;
    }

    static const std::vector<std::string>& Keys() {
        static const std::vector<std::string> keys = {"Maker", "Grade", "Remark", "Controller",
                                                      "PlungerSpeed"};
        return keys;
    }

  private:
    int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    template <size_t N>
    const char* OneOf(const char* const (&choices)[N]) {
        return choices[Pick(0, static_cast<int>(N) - 1)];
    }

    std::string Header() {
        const std::string n = std::to_string(Pick(1, 6));
        switch (Pick(0, 9)) {
            case 0:
                return "[Machine-0" + n + "]";
            case 1:
                return "[machine-" + n + "]";
            case 2:
                return "[Machine-" + n + "] trailing";
            case 3:
                return "[Machine-" + n + "]x";
            case 4:
                return "[FileHeader]";
            default:
                return "[Machine-" + n + "]";
        }
    }

    std::string Entry() {
        static const char* const kOtherKeys[] = {"MakerID", "Grad", "maker", "Remarks"};
        static const char* const kSeparators[] = {
            " = ", "=", "\t = ", "        \t = ", " =", "  ", "= "};
        static const char* const kValues[] = {"",    "1.5",         "a=b",     "  spaced ",
                                              "\t7", "Harlow-Form", "-3x",     "0.000000",
                                              "=",   "  ",          "x y z\t", "9000abc"};
        std::string key = Pick(0, 5) == 0 ? OneOf(kOtherKeys) : Keys()[Pick(0, 4)];
        std::string line = key + OneOf(kSeparators) + OneOf(kValues);
        if (Pick(0, 12) == 0) {
            line = std::string(Pick(1, 2), Pick(0, 1) ? ' ' : '\t') + line;
        }
        return line;
    }

    std::string Line() {
        switch (Pick(0, 19)) {
            case 0:
                return "";
            case 1:
                // A long line whose rest, after 511 characters, starts with a token.
                return std::string(511 - Pick(0, 2), 'L') + (Pick(0, 1) ? Entry() : Header());
            case 2:
                return Pick(0, 3) == 0 ? "\x1a" : std::string("Mak\0er = n", 10);
            case 3:
            case 4:
            case 5:
            case 6:
                return Header();
            default:
                return Entry();
        }
    }

    const char* LineEnd() {
        switch (Pick(0, 9)) {
            case 0:
                return "\n";
            case 1:
                return "\r";
            case 2:
                return "\r\r\n";
            default:
                return "\r\n";
        }
    }

    std::mt19937 m_random;
};

TEST(SectionedIndex, AgreesWithTheReferenceOnRandomBankTexts) {
    ScratchFolder folder;
    RandomBankText generator(20240611u);
    int found = 0;
    for (int file = 0; file < 300; ++file) {
        SCOPED_TRACE("random file " + std::to_string(file));
        const std::string text = generator.Next();
        found += ExpectSameAsReference(folder.Write("random.bnk", text), RandomBankText::Keys(), 7);
        if (HasFailure()) {
            ADD_FAILURE() << "text: " << ::testing::PrintToString(text);
            break;
        }
    }
    // The texts are dense enough that most lookups find something.
    EXPECT_GT(found, 1000);
}

}  // namespace
