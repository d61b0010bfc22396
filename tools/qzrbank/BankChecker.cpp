#include "BankChecker.h"

#include <algorithm>
#include <cstdint>
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

// A machine read in place in the catalogue, and the hash of its folded name (taken while the
// walk has the record at hand: the catalogue's records are spread over the heap).
template <class Record>
struct SeenMachine {
    int id;
    const Record* record;
    uint64_t nameHash;
};

// Machines of one kind in load order: the catalogue issues machine ids in ascending order, and
// a machine's index breaks ties as a stable sort would.
template <class Record>
std::vector<SeenMachine<Record>> InLoadOrder(const CQZRMoldingMachineCtrl& catalogue) {
    const qzr::bank::CatalogueWalk walk(catalogue);
    std::vector<SeenMachine<Record>> machines;
    machines.reserve(static_cast<size_t>(walk.TotalMachine()));
    for (int index = 0; index < walk.TotalMachine(); ++index) {
        if (const Record* machine = walk.Fetch<Record>(index)) {
            machines.push_back({machine->GetMachineID(), machine, FoldedNameHash(*machine)});
        }
    }
    std::stable_sort(machines.begin(), machines.end(),
                     [](const auto& a, const auto& b) { return a.id < b.id; });
    return machines;
}

constexpr size_t kNone = static_cast<size_t>(-1);

// The search for machines that repeat an earlier machine's name, machine after machine in load
// order. The machines that matched none before them are kept by the hash of their folded name:
// an open-addressing table holds the first of each hash, the others of that hash are chained
// behind it in load order, and only machines of one hash are compared.
template <class Record>
class SameNameSearch {
  public:
    explicit SameNameSearch(const std::vector<SeenMachine<Record>>& machines)
        : m_machines(machines), m_next(machines.size(), kNone) {
        size_t slots = 16;
        while (slots < 2 * machines.size()) {
            slots *= 2;
        }
        m_slots.resize(slots);
    }

    // The first earlier machine of machine j's folded name that the name rule takes for the
    // same name, among those that matched none before them; kNone when there is none, and j
    // joins them.
    size_t EarlierOf(size_t j) {
        const Record& machine = *m_machines[j].record;
        size_t* link = &Head(m_machines[j].nameHash);
        if (*link != kNone) {
            FoldName(machine, &m_key);
        }
        for (; *link != kNone; link = &m_next[*link]) {
            const Record& earlier = *m_machines[*link].record;
            FoldName(earlier, &m_earlierKey);
            if (m_earlierKey == m_key && earlier.IsNameIdentity(machine)) {
                return *link;
            }
        }
        *link = j;
        return kNone;
    }

  private:
    struct Slot {
        uint64_t hash = 0;
        size_t first = kNone;
    };

    size_t& Head(uint64_t hash) {
        const size_t mask = m_slots.size() - 1;
        size_t slot = static_cast<size_t>(hash) & mask;
        while (m_slots[slot].first != kNone && m_slots[slot].hash != hash) {
            slot = (slot + 1) & mask;
        }
        m_slots[slot].hash = hash;
        return m_slots[slot].first;
    }

    const std::vector<SeenMachine<Record>>& m_machines;
    std::vector<Slot> m_slots;
    std::vector<size_t> m_next;  // the next machine of the same hash that matched none before it
    std::string m_key;
    std::string m_earlierKey;
};

// "line N", and the file when it is not the one of the finding.
void AppendWhere(const MachineOrigin& origin, const MachineOrigin& from,
                 const std::vector<std::string>& paths, std::string* text) {
    *text += "line ";
    *text += std::to_string(origin.line);
    if (paths[origin.path] != paths[from.path]) {
        *text += " of " + NativePath(paths[origin.path]);
    }
}

// Machines are in load order, and origins[first + i] is where machine i was read. The
// repeats are found first, so that the findings are made in a vector of their own size.
template <class Record>
void ReportSameNames(const std::vector<SeenMachine<Record>>& machines, const LoadWatcher& watcher,
                     size_t first, std::vector<Finding>* findings) {
    struct Repeat {
        size_t machine;
        size_t earlier;
        bool identical;
    };
    std::vector<Repeat> repeats;
    SameNameSearch<Record> search(machines);
    for (size_t j = 0; j < machines.size(); ++j) {
        const size_t earlier = search.EarlierOf(j);
        if (earlier != kNone) {
            repeats.push_back(
                {j, earlier, machines[earlier].record->IsMachineIdentity(*machines[j].record)});
        }
    }
    findings->reserve(findings->size() + repeats.size());
    const std::vector<MachineOrigin>& origins = watcher.Origins();
    std::string name;
    for (const Repeat& repeat : repeats) {
        const Record& machine = *machines[repeat.machine].record;
        const MachineOrigin& where = origins[first + repeat.machine];
        name.assign(machine.GetMaker()).append(" - ").append(machine.GetGrade());
        std::string message;
        message.reserve(160);
        AppendQuoted(name, &message);
        message += repeat.identical ? " repeats the machine of " : " has the maker and grade of ";
        AppendWhere(origins[first + repeat.earlier], where, watcher.OriginPaths(), &message);
        if (!repeat.identical) {
            message += " with other data: lookups by maker and grade find only the first";
        }
        findings->push_back({watcher.OriginPaths()[where.path], where.line, Severity::kWarning,
                             repeat.identical ? "duplicate-machine" : "same-name",
                             std::move(message)});
    }
}

// The injection-moulding catalogue is loaded before the transfer-moulding one, so its
// machines come first among the origins.
void ReportSameNames(const CQZRMoldingMachineCtrl& imm, const CQZRMoldingMachineCtrl& rtm,
                     const LoadWatcher& watcher, std::vector<Finding>* findings) {
    const auto immMachines = InLoadOrder<CQZRIM>(imm);
    const auto rtmMachines = InLoadOrder<CQZRRTM>(rtm);
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
