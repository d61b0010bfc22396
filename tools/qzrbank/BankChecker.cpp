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

// Whether two texts are the same once folded.
bool SameFolded(const char* a, const char* b) {
    for (; *a != '\0' && FoldAscii(*a) == FoldAscii(*b); ++a, ++b) {
    }
    return FoldAscii(*a) == FoldAscii(*b);
}

// Whether two machines fall in one bucket: maker and grade the same once folded.
bool SameFoldedName(const CQZRMoldingMachine& a, const CQZRMoldingMachine& b) {
    return SameFolded(a.GetMaker(), b.GetMaker()) && SameFolded(a.GetGrade(), b.GetGrade());
}

// FNV-1a of the folded maker, a line feed and the folded grade.
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
    int id = 0;
    const Record* record = nullptr;
    uint64_t nameHash = 0;
};

// Machines of one kind in load order: the catalogue issues machine ids in ascending order, and
// a machine's index breaks ties as a stable sort would.
template <class Record>
std::vector<SeenMachine<Record>> InLoadOrder(const CQZRMoldingMachineCtrl& catalogue) {
    const qzr::bank::CatalogueWalk walk(catalogue);
    std::vector<SeenMachine<Record>> machines;
    machines.reserve(static_cast<size_t>(walk.TotalMachine()));
    walk.ForEachMachine<Record>([&machines](int, const Record& machine) {
        machines.push_back({machine.GetMachineID(), &machine, FoldedNameHash(machine)});
    });
    // A catalogue that issued n ids one after the other puts each machine at its id's offset;
    // any other sorts them.
    if (!machines.empty()) {
        const auto [low, high] =
            std::minmax_element(machines.begin(), machines.end(),
                                [](const auto& a, const auto& b) { return a.id < b.id; });
        if (static_cast<size_t>(high->id) - static_cast<size_t>(low->id) + 1 == machines.size()) {
            const int first = low->id;
            std::vector<SeenMachine<Record>> ordered(machines.size());
            for (const SeenMachine<Record>& machine : machines) {
                ordered[static_cast<size_t>(machine.id - first)] = machine;
            }
            if (std::all_of(ordered.begin(), ordered.end(),
                            [](const auto& machine) { return machine.record != nullptr; })) {
                return ordered;
            }
        }
    }
    std::stable_sort(machines.begin(), machines.end(),
                     [](const auto& a, const auto& b) { return a.id < b.id; });
    return machines;
}

constexpr size_t kNone = static_cast<size_t>(-1);

// Asks the processor to start loading memory that is read a little later.
void PrefetchMemory(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#else
    static_cast<void>(address);
#endif
}

// The search for machines that repeat an earlier machine's name, machine after machine in load
// order. The machines that matched none before them are kept by the hash of their folded name:
// an open-addressing table holds the first of each hash (and where its record is, so that a
// repeat finds it at once), the others of that hash are chained behind it in load order, and
// only machines of one hash are compared. Slots tell hashes apart by their upper half: two
// names that share a slot and an upper half share a chain, which only costs comparisons.
template <class Record>
class SameNameSearch {
  public:
    explicit SameNameSearch(const std::vector<SeenMachine<Record>>& machines)
        : m_machines(machines), m_next(machines.size(), kEnd) {
        size_t slots = 16;
        while (slots < 2 * machines.size()) {
            slots *= 2;
        }
        m_slots.resize(slots);
        m_mask = slots - 1;
    }

    // The first earlier machine of machine j's folded name that the name rule takes for the
    // same name, among those that matched none before them; kNone when there is none, and j
    // joins them.
    size_t EarlierOf(size_t j) {
        // The slot of a machine further ahead, then the machine and the first of its slot
        // (where the slot has arrived by then) nearer ahead.
        if (j + 2 * kLookAhead < m_machines.size()) {
            PrefetchMemory(&m_slots[SlotOf(m_machines[j + 2 * kLookAhead].nameHash)]);
        }
        if (j + kLookAhead < m_machines.size()) {
            const SeenMachine<Record>& ahead = m_machines[j + kLookAhead];
            qzr::bank::CatalogueWalk::PrefetchMachine(ahead.record);
            if (const Record* first = m_slots[SlotOf(ahead.nameHash)].record) {
                qzr::bank::CatalogueWalk::PrefetchMachine(first);
            }
        }
        const Record& machine = *m_machines[j].record;
        Slot& slot = SlotFor(m_machines[j].nameHash);
        if (slot.first == kEnd) {
            slot.first = static_cast<uint32_t>(j);
            slot.record = &machine;
            return kNone;
        }
        if (Matches(*slot.record, machine)) {
            return slot.first;
        }
        uint32_t* link = &m_next[slot.first];
        for (; *link != kEnd; link = &m_next[*link]) {
            if (Matches(*m_machines[*link].record, machine)) {
                return *link;
            }
        }
        *link = static_cast<uint32_t>(j);
        return kNone;
    }

  private:
    static constexpr uint32_t kEnd = static_cast<uint32_t>(-1);
    // How many machines ahead the search asks for the memory a machine will read.
    static constexpr size_t kLookAhead = 4;

    struct Slot {
        uint32_t upperHash = 0;
        uint32_t first = kEnd;
        const Record* record = nullptr;
    };

    static bool Matches(const Record& earlier, const Record& machine) {
        return SameFoldedName(earlier, machine) && earlier.IsNameIdentity(machine);
    }

    size_t SlotOf(uint64_t hash) const { return static_cast<size_t>(hash) & m_mask; }

    Slot& SlotFor(uint64_t hash) {
        const uint32_t upper = static_cast<uint32_t>(hash >> 32);
        size_t slot = SlotOf(hash);
        while (m_slots[slot].first != kEnd && m_slots[slot].upperHash != upper) {
            slot = (slot + 1) & m_mask;
        }
        m_slots[slot].upperHash = upper;
        return m_slots[slot];
    }

    const std::vector<SeenMachine<Record>>& m_machines;
    std::vector<Slot> m_slots;
    size_t m_mask = 0;
    std::vector<uint32_t> m_next;  // the next machine of the chain that matched none before it
};

// A machine that repeats the name of an earlier one, both by their place among the watcher's
// origins.
struct Repeat {
    const CQZRMoldingMachine* machine;
    uint32_t origin;
    uint32_t earlierOrigin;
    bool identical;
};

// Machines are in load order, and origins[first + i] is where machine i was read.
template <class Record>
void FindRepeats(const std::vector<SeenMachine<Record>>& machines, size_t first,
                 std::vector<Repeat>* repeats) {
    SameNameSearch<Record> search(machines);
    for (size_t j = 0; j < machines.size(); ++j) {
        const size_t earlier = search.EarlierOf(j);
        if (earlier != kNone) {
            const Record& machine = *machines[j].record;
            repeats->push_back({&machine, static_cast<uint32_t>(first + j),
                                static_cast<uint32_t>(first + earlier),
                                machines[earlier].record->IsMachineIdentity(machine)});
        }
    }
}

// The injection-moulding catalogue is loaded before the transfer-moulding one, so its
// machines come first among the origins.
std::vector<Repeat> FindRepeats(const CQZRMoldingMachineCtrl& imm,
                                const CQZRMoldingMachineCtrl& rtm, const LoadWatcher& watcher) {
    std::vector<Repeat> repeats;
    const auto immMachines = InLoadOrder<CQZRIM>(imm);
    const auto rtmMachines = InLoadOrder<CQZRRTM>(rtm);
    if (immMachines.size() + rtmMachines.size() == watcher.Origins().size()) {
        FindRepeats(immMachines, 0, &repeats);
        FindRepeats(rtmMachines, immMachines.size(), &repeats);
    }  // else a machine the catalogue did not take: origins and machines do not pair
    return repeats;
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

// The place of a path among the files (folders found in other letter case come before their
// files); -1 for none.
long FilePlace(const std::vector<WatchedFile>& files, const std::string& path) {
    const auto file = std::find_if(files.begin(), files.end(),
                                   [&path](const WatchedFile& seen) { return seen.path == path; });
    return file == files.end() ? -1 : static_cast<long>(file - files.begin());
}

// The findings of one check, reported by file in load order, lines in order, and findings of
// one line in the order they were made: the loads' findings first, then the repeated names.
class CheckFindings {
  public:
    CheckFindings(LoadWatcher& watcher, const std::vector<WatchedFile>& files,
                  std::vector<Repeat> repeats)
        : m_watcher(watcher),
          m_loadFindings(watcher.TakeFindings()),
          m_repeats(std::move(repeats)) {
        UseNativePaths(&m_loadFindings);
        const std::string* lastPath = nullptr;
        for (const Finding& finding : m_loadFindings) {
            if (lastPath == nullptr || *lastPath != finding.path) {
                m_loadFindingFiles.push_back(FilePlace(files, finding.path));
                lastPath = &finding.path;
            } else {
                m_loadFindingFiles.push_back(m_loadFindingFiles.back());
            }
        }
        for (const std::string& path : watcher.OriginPaths()) {
            m_originPaths.push_back(NativePath(path));
            m_originFiles.push_back(FilePlace(files, m_originPaths.back()));
        }
        m_sameName.severity = Severity::kWarning;
    }

    void Report(const FindingSink& report) {
        const size_t count = m_loadFindings.size() + m_repeats.size();
        size_t unsorted = 1;
        while (unsorted < count && PlaceOf(unsorted - 1) < PlaceOf(unsorted)) {
            ++unsorted;
        }
        if (unsorted >= count) {
            for (size_t made = 0; made < count; ++made) {
                PrefetchNames(made + kLookAhead);
                Report(made, report);
            }
            return;
        }
        std::vector<Place> places;
        places.reserve(count);
        for (size_t made = 0; made < count; ++made) {
            places.push_back(PlaceOf(made));
        }
        std::sort(places.begin(), places.end());
        for (const Place& place : places) {
            Report(place.made, report);
        }
    }

  private:
    struct Place {
        long file;
        long line;
        size_t made;
        bool operator<(const Place& other) const {
            return std::tie(file, line, made) < std::tie(other.file, other.line, other.made);
        }
    };

    Place PlaceOf(size_t made) const {
        if (made < m_loadFindings.size()) {
            return {m_loadFindingFiles[made], m_loadFindings[made].line, made};
        }
        const MachineOrigin& where =
            m_watcher.Origins()[m_repeats[made - m_loadFindings.size()].origin];
        return {m_originFiles[where.path], where.line, made};
    }

    // How many findings ahead the report asks for the record whose name a finding quotes.
    static constexpr size_t kLookAhead = 4;

    void PrefetchNames(size_t made) const {
        if (made >= m_loadFindings.size() && made < m_loadFindings.size() + m_repeats.size()) {
            qzr::bank::CatalogueWalk::PrefetchMachine(
                m_repeats[made - m_loadFindings.size()].machine);
        }
    }

    void Report(size_t made, const FindingSink& report) {
        if (made < m_loadFindings.size()) {
            report(m_loadFindings[made]);
        } else {
            MakeSameName(m_repeats[made - m_loadFindings.size()]);
            report(m_sameName);
        }
    }

    void MakeSameName(const Repeat& repeat) {
        const MachineOrigin& where = m_watcher.Origins()[repeat.origin];
        const MachineOrigin& earlier = m_watcher.Origins()[repeat.earlierOrigin];
        if (m_sameName.path != m_originPaths[where.path]) {
            m_sameName.path = m_originPaths[where.path];
        }
        m_sameName.line = where.line;
        m_sameName.code = repeat.identical ? "duplicate-machine" : "same-name";
        m_name.assign(repeat.machine->GetMaker()).append(" - ").append(repeat.machine->GetGrade());
        std::string& message = m_sameName.message;
        message.clear();
        AppendQuoted(m_name, &message);
        message += repeat.identical ? " repeats the machine of " : " has the maker and grade of ";
        message += "line ";
        message += std::to_string(earlier.line);
        const std::vector<std::string>& paths = m_watcher.OriginPaths();
        if (earlier.path != where.path && paths[earlier.path] != paths[where.path]) {
            message += " of ";
            message += m_originPaths[earlier.path];
        }
        if (!repeat.identical) {
            message += " with other data: lookups by maker and grade find only the first";
        }
    }

    const LoadWatcher& m_watcher;
    std::vector<Finding> m_loadFindings;
    std::vector<Repeat> m_repeats;
    std::vector<std::string> m_originPaths;  // native
    std::vector<long> m_originFiles;         // the place of each among the files
    std::vector<long> m_loadFindingFiles;    // the place of each finding's file among the files
    Finding m_sameName;
    std::string m_name;
};

std::vector<WatchedFile> Finish(LoadWatcher& watcher, const CQZRMoldingMachineCtrl& imm,
                                const CQZRMoldingMachineCtrl& rtm, const FindingSink& report) {
    std::vector<WatchedFile> files = watcher.Files();
    for (WatchedFile& file : files) {
        file.path = NativePath(file.path);
    }
    CheckFindings(watcher, files, FindRepeats(imm, rtm, watcher)).Report(report);
    return files;
}

}  // namespace

std::vector<WatchedFile> CheckBankFile(const std::string& path, const FindingSink& report) {
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
    return Finish(watcher, imm, rtm, report);
}

std::vector<WatchedFile> CheckBankFolder(const BankFolder& folder, const FindingSink& report) {
    LoadWatcher watcher;
    LoadedFolder loaded;
    LoadBankFolder(folder, true, true, &loaded, &watcher);
    return Finish(watcher, loaded.imm.Catalogue(), loaded.rtm.Catalogue(), report);
}

}  // namespace qzrbank
