// Writing a catalogue as a legacy tabular user bank. The writer always writes version 7007
// with its rows in the 7005 layout, whatever version the catalogue came from, so that older
// hosts reading "user-pro.bnk" get the layout they expect.
#include <QZRMachine/NozzleSpecification.h>
#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "bank/BankFileSave.h"
#include "bank/BankPathKind.h"
#include "bank/CatalogueWalk.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "platform/TextWriter.h"

namespace qzr::legacy {

namespace {

// Version 9000 and above is the sectioned format; format 1 a user bank; type 0 injection
// moulding, the only kind this format holds.
bool IsOldUserBankOfIMM(const CQZRMoldingMachineCtrl& catalogue) {
    return catalogue.GetFileVersion() < 9000 && catalogue.GetFileFormat() == 1 &&
           catalogue.GetFileType() == 0;
}

// The header, the column titles and units (no reader looks at those), and the rows' marker.
constexpr const char* kOldUserBankHead =
    "[Header]\n"
    "Version,7007\n"
    "\n"
    "[Format]\n"
    "ID,Maker,Grade,Remark,ClampForce,ShotWeight,Max.Pressure,Max.FlowRate,ScrewDiameter,"
    "Max.RamPosition,TimeConstFR,TimeConstIP,NozzleVolume,MaxPressureSlope,MachineType,"
    "HydralicPressureTransferFactor,\n"
    "Unit,,,,ton,g,MPa,cc/s,mm,mm,sec,sec,cm3,,,,\n"
    "\n"
    "[Database]\n";

// Every row has ID 1: the user-bank reader takes no other. Texts go out as they stand, so a
// comma in a maker or grade, or a line end in any text, breaks the row for the reader. The
// time constants ("%lg") take the C library's exponent digits when they need an exponent
// ("1e-05" here, "1e-005" from the DLL); the readers take both.
void WriteOldUserRow(platform::TextWriter& out, const CQZRIM& machine) {
    const NozzleSpecification& nozzle = machine.GetNozzleSpecification();
    out.Format(
        "%d,%s,%s,%s,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%lg,%lg,%6.2f,%6.2f,%d,%6.2f,%d,%6.2f,"
        "%6.2f,%6.2f,%6.2f,%6.2f,%6.2f\n",
        1, machine.GetMaker(), machine.GetGrade(), machine.GetRemark(), machine.GetClampingForce(),
        machine.GetShotWeight(), machine.GetInjectionPressure(), machine.GetInjectionRate(),
        machine.GetScrewDiameter(), machine.GetScrewStroke(), machine.GetTimeConstFR(),
        machine.GetTimeConstIP(), machine.GetNozzleVolume(), machine.GetMaxPressureSlope(),
        machine.GetMachineEnergyType(), machine.GetHydraulicPressureTransferFactor(), nozzle.Type,
        nozzle.Value1, nozzle.Value2, nozzle.Value3, nozzle.Value4, nozzle.Value5, nozzle.Value6);
}

// Every injection-moulding machine in catalogue order; an index that falls on a machine of a
// transfer-moulding group is not handed out as a CQZRIM and gets no row.
void WriteOldUserBank(platform::TextWriter& out, const CQZRMoldingMachineCtrl& catalogue) {
    out.Write(kOldUserBankHead);
    const bank::CatalogueWalk walk(catalogue);
    CQZRIM machine;
    for (int index = 0; index < walk.TotalMachine(); ++index) {
        if (walk.Fetch(index, machine)) {
            WriteOldUserRow(out, machine);
        }
    }
    out.Write("[EOF]\n");
}

}  // namespace

}  // namespace qzr::legacy

bool CQZRMoldingMachineWriter::WriteOldIMMUserDatabase(
    const char* folder, const CQZRMoldingMachineCtrl* catalogue) const {
    if (folder == nullptr || catalogue == nullptr ||
        CQZRMoldingMachineCtrlAccess::Store(*catalogue) == nullptr ||
        !qzr::legacy::IsOldUserBankOfIMM(*catalogue)) {
        return false;
    }
    char target[kPathBufferSize];
    if (!GetDefaultBankPath(folder, OldIMMUserBank, target)) {
        return false;
    }
    return qzr::bank::SaveBankFile(target, [catalogue](qzr::platform::TextWriter& out) {
        qzr::legacy::WriteOldUserBank(out, *catalogue);
    });
}
