// A host of the QZRMachine library: builds a catalogue of its own and, given the folder that
// holds a "Bank" folder, loads every bank kept there and prints what each one holds.
#include <QZRMachine/QZRMachine.h>

#include <cstdio>
#include <string>

namespace {

void AddInjectionMachine(CQZRMoldingMachineCtrl& catalogue, const char* maker, const char* grade,
                         double clampingForce, double screwDiameter, double screwStroke) {
    CQZRIM machine;
    machine.SetMaker(maker);
    machine.SetGrade(grade);
    machine.SetClampingForce(clampingForce);
    machine.SetScrewDiameter(screwDiameter);
    machine.SetScrewStroke(screwStroke);
    machine.SetDistanceBetweenTieBars("360x360");
    machine.SetMachineDimension("4200x1250x1900");
    catalogue.AddMachine(machine);
}

void PrintTotals(const char* title, const CQZRMoldingMachineCtrl& catalogue) {
    std::printf("%s: %d machines, %d makers\n", title, catalogue.GetTotalMachine(),
                catalogue.GetTotalMaker());
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int makerId = catalogue.GetMakerID(position);
        std::printf("  %s: %d\n", catalogue.GetMaker(makerId), catalogue.GetMachineCount(makerId));
    }
}

// Bank paths use the backslash as separator, as the library does on every platform.
std::string BankPath(const std::string& folder, const char* tail) {
    std::string path = folder;
    if (!path.empty() && path.back() != '\\' && path.back() != '/') {
        path += '\\';
    }
    return path + tail;
}

enum class Load { OldSystem, OldUser, IMMSystem, IMMUser, RTMSystem, RTMUser };

int LoadAndPrint(const std::string& folder, const char* tail, Load load) {
    CQZRMoldingMachineIO io;
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineCtrl* const target = &catalogue;
    const std::string path = BankPath(folder, tail);
    bool loaded = false;
    switch (load) {
        case Load::OldSystem:
            loaded = io.LoadOldIMMSystemDatabase(path.c_str(), target);
            break;
        case Load::OldUser:
            loaded = io.LoadOldIMMUserDatabase(path.c_str(), target);
            break;
        case Load::IMMSystem:
            loaded = io.LoadIMMSystemDatabase(path.c_str(), target);
            break;
        case Load::IMMUser:
            loaded = io.LoadIMMUserDatabase(path.c_str(), target);
            break;
        case Load::RTMSystem:
            loaded = io.LoadRTMSystemDatabase(path.c_str(), target);
            break;
        case Load::RTMUser:
            loaded = io.LoadRTMUserDatabase(path.c_str(), target);
            break;
    }
    if (!loaded) {
        std::printf("%s: not loaded\n", tail);
        return 0;
    }
    PrintTotals(tail, catalogue);
    return catalogue.GetTotalMachine();
}

}  // namespace

int main(int argc, char** argv) {
    CQZRMoldingMachineCtrl catalogue;
    AddInjectionMachine(catalogue, "Brindlecast", "BC-90", 90.0, 32.0, 130.0);
    AddInjectionMachine(catalogue, "Brindlecast", "BC-160", 160.0, 40.0, 160.0);
    AddInjectionMachine(catalogue, "Nolvaro", "NV 35e", 35.0, 22.0, 90.0);
    PrintTotals("Catalogue", catalogue);

    CQZRIM first;
    char name[64] = {};
    if (catalogue.GetCurrentMachine(0, first) && first.GetName(name, sizeof name)) {
        std::printf("First machine: %s\n", name);
    }

    if (argc < 2) {
        return 0;
    }
    const std::string folder = argv[1];
    int total = 0;
    total += LoadAndPrint(folder, "Bank\\Machine\\IMM\\*.bnk", Load::IMMSystem);
    total += LoadAndPrint(folder, "Bank\\User-IMM.bnk", Load::IMMUser);
    total += LoadAndPrint(folder, "Bank\\Machine\\RTM\\*.bnk", Load::RTMSystem);
    total += LoadAndPrint(folder, "Bank\\User-RTMIC.bnk", Load::RTMUser);
    total += LoadAndPrint(folder, "Bank\\system-pro.bnk", Load::OldSystem);
    total += LoadAndPrint(folder, "Bank\\user-pro.bnk", Load::OldUser);
    std::printf("Banks: %d machines\n", total);
    return 0;
}
