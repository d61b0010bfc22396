#include "BankFiles.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "bank/BankKind.h"
#include "bank/QZRMoldingMachineReader.h"

namespace qzrbank {

namespace fs = std::filesystem;

std::string NativePath(const std::string& path) {
#if defined(_WIN32)
    return path;
#else
    std::string native = path;
    for (char& c : native) {
        if (c == '\\') {
            c = '/';
        }
    }
    return native;
#endif
}

std::string StatusProblem(const std::string& path) {
    std::error_code error;
    static_cast<void>(fs::status(fs::path(NativePath(path)), error));
    return error ? error.message() : std::string();
}

std::string ReadProblem(const std::string& path) {
    const fs::path native(NativePath(path));
    std::error_code error;
    const fs::file_status status = fs::status(native, error);
    if (error) {
        return error.message();
    }
    if (fs::is_directory(status)) {
        return "is a folder";
    }
    if (!fs::is_regular_file(status)) {
        return "not a regular file";
    }
    errno = 0;
    const std::ifstream probe(native, std::ios::binary);
    if (!probe.is_open()) {
        return errno != 0 ? std::generic_category().message(errno) : "cannot be opened";
    }
    return {};
}

const char* BankKindName(int kind) {
    // Indexed by qzr::bank::BankKind.
    static const char* const kNames[] = {"OldIMMSystemBank",   "OldIMMUserBank",
                                         "IMMSystemBankFiles", "IMMUserBank",
                                         "RTMSystemBankFiles", "RTMUserBank"};
    static_assert(qzr::bank::RTMUserBank == 5, "one name per bank kind");
    return kind >= 0 && kind <= qzr::bank::RTMUserBank ? kNames[kind] : "not a bank";
}

Recognition RecognizeBankFile(const std::string& path) {
    qzr::bank::CQZRMoldingMachineReader reader;
    Recognition recognition;
    recognition.recognized = reader.RecognizeBankHeader(path.c_str());
    recognition.kind = recognition.recognized ? reader.GetBankKind() : -1;
    recognition.version = reader.GetHeaderVersion();
    recognition.format = reader.GetHeaderFormat();
    recognition.type = reader.GetHeaderType();
    return recognition;
}

}  // namespace qzrbank
