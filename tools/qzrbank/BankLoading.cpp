#include "BankLoading.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "BankFiles.h"
#include "bank/BankKind.h"
#include "platform/ExecutablePath.h"
#include "platform/Wildcard.h"

#ifndef QZRBANK_SHIPPED_BANK
#define QZRBANK_SHIPPED_BANK "examples/Bank"
#endif
#ifndef QZRBANK_INSTALLED_BANK
#define QZRBANK_INSTALLED_BANK "../share/qzrmachine/examples/Bank"
#endif

namespace qzrbank {

namespace fs = std::filesystem;

namespace {

struct FolderSource {
    // Below the Bank folder, as the library's default paths write it; its names are found as
    // the library finds them (FindTail).
    const char* tail;
    BankLoad load;
    bool isPattern;
};

const FolderSource kIMMSources[] = {
    {"Machine\\IMM\\*.bnk", BankLoad::IMMSystemFolder, true},
    {"User-IMM.bnk", BankLoad::IMMUser, false},
    {"system-pro.bnk", BankLoad::OldIMMSystem, false},
    {"user-pro.bnk", BankLoad::OldIMMUser, false},
};

const FolderSource kRTMSources[] = {
    {"Machine\\RTM\\*.bnk", BankLoad::RTMSystemFolder, true},
    {"User-RTMIC.bnk", BankLoad::RTMUser, false},
};

bool IsFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(fs::path(NativePath(path)), error);
}

std::string WithoutTrailingSeparators(std::string path) {
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) {
        path.pop_back();
    }
    return path;
}

std::string Join(const std::string& folder, const char* tail) {
    if (folder.empty()) {
        return tail;
    }
    const char last = folder.back();
    return (last == '/' || last == '\\') ? folder + tail : folder + "\\" + tail;
}

// The entry `name` of a folder, found by the rule the library follows on every platform (built
// in from it): the exact name, else one that differs only in letter case, which a warning
// reports once. Empty when the folder holds neither.
std::string FindEntry(const std::string& folder, const std::string& name,
                      std::vector<Finding>* warnings) {
    std::vector<std::string> entries;
    std::error_code error;
    for (fs::directory_iterator entry(fs::path(NativePath(folder)), error), end;
         !error && entry != end; entry.increment(error)) {
        entries.push_back(entry->path().filename().string());
    }
    const std::string* found = qzr::platform::FindEntryIgnoringCase(name, entries);
    if (found == nullptr) {
        return {};
    }
    const std::string path = Join(folder, found->c_str());
    if (*found != name) {
        const std::string native = NativePath(path);
        if (std::none_of(warnings->begin(), warnings->end(),
                         [&native](const Finding& seen) { return seen.path == native; })) {
            warnings->push_back({native, 0, Severity::kWarning, "letter-case",
                                 "found in place of " + name + " (names differ in letter case)"});
        }
    }
    return path;
}

// The path of a source's tail below the Bank folder, each name of it found by FindEntry (a
// pattern's wildcard part is kept as it stands); empty when a name is missing.
std::string FindTail(const std::string& bankFolder, const FolderSource& source,
                     std::vector<Finding>* warnings) {
    const std::string tail = source.tail;
    std::string path = bankFolder;
    for (size_t start = 0;;) {
        const size_t end = tail.find('\\', start);
        const std::string name = tail.substr(start, end - start);
        if (end == std::string::npos && source.isPattern) {
            return Join(path, name.c_str());
        }
        path = FindEntry(path, name, warnings);
        if (path.empty() || end == std::string::npos) {
            return path;
        }
        start = end + 1;
    }
}

// The folder part of a pattern such as "Machine\IMM\*.bnk".
std::string PatternFolder(const std::string& pattern) {
    const size_t separator = pattern.find_last_of("/\\");
    return separator == std::string::npos ? std::string(".") : pattern.substr(0, separator);
}

void LoadSources(const std::string& bankFolder, const FolderSource* begin, const FolderSource* end,
                 SourcedCatalogue* catalogue, LoadWatcher* watcher,
                 std::vector<Finding>* warnings) {
    for (const FolderSource* source = begin; source != end; ++source) {
        const std::string path = FindTail(bankFolder, *source, warnings);
        if (path.empty() || (source->isPattern && !IsFolder(PatternFolder(path)))) {
            continue;
        }
        catalogue->Load(source->load, path, watcher);
    }
}

template <class Record>
std::vector<Record> MachinesOf(const CQZRMoldingMachineCtrl& catalogue) {
    std::vector<Record> machines;
    const int total = catalogue.GetTotalMachine();
    for (int index = 0; index < total; ++index) {
        Record machine;
        if (catalogue.GetCurrentMachine(index, machine)) {
            machines.push_back(machine);
        }
    }
    return machines;
}

}  // namespace

bool LoadOfKind(int kind, BankLoad* load) {
    switch (kind) {
        case qzr::bank::OldIMMSystemBank:
            *load = BankLoad::OldIMMSystem;
            return true;
        case qzr::bank::OldIMMUserBank:
            *load = BankLoad::OldIMMUser;
            return true;
        case qzr::bank::IMMSystemBankFiles:
            *load = BankLoad::IMMSystemFolder;
            return true;
        case qzr::bank::IMMUserBank:
            *load = BankLoad::IMMUser;
            return true;
        case qzr::bank::RTMSystemBankFiles:
            *load = BankLoad::RTMSystemFolder;
            return true;
        case qzr::bank::RTMUserBank:
            *load = BankLoad::RTMUser;
            return true;
        default:
            break;
    }
    return false;
}

bool IsRTMLoad(BankLoad load) {
    return load == BankLoad::RTMSystemFolder || load == BankLoad::RTMUser;
}

bool LoadBank(BankLoad load, const std::string& path, CQZRMoldingMachineCtrl* catalogue) {
    CQZRMoldingMachineIO front;
    const char* text = path.c_str();
    switch (load) {
        case BankLoad::OldIMMSystem:
            return front.LoadOldIMMSystemDatabase(text, catalogue);
        case BankLoad::OldIMMUser:
            return front.LoadOldIMMUserDatabase(text, catalogue);
        case BankLoad::IMMSystemFolder:
            return front.LoadIMMSystemDatabase(text, catalogue);
        case BankLoad::IMMUser:
            return front.LoadIMMUserDatabase(text, catalogue);
        case BankLoad::RTMSystemFolder:
            return front.LoadRTMSystemDatabase(text, catalogue);
        case BankLoad::RTMUser:
            return front.LoadRTMUserDatabase(text, catalogue);
    }
    return false;
}

bool LoadWatched(BankLoad load, const std::string& path, CQZRMoldingMachineCtrl* catalogue,
                 std::vector<Finding>* skipped) {
    LoadWatcher watcher;
    bool loaded = false;
    {
        const qzr::bank::ScopedLoadObserver watch(&watcher);
        loaded = LoadBank(load, path, catalogue);
    }
    for (const Finding& finding : watcher.Findings()) {
        if (finding.severity == Severity::kError) {
            skipped->push_back(finding);
        }
    }
    return loaded;
}

bool SourcedCatalogue::Load(BankLoad load, const std::string& path, LoadWatcher* watcher) {
    if (watcher == nullptr) {
        const bool loaded = LoadBank(load, path, &m_catalogue);
        FileEnded(path);
        return loaded;
    }
    watcher->OnFileEnd([this](std::string_view file) { FileEnded(file); });
    const bool loaded = LoadBank(load, path, &m_catalogue);
    watcher->OnFileEnd(nullptr);
    return loaded;
}

void SourcedCatalogue::FileEnded(std::string_view path) {
    const int highest = HighestMachineId();
    if (m_sources.empty() || highest > m_sources.back().lastMachineId) {
        m_sources.push_back({highest, std::string(path.substr(path.find_last_of("/\\") + 1))});
    }
}

std::string SourcedCatalogue::SourceOf(int machineId) const {
    for (const Source& source : m_sources) {
        if (machineId <= source.lastMachineId) {
            return source.file;
        }
    }
    return {};
}

// A group keeps its machines in the order they were added, so its last machine holds its
// highest id: one record per maker, not per machine, however many files a folder holds.
int SourcedCatalogue::HighestMachineId() const {
    int highest = 0;
    CQZRIM imm;
    CQZRRTM rtm;
    for (int position = 0; position < m_catalogue.GetTotalMaker(); ++position) {
        const int maker = m_catalogue.GetMakerID(position);
        const int last = m_catalogue.GetMachineCount(maker) - 1;
        if (m_rtm ? m_catalogue.GetCurrentMakerMachine(maker, last, rtm)
                  : m_catalogue.GetCurrentMakerMachine(maker, last, imm)) {
            highest = std::max(highest, m_rtm ? rtm.GetMachineID() : imm.GetMachineID());
        }
    }
    return highest;
}

bool LocateBankFolder(const std::string& dir, BankFolder* folder, std::string* error) {
    const std::string base = WithoutTrailingSeparators(dir);
    if (!IsFolder(base)) {
        const std::string problem = StatusProblem(base);
        *error = base + ": " + (problem.empty() ? "not a folder" : problem);
        return false;
    }
    std::vector<Finding> warnings;
    const std::string inner = FindEntry(base, "Bank", &warnings);
    if (!inner.empty() && IsFolder(inner)) {
        folder->path = inner;
        folder->warnings = std::move(warnings);
        return true;
    }
    const char* entries[] = {"Machine", "User-IMM.bnk", "User-RTMIC.bnk", "system-pro.bnk",
                             "user-pro.bnk"};
    for (const char* entry : entries) {
        if (!FindEntry(base, entry, &warnings).empty()) {
            folder->path = base;
            return true;
        }
    }
    *error = base + ": holds neither a \"Bank\" folder nor the banks of one";
    return false;
}

std::string ShippedBankFolder() {
    // An installed tool finds the examples installed beside it, wherever the prefix was moved;
    // a tool run from its build tree finds those of its source tree.
    const std::string program = qzr::platform::ExecutablePath();
    if (!program.empty()) {
        std::error_code error;
        const fs::path installed =
            (fs::path(program).parent_path() / QZRBANK_INSTALLED_BANK).lexically_normal();
        if (fs::is_directory(installed, error)) {
            return installed.string();
        }
    }
    return QZRBANK_SHIPPED_BANK;
}

void LoadBankFolder(const BankFolder& folder, bool loadIMM, bool loadRTM, LoadedFolder* loaded,
                    LoadWatcher* watcher) {
    std::vector<Finding> warnings = folder.warnings;
    const qzr::bank::ScopedLoadObserver watch(watcher);
    if (loadIMM) {
        LoadSources(folder.path, std::begin(kIMMSources), std::end(kIMMSources), &loaded->imm,
                    watcher, &warnings);
    }
    if (loadRTM) {
        LoadSources(folder.path, std::begin(kRTMSources), std::end(kRTMSources), &loaded->rtm,
                    watcher, &warnings);
    }
    for (Finding& warning : warnings) {
        watcher->Add(std::move(warning));
    }
}

std::vector<CQZRIM> IMMMachines(const CQZRMoldingMachineCtrl& catalogue) {
    return MachinesOf<CQZRIM>(catalogue);
}

std::vector<CQZRRTM> RTMMachines(const CQZRMoldingMachineCtrl& catalogue) {
    return MachinesOf<CQZRRTM>(catalogue);
}

}  // namespace qzrbank
