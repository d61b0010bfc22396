// Writing a catalogue as a sectioned user bank, of injection-moulding or transfer-moulding
// machines.
#include <string>
#include <string_view>

#include "bank/BankKind.h"
#include "bank/CatalogueWalk.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "bank/SaveProtocol.h"
#include "bank/sectioned/MachineSectionFormat.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "platform/CNumbers.h"
#include "platform/TextWriter.h"

using qzr::catalogue::CQZRMoldingMachineCtrlAccess;

namespace qzr::bank {

namespace {

using qzr::platform::TextWriter;
using qzr::platform::WriteD;
using qzr::platform::WriteLf;

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

// A line of the C format "<prefix>%d\n".
void WriteIntegerLine(TextWriter& out, const char* prefix, int value) {
    char number[qzr::platform::kLongestNumber];
    out.Write(prefix);
    out.Write(std::string_view(number, static_cast<size_t>(WriteD(value, number) - number)));
    out.Write("\n");
}

// "[FileHeader]" with the catalogue's attributes and the time of the save, then "[General]".
// The time stamp ends with its own newline, so an empty line follows "CreateDate".
void WriteBankHeader(TextWriter& out, const CQZRMoldingMachineCtrl& catalogue) {
    out.Write("[FileHeader]\n");
    WriteIntegerLine(out, "Version    = ", catalogue.GetFileVersion());
    WriteIntegerLine(out, "Format     = ", catalogue.GetFileFormat());
    WriteIntegerLine(out, "Type       = ", catalogue.GetFileType());
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
    WriteIntegerLine(out, "TotalMachine = ", catalogue.GetTotalMachine());
    out.Write("\n");
}

// A machine's value of one key, as "%s", "%d" or "%lf" writes it. Texts go out unescaped: a
// line feed in a value splits its entry line.
template <class Record>
void WriteValue(TextWriter& out, const records::FieldDescriptor<Record>& field,
                const Record& machine) {
    switch (field.type) {
        case records::FieldType::kText:
            WriteText(out, field.getText(machine));
            break;
        case records::FieldType::kInteger:
            out.WriteNumber(&WriteD, field.getInteger(machine));
            break;
        case records::FieldType::kReal:
            out.WriteNumber(&WriteLf, field.getReal(machine));
            break;
    }
}

// One machine's section: the header "[Machine-%d]\n\n" with the section's number, one entry
// line per key (the key's prefix, then the value), and an empty line.
template <class Record>
void WriteSection(TextWriter& out, const MachineSectionFormat<Record>& format, int number,
                  const Record& machine) {
    out.WriteVerbatim("[Machine-");
    out.WriteNumber(&WriteD, number);
    out.WriteVerbatim("]");
    out.EndLine();
    out.EndLine();
    for (const MachineKey<Record>& row : format.rows) {
        out.WriteVerbatim(row.linePrefix);
        WriteValue(out, *row.field, machine);
        out.EndLine();
    }
    out.EndLine();
}

// One section per machine of the writer's kind, numbered by global machine index + 1: the
// machines of the other kind leave gaps in the numbering, which also ends a later reading of
// the file at the first gap.
template <class Record>
void WriteMachineSections(TextWriter& out, const CQZRMoldingMachineCtrl& catalogue,
                          const MachineSectionFormat<Record>& format) {
    qzr::bank::CatalogueWalk(catalogue).ForEachMachine<Record>(
        [&out, &format](int index, const Record& machine) {
            WriteSection(out, format, index + 1, machine);
        });
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

}  // namespace qzr::bank
