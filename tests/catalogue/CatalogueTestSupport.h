// Helpers shared by the catalogue tests: invented machines and a compact picture of a catalogue.
//
// The machine-id and maker-id counters are shared by every catalogue of the process. Tests that
// check absolute ids start from a catalogue that holds no machine and no group (where both rules
// restart at 1) and issue no id from another catalogue in between, unless that is the point.
#ifndef QZR_TESTS_CATALOGUE_CATALOGUETESTSUPPORT_H
#define QZR_TESTS_CATALOGUE_CATALOGUETESTSUPPORT_H

#include <string>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

namespace catalogue_test {

inline CQZRIM IM(const char* maker, const char* grade) {
    CQZRIM machine;
    machine.SetMaker(maker);
    machine.SetGrade(grade);
    return machine;
}

inline CQZRRTM RTM(const char* maker, const char* grade) {
    CQZRRTM machine;
    machine.SetMaker(maker);
    machine.SetGrade(grade);
    return machine;
}

// Adds a copy of the record, so that tests can pass temporaries; returns the add's result.
template <class Record>
bool Add(CQZRMoldingMachineCtrl& catalogue, Record machine) {
    return catalogue.AddMachine(machine);
}

// The catalogue as the host sees it through positions and ids, e.g.
// "ACME#1[X-1:1 X-2:2] BETA#2{R-1:3} GAMMA#3()": name, maker id, then the machines as grade and
// machine id, in [] for an injection-moulding group, {} for a transfer-moulding one and () for
// an empty group.
inline std::string Picture(const CQZRMoldingMachineCtrl& catalogue) {
    std::string picture;
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int makerId = catalogue.GetMakerID(position);
        const char* name = catalogue.GetMaker(makerId);
        if (!picture.empty()) {
            picture += ' ';
        }
        picture += std::string(name != nullptr ? name : "<null>") + "#" + std::to_string(makerId);
        const int count = catalogue.GetMachineCount(makerId);
        CQZRIM im;
        const bool injection = count > 0 && catalogue.GetCurrentMakerMachine(makerId, 0, im);
        picture += count == 0 ? "(" : injection ? "[" : "{";
        for (int machine = 0; machine < count; ++machine) {
            CQZRIM imCopy;
            CQZRRTM rtmCopy;
            const CQZRMoldingMachine* copy = &imCopy;
            if (!catalogue.GetCurrentMakerMachine(makerId, machine, imCopy)) {
                catalogue.GetCurrentMakerMachine(makerId, machine, rtmCopy);
                copy = &rtmCopy;
            }
            picture += std::string(machine > 0 ? " " : "") + copy->GetGrade() + ":" +
                       std::to_string(copy->GetMachineID());
        }
        picture += count == 0 ? ")" : injection ? "]" : "}";
    }
    return picture;
}

}  // namespace catalogue_test

#endif  // QZR_TESTS_CATALOGUE_CATALOGUETESTSUPPORT_H
