// Reading sectioned banks: one machine section into a record, and whole files (the system
// banks of a folder, the user bank) into a catalogue.
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bank/BankKind.h"
#include "bank/LoadObserver.h"
#include "bank/QZRMoldingMachineReader.h"
#include "bank/sectioned/MachineSectionFormat.h"
#include "bank/sectioned/QZRFileIO.h"
#include "bank/sectioned/SectionedBankIndex.h"
#include "bank/sectioned/SectionedLine.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "catalogue/QZRMoldingMachineDatabase.h"
#include "platform/Env.h"

using qzr::catalogue::CQZRMoldingMachineCtrlAccess;
using qzr::catalogue::CQZRMoldingMachineDatabase;

namespace qzr::bank {

namespace {

constexpr int kFirstSectionedVersion = 9000;
constexpr int kSystemBankFormat = 0;
constexpr int kUserBankFormat = 1;
constexpr int kIMMType = 0;
constexpr int kRTMType = 1;

// One section of a file indexed once for the whole load.
template <class Record>
bool ParseIndexedSection(const MachineSectionFormat<Record>& format,
                         const SectionedBankIndex& index, long number, Record& machine,
                         SlotSet* notConverted) {
    if (!index.IsOpen()) {
        return false;
    }
    const SectionedBankIndex::Section section = index.FindSection(number);
    const auto lookup = [&section](size_t slot, const char*, const char** value) {
        return section.GetKeyString(slot, value);
    };
    return qzr::bank::FillMachineSection(format, lookup, machine, notConverted);
}

// How the machines of one file reach the catalogue: a folder of system banks reads every
// section of a file into one record (a key that a section lacks, and no later section has,
// keeps the file's previous machine's value); a user bank starts every machine afresh.
enum class RecordUse { kOneForTheFile, kFreshPerSection };

// The result of AddMachine, which the loaders do not look at: a catalogue without a store, or
// one that runs out of memory, drops the machine.
template <class Record>
void AddCopy(CQZRMoldingMachineCtrl& catalogue, Record& machine) {
    catalogue.AddMachine(machine);
}

// The same for a record made for this one machine: the store keeps it as it is.
template <class Record>
void AddOwn(CQZRMoldingMachineCtrl& catalogue, std::unique_ptr<Record> machine) {
    if (CQZRMoldingMachineDatabase* store = CQZRMoldingMachineCtrlAccess::Store(catalogue)) {
        try {
            store->AdoptMachine(std::move(machine));
        } catch (const std::exception&) {
            // as AddMachine: the machine is not added
        }
    }
}

// What a watched load tells its observer about the sections of one file.
template <class Record>
class SectionReport {
  public:
    SectionReport(qzr::bank::LoadObserver* observer, const std::string& path,
                  const MachineSectionFormat<Record>& format, const SectionedBankIndex& index)
        : m_observer(observer), m_path(path), m_format(format), m_index(index) {
        if (m_observer != nullptr) {
            for (const long line : index.CutLines()) {
                m_observer->OnLineCut({m_path, line, qzr::bank::kSectionedLineChars});
            }
        }
    }
    // Ends the file's report with the machines read against the count its header declares.
    ~SectionReport() {
        if (m_observer == nullptr) {
            return;
        }
        CQZRFileIO file;
        int declared = 0;
        bool converted = false;
        const bool hasDeclared = file.OpenFile(m_path.c_str()) &&
                                 file.GetKeyInt("[General]", "TotalMachine", &declared,
                                                &converted) == CQZRFileIO::kFound &&
                                 converted;
        m_observer->OnMachineCount({m_path, m_loaded, declared, hasDeclared});
    }
    SectionReport(const SectionReport&) = delete;
    SectionReport& operator=(const SectionReport&) = delete;

    // notConverted: the slots whose value did not convert to its number.
    void Section(long number, bool loaded, SlotSet notConverted) {
        m_loaded += loaded ? 1 : 0;
        if (m_observer == nullptr) {
            return;
        }
        m_observer->OnSection({m_path, number, m_index.SectionLine(number), loaded});
        for (size_t slot = 0; loaded && slot < m_format.rows.size(); ++slot) {
            if (const long line = m_index.AnswerLineInLaterSection(number, slot)) {
                m_observer->OnKeyFromLaterSection(
                    {m_path, number, m_format.ReadRow(slot).key, line});
            }
        }
        for (size_t slot = 0; loaded && notConverted != 0 && slot < m_format.rows.size(); ++slot) {
            const char* value = nullptr;
            if ((notConverted >> slot & 1) != 0 &&
                m_index.GetKeyString(number, slot, &value) == CQZRFileIO::kFound) {
                m_observer->OnFieldNotConverted({m_path, m_index.AnswerLine(number, slot), number,
                                                 m_format.ReadRow(slot).key, value});
            }
        }
    }

  private:
    qzr::bank::LoadObserver* m_observer;
    const std::string& m_path;
    const MachineSectionFormat<Record>& m_format;
    const SectionedBankIndex& m_index;
    long m_loaded = 0;
};

// Reads sections 1, 2, ... until the first one that does not parse, at most
// kMaxMachineSection of them. The catalogue's verdict on each machine is not looked at.
template <class Record>
void AddMachineSections(const MachineSectionFormat<Record>& format, const std::string& path,
                        RecordUse use, CQZRMoldingMachineCtrl& catalogue) {
    qzr::bank::LoadObserver* observer = qzr::bank::CurrentLoadObserver();
    const SectionedBankIndex index(path, format.KeysInReadOrder(), observer != nullptr);
    SectionReport<Record> report(observer, path, format, index);
    if (use == RecordUse::kOneForTheFile) {
        Record machine;
        for (long number = 1; number <= SectionedBankIndex::kMaxMachineSection; ++number) {
            SlotSet notConverted = 0;
            const bool loaded = ParseIndexedSection(format, index, number, machine, &notConverted);
            report.Section(number, loaded, notConverted);
            if (!loaded) {
                return;
            }
            AddCopy(catalogue, machine);
        }
        return;
    }
    const Record fresh;  // copying a default record is cheaper than building one
    for (long number = 1; number <= SectionedBankIndex::kMaxMachineSection; ++number) {
        auto machine = std::make_unique<Record>(fresh);
        SlotSet notConverted = 0;
        const bool loaded = ParseIndexedSection(format, index, number, *machine, &notConverted);
        report.Section(number, loaded, notConverted);
        if (!loaded) {
            return;
        }
        AddOwn(catalogue, std::move(machine));
    }
}

// The first bank file accepted into a catalogue decides its file attributes; later files, of
// either format and either kind, leave them. A catalogue without a store ignores all of this.
void RecordHeaderValues(const CQZRMoldingMachineReader& reader, CQZRMoldingMachineCtrl& catalogue) {
    if (catalogue.IsDatabaseInitialize()) {
        return;
    }
    catalogue.SetFileVersion(reader.GetHeaderVersion());
    catalogue.SetFileFormat(reader.GetHeaderFormat());
    catalogue.SetFileType(reader.GetHeaderType());
    catalogue.SetDatabaseInitialize(true);
}

struct SectionedBankKind {
    int bankKind;
    int format;
    int type;
};

constexpr SectionedBankKind kIMMSystemBank{IMMSystemBankFiles, kSystemBankFormat, kIMMType};
constexpr SectionedBankKind kRTMSystemBank{RTMSystemBankFiles, kSystemBankFormat, kRTMType};
constexpr SectionedBankKind kIMMUserBank{IMMUserBank, kUserBankFormat, kIMMType};
constexpr SectionedBankKind kRTMUserBank{RTMUserBank, kUserBankFormat, kRTMType};

bool IsAcceptedAs(const CQZRMoldingMachineReader& reader, const SectionedBankKind& kind) {
    return reader.GetBankKind() == kind.bankKind &&
           reader.GetHeaderVersion() >= kFirstSectionedVersion &&
           reader.GetHeaderFormat() == kind.format && reader.GetHeaderType() == kind.type;
}

// Recognises the file's header and tells a watching observer what it was taken for.
bool RecognizeAs(CQZRMoldingMachineReader& reader, const char* path,
                 const SectionedBankKind& kind) {
    const bool recognised = reader.RecognizeBankHeader(path);
    const bool accepted = recognised && IsAcceptedAs(reader, kind);
    if (qzr::bank::LoadObserver* observer = qzr::bank::CurrentLoadObserver()) {
        observer->OnHeader({path, recognised ? reader.GetBankKind() : -1, reader.GetHeaderVersion(),
                            reader.GetHeaderFormat(), reader.GetHeaderType(), accepted});
    }
    return accepted;
}

}  // namespace

namespace {

// Every entry matching the pattern, in the platform's order; entries that are no bank of the
// kind (folders, "." and "..", legacy banks, the other kind, user banks) fail recognition or
// the kind test and are skipped. True when anything matched at all.
template <class Record>
bool ReadSystemBanks(CQZRMoldingMachineReader& reader, const char* pattern,
                     CQZRMoldingMachineCtrl* catalogue, const SectionedBankKind& kind,
                     const MachineSectionFormat<Record>& format) {
    if (pattern == nullptr || catalogue == nullptr) {
        return false;
    }
    qzr::platform::Env* env = qzr::platform::CurrentEnv();
    std::vector<std::string> paths;
    if (!env->ListMatches(pattern, &paths) || paths.empty()) {
        return false;
    }
    for (const std::string& path : paths) {
        if (!env->PathExists(path)) {
            continue;
        }
        if (!RecognizeAs(reader, path.c_str(), kind)) {
            continue;
        }
        RecordHeaderValues(reader, *catalogue);
        AddMachineSections(format, path, RecordUse::kOneForTheFile, *catalogue);
    }
    return true;
}

template <class Record>
bool ReadUserBank(CQZRMoldingMachineReader& reader, const char* path,
                  CQZRMoldingMachineCtrl* catalogue, const SectionedBankKind& kind,
                  const MachineSectionFormat<Record>& format) {
    if (path == nullptr || catalogue == nullptr) {
        return false;
    }
    if (!RecognizeAs(reader, path, kind)) {
        return false;
    }
    RecordHeaderValues(reader, *catalogue);
    AddMachineSections(format, path, RecordUse::kFreshPerSection, *catalogue);
    return true;
}

}  // namespace

bool CQZRMoldingMachineReader::ReadIMMSystemDatabase(const char* pattern,
                                                     CQZRMoldingMachineCtrl* const& catalogue) {
    return ReadSystemBanks(*this, pattern, catalogue, kIMMSystemBank,
                           qzr::bank::IMMSectionFormat());
}

bool CQZRMoldingMachineReader::ReadRTMSystemDatabase(const char* pattern,
                                                     CQZRMoldingMachineCtrl* const& catalogue) {
    return ReadSystemBanks(*this, pattern, catalogue, kRTMSystemBank,
                           qzr::bank::RTMSectionFormat());
}

bool CQZRMoldingMachineReader::ReadIMMUserDatabase(const char* path,
                                                   CQZRMoldingMachineCtrl* const& catalogue) {
    return ReadUserBank(*this, path, catalogue, kIMMUserBank, qzr::bank::IMMSectionFormat());
}

bool CQZRMoldingMachineReader::ReadRTMUserDatabase(const char* path,
                                                   CQZRMoldingMachineCtrl* const& catalogue) {
    return ReadUserBank(*this, path, catalogue, kRTMUserBank, qzr::bank::RTMSectionFormat());
}

}  // namespace qzr::bank
