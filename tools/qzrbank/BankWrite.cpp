#include "BankWrite.h"

#include <filesystem>
#include <system_error>

#include <QZRMachine/QZRMoldingMachineIO.h>

#include "BankFiles.h"
#include "BankLoading.h"
#include "Commands.h"
#include "FileInfo.h"
#include "TemporaryFolder.h"
#include "bank/BankKind.h"
#include "bank/legacy/LegacyMarkers.h"

namespace qzrbank {

namespace fs = std::filesystem;

namespace {

const char* const kBackupSuffix = ".bak";

// Where the format's save puts its bank under the folder it is given, and the load that reads
// it back.
struct FormatSave {
    const char* fileInBank;
    BankLoad readBack;
};

FormatSave SaveOf(BankFormat format) {
    switch (format) {
        case BankFormat::kLegacy:
            return {"user-pro.bnk", BankLoad::OldIMMUser};
        case BankFormat::kSectionedIMM:
            return {"User-IMM.bnk", BankLoad::IMMUser};
        case BankFormat::kSectionedRTM:
            return {"User-RTMIC.bnk", BankLoad::RTMUser};
    }
    return {"", BankLoad::IMMUser};
}

bool Save(BankFormat format, const fs::path& folder, const CQZRMoldingMachineCtrl& catalogue) {
    CQZRMoldingMachineIO front;
    const std::string withSeparator = folder.string() + "/";
    switch (format) {
        case BankFormat::kLegacy:
            return front.SaveOldIMMUserDatabase(withSeparator.c_str(), &catalogue);
        case BankFormat::kSectionedIMM:
            return front.SaveIMMUserDatabase(
                (folder / "Bank" / SaveOf(format).fileInBank).string().c_str(), &catalogue);
        case BankFormat::kSectionedRTM:
            return front.SaveRTMUserDatabase(withSeparator.c_str(), &catalogue);
    }
    return false;
}

bool Exists(const fs::path& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

}  // namespace

std::string WriteRefusal(const CQZRMoldingMachineCtrl& catalogue, const WriteOptions& options,
                         const fs::path& target) {
    if (options.format != BankFormat::kLegacy &&
        catalogue.GetTotalMachine() > kMostSectionedMachines) {
        return std::to_string(catalogue.GetTotalMachine()) +
               " machines: a sectioned bank of more than " +
               std::to_string(kMostSectionedMachines) + " machines does not load back";
    }
    std::error_code error;
    if (fs::is_directory(target, error)) {
        return "is a folder";
    }
    if (options.force) {
        return {};
    }
    if (Exists(target)) {
        return "exists (--force replaces it, keeping it as " + options.output + kBackupSuffix + ")";
    }
    if (Exists(target.string() + kBackupSuffix)) {
        return "its backup " + options.output + kBackupSuffix +
               " exists and would be replaced (--force replaces it)";
    }
    return {};
}

namespace {

// What in one text of a machine keeps it from reading back from a bank of the format.
void AddTextHazards(BankFormat format, const char* attribute, const std::string& value, bool isName,
                    std::vector<std::string>* hazards) {
    const std::string named = std::string(attribute) + " " + Quoted(value);
    if (isName && value.empty()) {
        hazards->push_back(std::string(attribute) + " is empty: " +
                           (format == BankFormat::kLegacy
                                ? "the legacy row's fields shift"
                                : "the load stops at the machine's section"));
    }
    if (value.find_first_of("\r\n") != std::string::npos) {
        hazards->push_back(named + " holds a line end: it splits the line that holds it");
    }
    if (format != BankFormat::kLegacy) {
        return;
    }
    if (isName && value.find(',') != std::string::npos) {
        hazards->push_back(named + " holds a comma: the legacy row splits it");
    }
    struct Marker {
        std::string_view text;
        const char* effect;
    };
    const Marker markers[] = {
        {qzr::legacy::kVersionMarker, "the loader takes the row for a version line"},
        {qzr::legacy::kTotalNoMarker, "a legacy user bank with this row fails to load"},
        {qzr::legacy::kUserDatabaseMarker, "the loader takes the row for the database marker"},
        {qzr::legacy::kEndMarker, "the loader stops reading at this row"},
    };
    for (const Marker& marker : markers) {
        if (value.find(marker.text) != std::string::npos) {
            hazards->push_back(named + " holds " + Quoted(std::string(marker.text)) + ": " +
                               marker.effect);
        }
    }
}

std::vector<std::string> Hazards(BankFormat format, const ComparedMachine& machine) {
    std::vector<std::string> hazards;
    AddTextHazards(format, "Maker", machine.maker, true, &hazards);
    AddTextHazards(format, "Grade", machine.grade, true, &hazards);
    for (const Attribute& attribute : machine.attributes) {
        if (attribute.name == "Remark") {
            AddTextHazards(format, "Remark", attribute.text, false, &hazards);
        }
    }
    return hazards;
}

std::string Joined(const std::vector<std::string>& parts, const char* separator) {
    std::string joined;
    for (const std::string& part : parts) {
        joined += (joined.empty() ? "" : separator) + part;
    }
    return joined;
}

// The attributes some format carries and this one does not.
std::string NotCarried(BankFormat format) {
    std::vector<std::string> names;
    for (const Attribute& attribute : AttributesOf(format)) {
        if ((attribute.inLegacy || attribute.inSectioned) && !CarriedBy(attribute, format)) {
            names.push_back(attribute.name);
        }
    }
    return Joined(names, ", ");
}

bool LosesUncarried(const std::vector<MachineDifference>& differences) {
    for (const MachineDifference& machine : differences) {
        for (const AttributeChange& change : machine.changes) {
            if (!change.carried) {
                return true;
            }
        }
    }
    return false;
}

void ReportChanged(const MachineDifference& machine, std::ostream& out) {
    std::vector<std::string> lost;
    std::vector<std::string> changed;
    for (const AttributeChange& change : machine.changes) {
        if (change.carried) {
            changed.push_back(change.name + " " + Shown(change, change.before) + " -> " +
                              Shown(change, change.after));
        } else {
            lost.push_back(change.name + " " + Shown(change, change.before));
        }
    }
    if (!lost.empty()) {
        out << "  " << DisplayName(machine) << ": lost " << Joined(lost, ", ") << '\n';
    }
    if (!changed.empty()) {
        out << "  " << DisplayName(machine) << ": changed " << Joined(changed, ", ") << '\n';
    }
}

// What a write would lose, counted by machine.
struct Losses {
    size_t written = 0;
    size_t notReadBack = 0;
    size_t changed = 0;     // values of attributes the format carries read back otherwise
    size_t notCarried = 0;  // values of attributes the format does not carry
    size_t extra = 0;       // read back, though not written
    size_t notRead = 0;     // what the loads of the input passed over

    size_t Intact() const { return written - notReadBack - (changed + notCarried); }
    bool Any() const { return notReadBack + changed + notCarried + extra + notRead > 0; }
};

std::string Machines(size_t count) {
    return std::to_string(count) + (count == 1 ? " machine" : " machines");
}

// "4 of 6 machines read back intact (1 not read back, ...)".
std::string Summary(const Losses& losses, BankFormat format) {
    std::vector<std::string> details;
    const auto add = [&details](size_t count, const std::string& what) {
        if (count > 0) {
            details.push_back(std::to_string(count) + " " + what);
        }
    };
    add(losses.notReadBack, "not read back");
    add(losses.changed, "with values changed");
    add(losses.notCarried,
        std::string("with attributes a ") + FormatName(format) + " does not carry");
    add(losses.extra, "read back though not written");
    add(losses.notRead, losses.notRead == 1 ? "part of the input the loader skipped"
                                            : "parts of the input the loader skipped");
    return std::to_string(losses.Intact()) + " of " + Machines(losses.written) +
           " read back intact" + (details.empty() ? "" : " (" + Joined(details, ", ") + ")");
}

// Reports what did not read back, machine by machine.
Losses ReportLosses(BankFormat format, const TextEncoding& encoding,
                    const std::vector<ComparedMachine>& written,
                    const std::vector<MachineDifference>& differences, std::ostream& out) {
    Losses losses;
    losses.written = written.size();
    for (const MachineDifference& machine : differences) {
        switch (machine.what) {
            case MachineDifference::What::kRemoved:
                ++losses.notReadBack;
                out << "  " << DisplayName(machine) << ": not read back\n";
                break;
            case MachineDifference::What::kChanged: {
                bool carried = false;
                for (const AttributeChange& change : machine.changes) {
                    carried = carried || change.carried;
                }
                ++(carried ? losses.changed : losses.notCarried);
                ReportChanged(machine, out);
                break;
            }
            case MachineDifference::What::kAdded:
                ++losses.extra;
                out << "  " << DisplayName(machine) << ": read back, though not written\n";
                break;
        }
    }
    if (!differences.empty()) {
        for (const ComparedMachine& machine : written) {
            for (const std::string& hazard : Hazards(format, machine)) {
                out << "  "
                    << encoding.DecodeOrEscape(machine.maker + " - " + machine.grade + ": " +
                                               hazard)
                    << '\n';
            }
        }
    }
    return losses;
}

size_t ReportSkipped(const std::vector<Finding>& skipped, std::ostream& out) {
    size_t count = 0;
    for (const Finding& finding : skipped) {
        if (finding.severity == Severity::kError) {
            out << "  " << Location(finding) << ": not read from the input: " << finding.message
                << '\n';
            ++count;
        }
    }
    return count;
}

// Puts the verified bank in OUT's place, an existing OUT kept as OUT.bak.
std::string PutInPlace(const fs::path& written, const fs::path& target) {
    std::error_code error;
    if (Exists(target)) {
        const fs::path backup = target.string() + kBackupSuffix;
        fs::copy_file(target, backup, fs::copy_options::overwrite_existing, error);
        if (error == std::errc::file_exists) {
            // Some standard libraries (MinGW's) refuse to overwrite; the old backup goes first.
            fs::remove(backup, error);
            fs::copy_file(target, backup, error);
        }
        if (error) {
            return "cannot keep the previous file as " + target.string() + kBackupSuffix + ": " +
                   error.message();
        }
    }
    fs::rename(written, target, error);
    return error ? "cannot write " + target.string() + ": " + error.message() : std::string();
}

}  // namespace

void PrepareForFormat(BankFormat format, CQZRMoldingMachineCtrl* catalogue) {
    catalogue->SetFileVersion(format == BankFormat::kLegacy ? 7007 : 9000);
    catalogue->SetFileFormat(1);
    catalogue->SetFileType(format == BankFormat::kSectionedRTM ? 1 : 0);
}

bool UserBankFormat(int kind, BankFormat* format) {
    switch (kind) {
        case qzr::bank::OldIMMUserBank:
            *format = BankFormat::kLegacy;
            return true;
        case qzr::bank::IMMUserBank:
            *format = BankFormat::kSectionedIMM;
            return true;
        case qzr::bank::RTMUserBank:
            *format = BankFormat::kSectionedRTM;
            return true;
        default:
            return false;
    }
}

bool LoadUserBank(const std::string& path, CQZRMoldingMachineCtrl* catalogue, WriteOptions* write,
                  std::ostream& err) {
    const std::string problem = ReadProblem(path);
    if (!problem.empty()) {
        err << "qzrbank: " << path << ": " << problem << '\n';
        return false;
    }
    const Recognition header = RecognizeBankFile(path);
    if (!UserBankFormat(header.kind, &write->format)) {
        err << "qzrbank: " << path << ": a bank of kind " << BankKindName(header.kind)
            << "; this takes a user bank (OldIMMUserBank, IMMUserBank or RTMUserBank)\n";
        return false;
    }
    BankLoad load = BankLoad::IMMUser;
    LoadOfKind(header.kind, &load);
    if (!LoadWatched(load, path, catalogue, &write->skippedOnLoad)) {
        err << "qzrbank: " << path << ": refused by its loader (run 'qzrbank check' on it)\n";
        return false;
    }
    // A sectioned bank written back keeps who made it and its remark (the save stamps a new
    // CreateDate); a load gives the catalogue neither.
    if (write->format != BankFormat::kLegacy) {
        for (const auto& [key, value] : SectionedHeaderTexts(path)) {
            if (key == "CreateBy") {
                catalogue->SetFileCreateBy(value.c_str());
            } else if (key == "Remark") {
                catalogue->SetFileRemark(value.c_str());
            }
        }
    }
    write->output = path;
    write->force = true;
    return true;
}

int WriteBank(const CQZRMoldingMachineCtrl& catalogue, const WriteOptions& options,
              std::ostream& out, std::ostream& err) {
    const fs::path target(NativePath(options.output));
    const std::string refusal = WriteRefusal(catalogue, options, target);
    if (!refusal.empty()) {
        err << "qzrbank: " << options.output << ": " << refusal << '\n';
        return kExitError;
    }
    const fs::path parent = target.has_parent_path() ? target.parent_path() : fs::path(".");
    TemporaryFolder temporary(parent);
    std::error_code error;
    if (temporary.Path().empty() || !fs::create_directory(temporary.Path() / "Bank", error)) {
        const std::string problem = StatusProblem(parent.string());
        err << "qzrbank: " << options.output << ": cannot make a temporary folder in "
            << parent.string() << ": " << (problem.empty() ? "the save failed" : problem) << '\n';
        return kExitError;
    }
    if (!Save(options.format, temporary.Path(), catalogue)) {
        err << "qzrbank: " << options.output << ": the " << FormatName(options.format)
            << " writer refused the catalogue\n";
        return kExitError;
    }
    const FormatSave save = SaveOf(options.format);
    const fs::path written = temporary.Path() / "Bank" / save.fileInBank;
    CQZRMoldingMachineCtrl readBack;
    LoadBank(save.readBack, written.string(), &readBack);

    const std::vector<ComparedMachine> before = MachinesToCompare(catalogue);
    const BankFormat format = options.format;
    std::vector<MachineDifference> differences = CompareMachines(
        before, MachinesToCompare(readBack), [](const Attribute&) { return true; },
        [format](const Attribute& attribute) { return CarriedBy(attribute, format); });
    DecodeDifferences(options.encoding, &differences);
    out << Machines(before.size()) << " for " << options.output << " (" << FormatName(format)
        << ")\n";
    const std::string notCarried = NotCarried(format);
    if (!notCarried.empty() && LosesUncarried(differences)) {
        out << "not carried by a " << FormatName(format) << ", so lost: " << notCarried << '\n';
    }
    if (!options.headerTextsLost.empty()) {
        out << "not carried by a " << FormatName(format) << ", so lost: the header's "
            << options.headerTextsLost << '\n';
    }
    Losses losses = ReportLosses(format, options.encoding, before, differences, out);
    losses.notRead = ReportSkipped(options.skippedOnLoad, out);
    if (losses.Any() && !options.allowLoss) {
        err << "qzrbank: " << options.output << ": not written: " << Summary(losses, format)
            << "; --allow-loss writes it all the same\n";
        return kExitNegative;
    }
    if (options.dryRun) {
        out << "would write " << options.output << ": " << Summary(losses, format) << '\n';
        return kExitOk;
    }
    const std::string placed = PutInPlace(written, target);
    if (!placed.empty()) {
        err << "qzrbank: " << placed << '\n';
        return kExitError;
    }
    out << "wrote " << options.output << ": " << Summary(losses, format) << '\n';
    return kExitOk;
}

}  // namespace qzrbank
