// Targets of 255 to 259 characters save: the temporary file and the backup beside them are four
// characters longer, past the classic 260-character limit of Windows paths.
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include "BankBuilders.h"
#include "TempFolder.h"
#include "platform/Env.h"

namespace {

using qzr::test::TempFolder;

// A target of exactly `length` characters under the folder: nested folders of up to 100
// characters (a name may not pass 255 on POSIX), then "User-IMM.bnk". Empty when the temporary
// folder itself is too long for that.
std::string TargetOfLength(const TempFolder& folder, size_t length) {
    const std::string name = "User-IMM.bnk";
    std::string path = folder.Folder();
    if (path.size() + 1 + name.size() + 2 > length) {
        return std::string();
    }
    size_t room = length - path.size() - 1 - name.size();  // folders and their separators
    while (room > 0) {
        // Each folder takes its name and one separator; never leave room for a lone separator.
        size_t part = room > 101 ? 100 : room - 1;
        if (room > 101 && room - 101 < 2) {
            part = 98;
        }
        path += "/" + std::string(part, 'p');
        room -= part + 1;
    }
    std::filesystem::create_directories(path);
    return path + "/" + name;
}

TEST(LongPaths, TargetsUpToTheLimitSaveWithTheirBackupAndLoadBack) {
    qzr::platform::Env* env = qzr::platform::CurrentEnv();
    for (size_t length = 255; length <= 259; ++length) {
        SCOPED_TRACE("target of " + std::to_string(length) + " characters");
        TempFolder folder;
        const std::string target = TargetOfLength(folder, length);
        if (target.empty()) {
            GTEST_SKIP() << "the temporary folder " << folder.Folder() << " is too long";
        }
        ASSERT_EQ(target.size(), length);
        const CQZRMoldingMachineCtrl bank = qzr::test::UserCatalogue(false, 9000, 1);
        CQZRMoldingMachineIO io;
        ASSERT_TRUE(io.SaveIMMUserDatabase(target.c_str(), &bank));
        ASSERT_TRUE(io.SaveIMMUserDatabase(target.c_str(), &bank)) << "the second save backs up";
        EXPECT_TRUE(env->PathExists(target + ".bak"));
        EXPECT_FALSE(env->PathExists(target + ".tmp"));

        CQZRMoldingMachineCtrl loaded;
        ASSERT_TRUE(io.LoadIMMUserDatabase(target.c_str(), &loaded));
        CQZRIM machine;
        ASSERT_TRUE(loaded.GetCurrentMachine(0, machine));
        EXPECT_STREQ(machine.GetGrade(), "G-1000");
        // Windows' own folder removal stops at the classic limit: the library removes what is
        // longer before the folder goes.
        env->RemoveFile(target + ".bak");
        env->RemoveFile(target);
    }
}

}  // namespace
