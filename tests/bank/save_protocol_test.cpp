// Where the writers save: default bank paths, and which catalogues each writer takes.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "catalogue/StoreCreationFailure.h"

using qzr::bank::CQZRMoldingMachineWriter;

namespace {

using qzr::test::TempFolder;

TEST(SaveProtocol, DefaultBankPaths) {
    struct PathRow {
        std::string folder;
        int kind;
        std::string path;  // empty: refused
    };
    const std::string f237 = "C:\\" + std::string(237, 'f');  // + "\Bank\User-RTMIC.bnk" = 260
    const std::vector<PathRow> rows = {
        {"C:\\Data", 0, "C:\\Data\\Bank\\system-pro.bnk"},
        {"C:\\Data", 1, "C:\\Data\\Bank\\user-pro.bnk"},
        {"C:\\Data", 2, "C:\\Data\\Bank\\Machine\\IMM\\*.bnk"},
        {"C:\\Data", 3, "C:\\Data\\Bank\\User-IMM.bnk"},
        {"C:\\Data", 4, "C:\\Data\\Bank\\Machine\\RTM\\*.bnk"},
        {"C:\\Data", 5, "C:\\Data\\Bank\\User-RTMIC.bnk"},
        {"C:\\Data\\", 1, "C:\\Data\\Bank\\user-pro.bnk"},
        {"Data", 1, "DataBank\\user-pro.bnk"},
        {"", 3, "Bank\\User-IMM.bnk"},
        {"/srv/banks/", 5, "/srv/banks/Bank\\User-RTMIC.bnk"},
        {f237.substr(1), 5, f237.substr(1) + "\\Bank\\User-RTMIC.bnk"},
        {f237, 5, ""},
        {std::string(259, 'x'), 6, std::string(259, 'x')},
    };
    for (const PathRow& row : rows) {
        SCOPED_TRACE(row.folder.substr(0, 12) + "... of " + std::to_string(row.folder.size()) +
                     ", kind " + std::to_string(row.kind));
        char buffer[CQZRMoldingMachineWriter::kPathBufferSize + 8];
        std::memset(buffer, 'g', sizeof buffer);
        EXPECT_EQ(
            CQZRMoldingMachineWriter::GetDefaultBankPath(row.folder.c_str(), row.kind, buffer),
            !row.path.empty());
        EXPECT_EQ(std::string(buffer), row.path);
        EXPECT_EQ(std::string(buffer + CQZRMoldingMachineWriter::kPathBufferSize, 8), "gggggggg");
    }
    char buffer[CQZRMoldingMachineWriter::kPathBufferSize];
    EXPECT_FALSE(CQZRMoldingMachineWriter::GetDefaultBankPath(nullptr, 1, buffer));
}

// Each writer takes only a catalogue with a store whose attributes name its own kind of user
// bank; the legacy writer writes version 7007 whatever version the catalogue has.
TEST(SaveProtocol, EachWriterTakesOnlyItsOwnKindOfUserBank) {
    const struct {
        int version, format, type;
        bool store;
        const char* written;
    } rows[] = {{1000, 1, 0, true, "legacy "}, {8999, 1, 0, true, "legacy "},
                {9000, 1, 0, true, "IMM "},    {9500, 1, 1, true, "RTM "},
                {7007, 0, 0, true, ""},        {7007, 1, 1, true, ""},
                {9000, 0, 1, true, ""},        {9000, 1, 2, true, ""},
                {7007, 1, 0, false, ""},       {9000, 1, 0, false, ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.version) + "/" + std::to_string(row.format) + "/" +
                     std::to_string(row.type) + (row.store ? "" : " without store"));
        TempFolder folder;
        folder.MakeFolder("Bank");
        qzr::test::FailNextStoreCreations(row.store ? 0 : 1);
        CQZRMoldingMachineCtrl catalogue;
        catalogue.SetFileVersion(row.version);
        catalogue.SetFileFormat(row.format);
        catalogue.SetFileType(row.type);
        const CQZRMoldingMachineWriter writer;
        const std::string root = folder.Folder() + "/";
        std::string written =
            writer.WriteOldIMMUserDatabase(root.c_str(), &catalogue) ? "legacy " : "";
        written += writer.WriteIMMUserDatabase((root + "Bank/User-IMM.bnk").c_str(), &catalogue)
                       ? "IMM "
                       : "";
        written += writer.WriteRTMUserDatabase(root.c_str(), &catalogue) ? "RTM " : "";
        EXPECT_EQ(written, row.written);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.File("Bank")), {}),
                  written.empty() ? 0 : 1);
        EXPECT_EQ(folder.Read("Bank/user-pro.bnk").substr(0, 24),
                  written == "legacy " ? "[Header]\r\nVersion,7007\r\n" : "");
    }
}

}  // namespace
