// A small host of QZRMachine: it fills a few machine records of both kinds, copies them the way
// a catalogue does, and asks the records whether pairs of them are the same machine.
// The makers, grades and figures are invented.
#include <cstdio>
#include <string>
#include <vector>

#include <QZRMachine/QZRMachine.h>

namespace {

std::string DisplayName(const CQZRMoldingMachine& machine) {
    char name[128];
    if (!machine.GetName(name, static_cast<int>(sizeof name)) || name[0] == '\0') {
        return "(name too long)";
    }
    return name;
}

const char* KindName(int kind) {
    switch (kind) {
        case 0:
            return "injection";
        case 1:
            return "transfer";
        default:
            return "bare";
    }
}

CQZRIM MakeInjectionMachine(const char* maker, const char* grade, double clampTon, double shotG,
                            double pressureMPa, double screwMm, const char* tieBars) {
    CQZRIM machine;
    machine.SetMaker(maker);
    machine.SetGrade(grade);
    machine.SetControllerID(2);
    machine.SetClampingForce(clampTon);
    machine.SetShotWeight(shotG);
    machine.SetInjectionPressure(pressureMPa);
    machine.SetScrewDiameter(screwMm);
    machine.SetScrewStroke(screwMm * 4.0);
    machine.SetInjectionRate(screwMm * 3.5);
    machine.SetDistanceBetweenTieBars(tieBars);
    return machine;
}

CQZRRTM MakeTransferMachine(const char* maker, const char* grade, double clampTon,
                            double transferPressureMPa, double plungerMm, double shotG) {
    CQZRRTM machine;
    machine.SetMaker(maker);
    machine.SetGrade(grade);
    machine.SetClampingForce(clampTon);
    machine.SetTransferPressure(transferPressureMPa);
    machine.SetPlungerDiameter(plungerMm);
    machine.SetPlungerStroke(plungerMm * 2.0);
    machine.SetShotWeight(shotG);
    machine.SetShotVolume(shotG / 1.9);
    return machine;
}

void PrintInjectionMachines(const std::vector<CQZRIM>& machines) {
    std::printf("Injection-moulding machines\n");
    std::printf("  %-38s %-9s %9s %8s %9s %8s  %s\n", "Name", "Kind", "Clamp t", "Shot g",
                "Press MPa", "Screw mm", "Tie bars");
    for (const CQZRIM& m : machines) {
        std::printf("  %-38s %-9s %9.1f %8.1f %9.1f %8.1f  %s\n", DisplayName(m).c_str(),
                    KindName(m.GetMachineType()), m.GetClampingForce(), m.GetShotWeight(),
                    m.GetInjectionPressure(), m.GetScrewDiameter(), m.GetDistanceBetweenTieBars());
    }
    std::printf("\n");
}

void PrintTransferMachines(const std::vector<CQZRRTM>& machines) {
    std::printf("Transfer-moulding machines\n");
    std::printf("  %-38s %-9s %9s %9s %10s %8s\n", "Name", "Kind", "Clamp t", "Xfer MPa",
                "Plunger mm", "Shot g");
    for (const CQZRRTM& m : machines) {
        std::printf("  %-38s %-9s %9.1f %9.1f %10.1f %8.1f\n", DisplayName(m).c_str(),
                    KindName(m.GetMachineType()), m.GetClampingForce(), m.GetTransferPressure(),
                    m.GetPlungerDiameter(), m.GetShotWeight());
    }
    std::printf("\n");
}

const char* YesNo(bool value) {
    return value ? "yes" : "no";
}

template <class Record>
void PrintComparison(const char* what, const Record& a, const Record& b) {
    std::printf("  %-44s %-5s %-5s %s\n", what, YesNo(a.IsMachineIdentity(b)),
                YesNo(a.IsSimpleMachineIdentity(b)), YesNo(a.IsNameIdentity(b)));
}

void PrintComparisonHeader(const char* title) {
    std::printf("%s\n", title);
    std::printf("  %-44s %-5s %-5s %s\n", "Pair", "Full", "Key", "Name");
}

}  // namespace

int main() {
    std::printf("QZRMachine machine records\n\n");

    std::vector<CQZRIM> injection;
    injection.push_back(
        MakeInjectionMachine("Kestrel Works", "KX-250e", 250.0, 412.0, 210.0, 45.0, "560x560"));
    injection.push_back(MakeInjectionMachine("Harrowgate Machinery", "HM 1100 Servo", 1100.0,
                                             3650.0, 185.0, 95.0, "1250x1150"));
    injection.push_back(
        MakeInjectionMachine("Tidewater Presses", "TW-60", 60.0, 48.5, 240.0, 25.0, "310x310"));
    injection[0].SetRemark("servo pump, refit 2021");

    std::vector<CQZRRTM> transfer;
    transfer.push_back(MakeTransferMachine("Tidewater Presses", "TW-80T", 80.0, 9.8, 40.0, 55.0));
    transfer.push_back(
        MakeTransferMachine("Osgood & Pell", "Encapsulator 120", 120.0, 12.5, 52.0, 140.0));

    PrintInjectionMachines(injection);
    PrintTransferMachines(transfer);

    // A catalogue hands machines out by copy; the copy is the same machine as its source.
    const CQZRIM& kestrel = injection[0];
    CQZRIM copy(kestrel);
    CQZRIM capitals;
    capitals = kestrel;
    capitals.SetMaker("KESTREL WORKS");
    capitals.SetGrade("kx-250E");
    CQZRIM newRemark(kestrel);
    newRemark.SetRemark("second-hand, from the Leeds plant");
    CQZRIM otherNozzle(kestrel);
    otherNozzle.SetNozzleVolume(3.2);
    CQZRIM strongerClamp(kestrel);
    strongerClamp.SetClampingForce(250.0000001);
    CQZRIM trailingBlank(kestrel);
    trailingBlank.SetMaker("Kestrel Works ");

    PrintComparisonHeader("Injection-moulding comparisons with 'Kestrel Works - KX-250e'");
    PrintComparison("copy made by the copy constructor", kestrel, copy);
    PrintComparison("assigned copy, maker and grade in other case", kestrel, capitals);
    PrintComparison("another remark", kestrel, newRemark);
    PrintComparison("another nozzle volume", kestrel, otherNozzle);
    PrintComparison("clamping force 250.0000001 t", kestrel, strongerClamp);
    PrintComparison("maker with a trailing blank", kestrel, trailingBlank);
    PrintComparison("'Harrowgate Machinery - HM 1100 Servo'", kestrel, injection[1]);
    std::printf("\n");

    const CQZRRTM& press = transfer[0];
    CQZRRTM otherRate(press);
    otherRate.SetTransferRate(14.0);
    otherRate.SetRemark("rebuilt");
    CQZRRTM widerPlunger(press);
    widerPlunger.SetPlungerDiameter(42.0);

    PrintComparisonHeader("Transfer-moulding comparisons with 'Tidewater Presses - TW-80T'");
    PrintComparison("another transfer rate and remark", press, otherRate);
    PrintComparison("plunger diameter 42 mm", press, widerPlunger);
    std::printf("\n");

    char small[8];
    const bool given = kestrel.GetName(small, static_cast<int>(sizeof small));
    std::printf(
        "Display name into a buffer of %d bytes: returned %s, text '%s' (never cut short)\n",
        static_cast<int>(sizeof small), given ? "true" : "false", small);
    return 0;
}
