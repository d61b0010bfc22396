// The example Bank folder under examples/ is what a new host starts from: every bank in it must
// load whole through the exported API, and the user banks must be exactly what the library's
// own writers produce, so that a load followed by a save gives the same file back.
#include <QZRMachine/QZRMachine.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const std::string kBank = std::string(QZR_EXAMPLES_DIR) + "/Bank/";

enum class Load { OldSystem, OldUser, IMMSystem, IMMUser, RTMSystem, RTMUser };

bool LoadBank(CQZRMoldingMachineIO& io, Load load, const std::string& path,
              CQZRMoldingMachineCtrl* catalogue) {
    switch (load) {
        case Load::OldSystem:
            return io.LoadOldIMMSystemDatabase(path.c_str(), catalogue);
        case Load::OldUser:
            return io.LoadOldIMMUserDatabase(path.c_str(), catalogue);
        case Load::IMMSystem:
            return io.LoadIMMSystemDatabase(path.c_str(), catalogue);
        case Load::IMMUser:
            return io.LoadIMMUserDatabase(path.c_str(), catalogue);
        case Load::RTMSystem:
            return io.LoadRTMSystemDatabase(path.c_str(), catalogue);
        case Load::RTMUser:
            return io.LoadRTMUserDatabase(path.c_str(), catalogue);
    }
    return false;
}

std::map<std::string, int> MachinesPerMaker(const CQZRMoldingMachineCtrl& catalogue) {
    std::map<std::string, int> counts;
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int makerId = catalogue.GetMakerID(position);
        counts[catalogue.GetMaker(makerId)] = catalogue.GetMachineCount(makerId);
    }
    return counts;
}

std::string ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<std::string> SplitCrLfLines(const std::string& bytes) {
    std::vector<std::string> lines;
    std::string::size_type start = 0;
    for (auto end = bytes.find("\r\n"); end != std::string::npos; end = bytes.find("\r\n", start)) {
        lines.push_back(bytes.substr(start, end - start));
        start = end + 2;
    }
    lines.push_back(bytes.substr(start));  // after the last line end: empty in a whole file
    return lines;
}

struct BankCase {
    const char* label;
    Load load;
    const char* path;  // below the Bank folder
    int fileVersion;
    int fileFormat;
    int fileType;
    std::map<std::string, int> machinesPerMaker;
};

const std::vector<BankCase>& BankCases() {
    static const std::vector<BankCase> cases = {
        // Folder files load in name order; the first, Hollenvik-Ostrevo.bnk, is of version 9001.
        {"IMM system folder",
         Load::IMMSystem,
         "Machine/IMM/*.bnk",
         9001,
         0,
         0,
         {{"Hollenvik", 6}, {"Ostrevo", 5}, {"Quillner", 8}, {"Tessamund", 6}, {"Zundrik", 6}}},
        {"IMM user bank",
         Load::IMMUser,
         "User-IMM.bnk",
         9000,
         1,
         0,
         {{"Kemberline", 3}, {"Dravinsk", 2}, {"Quillner", 1}}},
        {"RTM system folder",
         Load::RTMSystem,
         "Machine/RTM/*.bnk",
         9000,
         0,
         1,
         {{"Ivoskar", 4}, {"Meribold", 4}, {"Trandell", 5}}},
        {"RTM user bank",
         Load::RTMUser,
         "User-RTMIC.bnk",
         9000,
         1,
         1,
         {{"Meribold", 2}, {"Trandell", 1}}},
        {"legacy system bank",
         Load::OldSystem,
         "system-pro.bnk",
         7007,
         0,
         0,
         {{"Yorvane", 5}, {"Calvestra", 5}, {"Tessamund", 2}}},
        {"legacy user bank",
         Load::OldUser,
         "user-pro.bnk",
         7007,
         1,
         0,
         {{"Dravinsk", 2}, {"Calvestra", 2}, {"Kemberline", 2}}},
    };
    return cases;
}

TEST(ExampleBanks, EveryBankLoadsWhole) {
    int total = 0;
    for (const BankCase& row : BankCases()) {
        SCOPED_TRACE(row.label);
        CQZRMoldingMachineIO io;
        CQZRMoldingMachineCtrl catalogue;
        ASSERT_TRUE(LoadBank(io, row.load, kBank + row.path, &catalogue));
        EXPECT_EQ(MachinesPerMaker(catalogue), row.machinesPerMaker);
        EXPECT_EQ(catalogue.GetFileFormat(), row.fileFormat);
        EXPECT_EQ(catalogue.GetFileType(), row.fileType);
        EXPECT_EQ(catalogue.GetFileVersion(), row.fileVersion);
        total += catalogue.GetTotalMachine();
    }
    EXPECT_GE(total, 60);
}

// A few machines read field by field: the tabs of the transfer-moulding keys, a remark with a
// comma, a legacy row's derived shot volume, the largest and the smallest machine.
TEST(ExampleBanks, SampleMachinesReadFieldByField) {
    CQZRMoldingMachineIO io;

    CQZRMoldingMachineCtrl rtm;
    ASSERT_TRUE(io.LoadRTMSystemDatabase((kBank + "Machine/RTM/*.bnk").c_str(), &rtm));
    CQZRRTM press;
    ASSERT_TRUE(rtm.GetMachine("Trandell", "TR-30", press));
    EXPECT_STREQ(press.GetRemark(), "Bench-top press");
    EXPECT_EQ(press.GetControllerID(), 4);
    EXPECT_DOUBLE_EQ(press.GetPlungerSpeed(), 5.0);
    EXPECT_DOUBLE_EQ(press.GetPlungerDiameter(), 25.0);
    EXPECT_DOUBLE_EQ(press.GetClampingForce(), 30.0);

    CQZRMoldingMachineCtrl imm;
    ASSERT_TRUE(io.LoadIMMSystemDatabase((kBank + "Machine/IMM/*.bnk").c_str(), &imm));
    CQZRIM smallest;
    ASSERT_TRUE(imm.GetMachine("Quillner", "QE-5", smallest));
    EXPECT_DOUBLE_EQ(smallest.GetClampingForce(), 5.0);
    EXPECT_DOUBLE_EQ(smallest.GetScrewDiameter(), 14.0);
    EXPECT_STREQ(smallest.GetRemark(), "Micro moulding unit with 14 mm screw");
    CQZRIM largest;
    ASSERT_TRUE(imm.GetMachine("Zundrik", "ZP-3000", largest));
    EXPECT_DOUBLE_EQ(largest.GetClampingForce(), 3000.0);
    EXPECT_DOUBLE_EQ(largest.GetScrewDiameter(), 120.0);
    EXPECT_STREQ(largest.GetDistanceBetweenTieBars(), "1520x1370");
    EXPECT_STREQ(largest.GetMachineDimension(), "10800x2900x2850");

    CQZRMoldingMachineCtrl legacy;
    ASSERT_TRUE(io.LoadOldIMMUserDatabase((kBank + "user-pro.bnk").c_str(), &legacy));
    CQZRIM row;
    ASSERT_TRUE(legacy.GetMachine("Dravinsk", "DR 180", row));
    EXPECT_STREQ(row.GetRemark(), "Shop 2, bay 4");
    EXPECT_DOUBLE_EQ(row.GetScrewDiameter(), 45.0);
    EXPECT_DOUBLE_EQ(row.GetScrewStroke(), 180.0);
    EXPECT_DOUBLE_EQ(row.GetShotVolume(), 286.3);  // 45 x 45 x 0.7853975 x 180 / 1000
    EXPECT_DOUBLE_EQ(row.GetTimeConstFR(), 0.03);
    EXPECT_EQ(row.GetNozzleSpecification().Type, 1);
    EXPECT_DOUBLE_EQ(row.GetNozzleSpecification().Value3, 45.0);

    CQZRMoldingMachineCtrl system;
    ASSERT_TRUE(io.LoadOldIMMSystemDatabase((kBank + "system-pro.bnk").c_str(), &system));
    ASSERT_TRUE(system.GetMachine("Calvestra", "CV-1000", row));
    EXPECT_STREQ(row.GetRemark(), "Large clamp");
    EXPECT_EQ(row.GetMachineEnergyType(), 0);
    EXPECT_DOUBLE_EQ(row.GetHydraulicPressureTransferFactor(), 11.2);
}

class ExampleUserBankRoundTrip : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        folder_ = fs::temp_directory_path() / ("qzr_example_banks_" + std::string(info->name()) +
                                               "_" + std::to_string(std::random_device{}()));
        fs::remove_all(folder_);
        fs::create_directories(folder_ / "Bank");
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    std::string Folder() const { return folder_.string() + "/"; }

  private:
    fs::path folder_;
};

// The sectioned banks carry the time of their save on their "CreateDate" line; everything else
// must come back byte for byte. "CreateBy" and "Remark" are not read back by the loaders, so the
// host sets them again before saving, as an editor of the bank would.
void ExpectSameButCreateDate(const std::string& original, const std::string& saved) {
    const std::vector<std::string> before = SplitCrLfLines(original);
    const std::vector<std::string> after = SplitCrLfLines(saved);
    ASSERT_EQ(before.size(), after.size());
    ASSERT_GT(before.size(), 5u);
    EXPECT_EQ(after[4].rfind("CreateDate = ", 0), 0u) << after[4];
    EXPECT_EQ(after[4].size(), before[4].size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (i != 4) {
            EXPECT_EQ(before[i], after[i]) << "line " << (i + 1);
        }
    }
}

TEST_F(ExampleUserBankRoundTrip, SectionedInjectionMouldingUserBank) {
    CQZRMoldingMachineIO io;
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(io.LoadIMMUserDatabase((kBank + "User-IMM.bnk").c_str(), &catalogue));
    catalogue.SetFileCreateBy("Process engineering");
    catalogue.SetFileRemark("Machines of the moulding shop");
    const std::string saved = Folder() + "Bank/User-IMM.bnk";
    ASSERT_TRUE(io.SaveIMMUserDatabase(saved.c_str(), &catalogue));
    ExpectSameButCreateDate(ReadBytes(kBank + "User-IMM.bnk"), ReadBytes(saved));
}

TEST_F(ExampleUserBankRoundTrip, SectionedTransferMouldingUserBank) {
    CQZRMoldingMachineIO io;
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineCtrl* const target = &catalogue;
    ASSERT_TRUE(io.LoadRTMUserDatabase((kBank + "User-RTMIC.bnk").c_str(), target));
    catalogue.SetFileCreateBy("Process engineering");
    catalogue.SetFileRemark("Transfer presses of the encapsulation line");
    ASSERT_TRUE(io.SaveRTMUserDatabase(Folder().c_str(), &catalogue));
    ExpectSameButCreateDate(ReadBytes(kBank + "User-RTMIC.bnk"),
                            ReadBytes(Folder() + "Bank/User-RTMIC.bnk"));
}

TEST_F(ExampleUserBankRoundTrip, LegacyUserBankComesBackByteForByte) {
    CQZRMoldingMachineIO io;
    CQZRMoldingMachineCtrl catalogue;
    ASSERT_TRUE(io.LoadOldIMMUserDatabase((kBank + "user-pro.bnk").c_str(), &catalogue));
    ASSERT_TRUE(io.SaveOldIMMUserDatabase(Folder().c_str(), &catalogue));
    EXPECT_EQ(ReadBytes(Folder() + "Bank/user-pro.bnk"), ReadBytes(kBank + "user-pro.bnk"));
}

// Every file of the folder ends its lines with CR LF, as the library writes them; a checkout that
// turned them into LF would hide line-end faults from every test that reads these files.
TEST(ExampleBanks, EveryFileKeepsCrLfLineEnds) {
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(kBank)) {
        if (!entry.is_regular_file()) {
            continue;
        }
        ++files;
        SCOPED_TRACE(entry.path().string());
        const std::string bytes = ReadBytes(entry.path().string());
        ASSERT_FALSE(bytes.empty());
        EXPECT_EQ(bytes.substr(bytes.size() - 2), "\r\n");
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (bytes[i] == '\n') {
                ASSERT_TRUE(i > 0 && bytes[i - 1] == '\r') << "bare LF at byte " << i;
            }
        }
    }
    EXPECT_EQ(files, 9);
}

}  // namespace
