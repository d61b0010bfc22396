// The name rule: case is ignored, nothing else is, and a null text equals nothing.
#include <clocale>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "platform/CaseFolding.h"
#include "records/NameRule.h"
#include "records/RecordAttributes.h"

namespace qzr::records::testing {
namespace {

// The rule as plainly as it can be said: fold a copy of each text, compare the copies.
bool NaiveNamesEqual(const char* first, const char* second) {
    if (first == nullptr || second == nullptr) {
        return false;
    }
    return platform::FoldCase(first) == platform::FoldCase(second);
}

struct NameCase {
    const char* label;
    const char* first;
    const char* second;
    bool equal;
};

const NameCase kNameCases[] = {
    {"same text", "Kestrel", "Kestrel", true},
    {"capitals against small letters", "Maker", "MAKER", true},
    {"mixed case both sides", "kEsTrEl WoRkS", "KeStReL wOrKs", true},
    {"whole alphabet", "ABCDEFGHIJKLMNOPQRSTUVWXYZ", "abcdefghijklmnopqrstuvwxyz", true},
    {"trailing blank", "Maker ", "Maker", false},
    {"leading blank", " Maker", "Maker", false},
    {"inner blank", "Ma ker", "Maker", false},
    {"two blanks against one", "Ma  ker", "Ma ker", false},
    {"punctuation counts", "X-100", "X_100", false},
    {"neighbours of the capitals", "@[", "`{", false},
    {"digits are not letters", "K90", "K9O", false},
    {"empty against empty", "", "", true},
    {"empty against text", "", "A", false},
    {"null first", nullptr, "Maker", false},
    {"null second", "Maker", nullptr, false},
    {"both null", nullptr, nullptr, false},
    {"null against empty", nullptr, "", false},
    {"same bytes above 127", "\xC4\xD6\xFF", "\xC4\xD6\xFF", true},
    {"single-byte accented capital stays", "\xC4", "\xE4", false},
    {"multibyte letter beside ASCII case", "\xC3\x84rger Press", "\xC3\x84RGER PRESS", true},
    {"multibyte capital stays", "\xC3\x84", "\xC3\xA4", false},
    {"long names, case only", "Northbridge Plastics Machinery Corporation",
     "NORTHBRIDGE plastics MACHINERY corporation", true},
    {"long names, one letter", "Northbridge Plastics Machinery Corporation",
     "Northbridge Plastics Machinery Corporatiom", false},
};

TEST(NameRule, Table) {
    for (const NameCase& c : kNameCases) {
        EXPECT_EQ(NamesEqual(c.first, c.second), c.equal) << c.label;
        EXPECT_EQ(NamesEqual(c.second, c.first), c.equal) << c.label << " (swapped)";
        EXPECT_EQ(NaiveNamesEqual(c.first, c.second), c.equal) << c.label << " (plain rule)";
        EXPECT_EQ(OpenIM::IsConsistent(c.first, c.second), c.equal) << c.label << " (record)";
    }
}

// The library starts in the "C" locale; other locales are the host's business, and the rule
// must agree with the plain fold-and-compare in them too.
class ScopedLocale {
  public:
    explicit ScopedLocale(const char* name)
        : previous_(std::setlocale(LC_ALL, nullptr)), active_(std::setlocale(LC_ALL, name)) {}
    ~ScopedLocale() { std::setlocale(LC_ALL, previous_.c_str()); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;
    bool active() const { return active_ != nullptr; }

  private:
    std::string previous_;
    const char* active_;
};

// Pairs of the same length (the interesting ones) built from letters, their non-letter
// neighbours, and bytes that start or continue multibyte characters.
void ExpectAgreementWithPlainRule(const char* locale) {
    static const char kAlphabet[] = "AaBbZz@[`{ -\xC3\x84\xA4\xFF\x81";
    const size_t alphabetSize = sizeof kAlphabet - 1;
    std::mt19937 random(20240611u);
    std::uniform_int_distribution<size_t> pick(0, alphabetSize - 1);
    std::uniform_int_distribution<size_t> length(0, 24);
    int equalPairs = 0;
    for (int i = 0; i < 4000; ++i) {
        std::string first(length(random), ' ');
        for (char& c : first) {
            c = kAlphabet[pick(random)];
        }
        std::string second = first;
        for (char& c : second) {
            if (random() % 3 == 0) {
                const unsigned char byte = static_cast<unsigned char>(c);
                c = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z')
                        ? static_cast<char>(byte ^ 0x20)
                        : c;
            }
        }
        if (random() % 4 == 0 && !second.empty()) {
            second[random() % second.size()] = kAlphabet[pick(random)];
        }
        const bool expected = NaiveNamesEqual(first.c_str(), second.c_str());
        equalPairs += expected ? 1 : 0;
        ASSERT_EQ(NamesEqual(first.c_str(), second.c_str()), expected)
            << locale << ": '" << first << "' against '" << second << "'";
    }
    EXPECT_GT(equalPairs, 1000) << "the pairs should exercise both answers";
}

TEST(NameRule, AgreesWithPlainRuleInCLocale) {
    ScopedLocale locale("C");
    ASSERT_TRUE(locale.active());
    ExpectAgreementWithPlainRule("C");
}

TEST(NameRule, AgreesWithPlainRuleInUtf8Locale) {
    ScopedLocale locale("C.UTF-8");
    if (!locale.active()) {
        GTEST_SKIP() << "no C.UTF-8 locale on this system";
    }
    ExpectAgreementWithPlainRule("C.UTF-8");
}

}  // namespace
}  // namespace qzr::records::testing
