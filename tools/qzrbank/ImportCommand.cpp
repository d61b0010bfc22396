// qzrbank import: machines of a CSV or JSON file (as export writes them) added to a user bank,
// or to a new one, through the honest write (BankWrite.h). Texts are UTF-8 in the file and bank
// bytes of the chosen code page in the bank.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankFiles.h"
#include "BankWrite.h"
#include "Commands.h"
#include "MachineDetails.h"
#include "MachineEditing.h"
#include "TabularMachines.h"
#include "TextEncoding.h"
#include "records/NameRule.h"

namespace qzrbank {

namespace fs = std::filesystem;

namespace {

// Columns of export that describe where a machine came from rather than the machine.
const std::set<std::string> kNotAttributes = {"Kind", "Bank", "MakerID", "MachineID"};

struct ImportCounts {
    size_t added = 0;
    size_t replaced = 0;
    size_t skipped = 0;
};

// Whether a column names a field of the Record's kind; export's CSV leaves the cells of the other
// kind's fields empty.
template <class Record>
bool IsFieldOf(const std::string& column) {
    static const std::vector<Attribute> attributes = DescribeMachine(Record());
    return std::any_of(attributes.begin(), attributes.end(), [&column](const Attribute& field) {
        return field.name == column || field.key == column;
    });
}

std::string ValueOf(const TabularMachine& machine, const std::string& key) {
    for (const auto& value : machine.values) {
        if (value.first == key) {
            return value.second;
        }
    }
    return {};
}

// The imported machines and what they did to the bank; the errors name file, place and field.
class Importer {
  public:
    Importer(const ImportOptions& options, const TextEncoding& encoding,
             CQZRMoldingMachineCtrl* catalogue)
        : m_options(options), m_encoding(encoding), m_catalogue(catalogue) {}

    template <class Record>
    void Import(const TabularMachine& row) {
        const std::string name = ValueOf(row, "Maker") + " - " + ValueOf(row, "Grade");
        const std::string where = m_options.file + ": " + row.where + " (" + name + ")";
        Record machine;
        if (!Fill(row, where, &machine)) {
            return;
        }
        if (*machine.GetMaker() == '\0' || *machine.GetGrade() == '\0') {
            m_errors.push_back(where + ": a machine needs a maker and a grade");
            return;
        }
        const std::string key = qzr::records::NameKey(machine.GetMaker()) + '\0' +
                                qzr::records::NameKey(machine.GetGrade());
        const auto seen = m_seen.emplace(key, row.where);
        if (!seen.second) {
            m_errors.push_back(where + ": the file has this machine already, " +
                               seen.first->second);
            return;
        }
        Place(row, where, &machine);
    }

    const std::vector<std::string>& Errors() const { return m_errors; }
    const ImportCounts& Counts() const { return m_counts; }

  private:
    template <class Record>
    bool Fill(const TabularMachine& row, const std::string& where, Record* machine) {
        for (const auto& value : row.values) {
            if (kNotAttributes.count(value.first) > 0 ||
                (value.second.empty() && !IsFieldOf<Record>(value.first))) {
                continue;
            }
            const EncodedText bytes = m_encoding.Encode(value.second);
            std::string error;
            if (!bytes.ok) {
                error = value.first + ": the character at byte " + std::to_string(bytes.badOffset) +
                        " has no " + m_encoding.Name() + " counterpart";
            } else {
                AssignAttribute(value.first, bytes.text, machine, &error);
            }
            if (!error.empty()) {
                m_errors.push_back(where + ": " + error);
                return false;
            }
        }
        return true;
    }

    // A machine the bank holds is updated: the file's values over its own.
    template <class Record>
    void Place(const TabularMachine& row, const std::string& where, Record* machine) {
        Record existing;
        if (!m_catalogue->GetMachine(machine->GetMaker(), machine->GetGrade(), existing)) {
            if (m_catalogue->AddMachine(*machine)) {
                ++m_counts.added;
            } else {
                m_errors.push_back(where + ": the catalogue did not take the machine");
            }
        } else if (m_options.onDuplicate == "skip") {
            ++m_counts.skipped;
        } else if (m_options.onDuplicate == "replace") {
            Fill(row, where, &existing);
            m_catalogue->SetMachineData(existing.GetMachineID(), existing);
            ++m_counts.replaced;
        } else {
            m_errors.push_back(where + ": the bank holds " + DisplayName(existing) +
                               " (--on-duplicate skip or replace)");
        }
    }

    const ImportOptions& m_options;
    const TextEncoding& m_encoding;
    CQZRMoldingMachineCtrl* m_catalogue;
    std::map<std::string, std::string> m_seen;
    std::vector<std::string> m_errors;
    ImportCounts m_counts;
};

bool ReadWholeFile(const std::string& path, std::string* text, std::ostream& err) {
    const std::string problem = ReadProblem(path);
    std::ifstream in(fs::path(NativePath(path)), std::ios::binary);
    if (!problem.empty() || !in) {
        err << "qzrbank: " << path << ": " << (problem.empty() ? "cannot be read" : problem)
            << '\n';
        return false;
    }
    text->assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

// A bank that does not exist yet: of the kind of the file's machines, legacy on request.
void StartNewBank(const ImportOptions& options, const std::vector<TabularMachine>& machines,
                  CQZRMoldingMachineCtrl* catalogue, WriteOptions* write) {
    const bool rtm = !machines.empty() && ValueOf(machines.front(), "Kind") == "RTM";
    write->format = rtm                             ? BankFormat::kSectionedRTM
                    : options.newFormat == "legacy" ? BankFormat::kLegacy
                                                    : BankFormat::kSectionedIMM;
    write->output = options.bank;
    PrepareForFormat(write->format, catalogue);
    catalogue->SetFileCreateBy("qzrbank import");
    catalogue->SetFileRemark(
        ("Imported from " + fs::path(NativePath(options.file)).filename().string()).c_str());
}

}  // namespace

int RunImport(const ImportOptions& options, std::ostream& out, std::ostream& err) {
    const std::optional<TextEncoding> encoding = TextEncoding::Parse(options.encoding);
    if (!encoding) {
        err << "qzrbank: unknown encoding " << Quoted(options.encoding) << " (one of "
            << TextEncoding::kNames << ")\n";
        return kExitError;
    }
    std::string text;
    std::vector<TabularMachine> machines;
    std::string error;
    if (!ReadWholeFile(options.file, &text, err)) {
        return kExitError;
    }
    if (!ReadTabularMachines(text, &machines, &error)) {
        err << "qzrbank: " << options.file << ": " << error << '\n';
        return kExitError;
    }
    CQZRMoldingMachineCtrl catalogue;
    WriteOptions write;
    std::error_code missing;
    if (fs::exists(fs::path(NativePath(options.bank)), missing)) {
        if (!LoadUserBank(options.bank, &catalogue, &write, err)) {
            return kExitError;
        }
    } else {
        StartNewBank(options, machines, &catalogue, &write);
    }
    const bool rtm = catalogue.GetFileType() == 1;
    Importer importer(options, *encoding, &catalogue);
    for (const TabularMachine& machine : machines) {
        const std::string kind = ValueOf(machine, "Kind");
        if (!kind.empty() && kind != (rtm ? "RTM" : "IMM")) {
            err << "qzrbank: " << options.file << ": " << machine.where << ": a machine of kind "
                << kind << " for a bank of " << (rtm ? "RTM" : "IMM") << " machines\n";
            return kExitError;
        }
        rtm ? importer.Import<CQZRRTM>(machine) : importer.Import<CQZRIM>(machine);
    }
    for (const std::string& problem : importer.Errors()) {
        err << "qzrbank: " << problem << '\n';
    }
    if (!importer.Errors().empty()) {
        return kExitError;
    }
    const ImportCounts& counts = importer.Counts();
    out << options.file << ": " << machines.size()
        << (machines.size() == 1 ? " machine: " : " machines: ") << counts.added << " added, "
        << counts.replaced << " replaced, " << counts.skipped << " skipped\n";
    write.force = true;
    write.allowLoss = options.allowLoss;
    write.dryRun = options.dryRun;
    write.encoding = *encoding;
    return WriteBank(catalogue, write, out, err);
}

}  // namespace qzrbank
