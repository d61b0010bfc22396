// Invented machines and a compact picture of a catalogue, for the catalogue tests.
//
// The machine-id and maker-id counters are shared by every catalogue of the process. Tests that
// check absolute ids start from a catalogue without machines and groups (where both restart at
// 1) and issue no id from another catalogue in between, unless that is the point.
#ifndef QZR_TESTS_CATALOGUE_CATALOGUETESTSUPPORT_H
#define QZR_TESTS_CATALOGUE_CATALOGUETESTSUPPORT_H

#include <string>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

namespace catalogue_test {

template <class Record>
Record Make(const char* maker, const char* grade) {
    Record machine;
    machine.SetMaker(maker);
    machine.SetGrade(grade);
    return machine;
}
inline CQZRIM IM(const char* maker, const char* grade) {
    return Make<CQZRIM>(maker, grade);
}
inline CQZRRTM RTM(const char* maker, const char* grade) {
    return Make<CQZRRTM>(maker, grade);
}

// Adds a copy, so that tests can pass temporaries; returns the add's result.
template <class Record>
bool Add(CQZRMoldingMachineCtrl& catalogue, Record machine) {
    return catalogue.AddMachine(machine);
}

// The catalogue as a host sees it through positions and ids, e.g. "ACME#1[X-1:1 X-2:2]
// BETA#2{R-1:3} GAMMA#3()": maker name and id, then grade:machine id of each machine, in [] for
// an injection-moulding group, {} for a transfer-moulding one, () for an empty group.
inline std::string Picture(const CQZRMoldingMachineCtrl& catalogue) {
    std::string picture;
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int id = catalogue.GetMakerID(position);
        const int count = catalogue.GetMachineCount(id);
        CQZRIM im;
        CQZRRTM rtm;
        const bool transfer = count > 0 && !catalogue.GetCurrentMakerMachine(id, 0, im);
        const char* name = catalogue.GetMaker(id);
        picture += std::string(position > 0 ? " " : "") + (name != nullptr ? name : "<null>") +
                   "#" + std::to_string(id) +
                   (count == 0 ? "("
                    : transfer ? "{"
                               : "[");
        for (int machine = 0; machine < count; ++machine) {
            const bool found = transfer ? catalogue.GetCurrentMakerMachine(id, machine, rtm)
                                        : catalogue.GetCurrentMakerMachine(id, machine, im);
            const CQZRMoldingMachine& copy = transfer ? static_cast<CQZRMoldingMachine&>(rtm) : im;
            picture += std::string(machine > 0 ? " " : "") + (found ? copy.GetGrade() : "?") + ":" +
                       std::to_string(copy.GetMachineID());
        }
        picture += count == 0 ? ")" : transfer ? "}" : "]";
    }
    return picture;
}

}  // namespace catalogue_test

#endif  // QZR_TESTS_CATALOGUE_CATALOGUETESTSUPPORT_H
