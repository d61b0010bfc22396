// The sectioned bank as its loaders read it: the header keys of "[FileHeader]", then the
// machine sections "[Machine-1]", "[Machine-2]", ... looked up by number until one cannot be
// read, each key found by the first-match walk that runs on past the end of its section.
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "BankCheckerSteps.h"
#include "Numbers.h"
#include "SectionedFile.h"

namespace qzrbank {

namespace {

constexpr long kMaxMachineSection = 65535;

enum class KeyKind { Text, Integer, Real };

struct MachineKey {
    const char* name;
    KeyKind kind;
};

const MachineKey kIMMKeys[] = {
    {"Maker", KeyKind::Text},
    {"Grade", KeyKind::Text},
    {"Controller", KeyKind::Integer},
    {"Remark", KeyKind::Text},
    {"ScrewDiameter", KeyKind::Real},
    {"ScrewStroke", KeyKind::Real},
    {"ShotVolume", KeyKind::Real},
    {"ShotWeight", KeyKind::Real},
    {"MaxInjectionPressure", KeyKind::Real},
    {"HoldingPressure", KeyKind::Real},
    {"InjectionSpeed", KeyKind::Real},
    {"InjectionRate", KeyKind::Real},
    {"PlasticationRate", KeyKind::Real},
    {"ScrewSpeed", KeyKind::Real},
    {"NozzleContactForce", KeyKind::Real},
    {"NozzleStroke", KeyKind::Real},
    {"HeaterWattage", KeyKind::Real},
    {"TemperatureControlZones", KeyKind::Integer},
    {"ClampingForce", KeyKind::Real},
    {"OpeningStroke", KeyKind::Real},
    {"MaxDaylight", KeyKind::Real},
    {"MoldHeight", KeyKind::Real},
    {"DistanceBetweenTieBars(HxV)", KeyKind::Text},
    {"PlatenSize(HxV)", KeyKind::Text},
    {"EjectorPoint", KeyKind::Integer},
    {"EjectorForce", KeyKind::Real},
    {"EjectorStroke", KeyKind::Real},
    {"MachineWeight", KeyKind::Real},
    {"MachineDimension(LxWxH)", KeyKind::Text},
};

const MachineKey kRTMKeys[] = {
    {"Maker", KeyKind::Text},
    {"Grade", KeyKind::Text},
    {"Controller", KeyKind::Integer},
    {"Remark", KeyKind::Text},
    {"PlungerDiameter", KeyKind::Real},
    {"PlungerStroke", KeyKind::Real},
    {"PlungerSpeed", KeyKind::Real},
    {"ClampingForce", KeyKind::Real},
    {"TransferPressure", KeyKind::Real},
    {"TransferForce", KeyKind::Real},
    {"TransferRate", KeyKind::Real},
    {"ShotWeight", KeyKind::Real},
    {"ShotVolume", KeyKind::Real},
};

std::string SectionName(long number) {
    return "[Machine-" + std::to_string(number) + "]";
}

// The number of a header that reads "[Machine-n]" exactly as the loaders format it; 0 for any
// other header.
long CanonicalMachineNumber(std::string_view token) {
    const std::string_view prefix = "[Machine-";
    if (token.substr(0, prefix.size()) != prefix || token.back() != ']') {
        return 0;
    }
    const std::string_view digits = token.substr(prefix.size(), token.size() - prefix.size() - 1);
    if (digits.empty() || digits.size() > 9 || digits.front() == '0') {
        return 0;
    }
    long number = 0;
    for (char c : digits) {
        if (c < '0' || c > '9') {
            return 0;
        }
        number = number * 10 + (c - '0');
    }
    return number;
}

bool LooksLikeMachineHeader(std::string_view token) {
    const std::string_view prefix = "[machine";
    if (token.size() < prefix.size()) {
        return false;
    }
    for (size_t i = 0; i < prefix.size(); ++i) {
        const char c = token[i];
        const char lower = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
        if (lower != prefix[i]) {
            return false;
        }
    }
    return true;
}

class SectionedScan {
  public:
    SectionedScan(std::string_view text, const BankHeader& header)
        : m_file(text),
          m_header(header),
          m_rtm(header.kind == BankKind::RTMSystemBankFiles ||
                header.kind == BankKind::RTMUserBank),
          m_systemBank(header.kind == BankKind::IMMSystemBankFiles ||
                       header.kind == BankKind::RTMSystemBankFiles) {
        if (m_rtm) {
            m_keys.assign(std::begin(kRTMKeys), std::end(kRTMKeys));
        } else {
            m_keys.assign(std::begin(kIMMKeys), std::end(kIMMKeys));
        }
    }

    SimulatedLoad Run() {
        if (!CheckHeaderKeys()) {
            m_load.noMachinesRead = true;
            return std::move(m_load);
        }
        IndexMachineHeaders();
        const long stop = ReadMachineSections();
        ReportUnreadSections(stop);
        ReadTotalMachine();
        return std::move(m_load);
    }

  private:
    void Report(size_t piece, const std::string& message) {
        m_load.findings.push_back({m_file.LineOf(piece), message});
    }

    // The section a piece lies in, for messages.
    std::string SectionOf(size_t piece) const {
        const std::optional<size_t> header = m_file.EnclosingHeader(piece);
        return header ? std::string(m_file.Token(*header)) : std::string("the file's start");
    }

    // False when the header makes the loaders read no machine section at all.
    bool CheckHeaderKeys() {
        const size_t fileHeader = *m_file.FindSection("[FileHeader]");
        const size_t end = m_file.SectionEnd(fileHeader);
        struct HeaderKey {
            const char* name;
            std::string value;
            bool number = false;
            size_t piece = 0;
        };
        HeaderKey keys[] = {
            {"Version", "", false, 0}, {"Format", "", false, 0}, {"Type", "", false, 0}};
        for (HeaderKey& key : keys) {
            key.piece = *m_file.FindKey("[FileHeader]", key.name);
            key.value = m_file.Value(key.piece);
            int value = 0;
            key.number = !key.value.empty() && ScanInt(key.value, &value);
            if (key.piece >= end) {
                Report(fileHeader, std::string("\"[FileHeader]\" has no \"") + key.name +
                                       "\": the loaders take the one of " + SectionOf(key.piece) +
                                       " (line " + std::to_string(m_file.LineOf(key.piece)) +
                                       ") instead");
            }
        }
        const HeaderKey& version = keys[0];
        const HeaderKey& format = keys[1];
        const HeaderKey& type = keys[2];
        // A value that is not a number records nothing, so it leaves -1 in place, and the
        // tests on the recorded values below cover it.
        if (m_header.version < 9000) {
            Report(version.piece,
                   (version.number ? "Version " + version.value + " is below 9000"
                                   : "\"Version\" " + Quoted(version.value) + " is not a number") +
                       ": the loaders take the file for a legacy tabular bank and read none of "
                       "its machine sections");
            return false;
        }
        if (m_header.format != 0 && m_header.format != 1) {
            Report(format.piece, "\"Format\" " + Quoted(format.value) +
                                     " is neither 0 (system bank) nor 1 (user bank): no loader "
                                     "accepts the file");
            return false;
        }
        if (m_header.type != 0 && m_header.type != 1) {
            Report(type.piece, "\"Type\" " + Quoted(type.value) +
                                   " is neither 0 (injection moulding) nor 1 (transfer "
                                   "moulding): the loaders take the file for a legacy system "
                                   "bank and load no machine from it");
            return false;
        }
        return true;
    }

    void IndexMachineHeaders() {
        for (size_t piece = 0; piece < m_file.Pieces().size(); ++piece) {
            const std::string_view token = m_file.Token(piece);
            if (!LooksLikeMachineHeader(token)) {
                continue;
            }
            const long number = CanonicalMachineNumber(token);
            if (number == 0) {
                Report(piece, "section " + Quoted(token) +
                                  " is never read: the loaders look machine sections up as "
                                  "[Machine-1], [Machine-2], ...");
                continue;
            }
            const auto known = m_sections.find(number);
            if (known != m_sections.end()) {
                Report(piece, SectionName(number) + " appears again (first at line " +
                                  std::to_string(m_file.LineOf(known->second)) +
                                  "): the loaders read only the first");
                continue;
            }
            m_sections.emplace(number, piece);
        }
    }

    // Reads sections 1, 2, ... as the loaders do; returns the number of the first section
    // that is not read.
    long ReadMachineSections() {
        long number = 1;
        for (; number <= kMaxMachineSection; ++number) {
            const auto section = m_sections.find(number);
            if (section == m_sections.end()) {
                return number;
            }
            const std::string name = SectionName(number);
            if (!m_file.FindKey(name, "Maker") || !m_file.FindKey(name, "Grade")) {
                return number;
            }
            CheckMachineSection(number, section->second);
            m_load.loaded.push_back({m_file.LineOf(section->second), std::nullopt});
        }
        return number;
    }

    void CheckMachineSection(long number, size_t header) {
        const std::string name = SectionName(number);
        const size_t end = m_file.SectionEnd(header);
        for (const MachineKey& key : m_keys) {
            const std::optional<size_t> piece = m_file.FindKey(name, key.name);
            if (!piece) {
                Report(header,
                       name + " has no " + Quoted(key.name) +
                           ", nor has any section after it: the machine keeps " +
                           (m_systemBank && number > 1 ? "the value of the machine before it"
                                                       : "the default"));
                continue;
            }
            if (*piece >= end) {
                Report(header, name + " has no " + Quoted(key.name) + ": the loaders take the " +
                                   Quoted(key.name) + " of " + SectionOf(*piece) + " (line " +
                                   std::to_string(m_file.LineOf(*piece)) + ") instead");
                continue;
            }
            CheckValue(key, *piece);
        }
        CheckSectionLines(name, header, end);
    }

    void CheckValue(const MachineKey& key, size_t piece) {
        const std::string value = m_file.Value(piece);
        int integer = 0;
        double real = 0.0;
        if ((key.kind == KeyKind::Integer && !ScanInt(value, &integer)) ||
            (key.kind == KeyKind::Real && !ScanReal(value, &real))) {
            Report(piece, Quoted(key.name) + " " + Quoted(value) +
                              " is not a number: the loaders read no number from it");
        }
        if (!m_rtm && key.kind == KeyKind::Text) {
            const std::string attribute = key.name;
            const bool isName = attribute == "Maker" || attribute == "Grade";
            if (isName || attribute == "Remark") {
                for (const std::string& hazard : LegacyTextHazards(attribute, value, isName)) {
                    Report(piece, hazard);
                }
            }
        }
    }

    // Keys given twice, and entry lines that name no key of a machine section.
    void CheckSectionLines(const std::string& name, size_t header, size_t end) {
        std::map<std::string_view, size_t> seen;
        for (size_t piece = header + 1; piece < end; ++piece) {
            const std::string_view token = m_file.Token(piece);
            if (token.empty()) {
                continue;
            }
            bool isKey = false;
            for (const MachineKey& key : m_keys) {
                isKey = isKey || token == key.name;
            }
            if (isKey) {
                const auto first = seen.emplace(token, piece);
                if (!first.second) {
                    Report(piece, Quoted(token) + " appears again in " + name + " (first at line " +
                                      std::to_string(m_file.LineOf(first.first->second)) +
                                      "): the loaders read only the first");
                }
            } else if (!m_file.Pieces()[piece].continued &&
                       m_file.Pieces()[piece].text.find('=') != std::string::npos) {
                Report(piece, Quoted(token) +
                                  " is no key of a machine section: the loaders pass over this "
                                  "line");
            }
        }
    }

    void ReportUnreadSections(long stop) {
        std::vector<long> after;
        for (const auto& section : m_sections) {
            if (section.first > stop) {
                after.push_back(section.first);
            }
        }
        const auto stopSection = m_sections.find(stop);
        const std::string unread = after.empty()
                                       ? std::string()
                                       : ", so " + std::to_string(after.size()) + " section" +
                                             (after.size() == 1 ? "" : "s") + " after it " +
                                             (after.size() == 1 ? "is" : "are") + " not read";
        if (stopSection != m_sections.end()) {
            const std::string name = SectionName(stop);
            const char* missing = m_file.FindKey(name, "Maker") ? "Grade" : "Maker";
            Report(stopSection->second, name + " has no " + Quoted(missing) +
                                            ", nor has any section after it: the loaders stop "
                                            "reading here" +
                                            unread);
        } else if (!after.empty()) {
            Report(m_sections.at(after.front()),
                   SectionName(stop) + " is missing: the loaders stop " +
                       (stop == 1 ? std::string("before the first section")
                                  : "after " + SectionName(stop - 1)) +
                       ", so this section and the " + std::to_string(after.size() - 1) +
                       " after it are not read");
        }
    }

    void ReadTotalMachine() {
        const std::optional<size_t> piece = m_file.FindKey("[General]", "TotalMachine");
        if (!piece) {
            m_load.findings.push_back(
                {1, "no \"TotalMachine\" in \"[General]\": the bank does not state its count"});
            return;
        }
        const std::string value = m_file.Value(*piece);
        int count = 0;
        if (!ScanInt(value, &count)) {
            Report(*piece, "\"TotalMachine\" " + Quoted(value) + " is not a number");
            return;
        }
        m_load.statedCount = StatedCount{"TotalMachine", m_file.LineOf(*piece), count};
    }

    SectionedFile m_file;
    const BankHeader& m_header;
    bool m_rtm;
    bool m_systemBank;
    std::vector<MachineKey> m_keys;
    std::map<long, size_t> m_sections;  // canonical number -> first header piece
    SimulatedLoad m_load;
};

}  // namespace

SimulatedLoad SimulateSectionedLoad(std::string_view text, const BankHeader& header) {
    SectionedScan scan(text, header);
    return scan.Run();
}

}  // namespace qzrbank
