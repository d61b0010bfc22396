#include "BankLoading.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "BankText.h"

#ifndef QZRBANK_SHIPPED_BANK
#define QZRBANK_SHIPPED_BANK "examples/Bank"
#endif

namespace qzrbank {

namespace fs = std::filesystem;

namespace {

struct FolderSource {
    const char* label;  // as the list shows it
    const char* tail;   // below the Bank folder, as the library's default paths write it
    BankLoad load;
    bool isPattern;
    BankKind expectedKind;
};

const FolderSource kIMMSources[] = {
    {"Machine/IMM", "Machine\\IMM\\*.bnk", BankLoad::IMMSystemFolder, true,
     BankKind::IMMSystemBankFiles},
    {"User-IMM.bnk", "User-IMM.bnk", BankLoad::IMMUser, false, BankKind::IMMUserBank},
    {"system-pro.bnk", "system-pro.bnk", BankLoad::OldIMMSystem, false, BankKind::OldIMMSystemBank},
    {"user-pro.bnk", "user-pro.bnk", BankLoad::OldIMMUser, false, BankKind::OldIMMUserBank},
};

const FolderSource kRTMSources[] = {
    {"Machine/RTM", "Machine\\RTM\\*.bnk", BankLoad::RTMSystemFolder, true,
     BankKind::RTMSystemBankFiles},
    {"User-RTMIC.bnk", "User-RTMIC.bnk", BankLoad::RTMUser, false, BankKind::RTMUserBank},
};

bool IsFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(fs::path(NativePath(path)), error);
}

bool Exists(const std::string& path) {
    std::error_code error;
    return fs::exists(fs::path(NativePath(path)), error);
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

// The folder part of a pattern such as "Machine\IMM\*.bnk".
std::string PatternFolder(const std::string& pattern) {
    const size_t separator = pattern.find_last_of("/\\");
    return separator == std::string::npos ? std::string(".") : pattern.substr(0, separator);
}

bool HasBankExtension(const fs::path& path) {
    std::string extension = path.extension().string();
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return extension == ".bnk";
}

// The folder load passes over files it does not accept without a word; the tool names them.
void WarnAboutSkippedFiles(const std::string& folder, BankKind expected,
                           std::vector<std::string>* warnings) {
    std::error_code error;
    std::vector<std::string> skipped;
    for (fs::directory_iterator entry(fs::path(NativePath(folder)), error), end;
         !error && entry != end; entry.increment(error)) {
        if (!HasBankExtension(entry->path()) || entry->is_directory(error)) {
            continue;
        }
        std::string text;
        const BankHeader header =
            ReadBankText(entry->path().string(), &text) ? RecognizeBankHeader(text) : BankHeader();
        if (!header.recognized || header.kind != expected) {
            skipped.push_back(entry->path().string() + ": not a bank of kind " +
                              BankKindName(expected) + "; the folder load skips it");
        }
    }
    std::sort(skipped.begin(), skipped.end());
    warnings->insert(warnings->end(), skipped.begin(), skipped.end());
}

void LoadSources(const std::string& bankFolder, const FolderSource* begin, const FolderSource* end,
                 SourcedCatalogue* catalogue, std::vector<std::string>* warnings) {
    for (const FolderSource* source = begin; source != end; ++source) {
        const std::string path = Join(bankFolder, source->tail);
        if (source->isPattern ? !IsFolder(PatternFolder(path)) : !Exists(path)) {
            continue;
        }
        // An empty system-bank folder matches nothing, which is no fault of the folder.
        if (!catalogue->Load(source->load, path, source->label) && !source->isPattern) {
            warnings->push_back(path + ": refused by its loader (run 'qzrbank check' on it)");
        }
        if (source->isPattern) {
            WarnAboutSkippedFiles(PatternFolder(path), source->expectedKind, warnings);
        }
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

bool LoadOfKind(BankKind kind, BankLoad* load) {
    switch (kind) {
        case BankKind::OldIMMSystemBank:
            *load = BankLoad::OldIMMSystem;
            return true;
        case BankKind::OldIMMUserBank:
            *load = BankLoad::OldIMMUser;
            return true;
        case BankKind::IMMSystemBankFiles:
            *load = BankLoad::IMMSystemFolder;
            return true;
        case BankKind::IMMUserBank:
            *load = BankLoad::IMMUser;
            return true;
        case BankKind::RTMSystemBankFiles:
            *load = BankLoad::RTMSystemFolder;
            return true;
        case BankKind::RTMUserBank:
            *load = BankLoad::RTMUser;
            return true;
        case BankKind::NotABank:
            break;
    }
    return false;
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

bool SourcedCatalogue::Load(BankLoad load, const std::string& path, const std::string& label) {
    const bool loaded = LoadBank(load, path, &m_catalogue);
    const int highest = HighestMachineId();
    if (m_sources.empty() || highest > m_sources.back().lastMachineId) {
        m_sources.push_back({highest, label});
    }
    return loaded;
}

std::string SourcedCatalogue::SourceOf(int machineId) const {
    for (const Source& source : m_sources) {
        if (machineId <= source.lastMachineId) {
            return source.label;
        }
    }
    return {};
}

int SourcedCatalogue::HighestMachineId() const {
    int highest = 0;
    if (m_rtm) {
        for (const CQZRRTM& machine : RTMMachines(m_catalogue)) {
            highest = std::max(highest, machine.GetMachineID());
        }
    } else {
        for (const CQZRIM& machine : IMMMachines(m_catalogue)) {
            highest = std::max(highest, machine.GetMachineID());
        }
    }
    return highest;
}

bool LocateBankFolder(const std::string& dir, BankFolder* folder, std::string* error) {
    const std::string base = WithoutTrailingSeparators(dir);
    if (!IsFolder(base)) {
        *error = Exists(base) ? base + ": not a folder" : base + ": no such folder";
        return false;
    }
    const std::string inner = Join(base, "Bank");
    if (IsFolder(inner)) {
        folder->path = inner;
        return true;
    }
    const char* entries[] = {"Machine", "User-IMM.bnk", "User-RTMIC.bnk", "system-pro.bnk",
                             "user-pro.bnk"};
    for (const char* entry : entries) {
        if (Exists(Join(base, entry))) {
            folder->path = base;
            return true;
        }
    }
    *error = base + ": holds neither a \"Bank\" folder nor the banks of one";
    return false;
}

std::string ShippedBankFolder() {
    return QZRBANK_SHIPPED_BANK;
}

void LoadBankFolder(const BankFolder& folder, bool loadIMM, bool loadRTM, LoadedFolder* loaded,
                    std::vector<std::string>* warnings) {
    if (loadIMM) {
        LoadSources(folder.path, std::begin(kIMMSources), std::end(kIMMSources), &loaded->imm,
                    warnings);
    }
    if (loadRTM) {
        LoadSources(folder.path, std::begin(kRTMSources), std::end(kRTMSources), &loaded->rtm,
                    warnings);
    }
}

std::vector<CQZRIM> IMMMachines(const CQZRMoldingMachineCtrl& catalogue) {
    return MachinesOf<CQZRIM>(catalogue);
}

std::vector<CQZRRTM> RTMMachines(const CQZRMoldingMachineCtrl& catalogue) {
    return MachinesOf<CQZRRTM>(catalogue);
}

}  // namespace qzrbank
