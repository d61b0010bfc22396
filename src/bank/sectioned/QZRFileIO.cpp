#include "bank/sectioned/QZRFileIO.h"

#include <cstring>
#include <string_view>

#include "bank/sectioned/SectionedLine.h"
#include "platform/CNumbers.h"
#include "platform/TextLineReader.h"

namespace qzr::bank {

namespace {

constexpr size_t kValueBufferSize = 512;

// The value buffer shared by every lookup of the process. Hosts of the DLL only ever see the
// copies the setters make, but the lifetime of the text handed out is that of this buffer.
char g_valueBuffer[kValueBufferSize];

}  // namespace

CQZRFileIO::CQZRFileIO() = default;

CQZRFileIO::~CQZRFileIO() = default;

bool CQZRFileIO::OpenFile(const char* path) {
    m_path.clear();
    m_hasPath = false;
    if (path == nullptr) {
        return false;
    }
    const qzr::platform::TextLineReader probe(path);
    if (!probe.IsOpen()) {
        return false;
    }
    m_path = path;
    m_hasPath = true;
    return true;
}

bool CQZRFileIO::FindKeyLine(qzr::platform::TextLineReader& file, const char* section,
                             const char* key, std::string* keyLine) {
    if (section == nullptr || key == nullptr) {
        return false;
    }
    const std::string_view sectionName(section);
    const std::string_view keyName(key);
    bool insideSection = false;
    std::string_view line;
    while (file.ReadPiece(&line, qzr::bank::kSectionedLineChars)) {
        const std::string_view token = qzr::bank::SectionedLineToken(line);
        if (!insideSection) {
            // The header line itself is never compared with the key.
            insideSection = token == sectionName;
            continue;
        }
        if (token == keyName) {
            keyLine->assign(line.data(), line.size());
            return true;
        }
    }
    return false;
}

int CQZRFileIO::GetKeyString(const char* section, const char* key, const char** value) const {
    if (!m_hasPath) {
        return kCannotOpen;
    }
    qzr::platform::TextLineReader file(m_path);
    if (!file.IsOpen()) {
        return kCannotOpen;
    }
    std::string keyLine;
    if (!FindKeyLine(file, section, key, &keyLine)) {
        return kNotFound;
    }
    // A piece holds at most 511 characters, so its value always fits with its terminator.
    const std::string_view text = qzr::bank::SectionedEntryValue(keyLine);
    text.copy(g_valueBuffer, text.size());
    g_valueBuffer[text.size()] = '\0';
    if (value != nullptr) {
        *value = g_valueBuffer;
    }
    return kFound;
}

int CQZRFileIO::GetKeyInt(const char* section, const char* key, int* value, bool* converted) const {
    if (converted != nullptr) {
        *converted = false;
    }
    const char* text = nullptr;
    const int result = GetKeyString(section, key, &text);
    if (result != kFound) {
        return result;
    }
    char ownCopy[kValueBufferSize];
    std::strcpy(ownCopy, text);
    int number = 0;
    if (ownCopy[0] != '\0' && qzr::platform::ScanInt(ownCopy, &number)) {
        if (value != nullptr) {
            *value = number;
        }
        if (converted != nullptr) {
            *converted = true;
        }
    }
    return kFound;
}

}  // namespace qzr::bank
