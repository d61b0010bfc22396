// What kind of bank a file is, recognised from its first lines the way the library's loaders
// recognise it on a reader of their own (a new load/save front): the legacy system-bank header
// ("[Header],,,,,,,,," / "Version,n" / "TotalNo,"), the legacy user-bank header ("[Header]" /
// "Version,n"), or the sectioned "[FileHeader]" with its "Version", "Format" and "Type" keys.
#ifndef QZRBANK_BANKHEADER_H
#define QZRBANK_BANKHEADER_H

#include <string>
#include <string_view>

namespace qzrbank {

// The six bank kinds, numbered as the library numbers them; NotABank when no loader
// recognises the header.
enum class BankKind {
    NotABank = -1,
    OldIMMSystemBank = 0,
    OldIMMUserBank = 1,
    IMMSystemBankFiles = 2,
    IMMUserBank = 3,
    RTMSystemBankFiles = 4,
    RTMUserBank = 5,
};

const char* BankKindName(BankKind kind);
bool IsLegacyKind(BankKind kind);
bool IsSectionedKind(BankKind kind);

enum class HeaderForm { None, LegacySystem, LegacyUser, Sectioned };

struct BankHeader {
    HeaderForm form = HeaderForm::None;
    bool recognized = false;
    BankKind kind = BankKind::NotABank;
    // The header values a new reader records; -1 where the header gives none.
    int version = -1;
    int format = -1;
    int type = -1;
    bool systemBank = false;
    // Why the header is not recognised (when recognized is false), and the line at fault.
    std::string problem;
    int problemLine = 1;
    // Legacy user banks: line 2 has characters after the version number, which a new
    // reader accepts with the format left unset and a reader that has seen a system bank
    // refuses.
    bool inexactVersionLine = false;
};

// Recognises the header of a text read through the text-mode translation.
BankHeader RecognizeBankHeader(std::string_view text);

}  // namespace qzrbank

#endif  // QZRBANK_BANKHEADER_H
