// The legacy tabular bank as its loaders scan it: marker lines found anywhere in a line,
// version lines that change the row layout, rows split at commas with empty fields passed over,
// trailing numbers counted from the end of the row.
#include <string>
#include <string_view>
#include <vector>

#include "BankCheckerSteps.h"
#include "BankText.h"
#include "Numbers.h"

namespace qzrbank {

namespace {

struct LegacyField {
    const char* title;  // the column title of the legacy bank (or the nozzle member)
    bool integer;
};

// Trailing numeric fields in file order, per row layout.
const LegacyField kBaseFields[] = {{"ClampForce", false},    {"ShotWeight", false},
                                   {"Max.Pressure", false},  {"Max.FlowRate", false},
                                   {"ScrewDiameter", false}, {"Max.RamPosition", false}};
const LegacyField kTimeFields[] = {
    {"TimeConstFR", false}, {"TimeConstIP", false}, {"NozzleVolume", false}};
const LegacyField kNozzleFields[] = {{"MachineType", true},
                                     {"HydralicPressureTransferFactor", false},
                                     {"NozzleSpecification.Type", true},
                                     {"NozzleSpecification.Value1", false},
                                     {"NozzleSpecification.Value2", false},
                                     {"NozzleSpecification.Value3", false},
                                     {"NozzleSpecification.Value4", false},
                                     {"NozzleSpecification.Value5", false},
                                     {"NozzleSpecification.Value6", false}};

struct RowLayout {
    const char* name;
    std::vector<LegacyField> fields;
    size_t FewestFields() const { return 3 + fields.size(); }
};

RowLayout MakeLayout(const char* name, bool time, bool slope, bool nozzle, bool system) {
    RowLayout layout{name, {std::begin(kBaseFields), std::end(kBaseFields)}};
    if (time) {
        layout.fields.insert(layout.fields.end(), std::begin(kTimeFields), std::end(kTimeFields));
    }
    if (slope) {
        layout.fields.push_back({"MaxPressureSlope", false});
    }
    if (nozzle) {
        layout.fields.insert(layout.fields.end(), std::begin(kNozzleFields),
                             std::end(kNozzleFields));
    }
    if (system) {
        layout.fields.push_back({"MachineType", true});
        layout.fields.push_back({"HydralicPressureTransferFactor", false});
    }
    return layout;
}

// The layout follows the catalogue's file version at the moment the row is read.
const RowLayout& LayoutFor(bool userBank, int fileVersion) {
    static const RowLayout base = MakeLayout("base", false, false, false, false);
    static const RowLayout user7003 = MakeLayout("7003", true, false, false, false);
    static const RowLayout user7004 = MakeLayout("7004", true, true, false, false);
    static const RowLayout user7005 = MakeLayout("7005", true, true, true, false);
    static const RowLayout system7007 = MakeLayout("system 7007", false, false, false, true);
    if (!userBank) {
        return fileVersion >= 7007 ? system7007 : base;
    }
    if (fileVersion == 7003) {
        return user7003;
    }
    if (fileVersion == 7004) {
        return user7004;
    }
    return fileVersion > 7004 ? user7005 : base;
}

bool Contains(std::string_view line, std::string_view mark) {
    return line.find(mark) != std::string_view::npos;
}

bool IsCSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> fields;
    size_t start = 0;
    for (;;) {
        const size_t end = text.find(separator, start);
        fields.push_back(text.substr(start, end == std::string_view::npos ? end : end - start));
        if (end == std::string_view::npos) {
            return fields;
        }
        start = end + 1;
    }
}

// The row tokenizer: commas and line feeds separate, runs of them count once, empty fields
// give no token.
std::vector<std::string_view> Tokens(std::string_view row) {
    std::vector<std::string_view> tokens;
    size_t pos = 0;
    while (pos < row.size()) {
        const size_t start = row.find_first_not_of(",\n", pos);
        if (start == std::string_view::npos) {
            break;
        }
        const size_t end = row.find_first_of(",\n", start);
        tokens.push_back(row.substr(start, end == std::string_view::npos ? end : end - start));
        pos = end == std::string_view::npos ? row.size() : end;
    }
    return tokens;
}

// A line that holds no data: nothing but commas and blanks once "[EOF]" marks are taken out
// (the "[EOF],,,,," of a system bank, an empty line).
bool IsBlankRow(std::string_view line) {
    std::string text(line);
    for (size_t at = text.find("[EOF]"); at != std::string::npos; at = text.find("[EOF]")) {
        text.erase(at, 5);
    }
    for (char c : text) {
        if (c != ',' && !IsCSpace(c)) {
            return false;
        }
    }
    return true;
}

class LegacyScan {
  public:
    LegacyScan(std::string_view text, const BankHeader& header)
        : m_pieces(SplitPieces(text, kLegacyLineChars)),
          m_userBank(header.kind == BankKind::OldIMMUserBank),
          m_marker(m_userBank ? "Database]" : "[Database]"),
          m_fileVersion(header.version) {
        CheckHeader(header);
    }

    SimulatedLoad Run() {
        bool endedAtEof = false;
        while (Next()) {
            if (Contains(m_text, "[EOF]")) {
                ReportEofInRow();
                endedAtEof = true;
                break;
            }
            if (Contains(m_text, "[Header]")) {
                m_headerSeen = true;
            }
            if (Contains(m_text, m_marker)) {
                if (m_inDatabase) {
                    Report("holds " + Quoted(m_marker) +
                           ": the loader takes it for the database marker again and does not "
                           "load it as a row");
                }
                m_inDatabase = true;
                m_markerSeen = true;
                if (!Next()) {
                    break;
                }
                if (m_userBank && Contains(m_text, "[EOF]")) {
                    ReportEofInRow();
                    endedAtEof = true;
                    break;
                }
            }
            bool versionLine = false;
            if (m_headerSeen && Contains(m_text, "Version")) {
                ReadVersionLine();
                versionLine = true;
            }
            if (m_userBank && m_headerSeen && Contains(m_text, "TotalNo")) {
                Report(
                    "holds \"TotalNo\": the user-bank loader stops here and the whole load "
                    "fails");
                // The machines of the rows before stay in the catalogue all the same.
                m_loadFailed = true;
                break;
            }
            if (m_inDatabase) {
                ReadRow(versionLine);
            }
            if (Contains(m_text, "[EOF]")) {
                endedAtEof = true;
                break;
            }
        }
        Finish(endedAtEof);
        return std::move(m_load);
    }

  private:
    bool Next() {
        if (m_next >= m_pieces.size()) {
            return false;
        }
        m_current = m_next++;
        m_text = std::string(CText(m_pieces[m_current].text));
        return true;
    }

    int Line() const { return m_pieces[m_current].line; }

    // A piece that continues a long line is named by where it starts.
    void Report(const std::string& message) {
        size_t offset = 0;
        for (size_t i = m_current; i > 0 && m_pieces[i].continued; --i) {
            offset += m_pieces[i - 1].text.size();
        }
        m_load.findings.push_back(
            {Line(), offset == 0
                         ? message
                         : "from character " + std::to_string(offset + 1) + ": " + message});
    }

    void CheckHeader(const BankHeader& header) {
        if (header.form == HeaderForm::LegacyUser && header.inexactVersionLine) {
            m_load.findings.push_back(
                {2,
                 "the version line has characters after the number: a loader that has read a "
                 "system bank before refuses the file, and a new one leaves its file format "
                 "unset (-1), so the catalogue cannot be saved as a legacy user bank"});
        } else if (header.form == HeaderForm::LegacyUser && header.version == -1) {
            m_load.findings.push_back(
                {2,
                 "line 2 is not \"Version,\" and a number: the file version stays unset (-1) and "
                 "rows are read in the base layout"});
        }
        if (header.form == HeaderForm::LegacySystem && m_pieces.size() >= 3) {
            const std::string_view third = CText(m_pieces[2].text);
            const size_t at = third.find("TotalNo,");
            int count = 0;
            if (at != std::string_view::npos && ScanInt(third.substr(at + 8), &count)) {
                m_load.statedCount = StatedCount{"TotalNo", m_pieces[2].line, count};
            }
        }
    }

    // Only the first word of a version line is left of it; the number after that word (or
    // the last one read, when there is none) becomes the catalogue's file version.
    void ReadVersionLine() {
        std::string copy = m_text;
        for (char& c : copy) {
            if (c == ',') {
                c = ' ';
            }
        }
        size_t word = 0;
        while (word < copy.size() && IsCSpace(copy[word])) {
            ++word;
        }
        size_t wordEnd = word;
        while (wordEnd < copy.size() && !IsCSpace(copy[wordEnd])) {
            ++wordEnd;
        }
        ScanInt(std::string_view(copy).substr(wordEnd), &m_version);
        const int before = m_fileVersion;
        m_fileVersion = m_version;
        const bool headerVersionLine =
            m_pieces[m_current].line == 2 && !m_pieces[m_current].continued;
        if (m_inDatabase && !IsBlankRow(m_text)) {
            Report(
                "holds \"Version\": the loader reads it as a version line, not as a row, and "
                "sets the file version to " +
                std::to_string(m_fileVersion) + " (rows after it are read in the " +
                LayoutFor(m_userBank, m_fileVersion).name + " layout)");
        } else if (!headerVersionLine && before != m_fileVersion) {
            Report("holds \"Version\": the loader sets the file version to " +
                   std::to_string(m_fileVersion) + " here");
        }
        m_text = copy.substr(word, wordEnd - word);
    }

    void ReadRow(bool versionLine) {
        const bool idConverted = ScanInt(m_text, &m_rowId);
        if (versionLine) {
            return;  // reported with the version line; a single word is never a machine
        }
        const bool blank = IsBlankRow(m_text);
        if (m_userBank && m_rowId != 1) {
            if (!blank) {
                Report(idConverted
                           ? "row ID is " + std::to_string(m_rowId) +
                                 ", not 1: the user-bank loader skips the row"
                           : "the row's ID is not a number, so it takes the ID of the "
                             "row before it (" +
                                 std::to_string(m_rowId) + "): the user-bank loader skips the row");
            }
            return;
        }
        if (m_text.empty()) {
            return;
        }
        AnalyzeRow(blank, m_userBank && !idConverted);
    }

    void AnalyzeRow(bool blank, bool idCarriedOver) {
        const RowLayout& layout = LayoutFor(m_userBank, m_fileVersion);
        const std::vector<std::string_view> tokens = Tokens(m_text);
        std::vector<std::string_view> raw = Split(WithoutLineEnd(m_text), ',');
        while (raw.size() > 1 && raw.back().empty()) {
            raw.pop_back();  // trailing commas shift nothing
        }
        const size_t trailing = layout.fields.size();
        const bool hasEmpty = [&raw] {
            for (std::string_view field : raw) {
                if (field.empty()) {
                    return true;
                }
            }
            return false;
        }();
        if (tokens.size() < layout.FewestFields()) {
            if (!blank) {
                Report("row has " + std::to_string(tokens.size()) + " field" +
                       (tokens.size() == 1 ? "" : "s") +
                       (hasEmpty ? " (empty fields do not count)" : "") + "; rows of the " +
                       layout.name + " layout (file version " + std::to_string(m_fileVersion) +
                       ") need at least " + std::to_string(layout.FewestFields()) +
                       ": the loader skips it");
            }
            return;
        }
        if (idCarriedOver) {
            Report(
                "the row's ID is not a number: the row is loaded only because the row "
                "before it has ID 1");
        }
        LoadedEntry entry;
        entry.line = Line();
        const std::optional<size_t> shifted = FirstShiftingEmptyField(raw, trailing);
        if (shifted) {
            const size_t position = *shifted;
            const char* names[] = {"ID", "Maker", "Grade"};
            const std::string name = position < 3
                                         ? names[position]
                                         : layout.fields[position - (raw.size() - trailing)].title;
            Report("field " + std::to_string(position + 1) + " (" + name +
                   ") is empty: the loader passes over empty fields, so the row's fields are "
                   "read shifted");
        } else {
            std::string remark;
            for (size_t i = 3; i + trailing < raw.size(); ++i) {
                remark += (i > 3 ? "," : "") + std::string(raw[i]);
            }
            entry.intendedRemark = remark;
        }
        for (size_t k = 0; k < trailing; ++k) {
            const std::string_view token = tokens[tokens.size() - trailing + k];
            const LegacyField& field = layout.fields[k];
            int integer = 0;
            double real = 0.0;
            const bool converts = field.integer ? ScanInt(token, &integer) : ScanReal(token, &real);
            if (!converts) {
                Report(std::string(field.title) + " " + Quoted(token) +
                       " is not a number: the machine loads with the default in its place");
            }
        }
        m_load.loaded.push_back(std::move(entry));
    }

    // An empty field among ID, maker and grade, or among the trailing numbers, moves the
    // fields the loader counts from that end.
    static std::optional<size_t> FirstShiftingEmptyField(const std::vector<std::string_view>& raw,
                                                         size_t trailing) {
        for (size_t i = 0; i < raw.size(); ++i) {
            const bool counted = i < 3 || i + trailing >= raw.size();
            if (counted && raw[i].empty()) {
                return i;
            }
        }
        return std::nullopt;
    }

    void ReportEofInRow() {
        if (m_inDatabase && !IsBlankRow(m_text)) {
            Report("holds \"[EOF]\": the scan ends here and the row is not loaded");
        }
    }

    void Finish(bool endedAtEof) {
        if (!m_markerSeen && !m_loadFailed) {
            m_load.findings.push_back(
                {1, "no line holds " + Quoted(m_marker) + ": the loader reads no row"});
        }
        if (endedAtEof) {
            int unread = 0;
            int first = 0;
            for (size_t i = m_current + 1; i < m_pieces.size(); ++i) {
                if (!m_pieces[i].continued && !IsBlankRow(CText(m_pieces[i].text))) {
                    if (unread++ == 0) {
                        first = m_pieces[i].line;
                    }
                }
            }
            if (unread > 0) {
                m_load.findings.push_back(
                    {first, std::to_string(unread) + (unread == 1 ? " line" : " lines") +
                                " after \"[EOF]\" (line " +
                                std::to_string(m_pieces[m_current].line) + ")" +
                                (unread == 1 ? " is" : " are") + " never read"});
            }
        }
    }

    std::vector<LinePiece> m_pieces;
    bool m_userBank;
    std::string m_marker;
    int m_fileVersion;  // the catalogue's file version, which picks the row layout
    size_t m_next = 0;
    size_t m_current = 0;
    std::string m_text;
    bool m_headerSeen = false;
    bool m_inDatabase = false;
    bool m_markerSeen = false;
    bool m_loadFailed = false;
    int m_version = 1000;  // the scan's own last version number
    int m_rowId = 0;
    SimulatedLoad m_load;
};

}  // namespace

SimulatedLoad SimulateLegacyLoad(std::string_view text, const BankHeader& header) {
    LegacyScan scan(text, header);
    return scan.Run();
}

}  // namespace qzrbank
