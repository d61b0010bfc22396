// Writing a catalogue as a legacy tabular user bank. The writer always writes version 7007
// with its rows in the 7005 layout, whatever version the catalogue came from, so that older
// hosts reading "user-pro.bnk" get the layout they expect.
#include <initializer_list>
#include <string>
#include <string_view>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "bank/BankKind.h"
#include "bank/CatalogueWalk.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "bank/SaveProtocol.h"
#include "bank/TextBuffer.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "platform/CNumbers.h"
#include "platform/TextWriter.h"

using qzr::catalogue::CQZRMoldingMachineCtrlAccess;

namespace qzr::legacy {

using bank::BankKind;
using bank::CQZRMoldingMachineWriter;
using bank::OldIMMUserBank;

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
// comma in a maker or grade, or a line end in any text, breaks the row for the reader.
//
// The row is the text of the C format
//   "%d,%s,%s,%s,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%6.2f,%lg,%lg,%6.2f,%6.2f,%d,%6.2f,%d,%6.2f,"
//   "%6.2f,%6.2f,%6.2f,%6.2f,%6.2f\n"
// put together field by field (platform/CNumbers.h writes each number as that format would).
// The time constants ("%lg") take two exponent digits when they need an exponent, as C99 has it
// ("1e-05" here, "1e-005" from the DLL); the readers take both.
class LegacyUserRow {
  public:
    // The row of the machine, valid until the next call.
    std::string_view Of(const CQZRIM& machine) {
        const NozzleSpecification& nozzle = machine.GetNozzleSpecification();
        m_row.Clear();
        Int(1);
        Text(machine.GetMaker());
        Text(machine.GetGrade());
        Text(machine.GetRemark());
        for (const double value :
             {machine.GetClampingForce(), machine.GetShotWeight(), machine.GetInjectionPressure(),
              machine.GetInjectionRate(), machine.GetScrewDiameter(), machine.GetScrewStroke()}) {
            Fixed(value);
        }
        General(machine.GetTimeConstFR());
        General(machine.GetTimeConstIP());
        Fixed(machine.GetNozzleVolume());
        Fixed(machine.GetMaxPressureSlope());
        Int(machine.GetMachineEnergyType());
        Fixed(machine.GetHydraulicPressureTransferFactor());
        Int(nozzle.Type);
        for (const double value :
             {nozzle.Value1, nozzle.Value2, nozzle.Value3, nozzle.Value4, nozzle.Value5}) {
            Fixed(value);
        }
        Last(nozzle.Value6);
        m_row.Append('\n');
        return m_row.View();
    }

  private:
    // Every field but the last is followed by a comma, the last by the line end.
    void Text(const char* text) {
        m_row.AppendText(text);
        m_row.Append(',');
    }
    void Int(int value) {
        m_row.AppendNumber(&platform::WriteD, value);
        m_row.Append(',');
    }
    void Fixed(double value) {
        m_row.AppendNumber(&platform::WriteWidth6Fixed2, value);
        m_row.Append(',');
    }
    void General(double value) {
        m_row.AppendNumber(&platform::WriteLg, value);
        m_row.Append(',');
    }
    void Last(double value) { m_row.AppendNumber(&platform::WriteWidth6Fixed2, value); }

    bank::TextBuffer m_row;
};

// Every injection-moulding machine in catalogue order; an index that falls on a machine of a
// transfer-moulding group is not handed out as a CQZRIM and gets no row.
void WriteOldUserBank(platform::TextWriter& out, const CQZRMoldingMachineCtrl& catalogue) {
    out.Write(kOldUserBankHead);
    const bank::CatalogueWalk walk(catalogue);
    LegacyUserRow row;
    for (int index = 0; index < walk.TotalMachine(); ++index) {
        if (const CQZRIM* machine = walk.Fetch<CQZRIM>(index)) {
            out.Write(row.Of(*machine));
        }
    }
    out.Write("[EOF]\n");
}

}  // namespace

}  // namespace qzr::legacy

namespace qzr::bank {

bool CQZRMoldingMachineWriter::WriteOldIMMUserDatabase(
    const char* folder, const CQZRMoldingMachineCtrl* catalogue) const {
    if (folder == nullptr || catalogue == nullptr ||
        CQZRMoldingMachineCtrlAccess::Store(*catalogue) == nullptr ||
        !legacy::IsOldUserBankOfIMM(*catalogue)) {
        return false;
    }
    char target[kPathBufferSize];
    if (!GetDefaultBankPath(folder, OldIMMUserBank, target)) {
        return false;
    }
    return SaveBankFile(target, [catalogue](qzr::platform::TextWriter& out) {
        legacy::WriteOldUserBank(out, *catalogue);
    });
}

}  // namespace qzr::bank
