// qzrbank convert: a legacy bank to a sectioned injection-moulding user bank, or a sectioned
// injection-moulding bank to a legacy user bank, through the library's loaders and the honest
// write (BankWrite.h).
#include <filesystem>
#include <system_error>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankFiles.h"
#include "BankLoading.h"
#include "BankWrite.h"
#include "Commands.h"
#include "FileInfo.h"
#include "bank/BankKind.h"

namespace qzrbank {

namespace fs = std::filesystem;

namespace {

bool ChooseTarget(int kind, BankFormat* target) {
    if (kind == qzr::bank::OldIMMSystemBank || kind == qzr::bank::OldIMMUserBank) {
        *target = BankFormat::kSectionedIMM;
        return true;
    }
    if (kind == qzr::bank::IMMUserBank || kind == qzr::bank::IMMSystemBankFiles) {
        *target = BankFormat::kLegacy;
        return true;
    }
    return false;
}

bool SameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(fs::path(NativePath(a)), fs::path(NativePath(b)), error);
}

// A legacy bank has no header texts: those of the sectioned input that are left behind.
std::string HeaderTextsLost(const std::string& input) {
    std::string lost;
    for (const auto& [key, value] : SectionedHeaderTexts(input)) {
        if (key != "CreateDate" && !value.empty()) {
            lost += (lost.empty() ? "" : ", ") + key + " " + Quoted(value);
        }
    }
    return lost;
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
    WriteOptions write;
    if (!ChooseTarget(header.kind, &write.format)) {
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
    if (!LoadWatched(load, input, &catalogue, &write.skippedOnLoad)) {
        err << "qzrbank: " << input << ": refused by its loader (run 'qzrbank check' on it)\n";
        return kExitError;
    }
    if (write.format == BankFormat::kLegacy) {
        write.headerTextsLost = HeaderTextsLost(input);
    }
    PrepareForFormat(write.format, &catalogue);
    catalogue.SetFileCreateBy("qzrbank convert");
    catalogue.SetFileRemark(
        ("Converted from " + fs::path(NativePath(input)).filename().string()).c_str());
    write.output = output;
    write.force = options.force;
    write.allowLoss = options.allowLoss;
    return WriteBank(catalogue, write, out, err);
}

}  // namespace qzrbank
