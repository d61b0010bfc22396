// Loading banks through the library's load/save front, as a host does, and remembering where
// each machine came from.
#ifndef QZRBANK_BANKLOADING_H
#define QZRBANK_BANKLOADING_H

#include <string>
#include <string_view>
#include <vector>

#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRMoldingMachineIO.h>

#include "LoadWatcher.h"

namespace qzrbank {

// The ways a bank reaches a catalogue: one per load member of CQZRMoldingMachineIO.
enum class BankLoad {
    OldIMMSystem,
    OldIMMUser,
    IMMSystemFolder,
    IMMUser,
    RTMSystemFolder,
    RTMUser
};

// The load that accepts files of a kind (a qzr::bank::BankKind value); false for -1. System-bank
// folders are loaded with a pattern; a single system-bank file is its own pattern.
bool LoadOfKind(int kind, BankLoad* load);
bool IsRTMLoad(BankLoad load);

// One load, by a front of its own, so that no earlier recognition can change how this file is
// recognised (a front keeps the header values of its last recognition).
bool LoadBank(BankLoad load, const std::string& path, CQZRMoldingMachineCtrl* catalogue);

// LoadBank with the load watched: the errors it finds (what the loader skipped or changed)
// are added to skipped.
bool LoadWatched(BankLoad load, const std::string& path, CQZRMoldingMachineCtrl* catalogue,
                 std::vector<Finding>* skipped);

// A catalogue of machines of one kind, and the bank file each machine came from. The catalogue
// issues machine ids in ascending order while it only grows, so the highest id when a file's
// load ends bounds that file's machines.
class SourcedCatalogue {
  public:
    explicit SourcedCatalogue(bool rtm) : m_rtm(rtm) {}

    const CQZRMoldingMachineCtrl& Catalogue() const { return m_catalogue; }
    CQZRMoldingMachineCtrl& Catalogue() { return m_catalogue; }

    // LoadBank into this catalogue. A folder load tells where each file ends through the
    // watcher installed for it; without one the load is taken as the one file of path.
    bool Load(BankLoad load, const std::string& path, LoadWatcher* watcher = nullptr);
    // The name (without folders) of the bank file that gave the machine; empty when unknown.
    std::string SourceOf(int machineId) const;

  private:
    void FileEnded(std::string_view path);
    int HighestMachineId() const;

    struct Source {
        int lastMachineId;
        std::string file;
    };
    bool m_rtm;
    CQZRMoldingMachineCtrl m_catalogue;
    std::vector<Source> m_sources;
};

// A bank folder: the folder that holds "Machine\IMM", "Machine\RTM", "User-IMM.bnk",
// "User-RTMIC.bnk", "system-pro.bnk" and "user-pro.bnk". Given the folder that contains
// "Bank" (the application folder of the default bank paths), or the Bank folder itself.
// Names are found as the library finds them, also in other letter case than these.
struct BankFolder {
    std::string path;               // the Bank folder, without a trailing separator
    std::vector<Finding> warnings;  // the folder found under a name in other letter case
};

// False, with a message, when dir is neither a folder holding "Bank" nor a bank folder.
bool LocateBankFolder(const std::string& dir, BankFolder* folder, std::string* error);

// The example banks: those installed beside the tool (share/qzrmachine/examples/Bank), else
// those of the source tree it was built from.
std::string ShippedBankFolder();

// Loads a bank folder the way a host does, watched: the injection-moulding banks (the
// system-bank folder, the sectioned user bank, the legacy system and user banks, in that order)
// into one catalogue, the transfer-moulding banks (system-bank folder, user bank) into another.
// A catalogue holds one kind of machine per maker, and takes its file type from the first file
// it accepts, so the two kinds cannot share one. Missing files are passed over; names found
// only in other letter case (the folder's own first) are warnings added to the watcher.
struct LoadedFolder {
    SourcedCatalogue imm{false};
    SourcedCatalogue rtm{true};
};
void LoadBankFolder(const BankFolder& folder, bool loadIMM, bool loadRTM, LoadedFolder* loaded,
                    LoadWatcher* watcher);

// Every machine of a catalogue in global index order.
std::vector<CQZRIM> IMMMachines(const CQZRMoldingMachineCtrl& catalogue);
std::vector<CQZRRTM> RTMMachines(const CQZRMoldingMachineCtrl& catalogue);

}  // namespace qzrbank

#endif  // QZRBANK_BANKLOADING_H
