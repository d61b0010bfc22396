#include "BankChecker.h"

#include <algorithm>
#include <map>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankFiles.h"
#include "MachineDetails.h"

namespace qzrbank {

namespace {

// Name-rule buckets: the library folds names with the C library's lower-casing, which is
// plain ASCII folding in the "C" locale; the record's own comparison then decides.
std::string FoldedName(const CQZRMoldingMachine& machine) {
    std::string key = std::string(machine.GetMaker()) + '\n' + machine.GetGrade();
    for (char& c : key) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return key;
}

std::string Where(const MachineOrigin& origin, const MachineOrigin& from) {
    return "line " + std::to_string(origin.line) +
           (origin.path == from.path ? std::string() : " of " + NativePath(origin.path));
}

// Machines are in load order, and origins[first + i] is where machine i was read.
template <class Record>
void ReportSameNames(const std::vector<Record>& machines, const std::vector<MachineOrigin>& origins,
                     size_t first, std::vector<Finding>* findings) {
    std::map<std::string, std::vector<size_t>> byName;
    for (size_t j = 0; j < machines.size(); ++j) {
        std::vector<size_t>& same = byName[FoldedName(machines[j])];
        const auto match = std::find_if(same.begin(), same.end(), [&](size_t i) {
            return machines[i].IsNameIdentity(machines[j]);
        });
        if (match == same.end()) {
            same.push_back(j);
            continue;
        }
        const bool identical = machines[*match].IsMachineIdentity(machines[j]);
        const MachineOrigin& where = origins[first + j];
        findings->push_back(
            {where.path, where.line, Severity::kWarning,
             identical ? "duplicate-machine" : "same-name",
             Quoted(DisplayName(machines[j])) +
                 (identical ? " repeats the machine of " : " has the maker and grade of ") +
                 Where(origins[first + *match], where) +
                 (identical ? ""
                            : " with other data: lookups by maker and grade find only "
                              "the first")});
    }
}

template <class Record>
std::vector<Record> InLoadOrder(std::vector<Record> machines) {
    std::stable_sort(machines.begin(), machines.end(), [](const Record& a, const Record& b) {
        return a.GetMachineID() < b.GetMachineID();
    });
    return machines;
}

// The injection-moulding catalogue is loaded before the transfer-moulding one, so its
// machines come first among the origins.
void ReportSameNames(const CQZRMoldingMachineCtrl& imm, const CQZRMoldingMachineCtrl& rtm,
                     const LoadWatcher& watcher, std::vector<Finding>* findings) {
    const std::vector<CQZRIM> immMachines = InLoadOrder(IMMMachines(imm));
    const std::vector<CQZRRTM> rtmMachines = InLoadOrder(RTMMachines(rtm));
    const std::vector<MachineOrigin>& origins = watcher.Origins();
    if (immMachines.size() + rtmMachines.size() != origins.size()) {
        return;  // a machine the catalogue did not take: origins and machines do not pair
    }
    ReportSameNames(immMachines, origins, 0, findings);
    ReportSameNames(rtmMachines, origins, immMachines.size(), findings);
}

CheckResult Finish(const LoadWatcher& watcher, const CQZRMoldingMachineCtrl& imm,
                   const CQZRMoldingMachineCtrl& rtm) {
    CheckResult result{watcher.Findings(), watcher.Files()};
    ReportSameNames(imm, rtm, watcher, &result.findings);
    for (WatchedFile& file : result.files) {
        file.path = NativePath(file.path);
    }
    for (Finding& finding : result.findings) {
        finding.path = NativePath(finding.path);
    }
    // Files in load order (folders found in other letter case before them), lines in order.
    const auto rank = [&result](const Finding& finding) {
        const auto file =
            std::find_if(result.files.begin(), result.files.end(),
                         [&finding](const WatchedFile& seen) { return seen.path == finding.path; });
        const long position =
            file == result.files.end() ? -1 : static_cast<long>(file - result.files.begin());
        return std::make_pair(position, finding.line);
    };
    std::stable_sort(result.findings.begin(), result.findings.end(),
                     [&rank](const Finding& a, const Finding& b) { return rank(a) < rank(b); });
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
