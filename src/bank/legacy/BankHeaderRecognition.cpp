// Header recognition: what kind of bank a file is, from its first three lines.
#include <cstddef>
#include <cstring>
#include <string>

#include "bank/BankKind.h"
#include "bank/QZRMoldingMachineReader.h"
#include "bank/sectioned/QZRFileIO.h"
#include "platform/CNumbers.h"
#include "platform/TextLineReader.h"

namespace qzr::bank {

namespace {

constexpr size_t kHeaderLineChars = 1023;
constexpr int kFirstSectionedVersion = 9000;

const char kSystemHeaderMark[] = "[Header],,,,,,,,,";
const char kUserHeaderMark[] = "[Header]";
const char kSectionedHeaderMark[] = "[FileHeader]";
const char kVersionPrefix[] = "Version,";
const char kTotalNoMark[] = "TotalNo,";
const char kFileHeaderSection[] = "[FileHeader]";

// The first three lines, each as the C string a 1024-byte buffer would hold: a line the file
// does not have is empty, and nothing after an embedded NUL counts. A line longer than 1023
// characters is cut there, and its rest is read as the next line.
struct HeaderLines {
    std::string line[3];
};

bool ReadHeaderLines(const char* path, HeaderLines* lines) {
    qzr::platform::TextLineReader file(path);
    if (!file.IsOpen()) {
        return false;
    }
    for (std::string& line : lines->line) {
        if (file.ReadLine(&line, kHeaderLineChars)) {
            line.resize(std::strlen(line.c_str()));
        } else {
            line.clear();
        }
    }
    return true;
}

bool Contains(const std::string& line, const char* mark) {
    return line.find(mark) != std::string::npos;
}

bool StartsWith(const std::string& line, const char* prefix) {
    return line.compare(0, std::strlen(prefix), prefix) == 0;
}

bool IsScanfSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// How many characters the conversion "%ld" consumes at the start of text (white space, an
// optional sign, digits); 0 when no number converts.
size_t ScannedIntegerLength(const char* text) {
    size_t length = 0;
    while (IsScanfSpace(text[length])) {
        ++length;
    }
    if (text[length] == '+' || text[length] == '-') {
        ++length;
    }
    const size_t firstDigit = length;
    while (text[length] >= '0' && text[length] <= '9') {
        ++length;
    }
    return length == firstDigit ? 0 : length;
}

}  // namespace

bool CQZRMoldingMachineReader::RecognizeBankHeader(const char* path) {
    if (path == nullptr) {
        return false;
    }
    HeaderLines lines;
    if (!ReadHeaderLines(path, &lines)) {
        return false;
    }
    const std::string& first = lines.line[0];
    std::string& second = lines.line[1];
    const std::string& third = lines.line[2];

    // Every value a branch does not set keeps what the reader held before: one reader serves
    // every load of its front, and the outcome of the legacy branches depends on the
    // system-bank flag an earlier recognition left.
    if (Contains(first, kSystemHeaderMark)) {
        int version = 0;
        if (StartsWith(second, kVersionPrefix) &&
            qzr::platform::ScanInt(second.c_str() + std::strlen(kVersionPrefix), &version)) {
            m_headerVersion = version;
            m_systemBank = true;
            m_headerFormat = 0;
        }
        if (!m_systemBank || !Contains(third, kTotalNoMark)) {
            return false;
        }
        m_headerType = 0;
        return true;
    }

    if (Contains(first, kUserHeaderMark)) {
        if (Contains(second, kVersionPrefix)) {
            if (!second.empty() && second.back() == '\n') {
                second.pop_back();
            }
            // "Version,%ld%c%c%c": the number alone, with nothing after it (not even a blank
            // or a carriage return), is what marks the exact version line of a user bank.
            int version = 0;
            if (StartsWith(second, kVersionPrefix)) {
                const char* number = second.c_str() + std::strlen(kVersionPrefix);
                const size_t length = ScannedIntegerLength(number);
                if (length > 0 && qzr::platform::ScanInt(number, &version)) {
                    m_headerVersion = version;
                    if (number[length] == '\0') {
                        m_systemBank = false;
                        m_headerFormat = 1;
                    }
                }
            }
        }
        if (m_systemBank || Contains(third, kTotalNoMark)) {
            return false;
        }
        m_headerType = 0;
        return true;
    }

    if (Contains(first, kSectionedHeaderMark)) {
        CQZRFileIO file;
        if (!file.OpenFile(path)) {
            return false;
        }
        // A key that is present but empty or not a number counts as read, yet records
        // nothing, exactly like a missing key leaves its value: a header value is only ever
        // taken from a number the file really holds.
        int version = 0;
        bool versionConverted = false;
        const bool versionRead = file.GetKeyInt(kFileHeaderSection, "Version", &version,
                                                &versionConverted) == CQZRFileIO::kFound;
        if (versionRead && versionConverted) {
            m_headerVersion = version;
        }
        int format = 0;
        bool formatConverted = false;
        const bool formatRead = file.GetKeyInt(kFileHeaderSection, "Format", &format,
                                               &formatConverted) == CQZRFileIO::kFound;
        if (versionRead && formatRead && formatConverted) {
            m_headerFormat = format;
            m_systemBank = format == 0;
        }
        int type = 0;
        bool typeConverted = false;
        const bool typeRead =
            file.GetKeyInt(kFileHeaderSection, "Type", &type, &typeConverted) == CQZRFileIO::kFound;
        if (versionRead && formatRead && typeRead && typeConverted) {
            m_headerType = type;
        }
        return versionRead && formatRead && typeRead;
    }

    return false;
}

int CQZRMoldingMachineReader::GetBankKind() const {
    if (m_headerVersion < kFirstSectionedVersion) {
        return m_systemBank ? OldIMMSystemBank : OldIMMUserBank;
    }
    if (m_headerType == 0) {
        return m_systemBank ? IMMSystemBankFiles : IMMUserBank;
    }
    if (m_headerType == 1) {
        return m_systemBank ? RTMSystemBankFiles : RTMUserBank;
    }
    return OldIMMSystemBank;
}

}  // namespace qzr::bank
