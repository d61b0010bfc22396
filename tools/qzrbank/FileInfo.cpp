#include "FileInfo.h"

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankLoading.h"
#include "LoadWatcher.h"
#include "bank/sectioned/QZRFileIO.h"

namespace qzrbank {

namespace {

constexpr int kFirstSectionedVersion = 9000;

}  // namespace

std::vector<std::pair<std::string, std::string>> SectionedHeaderTexts(const std::string& path) {
    std::vector<std::pair<std::string, std::string>> texts;
    qzr::bank::CQZRFileIO file;
    if (!file.OpenFile(path.c_str())) {
        return texts;
    }
    for (const char* key : {"CreateDate", "CreateBy", "Remark"}) {
        const char* value = nullptr;
        if (file.GetKeyString("[FileHeader]", key, &value) == qzr::bank::CQZRFileIO::kFound) {
            texts.emplace_back(key, value);
        }
    }
    return texts;
}

FileInfo ReadFileInfo(const std::string& path) {
    FileInfo info;
    info.error = ReadProblem(path);
    if (!info.error.empty()) {
        return info;
    }
    info.header = RecognizeBankFile(path);
    BankLoad load = BankLoad::OldIMMSystem;
    if (!LoadOfKind(info.header.kind, &load)) {
        return info;
    }
    LoadWatcher watcher;
    CQZRMoldingMachineCtrl catalogue;
    {
        const qzr::bank::ScopedLoadObserver watch(&watcher);
        info.loadAccepted = LoadBank(load, path, &catalogue);
    }
    info.machines = catalogue.GetTotalMachine();
    const bool sectioned = info.header.version >= kFirstSectionedVersion;
    if (sectioned) {
        info.headerTexts = SectionedHeaderTexts(path);
    }
    for (const WatchedFile& file : watcher.Files()) {
        if (file.hasDeclared) {
            info.headerTexts.emplace_back(sectioned ? "TotalMachine" : "TotalNo",
                                          std::to_string(file.declared));
        }
    }
    return info;
}

}  // namespace qzrbank
