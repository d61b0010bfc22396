// Enumeration rules (wildcards against a naive matcher, NTFS order, names found in other letter
// case), and the Env of the platform: listing, backslash paths, and copies that never destroy
// their source.
#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "DataRows.h"
#include "TempFolder.h"
#include "platform/Env.h"
#include "platform/Wildcard.h"

namespace qzr::platform {
namespace {

// The obviously faithful matcher, exponential on purpose-built patterns: the oracle.
bool NaiveMatch(std::string_view pattern, std::string_view name) {
    if (pattern.empty()) {
        return name.empty();
    }
    if (pattern[0] == '*') {
        for (size_t skip = 0; skip <= name.size(); ++skip) {
            if (NaiveMatch(pattern.substr(1), name.substr(skip))) {
                return true;
            }
        }
        return false;
    }
    const auto upper = [](char c) { return std::toupper(static_cast<unsigned char>(c)); };
    return !name.empty() && (pattern[0] == '?' || upper(pattern[0]) == upper(name[0])) &&
           NaiveMatch(pattern.substr(1), name.substr(1));
}

TEST(Wildcard, AgreesWithNaiveMatcher) {
    // Bytes above 127 never fold; long runs of stars must not take exponential time.
    EXPECT_FALSE(WildcardMatch("\344*", "\304rger"));
    EXPECT_FALSE(WildcardMatch("a*a*a*a*b", std::string(300, 'a')));
    EXPECT_TRUE(WildcardMatch("*a*a*a*a*a*a*a*a*b", std::string(300, 'a') + "b"));
    std::mt19937 random(20240611);
    const auto draw = [&](const std::string& letters, size_t maxLength) {
        std::string text(random() % (maxLength + 1), ' ');
        for (char& c : text) {
            c = letters[random() % letters.size()];
        }
        return text;
    };
    for (int i = 0; i < 3000; ++i) {
        const std::string pattern = draw("aAb?*.", 7);
        const std::string name = draw("aAbB.", 9);
        ASSERT_EQ(WildcardMatch(pattern, name), NaiveMatch(pattern, name))
            << "'" << pattern << "' on '" << name << "'";
    }
}

// Upper-cased, then byte by byte (bytes above 127 unsigned and unfolded); names equal once
// upper-cased follow in byte order.
TEST(Wildcard, NtfsOrder) {
    std::vector<std::string> names = {"b.bnk",  "\344a", "_x.bnk", "..",    "Z.bnk",  "\304b",
                                      "a1.bnk", "a.bnk", ".",      "A.bnk", "a_1.bnk"};
    SortInNtfsOrder(&names);
    const std::vector<std::string> expected = {".",      "..",      "A.bnk", "a.bnk",
                                               "a1.bnk", "a_1.bnk", "b.bnk", "Z.bnk",
                                               "_x.bnk", "\304b",   "\344a"};
    EXPECT_EQ(names, expected);
}

// Which entry of a folder stands in for a name asked for in other letter case, as Windows finds
// names: the rows of tests/data/letter_case.txt.
TEST(LetterCase, WhichEntryStandsInForAName) {
    const std::vector<test::DataRow> rows = test::ReadDataRows("letter_case.txt");
    ASSERT_FALSE(rows.empty());
    for (const test::DataRow& row : rows) {  // name, entry found or -, the folder's entries
        const std::vector<std::string> entries(row.fields.begin() + 2, row.fields.end());
        const std::string* found = FindEntryIgnoringCase(row.fields[0], entries);
        EXPECT_EQ(found != nullptr ? *found : "-", row.fields[1]) << row.where;
    }
}

using test::TempFolder;

bool WriteFile(const std::string& path, WriteMode mode, const std::string& bytes) {
    std::unique_ptr<WritableFile> file = CurrentEnv()->OpenForWriting(path, mode);
    return file && file->Append(bytes.data(), bytes.size()) && file->Close();
}

TEST(Env, ListMatchesInNtfsOrder) {
    TempFolder folder;
    for (const char* name : {"b.bnk", "A.BNK", "_x.bnk", "Z.bnk", "c.txt", "d.bnk.bak"}) {
        folder.Write(name, "");
    }
    folder.MakeFolder("sub.bnk");  // folders that match are listed too
    folder.Write("bank/machine/imm/quillner.bnk", "");
    const std::string dir = folder.Folder() + "/";
    const struct {
        std::string folder;  // kept in every path as given, backslashes and letter case included
        const char* name;
        std::vector<std::string> names;  // empty: false, nothing listed
    } rows[] = {
        {dir, "*.bnk", {"A.BNK", "b.bnk", "sub.bnk", "Z.bnk", "_x.bnk"}},
        {dir,
         "*",
         {".", "..", "A.BNK", "b.bnk", "bank", "c.txt", "d.bnk.bak", "sub.bnk", "Z.bnk", "_x.bnk"}},
        {folder.Folder() + "\\", "?.BnK", {"A.BNK", "b.bnk", "Z.bnk"}},
        {dir, "*.xyz", {}},
        {dir + "nowhere/", "*.bnk", {}},
        {folder.Folder() + "\\Bank\\Machine\\IMM\\",
         "*.bnk",
         {"quillner.bnk"}},  // found in other case
    };
    for (const auto& row : rows) {
        std::vector<std::string> expected;
        for (const std::string& name : row.names) {
            expected.push_back(row.folder + name);
        }
        std::vector<std::string> paths = {"stale"};
        EXPECT_EQ(Env::Default()->ListMatches(row.folder + row.name, &paths), !expected.empty())
            << row.folder << row.name;
        EXPECT_EQ(paths, expected) << row.folder << row.name;
    }
}

// Backslash paths reach the files they name; a copy onto itself is refused (it would empty the
// source); a folder does not open as a file.
TEST(Env, BackslashPathsAndCopies) {
    TempFolder folder;
    const std::string bank = folder.Folder() + "\\User-IMM.bnk";
    Env* env = Env::Default();
    EXPECT_TRUE(WriteFile(bank, WriteMode::kTruncate, "a\r\n"));
    EXPECT_TRUE(WriteFile(bank, WriteMode::kAppend, "\032b"));
    EXPECT_FALSE(env->CopyFileReplacing(bank, folder.File("User-IMM.bnk"))) << "onto itself";
    EXPECT_TRUE(env->CopyFileReplacing(bank, bank + ".bak"));
    EXPECT_EQ(folder.Read("User-IMM.bnk.bak"), "a\r\n\032b");
    EXPECT_TRUE(env->RenameReplacing(bank + ".bak", bank));
    EXPECT_EQ(folder.Read("User-IMM.bnk"), "a\r\n\032b");
    EXPECT_FALSE(env->PathExists(bank + ".bak"));
    EXPECT_EQ(env->OpenForReading(folder.Folder()), nullptr) << "a folder";
}

}  // namespace
}  // namespace qzr::platform
