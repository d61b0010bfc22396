// The six kinds of bank: what header recognition reports and what selects a default location.
#ifndef QZR_BANK_BANKKIND_H
#define QZR_BANK_BANKKIND_H

namespace qzr::bank {

enum BankKind {
    OldIMMSystemBank = 0,
    OldIMMUserBank = 1,
    IMMSystemBankFiles = 2,
    IMMUserBank = 3,
    RTMSystemBankFiles = 4,
    RTMUserBank = 5,
};

}  // namespace qzr::bank

#endif  // QZR_BANK_BANKKIND_H
