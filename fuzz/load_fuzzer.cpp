// One load member of the front on a file holding the fuzzer's input; built once per member
// (QZR_FUZZ_ENTRY picks it, see CMakeLists.txt). The folder loads get a pattern matching the
// one file. Whatever the file holds, the load must give a defined result without a crash, a
// leak, a hang or a sanitizer report, and everything it loaded must read back cleanly.
#include <cstddef>
#include <cstdint>
#include <string>

#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRMoldingMachineIO.h>

#include "FuzzSupport.h"

#define QZR_LEGACY_SYSTEM 0
#define QZR_LEGACY_USER 1
#define QZR_IMM_USER 2
#define QZR_RTM_USER 3
#define QZR_IMM_FOLDER 4
#define QZR_RTM_FOLDER 5

#ifndef QZR_FUZZ_ENTRY
#error "QZR_FUZZ_ENTRY names the load member under test"
#endif

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const qzr::fuzz::ScratchFolder& folder = qzr::fuzz::ScratchFolder::Get();
    const std::string path = folder.Write("Bank/Machine/Any/bank.bnk", data, size);
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineCtrl* pointer = &catalogue;
    CQZRMoldingMachineIO io;
#if QZR_FUZZ_ENTRY == QZR_LEGACY_SYSTEM
    io.LoadOldIMMSystemDatabase(path.c_str(), pointer);
#elif QZR_FUZZ_ENTRY == QZR_LEGACY_USER
    io.LoadOldIMMUserDatabase(path.c_str(), pointer);
#elif QZR_FUZZ_ENTRY == QZR_IMM_USER
    io.LoadIMMUserDatabase(path.c_str(), pointer);
#elif QZR_FUZZ_ENTRY == QZR_RTM_USER
    io.LoadRTMUserDatabase(path.c_str(), pointer);
#elif QZR_FUZZ_ENTRY == QZR_IMM_FOLDER
    io.LoadIMMSystemDatabase((folder.Folder() + "Bank\\Machine\\Any\\*.bnk").c_str(), pointer);
#elif QZR_FUZZ_ENTRY == QZR_RTM_FOLDER
    io.LoadRTMSystemDatabase((folder.Folder() + "Bank\\Machine\\Any\\*.BNK").c_str(), pointer);
#else
#error "unknown QZR_FUZZ_ENTRY"
#endif
    qzr::fuzz::TouchCatalogue(catalogue);
    return 0;
}
