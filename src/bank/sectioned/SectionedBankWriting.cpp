// Writing a catalogue as a sectioned user bank, of injection-moulding or transfer-moulding
// machines.
#include <string>

#include "bank/BankFileSave.h"
#include "bank/BankPathKind.h"
#include "bank/CatalogueWalk.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "bank/sectioned/MachineSectionFormat.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "platform/TextWriter.h"

namespace {

using qzr::bank::KeyValueKind;
using qzr::bank::MachineKey;
using qzr::bank::MachineSectionFormat;
using qzr::platform::TextWriter;

constexpr int kFirstSectionedVersion = 9000;
constexpr int kUserBankFormat = 1;
constexpr int kIMMType = 0;
constexpr int kRTMType = 1;

// Writers accept only a catalogue with a store whose file attributes name a sectioned user
// bank of their own kind.
bool IsSectionedUserBankOf(const CQZRMoldingMachineCtrl& catalogue, int type) {
    return CQZRMoldingMachineCtrlAccess::Store(catalogue) != nullptr &&
           catalogue.GetFileVersion() >= kFirstSectionedVersion &&
           catalogue.GetFileFormat() == kUserBankFormat && catalogue.GetFileType() == type;
}

void WriteText(TextWriter& out, const char* text) {
    if (text != nullptr) {
        out.Write(text);
    }
}

// "[FileHeader]" with the catalogue's attributes and the time of the save, then "[General]".
// The time stamp ends with its own newline, so an empty line follows "CreateDate".
void WriteBankHeader(TextWriter& out, const CQZRMoldingMachineCtrl& catalogue) {
    out.Write("[FileHeader]\n");
    out.Format("Version    = %d\n", catalogue.GetFileVersion());
    out.Format("Format     = %d\n", catalogue.GetFileFormat());
    out.Format("Type       = %d\n", catalogue.GetFileType());
    out.Write("CreateDate = ");
    WriteText(out, CQZRMoldingMachineWriter::GetTimeStamp());
    out.Write("\n");
    out.Write("CreateBy   = ");
    WriteText(out, catalogue.GetFileCreateBy());
    out.Write("\n");
    out.Write("Remark     = ");
    WriteText(out, catalogue.GetFileRemark());
    out.Write("\n");
    out.Write("\n");
    out.Write("[General]\n");
    // Machines of both kinds count, also those the walk below gives no section.
    out.Format("TotalMachine = %d\n", catalogue.GetTotalMachine());
    out.Write("\n");
}

template <class Record>
void WriteEntry(TextWriter& out, const MachineKey<Record>& row, const Record& machine) {
    out.Write(row.linePrefix);
    switch (row.kind) {
        case KeyValueKind::kText:
            // Texts go out unescaped: a line feed in a value splits its entry line.
            WriteText(out, (machine.*row.getText)());
            break;
        case KeyValueKind::kInteger:
            out.Format("%d", (machine.*row.getInteger)());
            break;
        case KeyValueKind::kReal:
            out.Format("%lf", (machine.*row.getReal)());
            break;
    }
    out.Write("\n");
}

// One section per machine of the writer's kind, numbered by global machine index + 1: the
// machines of the other kind leave gaps in the numbering, which also ends a later reading of
// the file at the first gap.
template <class Record>
void WriteMachineSections(TextWriter& out, const CQZRMoldingMachineCtrl& catalogue,
                          const MachineSectionFormat<Record>& format) {
    const qzr::bank::CatalogueWalk walk(catalogue);
    Record machine;
    for (int index = 0; index < walk.TotalMachine(); ++index) {
        if (!walk.Fetch(index, machine)) {
            continue;
        }
        out.Format("[Machine-%d]\n\n", index + 1);
        for (size_t row = 0; row < format.rowCount; ++row) {
            WriteEntry(out, format.rows[row], machine);
        }
        out.Write("\n");
    }
}

template <class Record>
bool WriteSectionedUserBank(const std::string& target, const CQZRMoldingMachineCtrl& catalogue,
                            const MachineSectionFormat<Record>& format) {
    return qzr::bank::SaveBankFile(target, [&catalogue, &format](TextWriter& out) {
        WriteBankHeader(out, catalogue);
        WriteMachineSections(out, catalogue, format);
        out.Write("[EOF]\n");
    });
}

}  // namespace

bool CQZRMoldingMachineWriter::WriteIMMUserDatabase(const char* path,
                                                    const CQZRMoldingMachineCtrl* catalogue) const {
    if (path == nullptr || catalogue == nullptr || !IsSectionedUserBankOf(*catalogue, kIMMType)) {
        return false;
    }
    return WriteSectionedUserBank(path, *catalogue, qzr::bank::IMMSectionFormat());
}

bool CQZRMoldingMachineWriter::WriteRTMUserDatabase(const char* folder,
                                                    const CQZRMoldingMachineCtrl* catalogue) const {
    if (folder == nullptr || catalogue == nullptr || !IsSectionedUserBankOf(*catalogue, kRTMType)) {
        return false;
    }
    char target[kPathBufferSize];
    if (!GetDefaultBankPath(folder, RTMUserBank, target)) {
        return false;
    }
    return WriteSectionedUserBank(target, *catalogue, qzr::bank::RTMSectionFormat());
}
