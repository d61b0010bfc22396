// Loading a legacy tabular bank (system or user) into a catalogue, row by row.
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "bank/BankKind.h"
#include "bank/LoadObserver.h"
#include "bank/QZRMoldingMachineReader.h"
#include "bank/legacy/LegacyMarkers.h"
#include "bank/legacy/LegacyRowLayout.h"
#include "bank/legacy/LegacyRowParser.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "catalogue/QZRMoldingMachineDatabase.h"
#include "platform/CNumbers.h"
#include "platform/Env.h"
#include "platform/TextLineReader.h"

using qzr::catalogue::CQZRMoldingMachineCtrlAccess;
using qzr::catalogue::CQZRMoldingMachineDatabase;

namespace qzr::legacy {

using bank::BankKind;
using bank::CQZRMoldingMachineReader;
using bank::LegacyRowLayout;
using bank::OldIMMSystemBank;
using bank::OldIMMUserBank;

namespace {

LegacyRowLayout SystemRowLayout(int fileVersion) {
    return fileVersion >= 7007 ? LegacyRowLayout::kSystem7007 : LegacyRowLayout::kBase;
}

LegacyRowLayout UserRowLayout(int fileVersion) {
    if (fileVersion == 7003) {
        return LegacyRowLayout::kUser7003;
    }
    if (fileVersion == 7004) {
        return LegacyRowLayout::kUser7004;
    }
    return fileVersion > 7004 ? LegacyRowLayout::kUser7005 : LegacyRowLayout::kBase;
}

// What tells the two loaders apart; the scan itself is common.
struct LegacyBankRules {
    int bankKind;
    std::string_view databaseMarker;
    bool endAtEofAfterMarker;
    bool failOnTotalNo;
    bool onlyRowIdOne;
    LegacyRowLayout (*rowLayout)(int fileVersion);
};

constexpr LegacyBankRules kSystemBankRules = {
    OldIMMSystemBank, kSystemDatabaseMarker, false, false, false, &SystemRowLayout};
constexpr LegacyBankRules kUserBankRules = {OldIMMUserBank, kUserDatabaseMarker, true, true,
                                            true,           &UserRowLayout};

// White space as "%s" sees it in the "C" locale.
bool IsCSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// One pass over the lines of a bank file. Lines are read in pieces of at most 1023
// characters, as the DLL's fgets into 1024 bytes read them (the rest of a longer line is the
// next line, usually refused as a row for too few fields), and every test on a line sees it
// as a C text: up to its first NUL byte. The marker searches are plain byte searches, as the
// row split is (see LegacyRowParser.cpp): the markers are ASCII, and the library runs in the
// single-byte "C" locale.
class LegacyBankScan {
  public:
    LegacyBankScan(platform::TextLineReader& file, CQZRMoldingMachineCtrl& catalogue,
                   const LegacyBankRules& rules, std::string_view path)
        : m_file(file),
          m_catalogue(catalogue),
          m_rules(rules),
          m_path(path),
          m_observer(bank::CurrentLoadObserver()) {}

    // False only when a user bank shows a "TotalNo" line after its header.
    bool Run() {
        const bool result = Scan();
        if (m_observer != nullptr) {
            m_observer->OnMachineCount({m_path, m_rowsLoaded, m_declared, m_hasDeclared});
        }
        return result;
    }

  private:
    bool Scan() {
        while (ReadLine()) {
            if (Contains(kEndMarker)) {
                Tell(bank::LegacyLine::kEndMarker);
                break;
            }
            if (Contains(kHeaderMarker)) {
                m_headerSeen = true;
            }
            if (Contains(m_rules.databaseMarker)) {
                // The marker line is never a row: the line after it takes its place.
                m_inDatabase = true;
                Tell(bank::LegacyLine::kDatabaseMarker);
                if (!ReadLine()) {
                    break;
                }
                if (m_rules.endAtEofAfterMarker && Contains(kEndMarker)) {
                    Tell(bank::LegacyLine::kEndMarker);
                    break;
                }
            }
            if (m_headerSeen && Contains(kVersionMarker)) {
                ReadVersionLine();
                Tell(bank::LegacyLine::kVersionLine);
            }
            if (m_headerSeen && Contains(kTotalNoMarker)) {
                if (m_rules.failOnTotalNo) {
                    Tell(bank::LegacyLine::kTotalNoLine);
                    return false;
                }
                NoteDeclaredCount();
            }
            if (m_inDatabase) {
                ReadRowId();
                const bool taken = !m_rules.onlyRowIdOne || m_rowId == 1;
                if (taken && !m_text.empty()) {
                    Tell(LoadRow());
                } else if (!taken) {
                    Tell(bank::LegacyLine::kRowIdNotOne);
                }
            }
            if (m_file.AtEnd() || Contains(kEndMarker)) {
                break;
            }
        }
        return true;
    }

    void Tell(bank::LegacyLine what) {
        if (what == bank::LegacyLine::kRowLoaded) {
            ++m_rowsLoaded;
        }
        if (m_observer != nullptr) {
            m_observer->OnLegacyLine(
                {m_path, m_file.LineNumber(), what, m_catalogue.GetFileVersion()});
        }
    }

    // "%d" of the line: the ID carries over from the row before when this one's does not
    // convert. A line that starts with digits and holds a byte after them is read where it
    // lies, in the reader's buffer; any other from a copy that ends where the line does.
    void ReadRowId() {
        size_t digits = 0;
        while (digits < m_text.size() && m_text[digits] >= '0' && m_text[digits] <= '9') {
            ++digits;
        }
        if (digits > 0 && digits < m_text.size()) {
            platform::ScanInt(m_text.data(), &m_rowId);
        } else {
            m_scratch.assign(m_text);
            platform::ScanInt(m_scratch.c_str(), &m_rowId);
        }
    }

    // "TotalNo," and the number of rows a system bank declares; only an observer asks.
    void NoteDeclaredCount() {
        const size_t at = m_text.find("TotalNo,");
        if (m_observer == nullptr || at == m_text.npos) {
            return;
        }
        int declared = 0;
        m_scratch.assign(m_text.substr(at + 8));
        if (platform::ScanInt(m_scratch.c_str(), &declared)) {
            m_declared = declared;
            m_hasDeclared = true;
        }
    }

    bool ReadLine() {
        std::string_view piece;
        if (!m_file.ReadPiece(&piece, kOldRowMaxChars)) {
            return false;
        }
        SetText(piece.substr(0, piece.find('\0')));
        if (m_observer != nullptr && m_file.PieceWasCut() && m_file.LineNumber() != m_lastCutLine) {
            m_lastCutLine = m_file.LineNumber();
            m_observer->OnLineCut({m_path, m_lastCutLine, kOldRowMaxChars});
        }
        return true;
    }

    void SetText(std::string_view text) {
        m_text = text;
        m_holdsBracket = std::memchr(text.data(), ']', text.size()) != nullptr;
    }

    // The markers in brackets end with ']', which rows seldom hold: a line without one is not
    // searched for them.
    bool Contains(std::string_view mark) const {
        if (mark.back() == ']' && !m_holdsBracket) {
            return false;
        }
        return m_text.find(mark) != m_text.npos;
    }

    // A line holding "Version" sets the catalogue's file version (to the number after its
    // first word, or to the last number read when there is none), and only its first word
    // is left of it, which is why such a line is never loaded as a machine.
    void ReadVersionLine() {
        m_scratch.assign(m_text);
        for (char& c : m_scratch) {
            if (c == ',') {
                c = ' ';
            }
        }
        const char* word = m_scratch.c_str();
        while (IsCSpace(*word)) {
            ++word;
        }
        const char* wordEnd = word;
        while (*wordEnd != '\0' && !IsCSpace(*wordEnd)) {
            ++wordEnd;
        }
        platform::ScanInt(wordEnd, &m_version);
        m_catalogue.SetFileVersion(m_version);
        m_line.assign(word, static_cast<size_t>(wordEnd - word));
        SetText(m_line);
    }

    // The layout follows the catalogue's file version at this row, so a version line in the
    // middle of the rows changes the layout of the rows after it. Each row is read into a
    // record of its own, which the store then keeps as it is rather than copying it; the result
    // is that of AddMachine, which the loader does not look at (a catalogue without a store, or
    // one that runs out of memory, drops the machine).
    bank::LegacyLine LoadRow() {
        auto machine = std::make_unique<CQZRIM>(m_defaultMachine);
        const RowWatch watch{m_observer, m_path, m_file.LineNumber()};
        if (!ParseOldRow(m_text, m_rules.rowLayout(m_catalogue.GetFileVersion()), *machine,
                         m_observer != nullptr ? &watch : nullptr)) {
            return bank::LegacyLine::kRowTooFewFields;
        }
        if (CQZRMoldingMachineDatabase* store = CQZRMoldingMachineCtrlAccess::Store(m_catalogue)) {
            try {
                store->AdoptMachine(std::move(machine));
                return bank::LegacyLine::kRowLoaded;
            } catch (const std::exception&) {
                // as AddMachine: the machine is not added
            }
        }
        return bank::LegacyLine::kRowNotAdded;
    }

    platform::TextLineReader& m_file;
    CQZRMoldingMachineCtrl& m_catalogue;
    const LegacyBankRules& m_rules;
    std::string_view m_path;
    bank::LoadObserver* m_observer;  // null unless a tool watches the load
    long m_rowsLoaded = 0;
    long m_declared = 0;
    bool m_hasDeclared = false;
    long m_lastCutLine = 0;

    std::string m_line;           // the first word of a version line
    std::string_view m_text;      // the current line piece up to its first NUL
    bool m_holdsBracket = false;  // whether m_text holds a ']'
    std::string m_scratch;        // a copy of the line to read numbers from
    bool m_headerSeen = false;
    bool m_inDatabase = false;
    int m_version = 1000;
    int m_rowId = 0;
    // Each row starts from a copy of a default record, which is cheaper than building one.
    const CQZRIM m_defaultMachine;
};

bool LoadOldBank(CQZRMoldingMachineReader& reader, const char* path,
                 CQZRMoldingMachineCtrl* catalogue, const LegacyBankRules& rules) {
    if (path == nullptr || !platform::CurrentEnv()->PathExists(path) || catalogue == nullptr) {
        return false;
    }
    const bool recognised = reader.RecognizeBankHeader(path);
    const bool accepted = recognised && reader.GetBankKind() == rules.bankKind;
    if (bank::LoadObserver* observer = bank::CurrentLoadObserver()) {
        observer->OnHeader({path, recognised ? reader.GetBankKind() : -1, reader.GetHeaderVersion(),
                            reader.GetHeaderFormat(), reader.GetHeaderType(), accepted});
    }
    if (!accepted) {
        return false;
    }
    // The first bank accepted into a catalogue decides its attributes; a later one only
    // changes its file version, through its version line.
    if (!catalogue->IsDatabaseInitialize()) {
        catalogue->SetFileVersion(reader.GetHeaderVersion());
        catalogue->SetFileFormat(reader.GetHeaderFormat());
        catalogue->SetFileType(reader.GetHeaderType());
        catalogue->SetDatabaseInitialize(true);
    }
    platform::TextLineReader file(path);
    if (!file.IsOpen()) {
        return false;
    }
    return LegacyBankScan(file, *catalogue, rules, path).Run();
}

}  // namespace

}  // namespace qzr::legacy

namespace qzr::bank {

bool CQZRMoldingMachineReader::ReadOldIMMSystemDatabase(const char* path,
                                                        CQZRMoldingMachineCtrl* catalogue) {
    return legacy::LoadOldBank(*this, path, catalogue, legacy::kSystemBankRules);
}

bool CQZRMoldingMachineReader::ReadOldIMMUserDatabase(const char* path,
                                                      CQZRMoldingMachineCtrl* catalogue) {
    return legacy::LoadOldBank(*this, path, catalogue, legacy::kUserBankRules);
}

}  // namespace qzr::bank
