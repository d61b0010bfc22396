// Writing a catalogue as a sectioned user bank, of injection-moulding or transfer-moulding
// machines.
#include <string>
#include <string_view>

#include "bank/BankKind.h"
#include "bank/CatalogueWalk.h"
#include "bank/QZRMoldingMachineWriter.h"
#include "bank/SaveProtocol.h"
#include "bank/TextBuffer.h"
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

// One machine's section, put together as text and handed to the writer whole: the header
// "[Machine-%d]\n\n" with the section's number, one entry line per key (the key's prefix,
// then the value as "%s", "%d" or "%lf" writes it), and an empty line.
template <class Record>
class SectionText {
  public:
    explicit SectionText(const MachineSectionFormat<Record>& format) : m_format(format) {}

    // The section of the machine, valid until the next call.
    std::string_view Of(int number, const Record& machine) {
        m_text.Clear();
        m_text.Append("[Machine-");
        m_text.AppendNumber(&WriteD, number);
        m_text.Append("]\n\n");
        for (const MachineKey<Record>& row : m_format.rows) {
            m_text.Append(row.linePrefix);
            AppendValue(*row.field, machine);
            m_text.Append('\n');
        }
        m_text.Append('\n');
        return m_text.View();
    }

  private:
    void AppendValue(const records::FieldDescriptor<Record>& field, const Record& machine) {
        switch (field.type) {
            case records::FieldType::kText:
                // Texts go out unescaped: a line feed in a value splits its entry line.
                m_text.AppendText(field.getText(machine));
                break;
            case records::FieldType::kInteger:
                m_text.AppendNumber(&WriteD, field.getInteger(machine));
                break;
            case records::FieldType::kReal:
                m_text.AppendNumber(&WriteLf, field.getReal(machine));
                break;
        }
    }

    const MachineSectionFormat<Record>& m_format;
    qzr::bank::TextBuffer m_text;
};

// One section per machine of the writer's kind, numbered by global machine index + 1: the
// machines of the other kind leave gaps in the numbering, which also ends a later reading of
// the file at the first gap.
template <class Record>
void WriteMachineSections(TextWriter& out, const CQZRMoldingMachineCtrl& catalogue,
                          const MachineSectionFormat<Record>& format) {
    const qzr::bank::CatalogueWalk walk(catalogue);
    SectionText<Record> section(format);
    for (int index = 0; index < walk.TotalMachine(); ++index) {
        if (const Record* machine = walk.Fetch<Record>(index)) {
            out.Write(section.Of(index + 1, *machine));
        }
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

}  // namespace qzr::bank
