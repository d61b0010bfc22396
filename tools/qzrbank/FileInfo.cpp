#include "FileInfo.h"

#include <filesystem>
#include <system_error>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankLoading.h"
#include "BankText.h"
#include "SectionedFile.h"

namespace qzrbank {

namespace {

// Only keys within their own section: a key that the section lacks is no text of the header,
// even where the loaders' first-match walk would find one further down.
void AddSectionTexts(const SectionedFile& file, const char* section,
                     std::initializer_list<const char*> keys, FileInfo* info) {
    const std::optional<size_t> header = file.FindSection(section);
    if (!header) {
        return;
    }
    const size_t end = file.SectionEnd(*header);
    for (const char* key : keys) {
        const std::optional<size_t> piece = file.FindKey(section, key);
        if (piece && *piece < end) {
            info->headerTexts.emplace_back(key, file.Value(*piece));
        }
    }
}

void AddHeaderTexts(const std::string& text, FileInfo* info) {
    if (info->header.form == HeaderForm::Sectioned) {
        const SectionedFile file(text);
        AddSectionTexts(file, "[FileHeader]", {"CreateDate", "CreateBy", "Remark"}, info);
        AddSectionTexts(file, "[General]", {"TotalMachine"}, info);
    } else if (info->header.form == HeaderForm::LegacySystem) {
        const std::vector<LinePiece> pieces = SplitPieces(text, kLegacyLineChars);
        if (pieces.size() >= 3) {
            const std::string_view third = WithoutLineEnd(pieces[2].text);
            const size_t at = third.find("TotalNo,");
            if (at != std::string_view::npos) {
                const std::string_view rest = third.substr(at + 8);
                info->headerTexts.emplace_back("TotalNo",
                                               std::string(rest.substr(0, rest.find(','))));
            }
        }
    }
}

}  // namespace

FileInfo ReadFileInfo(const std::string& path) {
    FileInfo info;
    std::string text;
    if (!ReadBankText(path, &text)) {
        std::error_code error;
        const std::filesystem::path native(NativePath(path));
        info.error = !std::filesystem::exists(native, error)        ? "no such file"
                     : std::filesystem::is_directory(native, error) ? "is a folder, not a file"
                                                                    : "cannot be read";
        return info;
    }
    info.readable = true;
    info.header = RecognizeBankHeader(text);
    BankLoad load = BankLoad::OldIMMSystem;
    if (!info.header.recognized || !LoadOfKind(info.header.kind, &load)) {
        return info;
    }
    CQZRMoldingMachineCtrl catalogue;
    info.loadAccepted = LoadBank(load, path, &catalogue);
    info.machines = catalogue.GetTotalMachine();
    AddHeaderTexts(text, &info);
    return info;
}

}  // namespace qzrbank
