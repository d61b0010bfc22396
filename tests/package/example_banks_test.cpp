// The example Bank folder under examples/ is what a new host starts from: every bank in it must
// load whole through the exported API, and the user banks must be exactly what the library's own
// writers produce, so that a load followed by a save gives the same file back.
#include <QZRMachine/QZRMachine.h>
#include <gtest/gtest.h>

#include <string>

#include "BankBuilders.h"
#include "DefaultBanks.h"
#include "TempFolder.h"

namespace {

using Ctrl = CQZRMoldingMachineCtrl;
using qzr::test::ReadBytes;

const std::string kBank = std::string(QZR_EXAMPLES_DIR) + "/Bank/";

// Every bank loads whole. A user bank saved into a fresh folder comes back byte for byte, but for
// the sectioned banks' "CreateDate" line, the time of the save. "CreateBy" and "Remark" are not
// read back by the loaders, so the host sets them again, as an editor of the bank would.
TEST(ExampleBanks, EveryBankLoadsAndUserBanksComeBackByteForByte) {
    const qzr::test::TempFolder folder;
    folder.MakeFolder("Bank");
    const std::string out = folder.Folder() + "/";
    using namespace qzr::test;
    const struct {
        const DefaultBank& bank;
        const char* summary;
        const char* remark;  // of a sectioned user bank
    } rows[] = {
        // Folder files load in name order; the first, Hollenvik-Ostrevo.bnk, is of version 9001.
        {kIMMSystemBanks, "Hollenvik 6, Ostrevo 5, Quillner 8, Tessamund 6, Zundrik 6, 9001/0/0+",
         nullptr},
        {kIMMUserBank, "Kemberline 3, Dravinsk 2, Quillner 1, 9000/1/0+",
         "Machines of the moulding shop"},
        {kRTMSystemBanks, "Ivoskar 4, Meribold 4, Trandell 5, 9000/0/1+", nullptr},
        {kRTMUserBank, "Meribold 2, Trandell 1, 9000/1/1+",
         "Transfer presses of the encapsulation line"},
        {kLegacySystemBank, "Yorvane 5, Calvestra 5, Tessamund 2, 7007/0/0+", nullptr},
        {kLegacyUserBank, "Dravinsk 2, Calvestra 2, Kemberline 2, 7007/1/0+", nullptr},
    };
    for (const auto& row : rows) {
        const std::string path = row.bank.name;
        CQZRMoldingMachineIO io;
        Ctrl catalogue;
        ASSERT_TRUE(row.bank.load(io, kBank + path, &catalogue)) << path;
        EXPECT_EQ(Contents(catalogue), row.summary) << path;
        if (row.bank.save == nullptr) {
            continue;
        }
        if (row.remark != nullptr) {
            catalogue.SetFileCreateBy("Process engineering");
            catalogue.SetFileRemark(row.remark);
        }
        ASSERT_TRUE(row.bank.save(io, out, &catalogue)) << path;
        const std::string original = ReadBytes(kBank + path);
        std::string saved = ReadBytes(out + "Bank/" + path);
        const size_t date = original.find("\r\nCreateDate = ");
        if (date != std::string::npos && date < 200) {
            const size_t end = original.find("\r\n", date + 2);
            EXPECT_EQ(saved.find("\r\nCreateDate = "), date) << path;
            saved.replace(date, end - date, original, date, end - date);
        }
        EXPECT_EQ(saved, original) << path;
    }
}

}  // namespace
