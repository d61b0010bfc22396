// The exported load/save front, as a host uses it: argument checks and the fallbacks after
// failed user-bank loads.
#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include <functional>
#include <string>
#include <utility>

#include "BankBuilders.h"
#include "DefaultBanks.h"
#include "TempFolder.h"

namespace {

using qzr::test::Contents;
using qzr::test::TempFolder;

using Member = std::function<bool(CQZRMoldingMachineIO&, const char*, CQZRMoldingMachineCtrl*)>;

TEST(Front, MissingArgumentsAreRefusedBeforeAnything) {
    const Member members[] = {
        [](auto& f, auto p, auto c) { return f.LoadOldIMMSystemDatabase(p, c); },
        [](auto& f, auto p, auto c) { return f.LoadOldIMMUserDatabase(p, c); },
        [](auto& f, auto p, auto c) { return f.LoadIMMSystemDatabase(p, c); },
        [](auto& f, auto p, auto c) { return f.LoadIMMUserDatabase(p, c); },
        [](auto& f, auto p, auto c) { return f.LoadRTMSystemDatabase(p, c); },
        [](auto& f, auto p, auto c) { return f.LoadRTMUserDatabase(p, c); },
        [](auto& f, auto p, auto c) { return f.SaveOldIMMUserDatabase(p, c); },
        [](auto& f, auto p, auto c) { return f.SaveIMMUserDatabase(p, c); },
        [](auto& f, auto p, auto c) { return f.SaveRTMUserDatabase(p, c); },
    };
    TempFolder folder;
    CQZRMoldingMachineIO front;
    CQZRMoldingMachineCtrl catalogue = qzr::test::AttributedCatalogue(1, 0, 0);
    for (size_t i = 0; i < std::size(members); ++i) {
        SCOPED_TRACE("member " + std::to_string(i));
        EXPECT_FALSE(members[i](front, nullptr, &catalogue));
        EXPECT_FALSE(members[i](front, folder.File("x.bnk").c_str(), nullptr));
        EXPECT_EQ(Contents(catalogue), "1/0/0");
    }
    char path[8] = "x";
    EXPECT_FALSE(front.GetLoadDatabasePath(path, sizeof path)) << "no reader was made";
    // LoadDatabase and SaveDatabase never do anything.
    EXPECT_FALSE(front.LoadDatabase(folder.Write("u.bnk", "").c_str(), &catalogue, 3));
    EXPECT_FALSE(front.SaveDatabase(folder.File("u.bnk").c_str(), &catalogue, 3));
    EXPECT_FALSE(folder.Exists("u.bnk.bak"));
    EXPECT_FALSE(front.LoadIMMUserDatabase(folder.File("none.bnk").c_str(), &catalogue));
    EXPECT_TRUE(front.GetLoadDatabasePath(path, sizeof path));
    EXPECT_STREQ(path, "") << "nothing records a load path";
}

// A failed user-bank load gives the catalogue the attributes of a new user bank, so that the
// matching save then writes one; the sectioned injection-moulding load has no such fallback.
TEST(Front, FailedUserLoadPreparesANewUserBank) {
    const std::pair<const qzr::test::DefaultBank&, const char*> rows[] = {
        {qzr::test::kLegacyUserBank, "7004/1/0"},
        {qzr::test::kRTMUserBank, "9000/1/1"},
        {qzr::test::kIMMUserBank, "1/2/3"},
    };
    for (const auto& [bank, fallback] : rows) {
        SCOPED_TRACE(fallback);
        TempFolder folder;
        folder.MakeFolder("Bank");
        CQZRMoldingMachineIO front;
        CQZRMoldingMachineCtrl catalogue = qzr::test::AttributedCatalogue(1, 2, 3);
        EXPECT_FALSE(bank.load(front, folder.File("missing.bnk"), &catalogue));
        EXPECT_EQ(Contents(catalogue), fallback) << "the initialized flag is left alone";
        // With no fallback the attributes still name no user bank, and the save refuses.
        EXPECT_EQ(bank.save(front, folder.Folder() + "/", &catalogue), fallback[0] != '1');
    }
}

}  // namespace
