// Names found as Windows finds them: which entry of a folder stands in for a name asked for in
// other letter case, and the Env listing a folder found that way.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Env.h"
#include "platform/TempFolder.h"
#include "platform/Wildcard.h"

namespace qzr::platform {
namespace {

TEST(LetterCase, WhichEntryStandsInForAName) {
    const struct {
        const char* label;
        const char* name;
        std::vector<std::string> entries;  // in the order a folder gives them
        const char* expected;              // null: none
    } rows[] = {
        {"the exact name wins",
         "User-IMM.bnk",
         {"USER-IMM.BNK", "user-imm.bnk", "User-IMM.bnk"},
         "User-IMM.bnk"},
        {"else the first listed: capitals sort first",
         "User-IMM.bnk",
         {"user-imm.bnk", "User-Imm.bnk", "USER-imm.bnk"},
         "USER-imm.bnk"},
        {"only the letter case may differ",
         "User-IMM.bnk",
         {"User-IMM.bnk.bak", "User-IMM.bn"},
         nullptr},
        {"only ASCII letters fold", "\xC4rger.bnk", {"\xE4rger.bnk"}, nullptr},
        {"punctuation 0x20 apart does not fold", "Bank@1", {"bank`1"}, nullptr},
    };
    for (const auto& row : rows) {
        const std::string* found = FindEntryIgnoringCase(row.name, row.entries);
        EXPECT_EQ(found != nullptr ? *found : "(none)",
                  row.expected != nullptr ? row.expected : "(none)")
            << row.label;
    }
}

// The listed paths keep the pattern's folder text, letter case and backslashes as given; the
// entries' own names are as the folder holds them.
TEST(LetterCase, ListingAFolderFoundInOtherCase) {
    const test::TempFolder folder;
    folder.MakeFolder("bank/machine/imm");
    folder.WriteBytes("bank/machine/imm/quillner.bnk", "");
    std::vector<std::string> paths;
    const std::string pattern = folder.path() + "\\Bank\\Machine\\IMM\\*.bnk";
    ASSERT_TRUE(Env::Default()->ListMatches(pattern, &paths));
    EXPECT_EQ(paths,
              std::vector<std::string>{folder.path() + "\\Bank\\Machine\\IMM\\quillner.bnk"});
}

}  // namespace
}  // namespace qzr::platform
