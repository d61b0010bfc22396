#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <string>
#include <vector>

#include "platform/Wildcard.h"

namespace qzr::platform {
namespace {

// The obviously faithful matcher, exponential on purpose-built patterns: the oracle for the
// fast one on short inputs.
bool NaiveMatch(const std::string& pattern, size_t p, const std::string& name, size_t n) {
    if (p == pattern.size()) {
        return n == name.size();
    }
    if (pattern[p] == '*') {
        for (size_t skip = n; skip <= name.size(); ++skip) {
            if (NaiveMatch(pattern, p + 1, name, skip)) {
                return true;
            }
        }
        return false;
    }
    if (n == name.size()) {
        return false;
    }
    const auto upper = [](char c) { return std::toupper(static_cast<unsigned char>(c)); };
    if (pattern[p] != '?' && upper(pattern[p]) != upper(name[n])) {
        return false;
    }
    return NaiveMatch(pattern, p + 1, name, n + 1);
}

struct MatchRow {
    const char* pattern;
    std::string name;
    bool matches;
};

TEST(Wildcard, MatchTable) {
    const MatchRow rows[] = {
        {"*.bnk", "a.bnk", true},
        {"*.bnk", "Maker-One.BNK", true},
        {"*.BNK", "a.bnk", true},
        {"*.bnk", "a.bnkx", false},
        {"*.bnk", "a.bn", false},
        {"*.bnk", ".bnk", true},
        {"*.bnk", "a.bnk.bak", false},
        {"*", ".", true},
        {"*", "..", true},
        {"*", "", true},
        {"", "", true},
        {"", "a", false},
        {"?", "", false},
        {"?.bnk", "ab.bnk", false},
        {"??.bnk", "ab.bnk", true},
        {"a*", "A", true},
        {"*a", "bbba", true},
        {"*ab*cd", "xxabyycd", true},
        {"ab*cd", "abcdcd", true},
        {"ab*cd", "abcdc", false},
        {"**", "x", true},
        {"*.*", "noext", false},
        {"\xC4*", "\xC4rger", true},
        {"\xE4*", "\xC4rger", false},
        {"a*a*a*a*b", std::string(300, 'a'), false},
        {"*a*a*a*a*a*a*a*a*b", std::string(300, 'a') + "b", true},
    };
    for (const MatchRow& row : rows) {
        EXPECT_EQ(WildcardMatch(row.pattern, row.name), row.matches)
            << "pattern '" << row.pattern << "' name '" << row.name << "'";
    }
}

TEST(Wildcard, AgreesWithNaiveMatcher) {
    std::mt19937 random(20240611);
    const std::string patternLetters = "aAb?*.";
    const std::string nameLetters = "aAbB.";
    const auto draw = [&](const std::string& letters, size_t maxLength) {
        std::string text(random() % (maxLength + 1), ' ');
        for (char& c : text) {
            c = letters[random() % letters.size()];
        }
        return text;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::string pattern = draw(patternLetters, 7);
        const std::string name = draw(nameLetters, 9);
        ASSERT_EQ(WildcardMatch(pattern, name), NaiveMatch(pattern, 0, name, 0))
            << "pattern '" << pattern << "' name '" << name << "'";
    }
}

TEST(Wildcard, NtfsNameLessTable) {
    struct Row {
        std::string first;
        std::string second;
        bool less;
    };
    const Row rows[] = {
        {"a.bnk", "B.bnk", true},   {"B.bnk", "a.bnk", false},
        {"Z.bnk", "_x.bnk", true},  // '_' sorts after the capitals once names are upper-cased
        {"_x.bnk", "a.bnk", false}, {"ab", "abc", true},
        {"abc", "ab", false},       {"ABC", "abc", false},
        {"abc", "ABC", false},      {"", "a", true},
        {"Z", "\xE4", true},  // bytes of 128 and above compare unsigned and unfolded
        {"\xC4", "\xE4", true},     {"\xE4", "\xC4", false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(NtfsNameLess(row.first, row.second), row.less)
            << "'" << row.first << "' < '" << row.second << "'";
    }
}

TEST(Wildcard, SortInNtfsOrder) {
    std::vector<std::string> names = {"b.bnk",  "_x.bnk", "a_1.bnk", "..",   "Z.bnk",
                                      "a1.bnk", "a.bnk",  ".",       "A.bnk"};
    SortInNtfsOrder(&names);
    const std::vector<std::string> expected = {".",       "..",    "A.bnk", "a.bnk", "a1.bnk",
                                               "a_1.bnk", "b.bnk", "Z.bnk", "_x.bnk"};
    EXPECT_EQ(names, expected);
}

TEST(Wildcard, PatternParts) {
    struct Row {
        const char* pattern;
        const char* folder;
        const char* name;
    };
    const Row rows[] = {
        {"C:\\Data\\Bank\\Machine\\IMM\\*.bnk", "C:\\Data\\Bank\\Machine\\IMM\\", "*.bnk"},
        {"/srv/banks/*.bnk", "/srv/banks/", "*.bnk"},
        {"/srv/banks\\*.bnk", "/srv/banks\\", "*.bnk"},
        {"a\\b/c?", "a\\b/", "c?"},
        {"*.bnk", "", "*.bnk"},
        {"Bank\\", "Bank\\", ""},
        {"", "", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(PatternFolder(row.pattern), row.folder) << row.pattern;
        EXPECT_EQ(PatternName(row.pattern), row.name) << row.pattern;
    }
}

}  // namespace
}  // namespace qzr::platform
