#include "BankHeader.h"

#include <vector>

#include "BankText.h"
#include "Numbers.h"
#include "SectionedFile.h"

namespace qzrbank {

namespace {

constexpr int kFirstSectionedVersion = 9000;

bool Contains(std::string_view line, std::string_view mark) {
    return line.find(mark) != std::string_view::npos;
}

bool StartsWith(std::string_view line, std::string_view prefix) {
    return line.substr(0, prefix.size()) == prefix;
}

bool IsCSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// Characters "%ld" consumes at the start of text; 0 when no number converts.
size_t ScannedIntegerLength(std::string_view text) {
    size_t length = 0;
    while (length < text.size() && IsCSpace(text[length])) {
        ++length;
    }
    if (length < text.size() && (text[length] == '+' || text[length] == '-')) {
        ++length;
    }
    const size_t firstDigit = length;
    while (length < text.size() && text[length] >= '0' && text[length] <= '9') {
        ++length;
    }
    return length == firstDigit ? 0 : length;
}

BankKind KindOf(const BankHeader& header) {
    if (header.version < kFirstSectionedVersion) {
        return header.systemBank ? BankKind::OldIMMSystemBank : BankKind::OldIMMUserBank;
    }
    if (header.type == 0) {
        return header.systemBank ? BankKind::IMMSystemBankFiles : BankKind::IMMUserBank;
    }
    if (header.type == 1) {
        return header.systemBank ? BankKind::RTMSystemBankFiles : BankKind::RTMUserBank;
    }
    return BankKind::OldIMMSystemBank;
}

void RecognizeLegacySystem(std::string_view second, std::string_view third, BankHeader* header) {
    header->form = HeaderForm::LegacySystem;
    int version = 0;
    if (StartsWith(second, "Version,") && ScanInt(second.substr(8), &version)) {
        header->version = version;
        header->systemBank = true;
        header->format = 0;
    }
    if (!header->systemBank) {
        header->problem = "line 2 does not begin with \"Version,\" and a number";
        header->problemLine = 2;
        return;
    }
    if (!Contains(third, "TotalNo,")) {
        header->problem = "line 3 does not contain \"TotalNo,\"";
        header->problemLine = 3;
        return;
    }
    header->type = 0;
    header->recognized = true;
}

void RecognizeLegacyUser(std::string_view second, std::string_view third, BankHeader* header) {
    header->form = HeaderForm::LegacyUser;
    if (Contains(second, "Version,")) {
        if (!second.empty() && second.back() == '\n') {
            second.remove_suffix(1);
        }
        if (StartsWith(second, "Version,")) {
            const std::string_view number = second.substr(8);
            const size_t length = ScannedIntegerLength(number);
            int version = 0;
            if (length > 0 && ScanInt(number, &version)) {
                header->version = version;
                if (length == number.size()) {
                    header->systemBank = false;
                    header->format = 1;
                } else {
                    header->inexactVersionLine = true;
                }
            }
        }
    }
    if (Contains(third, "TotalNo,")) {
        header->problem = "line 3 of a user-bank header contains \"TotalNo,\"";
        header->problemLine = 3;
        return;
    }
    header->type = 0;
    header->recognized = true;
}

void RecognizeSectioned(std::string_view text, BankHeader* header) {
    header->form = HeaderForm::Sectioned;
    const SectionedFile file(text);
    if (!file.FindSection("[FileHeader]")) {
        header->problem = "no line opens the section \"[FileHeader]\"";
        return;
    }
    // A key that is present but not a number counts as read and records nothing, as the
    // library's header recognition does.
    struct Key {
        const char* name;
        bool read = false;
        bool converted = false;
        int value = 0;
    };
    Key keys[] = {
        {"Version", false, false, 0}, {"Format", false, false, 0}, {"Type", false, false, 0}};
    for (Key& key : keys) {
        const std::optional<size_t> line = file.FindKey("[FileHeader]", key.name);
        if (line) {
            key.read = true;
            const std::string value = file.Value(*line);
            key.converted = !value.empty() && ScanInt(value, &key.value);
        }
    }
    const Key& version = keys[0];
    const Key& format = keys[1];
    const Key& type = keys[2];
    if (version.read && version.converted) {
        header->version = version.value;
    }
    if (version.read && format.read && format.converted) {
        header->format = format.value;
        header->systemBank = format.value == 0;
    }
    if (version.read && format.read && type.read && type.converted) {
        header->type = type.value;
    }
    for (const Key& key : keys) {
        if (!key.read) {
            header->problem = std::string("\"[FileHeader]\" has no \"") + key.name + "\"";
            header->problemLine = file.LineOf(*file.FindSection("[FileHeader]"));
            return;
        }
    }
    header->recognized = true;
}

}  // namespace

const char* BankKindName(BankKind kind) {
    switch (kind) {
        case BankKind::OldIMMSystemBank:
            return "OldIMMSystemBank";
        case BankKind::OldIMMUserBank:
            return "OldIMMUserBank";
        case BankKind::IMMSystemBankFiles:
            return "IMMSystemBankFiles";
        case BankKind::IMMUserBank:
            return "IMMUserBank";
        case BankKind::RTMSystemBankFiles:
            return "RTMSystemBankFiles";
        case BankKind::RTMUserBank:
            return "RTMUserBank";
        case BankKind::NotABank:
            break;
    }
    return "not a bank";
}

bool IsLegacyKind(BankKind kind) {
    return kind == BankKind::OldIMMSystemBank || kind == BankKind::OldIMMUserBank;
}

bool IsSectionedKind(BankKind kind) {
    return kind != BankKind::NotABank && !IsLegacyKind(kind);
}

BankHeader RecognizeBankHeader(std::string_view text) {
    const std::vector<LinePiece> pieces = SplitPieces(text, kLegacyLineChars);
    std::string_view lines[3];
    for (size_t i = 0; i < 3 && i < pieces.size(); ++i) {
        lines[i] = CText(pieces[i].text);
    }
    BankHeader header;
    if (Contains(lines[0], "[Header],,,,,,,,,")) {
        RecognizeLegacySystem(lines[1], lines[2], &header);
    } else if (Contains(lines[0], "[Header]")) {
        RecognizeLegacyUser(lines[1], lines[2], &header);
    } else if (Contains(lines[0], "[FileHeader]")) {
        RecognizeSectioned(text, &header);
    } else {
        header.problem = text.empty() ? "the file is empty"
                                      : "line 1 holds neither \"[Header]\" nor \"[FileHeader]\"";
    }
    if (header.recognized) {
        header.kind = KindOf(header);
    }
    return header;
}

}  // namespace qzrbank
