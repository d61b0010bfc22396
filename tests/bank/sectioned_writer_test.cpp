// Machines of the other kind in a catalogue: they count in TotalMachine but get no section, and
// leave a gap in the numbering where a later reading of the file stops; the legacy writer gives
// them no row.
#include <gtest/gtest.h>

#include <string>

#include <QZRMachine/QZRMachine.h>

#include "BankBuilders.h"
#include "FixedClock.h"
#include "TempFolder.h"

namespace {

std::string SectionNumbers(const std::string& text) {
    std::string numbers;
    for (size_t at = text.find("[Machine-"); at != std::string::npos;
         at = text.find("[Machine-", at + 1)) {
        numbers += text.substr(at + 9, text.find(']', at) - at - 9) + " ";
    }
    return numbers;
}

TEST(SectionedWriter, OtherKindLeavesGapsInTheNumbering) {
    const qzr::test::FixedClock clock;
    CQZRMoldingMachineCtrl catalogue = qzr::test::AttributedCatalogue(9000, 1, 0);
    for (const char* maker : {"Harlow", "Ostrava", "Kessling"}) {
        CQZRIM imm;
        CQZRRTM rtm;
        imm.SetMaker(maker);
        rtm.SetMaker(maker);
        // The file type decides the kind of a new maker group: Ostrava's is transfer moulding.
        catalogue.SetFileType(maker[0] == 'O' ? 1 : 0);
        maker[0] == 'O' ? catalogue.AddMachine(rtm) : catalogue.AddMachine(imm);
    }
    const qzr::test::TempFolder folder;
    folder.MakeFolder("Bank");
    const std::string root = folder.Folder() + "/";
    CQZRMoldingMachineIO io;
    catalogue.SetFileType(0);
    ASSERT_TRUE(io.SaveIMMUserDatabase(folder.File("User-IMM.bnk").c_str(), &catalogue));
    catalogue.SetFileType(1);
    ASSERT_TRUE(io.SaveRTMUserDatabase(root.c_str(), &catalogue));
    const std::string imm = folder.Read("User-IMM.bnk");
    EXPECT_NE(imm.find("TotalMachine = 3\r\n"), std::string::npos);
    EXPECT_EQ(SectionNumbers(imm), "1 3 ");
    EXPECT_EQ(SectionNumbers(folder.Read("Bank/User-RTMIC.bnk")), "2 ");
    CQZRMoldingMachineCtrl reloaded;
    ASSERT_TRUE(io.LoadIMMUserDatabase(folder.File("User-IMM.bnk").c_str(), &reloaded));
    EXPECT_EQ(reloaded.GetTotalMachine(), 1);

    catalogue.SetFileVersion(7007);
    catalogue.SetFileType(0);
    ASSERT_TRUE(io.SaveOldIMMUserDatabase(root.c_str(), &catalogue));
    const std::string legacy = folder.Read("Bank/user-pro.bnk");
    EXPECT_NE(legacy.find("\r\n1,Harlow,,,"), std::string::npos);
    EXPECT_NE(legacy.find("\r\n1,Kessling,,,"), std::string::npos);
    EXPECT_EQ(legacy.find("Ostrava"), std::string::npos);
}

}  // namespace
