#include <QZRMachine/QZRMoldingMachineIO.h>

#include <cstring>
#include <memory>
#include <string>

#include "bank/QZRMoldingMachineReader.h"
#include "bank/QZRMoldingMachineWriter.h"

using qzr::bank::CQZRMoldingMachineReader;
using qzr::bank::CQZRMoldingMachineWriter;

namespace {

// File attributes a catalogue gets after a failed user-bank load, so that the matching save
// then writes a new user bank: a legacy tabular user bank of version 7004, or a sectioned
// transfer-moulding user bank of version 9000.
constexpr int kNewOldIMMUserBankVersion = 7004;
constexpr int kNewRTMUserBankVersion = 9000;
constexpr int kUserBankFormat = 1;
constexpr int kIMMType = 0;
constexpr int kRTMType = 1;

// No exception reaches the host: a load or save that runs out of memory half way is a failed
// one (machines added before the failure stay in the catalogue, as with any failed load).
template <class Operation>
bool WithoutExceptions(Operation&& operation) noexcept {
    try {
        return operation();
    } catch (...) {
        return false;
    }
}

void SetFileAttributes(CQZRMoldingMachineCtrl& catalogue, int version, int format, int type) {
    catalogue.SetFileVersion(version);
    catalogue.SetFileFormat(format);
    catalogue.SetFileType(type);
}

}  // namespace

CQZRMoldingMachineIO::CQZRMoldingMachineIO() = default;

// The reader and the writer belong to their front: a copy makes its own when it first needs
// them, so no two fronts ever share or destroy each other's.
CQZRMoldingMachineIO::CQZRMoldingMachineIO(const CQZRMoldingMachineIO&) {}

// An assigned front is like a new copy: it drops its own reader and writer (and with the
// reader the header values of its last recognition) and makes new ones on first use.
CQZRMoldingMachineIO& CQZRMoldingMachineIO::operator=(const CQZRMoldingMachineIO& other) {
    if (this != &other) {
        m_reader.reset();
        m_writer.reset();
    }
    return *this;
}

CQZRMoldingMachineIO::~CQZRMoldingMachineIO() {
    m_reader.reset();
    m_writer.reset();
}

namespace {

// The common path of every load member: arguments first, then the reader (made once and kept,
// so header values carry over from one load to the next), then the reader's operation.
template <class Load>
bool RunLoad(std::unique_ptr<CQZRMoldingMachineReader>& reader, const char* path,
             const CQZRMoldingMachineCtrl* catalogue, Load&& load) noexcept {
    if (path == nullptr || catalogue == nullptr) {
        return false;
    }
    return WithoutExceptions([&]() {
        if (!reader) {
            reader = std::make_unique<CQZRMoldingMachineReader>();
        }
        return load(*reader);
    });
}

template <class Save>
bool RunSave(std::unique_ptr<CQZRMoldingMachineWriter>& writer, const char* path,
             const CQZRMoldingMachineCtrl* catalogue, Save&& save) noexcept {
    if (path == nullptr || catalogue == nullptr) {
        return false;
    }
    return WithoutExceptions([&]() {
        if (!writer) {
            writer = std::make_unique<CQZRMoldingMachineWriter>();
        }
        return save(*writer);
    });
}

}  // namespace

bool CQZRMoldingMachineIO::LoadOldIMMSystemDatabase(const char* path,
                                                    CQZRMoldingMachineCtrl* catalogue) {
    return RunLoad(m_reader, path, catalogue, [&](CQZRMoldingMachineReader& reader) {
        return reader.ReadOldIMMSystemDatabase(path, catalogue);
    });
}

bool CQZRMoldingMachineIO::LoadOldIMMUserDatabase(const char* path,
                                                  CQZRMoldingMachineCtrl* catalogue) {
    if (path == nullptr || catalogue == nullptr) {
        return false;
    }
    if (RunLoad(m_reader, path, catalogue, [&](CQZRMoldingMachineReader& reader) {
            return reader.ReadOldIMMUserDatabase(path, catalogue);
        })) {
        return true;
    }
    // The initialized flag is left as it is.
    SetFileAttributes(*catalogue, kNewOldIMMUserBankVersion, kUserBankFormat, kIMMType);
    return false;
}

bool CQZRMoldingMachineIO::LoadIMMSystemDatabase(const char* pattern,
                                                 CQZRMoldingMachineCtrl* catalogue) {
    return RunLoad(m_reader, pattern, catalogue, [&](CQZRMoldingMachineReader& reader) {
        return reader.ReadIMMSystemDatabase(pattern, catalogue);
    });
}

bool CQZRMoldingMachineIO::LoadIMMUserDatabase(const char* path,
                                               CQZRMoldingMachineCtrl* catalogue) {
    return RunLoad(m_reader, path, catalogue, [&](CQZRMoldingMachineReader& reader) {
        return reader.ReadIMMUserDatabase(path, catalogue);
    });
}

bool CQZRMoldingMachineIO::LoadRTMSystemDatabase(const char* pattern,
                                                 CQZRMoldingMachineCtrl* catalogue) {
    return RunLoad(m_reader, pattern, catalogue, [&](CQZRMoldingMachineReader& reader) {
        return reader.ReadRTMSystemDatabase(pattern, catalogue);
    });
}

bool CQZRMoldingMachineIO::LoadRTMUserDatabase(const char* path,
                                               CQZRMoldingMachineCtrl* const& catalogue) {
    if (path == nullptr || catalogue == nullptr) {
        return false;
    }
    if (RunLoad(m_reader, path, catalogue, [&](CQZRMoldingMachineReader& reader) {
            return reader.ReadRTMUserDatabase(path, catalogue);
        })) {
        return true;
    }
    // The initialized flag is left as it is.
    SetFileAttributes(*catalogue, kNewRTMUserBankVersion, kUserBankFormat, kRTMType);
    return false;
}

// Kept for hosts built against the DLL's full interface; nothing is read or changed.
bool CQZRMoldingMachineIO::LoadDatabase(const char*, CQZRMoldingMachineCtrl*, int) {
    return false;
}

bool CQZRMoldingMachineIO::SaveOldIMMUserDatabase(const char* folder,
                                                  const CQZRMoldingMachineCtrl* catalogue) {
    return RunSave(m_writer, folder, catalogue, [&](const CQZRMoldingMachineWriter& writer) {
        return writer.WriteOldIMMUserDatabase(folder, catalogue);
    });
}

bool CQZRMoldingMachineIO::SaveIMMUserDatabase(const char* path,
                                               const CQZRMoldingMachineCtrl* catalogue) {
    return RunSave(m_writer, path, catalogue, [&](const CQZRMoldingMachineWriter& writer) {
        return writer.WriteIMMUserDatabase(path, catalogue);
    });
}

bool CQZRMoldingMachineIO::SaveRTMUserDatabase(const char* folder,
                                               const CQZRMoldingMachineCtrl* catalogue) {
    return RunSave(m_writer, folder, catalogue, [&](const CQZRMoldingMachineWriter& writer) {
        return writer.WriteRTMUserDatabase(folder, catalogue);
    });
}

// Kept for hosts built against the DLL's full interface; nothing is written.
bool CQZRMoldingMachineIO::SaveDatabase(const char*, const CQZRMoldingMachineCtrl*, int) {
    return false;
}

// The reader's load path, which nothing in the library sets: after the first load that passed
// its argument checks this gives the empty text.
bool CQZRMoldingMachineIO::GetLoadDatabasePath(char* buffer, int size) const {
    if (buffer == nullptr || !m_reader || size < 1) {
        return false;
    }
    const std::string& path = m_reader->GetLoadPath();
    if (path.size() >= static_cast<size_t>(size)) {
        buffer[0] = '\0';
        return false;
    }
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return true;
}
