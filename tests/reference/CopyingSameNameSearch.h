// The straightforward search for machines that repeat an earlier machine's maker and grade:
// every machine copied out of the catalogue, put in load order by a stable sort on machine ids,
// and bucketed by folded name in a map. The checker reads the machines in place and groups
// them by a hash instead; the tests hold its findings to these.
#ifndef QZR_TESTS_REFERENCE_COPYINGSAMENAMESEARCH_H
#define QZR_TESTS_REFERENCE_COPYINGSAMENAMESEARCH_H

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankFiles.h"
#include "BankLoading.h"
#include "LoadWatcher.h"

namespace qzr::reference {

// The same-name findings of an injection-moulding catalogue that the watched loads filled.
inline std::vector<qzrbank::Finding> SameNamesByCopying(const CQZRMoldingMachineCtrl& catalogue,
                                                        const qzrbank::LoadWatcher& watcher) {
    std::vector<CQZRIM> machines = qzrbank::IMMMachines(catalogue);
    std::stable_sort(machines.begin(), machines.end(), [](const CQZRIM& a, const CQZRIM& b) {
        return a.GetMachineID() < b.GetMachineID();
    });
    const std::vector<qzrbank::MachineOrigin>& origins = watcher.Origins();
    const auto path = [&](size_t j) { return watcher.OriginPaths()[origins[j].path]; };
    std::map<std::string, std::vector<size_t>> byName;
    std::vector<qzrbank::Finding> findings;
    for (size_t j = 0; j < machines.size(); ++j) {
        std::string key = std::string(machines[j].GetMaker()) + '\n' + machines[j].GetGrade();
        for (char& c : key) {
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        }
        std::vector<size_t>& same = byName[key];
        const auto match = std::find_if(same.begin(), same.end(), [&](size_t i) {
            return machines[i].IsNameIdentity(machines[j]);
        });
        if (match == same.end()) {
            same.push_back(j);
            continue;
        }
        const bool identical = machines[*match].IsMachineIdentity(machines[j]);
        const std::string where =
            "line " + std::to_string(origins[*match].line) +
            (path(*match) == path(j) ? "" : " of " + qzrbank::NativePath(path(*match)));
        findings.push_back(
            {qzrbank::NativePath(path(j)), origins[j].line, qzrbank::Severity::kWarning,
             identical ? "duplicate-machine" : "same-name",
             qzrbank::Quoted(std::string(machines[j].GetMaker()) + " - " + machines[j].GetGrade()) +
                 (identical ? " repeats the machine of " : " has the maker and grade of ") + where +
                 (identical ? ""
                            : " with other data: lookups by maker and grade find only the first")});
    }
    return findings;
}

}  // namespace qzr::reference

#endif  // QZR_TESTS_REFERENCE_COPYINGSAMENAMESEARCH_H
