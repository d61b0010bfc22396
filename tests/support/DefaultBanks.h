// The six banks of a Bank folder at their default names, each with the members of the exported
// front that load and save it, so that a test can go through every kind of bank in one loop.
#ifndef QZR_TESTS_SUPPORT_DEFAULTBANKS_H
#define QZR_TESTS_SUPPORT_DEFAULTBANKS_H

#include <string>

#include <QZRMachine/QZRMachine.h>

namespace qzr::test {

using LoadMember = bool (*)(CQZRMoldingMachineIO&, const std::string& path,
                            CQZRMoldingMachineCtrl*);
// Saves into the folder a host passes (ending in a separator) at the bank's default path.
using SaveMember = bool (*)(CQZRMoldingMachineIO&, const std::string& folder,
                            const CQZRMoldingMachineCtrl*);

struct DefaultBank {
    const char* name;  // below the Bank folder: a file, or the pattern of a folder of system banks
    LoadMember load;
    SaveMember save;  // null for a system bank, which the library never writes
};

inline const DefaultBank kLegacySystemBank = {
    "system-pro.bnk",
    [](auto& io, auto& path, auto* c) { return io.LoadOldIMMSystemDatabase(path.c_str(), c); },
    nullptr};
inline const DefaultBank kLegacyUserBank = {
    "user-pro.bnk",
    [](auto& io, auto& path, auto* c) { return io.LoadOldIMMUserDatabase(path.c_str(), c); },
    [](auto& io, auto& folder, auto* c) { return io.SaveOldIMMUserDatabase(folder.c_str(), c); }};
inline const DefaultBank kIMMSystemBanks = {
    "Machine/IMM/*.bnk",
    [](auto& io, auto& path, auto* c) { return io.LoadIMMSystemDatabase(path.c_str(), c); },
    nullptr};
inline const DefaultBank kIMMUserBank = {
    "User-IMM.bnk",
    [](auto& io, auto& path, auto* c) { return io.LoadIMMUserDatabase(path.c_str(), c); },
    [](auto& io, auto& folder, auto* c) {
        return io.SaveIMMUserDatabase((folder + "Bank\\User-IMM.bnk").c_str(), c);
    }};
inline const DefaultBank kRTMSystemBanks = {
    "Machine/RTM/*.bnk",
    [](auto& io, auto& path, auto* c) { return io.LoadRTMSystemDatabase(path.c_str(), c); },
    nullptr};
inline const DefaultBank kRTMUserBank = {
    "User-RTMIC.bnk",
    [](auto& io, auto& path, auto* c) { return io.LoadRTMUserDatabase(path.c_str(), c); },
    [](auto& io, auto& folder, auto* c) { return io.SaveRTMUserDatabase(folder.c_str(), c); }};

inline const DefaultBank kDefaultBanks[] = {kLegacySystemBank, kLegacyUserBank, kIMMSystemBanks,
                                            kIMMUserBank,      kRTMSystemBanks, kRTMUserBank};

}  // namespace qzr::test

#endif  // QZR_TESTS_SUPPORT_DEFAULTBANKS_H
