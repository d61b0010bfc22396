#include "LoadWatcher.h"

#include <cstdio>

#include "BankFiles.h"

namespace qzrbank {

namespace {

std::string SectionName(long number) {
    return "[Machine-" + std::to_string(number) + "]";
}

std::string Machines(long count) {
    return std::to_string(count) + (count == 1 ? " machine" : " machines");
}

}  // namespace

const char* SeverityName(Severity severity) {
    return severity == Severity::kError ? "error" : "warning";
}

void AppendLocation(const Finding& finding, std::string* text) {
    *text += finding.path;
    if (finding.line > 0) {
        *text += ':';
        *text += std::to_string(finding.line);
    }
}

std::string Location(const Finding& finding) {
    std::string text;
    AppendLocation(finding, &text);
    return text;
}

void AppendQuoted(std::string_view text, std::string* quoted) {
    *quoted += '"';
    const auto plain = [](char c) {
        const unsigned char byte = static_cast<unsigned char>(c);
        return c != '"' && c != '\\' && byte >= 0x20 && byte != 0x7f;
    };
    for (size_t offset = 0; offset < text.size(); ++offset) {
        const size_t run = offset;
        while (offset < text.size() && plain(text[offset])) {
            ++offset;
        }
        quoted->append(text.data() + run, offset - run);
        if (offset == text.size()) {
            break;
        }
        const char c = text[offset];
        if (c == '"' || c == '\\') {
            *quoted += '\\';
            *quoted += c;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned char>(c));
            *quoted += escape;
        }
    }
    *quoted += '"';
}

std::string Quoted(const std::string& text) {
    std::string quoted;
    quoted.reserve(text.size() + 2);
    AppendQuoted(text, &quoted);
    return quoted;
}

void LoadWatcher::Report(std::string_view path, long line, Severity severity, const char* code,
                         std::string message) {
    m_findings.push_back({std::string(path), line, severity, code, std::move(message)});
}

// A load reads its file's machines one after the other, so the path is nearly always the last
// one seen.
void LoadWatcher::AddOrigin(std::string_view path, long line) {
    if (m_originPaths.empty() || m_originPaths.back() != path) {
        m_originPaths.emplace_back(path);
    }
    m_origins.push_back({m_originPaths.size() - 1, line});
}

void LoadWatcher::OnHeader(const qzr::bank::HeaderSeen& seen) {
    m_rowsOf.clear();
    m_files.push_back({std::string(seen.path), seen.bankKind, seen.version, seen.format, seen.type,
                       seen.accepted});
    if (seen.accepted) {
        return;
    }
    Report(seen.path, 1, Severity::kError, "file-skipped",
           seen.bankKind < 0
               ? std::string("no loader recognises this header: the file is skipped")
               : "the header (" + std::string(BankKindName(seen.bankKind)) + ", version " +
                     std::to_string(seen.version) + ", format " + std::to_string(seen.format) +
                     ", type " + std::to_string(seen.type) +
                     ") is not one this load reads: the file is skipped");
}

void LoadWatcher::OnLegacyLine(const qzr::bank::LegacyLineSeen& seen) {
    using qzr::bank::LegacyLine;
    switch (seen.what) {
        case LegacyLine::kRowLoaded:
            AddOrigin(seen.path, seen.line);
            return;
        case LegacyLine::kRowTooFewFields:
            Report(seen.path, seen.line, Severity::kError, "row-skipped",
                   "the row has too few fields for the layout of version " +
                       std::to_string(seen.fileVersion) + ": the loader skips it");
            return;
        case LegacyLine::kRowIdNotOne:
            Report(seen.path, seen.line, Severity::kError, "row-skipped",
                   "the row's ID is not 1: a user bank loads only rows of ID 1, so the loader "
                   "skips it");
            return;
        case LegacyLine::kRowNotAdded:
            Report(seen.path, seen.line, Severity::kError, "row-skipped",
                   "the catalogue did not take the machine of this row");
            return;
        case LegacyLine::kTotalNoLine:
            Report(seen.path, seen.line, Severity::kError, "load-fails",
                   "\"TotalNo\" after the header of a user bank: the load fails here");
            return;
        case LegacyLine::kDatabaseMarker:
        case LegacyLine::kVersionLine:
        case LegacyLine::kEndMarker:
            break;
    }
    // A marker or version line among the rows is taken for what it holds, never for a row.
    const bool amongRows = m_rowsOf == seen.path;
    if (seen.what == LegacyLine::kDatabaseMarker) {
        m_rowsOf = std::string(seen.path);
    }
    if (amongRows && seen.what != LegacyLine::kEndMarker) {
        Report(seen.path, seen.line, Severity::kError, "row-skipped",
               seen.what == LegacyLine::kVersionLine
                   ? "the line holds \"Version\": read as a version line, not as a row (the "
                     "rows after it are read as version " +
                         std::to_string(seen.fileVersion) + ")"
                   : std::string("the line holds the database marker: read as the marker, not "
                                 "as a row"));
    }
}

void LoadWatcher::OnSection(const qzr::bank::SectionSeen& seen) {
    if (seen.loaded) {
        AddOrigin(seen.path, seen.line);
    } else if (seen.line != 0) {
        Report(seen.path, seen.line, Severity::kError, "load-stops",
               SectionName(seen.number) +
                   " has no Maker or Grade: the load stops here and reads no later section");
    }
}

void LoadWatcher::OnKeyFromLaterSection(const qzr::bank::KeyFromLaterSection& seen) {
    const long sectionLine = !m_origins.empty() && m_originPaths[m_origins.back().path] == seen.path
                                 ? m_origins.back().line
                                 : 0;
    Report(seen.path, sectionLine, Severity::kWarning, "key-from-later-section",
           SectionName(seen.number) + " has no " + Quoted(std::string(seen.key)) +
               ": the machine takes the value of line " + std::to_string(seen.line) +
               ", in a later section");
}

void LoadWatcher::OnLineCut(const qzr::bank::LineCut& seen) {
    Report(seen.path, seen.line, Severity::kError, "line-cut",
           "the line is longer than " + std::to_string(seen.limit) +
               " characters: the loader reads the rest as a line of its own");
}

void LoadWatcher::OnMachineCount(const qzr::bank::MachineCount& seen) {
    for (auto file = m_files.rbegin(); file != m_files.rend(); ++file) {
        if (file->path == seen.path) {
            file->machinesRead = seen.read;
            file->declared = seen.declared;
            file->hasDeclared = seen.hasDeclared;
            break;
        }
    }
    if (seen.hasDeclared && seen.read != seen.declared) {
        Report(seen.path, 0, Severity::kError, "count-mismatch",
               "the header declares " + Machines(seen.declared) + ", the load reads " +
                   std::to_string(seen.read));
    } else if (seen.read == 0) {
        Report(seen.path, 0, Severity::kWarning, "no-machines", "no machine loads from this file");
    }
    if (m_fileEnded) {
        m_fileEnded(seen.path);
    }
}

void LoadWatcher::OnFieldNotConverted(const qzr::bank::FieldNotConverted& seen) {
    Report(seen.path, seen.line, Severity::kError, "value-not-converted",
           (seen.number > 0 ? SectionName(seen.number) + " " : std::string()) +
               Quoted(std::string(seen.field)) + " " + Quoted(std::string(seen.value)) +
               " is not a number: the field keeps another value");
}

}  // namespace qzrbank
