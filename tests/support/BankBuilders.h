// Banks for tests, made here rather than kept as files: bank text from lines, the head of a
// sectioned bank, catalogues of invented machines ready to save as a user bank, and short texts
// of what a catalogue holds.
#ifndef QZR_TESTS_SUPPORT_BANKBUILDERS_H
#define QZR_TESTS_SUPPORT_BANKBUILDERS_H

#include <initializer_list>
#include <string>
#include <string_view>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::test {

// The lines joined with CR LF, as banks lie on disk (or with another line end).
inline std::string Lines(std::initializer_list<std::string_view> lines,
                         std::string_view end = "\r\n") {
    std::string text;
    for (std::string_view line : lines) text.append(line).append(end);
    return text;
}

// "[FileHeader]" with the version, format and type lines a sectioned bank starts with.
inline std::string SectionedHead(int version, int format, int type) {
    return Lines({"[FileHeader]", "Version = " + std::to_string(version),
                  "Format = " + std::to_string(format), "Type = " + std::to_string(type)});
}

// An invented injection-moulding machine; the seed varies every number.
inline CQZRIM InventedIMM(int seed) {
    CQZRIM m;
    m.SetMaker(("Maker " + std::to_string(seed % 7)).c_str());
    m.SetGrade(("G-" + std::to_string(1000 + seed)).c_str());
    m.SetRemark("all-electric, invented");
    m.SetControllerID(seed);
    m.SetClampingForce(50.0 + seed * 1.25);
    m.SetShotWeight(10.5 + seed);
    m.SetScrewDiameter(18.0 + seed % 40);
    m.SetScrewStroke(80.0 + seed % 90);
    m.SetInjectionPressure(150.0 + seed * 0.5);
    m.SetTimeConstFR(0.01 * (1 + seed % 5));
    m.SetDistanceBetweenTieBars("360x360");
    m.SetMachineDimension("3.1x1.0x1.7");
    return m;
}

inline CQZRRTM InventedRTM(int seed) {
    CQZRRTM m;
    m.SetMaker(("Press " + std::to_string(seed % 5)).c_str());
    m.SetGrade(("T-" + std::to_string(2000 + seed)).c_str());
    m.SetRemark("invented transfer press");
    m.SetControllerID(seed);
    m.SetPlungerDiameter(30.0 + seed % 20);
    m.SetPlungerStroke(90.0 + seed * 0.25);
    m.SetTransferPressure(120.0 + seed);
    return m;
}

// An empty catalogue with these file attributes.
inline CQZRMoldingMachineCtrl AttributedCatalogue(int version, int format, int type) {
    CQZRMoldingMachineCtrl catalogue;
    catalogue.SetFileVersion(version);
    catalogue.SetFileFormat(format);
    catalogue.SetFileType(type);
    return catalogue;
}

// A catalogue of `count` invented machines of one kind, with the file attributes of a user bank
// of that kind: version 9000 saves as a sectioned bank, a version below it as a legacy one.
inline CQZRMoldingMachineCtrl UserCatalogue(bool transferMoulding, int version, int count) {
    CQZRMoldingMachineCtrl catalogue = AttributedCatalogue(version, 1, transferMoulding ? 1 : 0);
    catalogue.SetDatabaseInitialize(true);
    for (int seed = 0; seed < count; ++seed) {
        if (transferMoulding) {
            CQZRRTM machine = InventedRTM(seed);
            catalogue.AddMachine(machine);
        } else {
            CQZRIM machine = InventedIMM(seed);
            catalogue.AddMachine(machine);
        }
    }
    return catalogue;
}

// "Maker count, " for each maker in the catalogue's maker order, then "version/format/type" and
// "+" where the catalogue is marked initialized.
inline std::string Contents(const CQZRMoldingMachineCtrl& catalogue) {
    std::string text;
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int id = catalogue.GetMakerID(position);
        text += std::string(catalogue.GetMaker(id)) + " " +
                std::to_string(catalogue.GetMachineCount(id)) + ", ";
    }
    return text + std::to_string(catalogue.GetFileVersion()) + "/" +
           std::to_string(catalogue.GetFileFormat()) + "/" +
           std::to_string(catalogue.GetFileType()) + (catalogue.IsDatabaseInitialize() ? "+" : "");
}

}  // namespace qzr::test

#endif  // QZR_TESTS_SUPPORT_BANKBUILDERS_H
