// Loading legacy tabular banks from real files: markers, the version line, the row ID rules
// of the two loaders, the file attributes a load sets, and the refusals.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "bank/QZRMoldingMachineReader.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "legacy_test_support.h"

namespace qzr::legacy {
namespace {

using testing::CrLfLines;
using testing::InjectionMachines;
using testing::LegacyFields;
using testing::ScratchFolder;

enum class Loader { kSystem, kUser };

bool Load(Loader loader, CQZRMoldingMachineReader& reader, const std::string& path,
          CQZRMoldingMachineCtrl* catalogue) {
    return loader == Loader::kSystem ? reader.ReadOldIMMSystemDatabase(path.c_str(), catalogue)
                                     : reader.ReadOldIMMUserDatabase(path.c_str(), catalogue);
}

// "maker/grade" of every machine, in catalogue order.
std::string Names(const CQZRMoldingMachineCtrl& catalogue) {
    std::string names;
    for (const CQZRIM& machine : InjectionMachines(catalogue)) {
        names += names.empty() ? "" : " ";
        names += std::string(machine.GetMaker()) + "/" + machine.GetGrade();
    }
    return names;
}

// The head of a user bank as the writer writes it, up to and including its marker line.
const std::string kUserHead7007 =
    CrLfLines({"[Header]", "Version,7007", "", "[Format]", "ID,Maker,Grade,Remark,...",
               "Unit,,,,ton,g", "", "[Database]"});

std::string UserHead(const char* version) {
    return CrLfLines({"[Header]", std::string("Version,") + version, "", "[Database]"});
}

std::string SystemHead(const char* version) {
    return CrLfLines({"[Header],,,,,,,,,", std::string("Version,") + version + ",,,,,,,,,",
                      "TotalNo,2,,,,,,,,,", "ID,Maker,Grade,Remark,,,,,,", "[Database],,,,,,,,,"});
}

// A 7005-layout row with the given ID text, maker and grade.
std::string Row7005(const char* id, const char* maker, const char* grade) {
    return std::string(id) + "," + maker + "," + grade +
           ",,100.00, 50.50,180.00, 95.30, 32.00,140.00,0.01,0.1,  0.00,2500.00,0,  1.00,0,"
           "  0.00,  0.00,  0.00,  0.00,  0.00,  0.00";
}

struct ScanCase {
    const char* label;
    Loader loader;
    std::string content;
    bool result;
    const char* names;  // the machines loaded, "maker/grade" in order
    int fileVersion;    // the catalogue's file version afterwards
};

TEST(LegacyLoader, ScanCases) {
    const ScanCase cases[] = {
        {"a written user bank loads every row", Loader::kUser,
         kUserHead7007 +
             CrLfLines({Row7005("1", "Alpha", "A-100"), Row7005("1", "Beta", "B-2"), "[EOF]"}),
         true, "Alpha/A-100 Beta/B-2", 7007},
        {"user rows whose ID is not 1 are passed over; an ID that does not convert carries",
         Loader::kUser,
         kUserHead7007 + CrLfLines({Row7005("2", "Two", "T2"), Row7005("1", "One", "O1"),
                                    Row7005("x", "Carried", "C1"), Row7005("3", "Three", "T3"),
                                    Row7005(" ", "After3", "A3"), "[EOF]"}),
         true, "One/O1 Carried/C1", 7007},
        {"a first user row without an ID has ID 0", Loader::kUser,
         kUserHead7007 + CrLfLines({Row7005("x", "NoId", "N1"), Row7005("1", "One", "O1")}), true,
         "One/O1", 7007},
        {"the system loader takes every ID", Loader::kSystem,
         SystemHead("7006") + CrLfLines({"2,Kappa,K-1,,10,20,30,40,25,100",
                                         "x,Lambda,L-1,r,1,2,3,4,5,6", "[EOF],,,,,,,,,"}),
         true, "Kappa/K-1 Lambda/L-1", 7006},
        {"a row holding Version sets the file version and is not loaded", Loader::kUser,
         kUserHead7007 +
             CrLfLines({Row7005("1", "Alpha", "A-100"), "1,5,Beta,a Version remark,1,2,3,4,5,6",
                        "1,Base,B-1,,1,2,3,4,5,6", "[EOF]"}),
         true, "Alpha/A-100 Base/B-1", 5},
        {"a Version row without a number sets the last number read", Loader::kUser,
         kUserHead7007 + CrLfLines({"1,Version,B,,1,2,3,4,5,6", Row7005("1", "Alpha", "A-1")}),
         true, "Alpha/A-1", 7007},
        {"TotalNo after the header fails the user load; earlier rows stay", Loader::kUser,
         kUserHead7007 +
             CrLfLines({Row7005("1", "Alpha", "A-100"), "TotalNo,3", Row7005("1", "Beta", "B")}),
         false, "Alpha/A-100", 7007},
        {"TotalNo means nothing to the system loader", Loader::kSystem,
         SystemHead("7006") + CrLfLines({"1,Kappa,K-1,,10,20,30,40,25,100", "TotalNo,3",
                                         "1,Mu,M-1,,10,20,30,40,25,100"}),
         true, "Kappa/K-1 Mu/M-1", 7006},
        {"the user loader finds its rows after [IMMDatabase]", Loader::kUser,
         CrLfLines({"[Header]", "Version,7004", "", "[IMMDatabase]",
                    "1,Nu,N-1,,1,2,3,4,5,6,0.02,0.2,3,1800", "[EOF]"}),
         true, "Nu/N-1", 7004},
        {"the system loader needs [Database]", Loader::kSystem,
         CrLfLines({"[Header],,,,,,,,,", "Version,7006", "TotalNo,1", "[IMMDatabase]",
                    "1,Nu,N-1,,1,2,3,4,5,6", "[EOF]"}),
         true, "", 7006},
        {"without [EOF] the scan runs to the end; a last row with its line end loads once",
         Loader::kUser, kUserHead7007 + CrLfLines({Row7005("1", "Xi", "X-1")}), true, "Xi/X-1",
         7007},
        {"a last row without line end loads too", Loader::kSystem,
         SystemHead("7007") + "1,Omicron,O-1,,1,2,3,4,5,6,1,0.9", true, "Omicron/O-1", 7007},
        {"nothing after [EOF] is read", Loader::kSystem,
         SystemHead("7006") +
             CrLfLines({"1,Pi,P-1,,1,2,3,4,5,6", "[EOF]", "1,Rho,R-1,,1,2,3,4,5,6"}),
         true, "Pi/P-1", 7006},
        {"an [EOF] right after the user marker ends the scan", Loader::kUser,
         UserHead("7007") + CrLfLines({"[EOF]", Row7005("1", "Sigma", "S-1")}), true, "", 7007},
        {"a version line that does not convert means version 1000 and the base layout",
         Loader::kUser,
         CrLfLines({"[Header]", "Version,x", "", "[Database]", "1,Tau,T-1,,1,2,3,4,5,6"}), true,
         "Tau/T-1", 1000},
        {"rows of too few fields are skipped", Loader::kUser,
         UserHead("7003") + CrLfLines({"1,Short,S-1,,1,2,3,4,5,6,7,8",
                                       "1,Upsilon,U-1,,1,2,3,4,5,6,0.02,0.2,3", ""}),
         true, "Upsilon/U-1", 7003},
    };
    for (const ScanCase& c : cases) {
        SCOPED_TRACE(c.label);
        ScratchFolder folder;
        const std::string path = folder.Write("bank.bnk", c.content);
        CQZRMoldingMachineReader reader;
        CQZRMoldingMachineCtrl catalogue;
        EXPECT_EQ(Load(c.loader, reader, path, &catalogue), c.result);
        EXPECT_EQ(Names(catalogue), c.names);
        EXPECT_EQ(catalogue.GetFileVersion(), c.fileVersion);
    }
}

TEST(LegacyLoader, EachVersionReadsItsOwnLayout) {
    struct {
        const char* label;
        Loader loader;
        std::string content;
        const char* fields;
    } const cases[] = {
        {"user 7002: base", Loader::kUser,
         UserHead("7002") + CrLfLines({"1,M,G,r,1,2,3,4,5,6,7,8"}),
         "maker=[M] grade=[G] remark=[r,1,2] clamp=3 shotW=4 shotV=0.30790000000000001 press=5 "
         "rate=6 dia=7 "
         "stroke=8 fr=0.01 ip=0.10000000000000001 nozV=0 slope=2500 energy=0 hptf=1 "
         "nozzle=0/0/0/0/0/0/0"},
        {"user 7003", Loader::kUser, UserHead("7003") + CrLfLines({"1,M,G,r,1,2,3,4,5,6,7,8,9"}),
         "maker=[M] grade=[G] remark=[r] clamp=1 shotW=2 shotV=0.1178 press=3 rate=4 dia=5 "
         "stroke=6 fr=7 ip=8 nozV=9 slope=2500 energy=0 hptf=1 nozzle=0/0/0/0/0/0/0"},
        {"user 7004", Loader::kUser, UserHead("7004") + CrLfLines({"1,M,G,r,1,2,3,4,5,6,7,8,9,10"}),
         "maker=[M] grade=[G] remark=[r] clamp=1 shotW=2 shotV=0.1178 press=3 rate=4 dia=5 "
         "stroke=6 fr=7 ip=8 nozV=9 slope=10 energy=0 hptf=1 nozzle=0/0/0/0/0/0/0"},
        {"user 7006: the 7005 layout", Loader::kUser,
         UserHead("7006") + CrLfLines({"1,M,G,r,1,2,3,4,5,6,7,8,9,10,2,0.5,4,11,12,13,14,15,16"}),
         "maker=[M] grade=[G] remark=[r] clamp=1 shotW=2 shotV=0.1178 press=3 rate=4 dia=5 "
         "stroke=6 fr=7 ip=8 nozV=9 slope=10 energy=2 hptf=0.5 nozzle=4/11/12/13/14/15/16"},
        {"system 7006: base", Loader::kSystem,
         SystemHead("7006") + CrLfLines({"1,M,G,r,1,2,3,4,5,6,7,8"}),
         "maker=[M] grade=[G] remark=[r,1,2] clamp=3 shotW=4 shotV=0.30790000000000001 press=5 "
         "rate=6 dia=7 "
         "stroke=8 fr=0.01 ip=0.10000000000000001 nozV=0 slope=2500 energy=0 hptf=1 "
         "nozzle=0/0/0/0/0/0/0"},
        {"system 7008: the system 7007 layout", Loader::kSystem,
         SystemHead("7008") + CrLfLines({"1,M,G,r,1,2,3,4,5,6,7,8"}),
         "maker=[M] grade=[G] remark=[r] clamp=1 shotW=2 shotV=0.1178 press=3 rate=4 dia=5 "
         "stroke=6 fr=0.01 ip=0.10000000000000001 nozV=0 slope=2500 energy=7 hptf=8 "
         "nozzle=0/0/0/0/0/0/0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        ScratchFolder folder;
        const std::string path = folder.Write("bank.bnk", c.content);
        CQZRMoldingMachineReader reader;
        CQZRMoldingMachineCtrl catalogue;
        ASSERT_TRUE(Load(c.loader, reader, path, &catalogue));
        const std::vector<CQZRIM> machines = InjectionMachines(catalogue);
        ASSERT_EQ(machines.size(), 1u);
        EXPECT_EQ(LegacyFields(machines[0]), c.fields);
    }
}

TEST(LegacyLoader, FileAttributesComeFromTheFirstAcceptedBank) {
    ScratchFolder folder;
    const std::string user = folder.Write("user.bnk", kUserHead7007 + CrLfLines({"[EOF]"}));
    const std::string system = folder.Write("system.bnk", SystemHead("7006"));

    CQZRMoldingMachineReader reader;
    CQZRMoldingMachineCtrl fresh;
    ASSERT_TRUE(reader.ReadOldIMMUserDatabase(user.c_str(), &fresh));
    EXPECT_EQ(fresh.GetFileVersion(), 7007);
    EXPECT_EQ(fresh.GetFileFormat(), 1);
    EXPECT_EQ(fresh.GetFileType(), 0);
    EXPECT_TRUE(fresh.IsDatabaseInitialize());

    CQZRMoldingMachineCtrl systemFirst;
    ASSERT_TRUE(reader.ReadOldIMMSystemDatabase(system.c_str(), &systemFirst));
    EXPECT_EQ(systemFirst.GetFileVersion(), 7006);
    EXPECT_EQ(systemFirst.GetFileFormat(), 0);
    // A later user bank changes only the version, through its version line.
    ASSERT_TRUE(reader.ReadOldIMMUserDatabase(user.c_str(), &systemFirst));
    EXPECT_EQ(systemFirst.GetFileVersion(), 7007);
    EXPECT_EQ(systemFirst.GetFileFormat(), 0);
    EXPECT_EQ(systemFirst.GetFileType(), 0);
}

TEST(LegacyLoader, RefusedFilesLeaveTheCatalogueAlone) {
    ScratchFolder folder;
    const std::string user =
        folder.Write("user.bnk", kUserHead7007 + CrLfLines({Row7005("1", "A", "A1")}));
    const std::string system =
        folder.Write("system.bnk", SystemHead("7006") + CrLfLines({"1,B,B1,,1,2,3,4,5,6"}));
    const std::string sectioned = folder.Write(
        "sectioned.bnk", CrLfLines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = 0"}));
    const std::string missing = folder.File("missing.bnk");
    const std::string empty = folder.Write("empty.bnk", "");

    struct {
        const char* label;
        Loader loader;
        const std::string* path;
        bool withCatalogue;
    } const cases[] = {
        {"user bank to the system loader", Loader::kSystem, &user, true},
        {"system bank to the user loader", Loader::kUser, &system, true},
        {"sectioned bank to the user loader", Loader::kUser, &sectioned, true},
        {"sectioned bank to the system loader", Loader::kSystem, &sectioned, true},
        {"no file", Loader::kUser, &missing, true},
        {"empty file", Loader::kSystem, &empty, true},
        {"no catalogue", Loader::kUser, &user, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        CQZRMoldingMachineReader reader;
        CQZRMoldingMachineCtrl catalogue;
        EXPECT_FALSE(Load(c.loader, reader, *c.path, c.withCatalogue ? &catalogue : nullptr));
        EXPECT_EQ(catalogue.GetTotalMachine(), 0);
        EXPECT_FALSE(catalogue.IsDatabaseInitialize());
        EXPECT_EQ(catalogue.GetFileVersion(), 0);
    }
    CQZRMoldingMachineReader reader;
    CQZRMoldingMachineCtrl catalogue;
    EXPECT_FALSE(reader.ReadOldIMMUserDatabase(nullptr, &catalogue));
    EXPECT_FALSE(reader.ReadOldIMMSystemDatabase(nullptr, &catalogue));
}

TEST(LegacyLoader, ACatalogueWithoutStoreParsesAndDropsTheRows) {
    ScratchFolder folder;
    const std::string user =
        folder.Write("user.bnk", kUserHead7007 + CrLfLines({Row7005("1", "A", "A1")}));
    CQZRMoldingMachineReader reader;
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineCtrlAccess::DropStore(catalogue);
    EXPECT_TRUE(reader.ReadOldIMMUserDatabase(user.c_str(), &catalogue));
    EXPECT_EQ(catalogue.GetTotalMachine(), 0);
}

TEST(LegacyLoader, BadFiles) {
    struct {
        const char* file;
        Loader loader;
        bool result;
        const char* names;
    } const cases[] = {
        // The first 1023 characters of a long row are one line, the rest the next.
        {"long_line.bnk", Loader::kSystem, true, "Tail/T-9"},
        {"totalno_after_header.bnk", Loader::kUser, false, "Alpha/A-100"},
        {"no_eof.bnk", Loader::kUser, true, "Alpha/A-100 Beta/B-200"},
        {"ctrl_z_ends_file.bnk", Loader::kUser, true, "Alpha/A-100"},
        {"nul_in_row.bnk", Loader::kUser, true, "Beta/B-200"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const std::string path = std::string(QZR_TEST_DATA_DIR) + "/legacy/" + c.file;
        CQZRMoldingMachineReader reader;
        CQZRMoldingMachineCtrl catalogue;
        EXPECT_EQ(Load(c.loader, reader, path, &catalogue), c.result);
        EXPECT_EQ(Names(catalogue), c.names);
    }
}

}  // namespace
}  // namespace qzr::legacy
