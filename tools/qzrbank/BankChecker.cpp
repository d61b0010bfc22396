#include "BankChecker.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <tuple>
#include <utility>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankFiles.h"
#include "bank/CatalogueWalk.h"

namespace qzrbank {

namespace {

// Name-rule buckets: the library folds names with the C library's lower-casing, which is
// plain ASCII folding in the "C" locale; the record's own comparison then decides.
char FoldAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The bucket's key: maker and grade folded, a line feed between them.
void FoldName(const CQZRMoldingMachine& machine, std::string* key) {
    key->assign(machine.GetMaker());
    *key += '\n';
    *key += machine.GetGrade();
    for (char& c : *key) {
        c = FoldAscii(c);
    }
}

// FNV-1a of the bytes FoldName gives, without forming them.
uint64_t FoldedNameHash(const CQZRMoldingMachine& machine) {
    uint64_t hash = 14695981039346656037ULL;
    const auto add = [&hash](char c) {
        hash = (hash ^ static_cast<unsigned char>(FoldAscii(c))) * 1099511628211ULL;
    };
    for (const char* c = machine.GetMaker(); *c != '\0'; ++c) {
        add(*c);
    }
    add('\n');
    for (const char* c = machine.GetGrade(); *c != '\0'; ++c) {
        add(*c);
    }
    return hash;
}

// Machines of one kind in load order, read in place: the catalogue issues machine ids in
// ascending order, and a machine's index breaks ties as a stable sort would.
template <class Record>
std::vector<const Record*> InLoadOrder(const CQZRMoldingMachineCtrl& catalogue) {
    const qzr::bank::CatalogueWalk walk(catalogue);
    std::vector<std::pair<int, const Record*>> byId;
    byId.reserve(static_cast<size_t>(walk.TotalMachine()));
    for (int index = 0; index < walk.TotalMachine(); ++index) {
        if (const Record* machine = walk.Fetch<Record>(index)) {
            byId.emplace_back(machine->GetMachineID(), machine);
        }
    }
    std::stable_sort(byId.begin(), byId.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<const Record*> machines;
    machines.reserve(byId.size());
    for (const auto& entry : byId) {
        machines.push_back(entry.second);
    }
    return machines;
}

constexpr size_t kNoMatch = static_cast<size_t>(-1);

// For every machine, the first earlier machine of its folded name that the name rule takes for
// the same name, among those that matched none before them; kNoMatch when there is none.
// Machines are grouped by a hash of their folded name, so that only machines that share one
// are compared.
template <class Record>
std::vector<size_t> FirstOfSameName(const std::vector<const Record*>& machines) {
    std::vector<std::pair<uint64_t, size_t>> byHash(machines.size());
    for (size_t j = 0; j < machines.size(); ++j) {
        byHash[j] = {FoldedNameHash(*machines[j]), j};
    }
    std::sort(byHash.begin(), byHash.end());
    std::vector<size_t> match(machines.size(), kNoMatch);
    // The machines of one hash that matched none before them, and their keys.
    std::vector<size_t> firsts;
    std::vector<std::string> firstKeys;
    std::string key;
    for (size_t start = 0, end = 0; start < byHash.size(); start = end) {
        end = start + 1;
        while (end < byHash.size() && byHash[end].first == byHash[start].first) {
            ++end;
        }
        firsts.clear();
        for (size_t k = start; end - start > 1 && k < end; ++k) {
            const size_t j = byHash[k].second;
            FoldName(*machines[j], &key);
            size_t first = 0;
            while (first < firsts.size() &&
                   !(firstKeys[first] == key &&
                     machines[firsts[first]]->IsNameIdentity(*machines[j]))) {
                ++first;
            }
            if (first < firsts.size()) {
                match[j] = firsts[first];
                continue;
            }
            firsts.push_back(j);
            if (firstKeys.size() < firsts.size()) {
                firstKeys.emplace_back();
            }
            firstKeys[first] = key;
        }
    }
    return match;
}

// "line N", and the file when it is not the one of the finding.
void AppendWhere(const MachineOrigin& origin, const MachineOrigin& from,
                 const std::vector<std::string>& paths, std::string* text) {
    *text += "line ";
    *text += std::to_string(origin.line);
    if (paths[origin.path] != paths[from.path]) {
        *text += " of " + NativePath(paths[origin.path]);
    }
}

// Machines are in load order, and origins[first + i] is where machine i was read.
template <class Record>
void ReportSameNames(const std::vector<const Record*>& machines, const LoadWatcher& watcher,
                     size_t first, std::vector<Finding>* findings) {
    const std::vector<MachineOrigin>& origins = watcher.Origins();
    const std::vector<size_t> match = FirstOfSameName(machines);
    std::string name;
    for (size_t j = 0; j < machines.size(); ++j) {
        if (match[j] == kNoMatch) {
            continue;
        }
        const Record& machine = *machines[j];
        const bool identical = machines[match[j]]->IsMachineIdentity(machine);
        const MachineOrigin& where = origins[first + j];
        name.assign(machine.GetMaker()).append(" - ").append(machine.GetGrade());
        std::string message;
        message.reserve(160);
        AppendQuoted(name, &message);
        message += identical ? " repeats the machine of " : " has the maker and grade of ";
        AppendWhere(origins[first + match[j]], where, watcher.OriginPaths(), &message);
        if (!identical) {
            message += " with other data: lookups by maker and grade find only the first";
        }
        findings->push_back({watcher.OriginPaths()[where.path], where.line, Severity::kWarning,
                             identical ? "duplicate-machine" : "same-name", std::move(message)});
    }
}

// The injection-moulding catalogue is loaded before the transfer-moulding one, so its
// machines come first among the origins.
void ReportSameNames(const CQZRMoldingMachineCtrl& imm, const CQZRMoldingMachineCtrl& rtm,
                     const LoadWatcher& watcher, std::vector<Finding>* findings) {
    const std::vector<const CQZRIM*> immMachines = InLoadOrder<CQZRIM>(imm);
    const std::vector<const CQZRRTM*> rtmMachines = InLoadOrder<CQZRRTM>(rtm);
    if (immMachines.size() + rtmMachines.size() != watcher.Origins().size()) {
        return;  // a machine the catalogue did not take: origins and machines do not pair
    }
    ReportSameNames(immMachines, watcher, 0, findings);
    ReportSameNames(rtmMachines, watcher, immMachines.size(), findings);
}

// Paths as the platform writes them; a load's findings mostly name one file after another.
void UseNativePaths(std::vector<Finding>* findings) {
    std::string raw;
    std::string native;
    for (Finding& finding : *findings) {
        if (finding.path != raw || raw.empty()) {
            raw = finding.path;
            native = NativePath(raw);
        }
        finding.path = native;
    }
}

// Files in load order (folders found in other letter case before them), lines in order, and
// findings of one line in the order they were made.
void SortByFileAndLine(const std::vector<WatchedFile>& files, std::vector<Finding>* findings) {
    struct Place {
        long file;
        long line;
        size_t made;
        bool operator<(const Place& other) const {
            return std::tie(file, line, made) < std::tie(other.file, other.line, other.made);
        }
    };
    std::vector<Place> places;
    places.reserve(findings->size());
    const std::string* lastPath = nullptr;
    long lastFile = -1;
    for (const Finding& finding : *findings) {
        if (lastPath == nullptr || *lastPath != finding.path) {
            const auto file = std::find_if(
                files.begin(), files.end(),
                [&finding](const WatchedFile& seen) { return seen.path == finding.path; });
            lastFile = file == files.end() ? -1 : static_cast<long>(file - files.begin());
            lastPath = &finding.path;
        }
        places.push_back({lastFile, finding.line, places.size()});
    }
    if (std::is_sorted(places.begin(), places.end())) {
        return;
    }
    std::sort(places.begin(), places.end());
    std::vector<Finding> sorted;
    sorted.reserve(findings->size());
    for (const Place& place : places) {
        sorted.push_back(std::move((*findings)[place.made]));
    }
    *findings = std::move(sorted);
}

CheckResult Finish(LoadWatcher& watcher, const CQZRMoldingMachineCtrl& imm,
                   const CQZRMoldingMachineCtrl& rtm) {
    CheckResult result{watcher.TakeFindings(), watcher.Files()};
    ReportSameNames(imm, rtm, watcher, &result.findings);
    for (WatchedFile& file : result.files) {
        file.path = NativePath(file.path);
    }
    UseNativePaths(&result.findings);
    SortByFileAndLine(result.files, &result.findings);
    return result;
}

}  // namespace

CheckResult CheckBankFile(const std::string& path) {
    // A file no loader recognises still goes to one, which reports its header as refused.
    BankLoad load = BankLoad::OldIMMUser;
    LoadOfKind(RecognizeBankFile(path).kind, &load);
    LoadWatcher watcher;
    CQZRMoldingMachineCtrl imm;
    CQZRMoldingMachineCtrl rtm;
    {
        const qzr::bank::ScopedLoadObserver watch(&watcher);
        LoadBank(load, path, IsRTMLoad(load) ? &rtm : &imm);
    }
    return Finish(watcher, imm, rtm);
}

CheckResult CheckBankFolder(const BankFolder& folder) {
    LoadWatcher watcher;
    LoadedFolder loaded;
    LoadBankFolder(folder, true, true, &loaded, &watcher);
    return Finish(watcher, loaded.imm.Catalogue(), loaded.rtm.Catalogue());
}

}  // namespace qzrbank
