// Hostile files through the public load members: huge files, huge lines, too many sections,
// garbage, folders, devices and pipes. Every one gives a defined result, and none crashes or
// hangs. The files are generated here; none is kept in the repository.
#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRMoldingMachineIO.h>

#include "BankBuilders.h"
#include "DefaultBanks.h"
#include "TempFolder.h"
#include "WindowsHeaders.h"

namespace {

using qzr::test::FolderSnapshot;
using qzr::test::TempFolder;

std::string Repeat(const std::string& text, size_t times) {
    std::string out;
    out.reserve(text.size() * times);
    for (size_t i = 0; i < times; ++i) {
        out += text;
    }
    return out;
}

std::string SectionedHeader(int format, int type) {
    return qzr::test::SectionedHead(9000, format, type) + "\r\n[General]\r\n\r\n";
}

std::string Machine(long number) {
    return "[Machine-" + std::to_string(number) + "]\r\nMaker = Hostile\r\nGrade = H-" +
           std::to_string(number) + "\r\n";
}

constexpr char kOldUserHead[] = "[Header]\r\nVersion,7007\r\n\r\n[Database]\r\n";
constexpr char kOldRow[] =
    "1,Hostile,H-1,,100.00, 50.50,180.00, 95.30, 32.00,140.00,0.01,0.1,  0.00,2500.00,0,"
    "  1.00,0,  0.00,  0.00,  0.00,  0.00,  0.00,  0.00\r\n";

std::string Garbage(size_t size) {
    std::mt19937 random(20240611);
    std::string bytes(size, '\0');
    for (char& c : bytes) {
        c = static_cast<char>(random());
    }
    return bytes;
}

// Each of the six load members on one path (the folder loads with the path as their pattern)
// into a fresh catalogue: '-' for false, else the number of machines loaded, in the order
// legacy system, legacy user, IMM user, RTM user, IMM folder, RTM folder.
std::string LoadEveryWay(const std::string& path) {
    using namespace qzr::test;
    std::string outcome;
    for (const DefaultBank* bank : {&kLegacySystemBank, &kLegacyUserBank, &kIMMUserBank,
                                    &kRTMUserBank, &kIMMSystemBanks, &kRTMSystemBanks}) {
        CQZRMoldingMachineCtrl catalogue;
        CQZRMoldingMachineIO io;
        outcome += outcome.empty() ? "" : " ";
        outcome +=
            bank->load(io, path, &catalogue) ? std::to_string(catalogue.GetTotalMachine()) : "-";
    }
    return outcome;
}

TEST(HostileFiles, EveryLoadGivesADefinedResult) {
    TempFolder folder;
    struct Row {
        const char* name;
        std::string bytes;
        const char* outcome;
    };
    const size_t kMiB = 1024 * 1024;
    const std::string filler = "Filler = " + std::string(90, 'f') + "\r\n";
    const std::string junkRow = "1,junk," + std::string(90, 'j') + "\r\n";
    const Row rows[] = {
        // 30 MB after two machines: the scan reads it all, memory stays small.
        {"huge_sectioned.bnk",
         SectionedHeader(1, 0) + Machine(1) + Machine(2) +
             Repeat(filler, 30 * kMiB / filler.size()),
         "- - 2 - 0 0"},
        {"huge_legacy.bnk",
         kOldUserHead + std::string(kOldRow) + Repeat(junkRow, 30 * kMiB / junkRow.size()),
         "- 1 - - 0 0"},
        // A megabyte-long line is read in pieces; the value keeps the first piece's part.
        {"megabyte_value.bnk",
         SectionedHeader(0, 1) + Machine(1) + "Remark = " + std::string(kMiB, 'r') + "\r\n" +
             Machine(2),
         "- - - - 0 2"},
        {"megabyte_row.bnk", kOldUserHead + std::string(kMiB, '7') + "\r\n" + kOldRow,
         "- 1 - - 0 0"},
        {"megabyte_first_line.bnk", std::string(kMiB, ' ') + SectionedHeader(1, 0) + Machine(1),
         "- - - - 0 0"},
        // Sections beyond 65535 are never read.
        {"sections_100000.bnk",
         [] {
             std::string text = SectionedHeader(1, 1);
             for (long n = 1; n <= 100000; ++n) {
                 text += Machine(n);
             }
             return text;
         }(),
         "- - - 65535 0 0"},
        {"gap_at_1.bnk", SectionedHeader(1, 0) + Machine(2) + Machine(3), "- - 0 - 0 0"},
        {"machine_keys_missing.bnk",
         SectionedHeader(0, 0) + "[Machine-1]\r\nRemark = r\r\n[Machine-2]\r\n", "- - - - 0 0"},
        {"header_keys_missing.bnk", "[FileHeader]\r\n[General]\r\n" + Machine(1), "- - - - 0 0"},
        {"legacy_markers_only.bnk", "[Header],,,,,,,,,\r\nVersion,7007\r\nTotalNo,\r\n[Database]",
         "0 - - - 0 0"},
        {"garbage.bnk", Garbage(kMiB), "- - - - 0 0"},
        {"empty.bnk", "", "- - - - 0 0"},
    };
    for (const Row& row : rows) {
        folder.Write(row.name, row.bytes);
        EXPECT_EQ(LoadEveryWay(folder.File(row.name)), row.outcome) << row.name;
    }
}

// A folder, the platform's devices and a pipe: /dev/null, /dev/zero and a FIFO on POSIX, NUL,
// CON and a named pipe on Windows.
TEST(HostileFiles, FoldersDevicesAndPipesAreNoBanks) {
    namespace fs = std::filesystem;
    TempFolder folder;
    folder.Write("Bank/User-IMM.bnk/inside.txt", "a folder where a bank should be");
    FolderSnapshot expected = folder.Snapshot();
#if defined(_WIN32)
    const std::string pipe = "\\\\.\\pipe\\qzr-" + std::to_string(std::random_device{}());
    const std::unique_ptr<void, decltype(&::CloseHandle)> server(
        ::CreateNamedPipeA(pipe.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE,
                           PIPE_UNLIMITED_INSTANCES, 0, 0, 0, nullptr),
        &::CloseHandle);
    ASSERT_NE(server.get(), INVALID_HANDLE_VALUE);
    const std::vector<std::string> devices = {"NUL", "CON"};
#else
    const std::string pipe = folder.File("pipe.bnk");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    expected = folder.Snapshot();
    // Read forever, /dev/zero would never end; a pipe without writer would block the open.
    const std::vector<std::string> devices = {"/dev/null", "/dev/zero"};
#endif
    std::vector<std::string> paths = {folder.File("Bank/User-IMM.bnk"), pipe};
    paths.insert(paths.end(), devices.begin(), devices.end());
    for (const std::string& path : paths) {
        // A wildcard search may not list Windows' pipe namespace: the folder loads then match
        // nothing rather than nothing loadable.
        const std::string outcome = LoadEveryWay(path);
        EXPECT_TRUE(outcome == "- - - - 0 0" || (path == pipe && outcome == "- - - - - -"))
            << path << ": " << outcome;
    }

    // A save never replaces what is not a regular file, nor waits for a pipe's reader.
    const CQZRMoldingMachineCtrl catalogue = qzr::test::UserCatalogue(false, 9000, 0);
    CQZRMoldingMachineIO io;
    for (const std::string& path : {pipe, folder.File("Bank/User-IMM.bnk")}) {
        EXPECT_FALSE(io.SaveIMMUserDatabase(path.c_str(), &catalogue)) << path;
    }
#if !defined(_WIN32)
    EXPECT_TRUE(fs::is_fifo(fs::symlink_status(pipe)));
#endif
    EXPECT_TRUE(folder.Snapshot() == expected) << "a save left something behind";
}

}  // namespace
