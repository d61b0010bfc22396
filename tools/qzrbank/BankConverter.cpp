// qzrbank convert: a legacy bank to a sectioned injection-moulding user bank, or a sectioned
// injection-moulding bank to a legacy user bank, through the library's loaders and writers.
//
// The two writers take their target differently: the sectioned save writes the full path it
// is given, the legacy save writes "<folder>\Bank\user-pro.bnk" under the folder it is given.
// The legacy bank is therefore written into a temporary folder beside OUT and moved to OUT;
// an existing OUT is first copied to OUT.bak, as every save of the library keeps the file it
// replaces.
#include <filesystem>
#include <system_error>

#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRMoldingMachineIO.h>

#include "BankFiles.h"
#include "BankLoading.h"
#include "Commands.h"
#include "Finding.h"
#include "MachineDetails.h"
#include "TemporaryFolder.h"
#include "bank/BankKind.h"

namespace qzrbank {

namespace fs = std::filesystem;

namespace {

struct Conversion {
    bool toLegacy = false;
    const char* targetName = nullptr;
    int targetKind = -1;
};

bool SaveSectioned(const std::string& output, CQZRMoldingMachineCtrl* catalogue) {
    CQZRMoldingMachineIO front;
    return front.SaveIMMUserDatabase(output.c_str(), catalogue);
}

// Why files cannot be made in a folder, as far as the file system tells.
std::string FolderProblem(const fs::path& folder) {
    const std::string problem = StatusProblem(folder.empty() ? "." : folder.string());
    return problem.empty() ? "the save failed" : problem;
}

bool SaveLegacy(const std::string& output, CQZRMoldingMachineCtrl* catalogue, std::string* error) {
    const fs::path target(NativePath(output));
    const fs::path parent = target.has_parent_path() ? target.parent_path() : fs::path(".");
    TemporaryFolder temporary(parent);
    std::error_code code;
    if (temporary.Path().empty() || !fs::create_directory(temporary.Path() / "Bank", code)) {
        *error =
            "cannot make a temporary folder in " + parent.string() + ": " + FolderProblem(parent);
        return false;
    }
    CQZRMoldingMachineIO front;
    const std::string folder = temporary.Path().string() + "/";
    if (!front.SaveOldIMMUserDatabase(folder.c_str(), catalogue)) {
        *error = "the legacy writer refused the catalogue";
        return false;
    }
    if (fs::exists(target, code)) {
        fs::copy_file(target, fs::path(target.string() + ".bak"),
                      fs::copy_options::overwrite_existing, code);
        if (code) {
            *error = "cannot keep the previous file as " + target.string() + ".bak";
            return false;
        }
    }
    fs::rename(temporary.Path() / "Bank" / "user-pro.bnk", target, code);
    if (code) {
        *error = "cannot write " + target.string() + ": " + code.message();
        return false;
    }
    return true;
}

std::string ValueWithUnit(const Attribute& attribute) {
    return attribute.unit.empty() ? attribute.text : attribute.text + " " + attribute.unit;
}

bool CarriedBy(const Attribute& attribute, bool legacy) {
    return legacy ? attribute.inLegacy : attribute.inSectioned;
}

// The attributes the source format carries and the target does not.
std::string NotCarried(bool toLegacy) {
    std::string names;
    for (const Attribute& attribute : DescribeMachine(CQZRIM())) {
        if (!attribute.catalogueNumber && CarriedBy(attribute, !toLegacy) &&
            !CarriedBy(attribute, toLegacy)) {
            names += (names.empty() ? "" : ", ") + attribute.name;
        }
    }
    return names;
}

// Per machine, what did not come back: attributes the target does not carry (lost), and
// carried ones that read back otherwise (rounded to the target's decimals, a derived shot
// volume, blanks a reader drops).
void ReportDifferences(const std::vector<CQZRIM>& before, const std::vector<CQZRIM>& after,
                       bool toLegacy, std::ostream& out) {
    for (size_t i = 0; i < before.size(); ++i) {
        const std::vector<Attribute> original = DescribeMachine(before[i]);
        const std::vector<Attribute> readBack = DescribeMachine(after[i]);
        std::string lost;
        std::string changed;
        for (size_t k = 0; k < original.size(); ++k) {
            const Attribute& was = original[k];
            const Attribute& is = readBack[k];
            const bool same = was.numeric ? was.number == is.number : was.text == is.text;
            if (was.catalogueNumber || same) {
                continue;
            }
            if (CarriedBy(was, toLegacy)) {
                changed += (changed.empty() ? "" : ", ") + was.name + " " + Quoted(was.text) +
                           " -> " + Quoted(is.text);
            } else {
                lost += (lost.empty() ? "" : ", ") + was.name + " " + ValueWithUnit(was);
            }
        }
        if (!lost.empty()) {
            out << "  " << DisplayName(before[i]) << ": lost " << lost << '\n';
        }
        if (!changed.empty()) {
            out << "  " << DisplayName(before[i]) << ": changed " << changed << '\n';
        }
    }
}

bool SameMachines(const std::vector<CQZRIM>& before, const std::vector<CQZRIM>& after) {
    if (before.size() != after.size()) {
        return false;
    }
    for (size_t i = 0; i < before.size(); ++i) {
        if (!before[i].IsNameIdentity(after[i])) {
            return false;
        }
    }
    return true;
}

bool ChooseConversion(int kind, Conversion* conversion) {
    if (kind == qzr::bank::OldIMMSystemBank || kind == qzr::bank::OldIMMUserBank) {
        conversion->toLegacy = false;
        conversion->targetName = "sectioned IMM user bank";
        conversion->targetKind = qzr::bank::IMMUserBank;
        return true;
    }
    if (kind == qzr::bank::IMMUserBank || kind == qzr::bank::IMMSystemBankFiles) {
        conversion->toLegacy = true;
        conversion->targetName = "legacy user bank";
        conversion->targetKind = qzr::bank::OldIMMUserBank;
        return true;
    }
    return false;
}

// What in one text of a machine breaks its row in a legacy bank: a comma in the maker or grade,
// an empty maker or grade, a line end, or one of the texts that the legacy loaders take for a
// marker. Each message names the attribute.
std::vector<std::string> LegacyTextHazards(const std::string& attribute, const std::string& value,
                                           bool isName) {
    std::vector<std::string> hazards;
    const std::string named = attribute + " " + Quoted(value);
    if (isName && value.empty()) {
        hazards.push_back(attribute + " is empty: in a legacy bank the row's fields shift");
    }
    if (isName && value.find(',') != std::string::npos) {
        hazards.push_back(named + " holds a comma: in a legacy bank it breaks the row");
    }
    if (value.find('\n') != std::string::npos) {
        hazards.push_back(named + " holds a line end: in a legacy bank it splits the row");
    }
    struct Marker {
        const char* text;
        const char* effect;
    };
    const Marker markers[] = {
        {"Version", "the loader takes the row for a version line and does not load it"},
        {"TotalNo", "a legacy user bank with this row fails to load"},
        {"Database]", "the loader takes the row for the database marker and does not load it"},
        {"[EOF]", "the loader stops reading at this row"},
    };
    for (const Marker& marker : markers) {
        if (value.find(marker.text) != std::string::npos) {
            hazards.push_back(named + " holds " + Quoted(marker.text) + ": in a legacy bank " +
                              marker.effect);
        }
    }
    return hazards;
}

// Texts that will break the machine's row in the legacy bank about to be written.
void WarnLegacyHazards(const CQZRIM& machine, std::ostream& err) {
    struct Text {
        const char* attribute;
        const char* value;
        bool isName;
    };
    const Text texts[] = {{"Maker", machine.GetMaker(), true},
                          {"Grade", machine.GetGrade(), true},
                          {"Remark", machine.GetRemark(), false}};
    for (const Text& text : texts) {
        for (const std::string& hazard :
             LegacyTextHazards(text.attribute, text.value, text.isName)) {
            err << "qzrbank: warning: " << DisplayName(machine) << ": " << hazard << '\n';
        }
    }
}

bool SameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(fs::path(NativePath(a)), fs::path(NativePath(b)), error);
}

}  // namespace

int RunConvert(const ConvertOptions& options, std::ostream& out, std::ostream& err) {
    const std::string& input = options.input;
    const std::string& output = options.output;
    const std::string problem = ReadProblem(input);
    if (!problem.empty()) {
        err << "qzrbank: " << input << ": " << problem << '\n';
        return kExitError;
    }
    const Recognition header = RecognizeBankFile(input);
    Conversion conversion;
    if (!ChooseConversion(header.kind, &conversion)) {
        err << "qzrbank: " << input << ": "
            << (header.recognized ? std::string("a bank of kind ") + BankKindName(header.kind) +
                                        "; convert takes a legacy bank or a sectioned IMM bank"
                                  : std::string("not a bank (no loader recognises its header)"))
            << '\n';
        return kExitError;
    }
    std::error_code code;
    if (fs::is_directory(fs::path(NativePath(output)), code) || SameFile(input, output)) {
        err << "qzrbank: " << output << ": must name a new bank file other than " << input << '\n';
        return kExitError;
    }
    BankLoad load = BankLoad::OldIMMSystem;
    LoadOfKind(header.kind, &load);
    CQZRMoldingMachineCtrl catalogue;
    if (!LoadBank(load, input, &catalogue)) {
        err << "qzrbank: " << input << ": refused by its loader (run 'qzrbank check' on it)\n";
        return kExitError;
    }
    const std::vector<CQZRIM> before = IMMMachines(catalogue);
    if (conversion.toLegacy) {
        for (const CQZRIM& machine : before) {
            WarnLegacyHazards(machine, err);
        }
    }

    // The writers accept only a catalogue whose file attributes name their own bank.
    catalogue.SetFileVersion(conversion.toLegacy ? 7007 : 9000);
    catalogue.SetFileFormat(1);
    catalogue.SetFileType(0);
    catalogue.SetFileCreateBy("qzrbank convert");
    catalogue.SetFileRemark(
        ("Converted from " + fs::path(NativePath(input)).filename().string()).c_str());
    std::string error =
        "cannot write " + output + ": " + FolderProblem(fs::path(NativePath(output)).parent_path());
    const bool saved = conversion.toLegacy ? SaveLegacy(output, &catalogue, &error)
                                           : SaveSectioned(output, &catalogue);
    if (!saved) {
        err << "qzrbank: " << error << '\n';
        return kExitError;
    }

    BankLoad readBack = BankLoad::OldIMMSystem;
    LoadOfKind(conversion.targetKind, &readBack);
    CQZRMoldingMachineCtrl written;
    LoadBank(readBack, output, &written);
    const std::vector<CQZRIM> after = IMMMachines(written);
    out << "converted " << before.size() << (before.size() == 1 ? " machine: " : " machines: ")
        << input << " (" << BankKindName(header.kind) << ") -> " << output << " ("
        << conversion.targetName << ")\n";
    out << "not carried by a " << conversion.targetName
        << ", so lost: " << NotCarried(conversion.toLegacy) << '\n';
    if (!SameMachines(before, after)) {
        err << "qzrbank: " << output << " reads back " << after.size() << " of " << before.size()
            << " machines intact\n";
        return kExitNegative;
    }
    ReportDifferences(before, after, conversion.toLegacy, out);
    return kExitOk;
}

}  // namespace qzrbank
