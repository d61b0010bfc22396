#include "platform/TempFolder.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace qzr::test {

TempFolder::TempFolder() {
    char name[] = "/tmp/qzr-platform-XXXXXX";
    if (::mkdtemp(name) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    m_path = name;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TempFolder::File(std::string_view name) const {
    return m_path + "/" + std::string(name);
}

void TempFolder::WriteBytes(std::string_view name, std::string_view bytes) const {
    std::ofstream out(File(name), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) {
        throw std::runtime_error("cannot write " + File(name));
    }
}

std::string TempFolder::ReadBytes(std::string_view name) const {
    std::ifstream in(File(name), std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + File(name));
    }
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void TempFolder::MakeFolder(std::string_view name) const {
    std::filesystem::create_directories(File(name));
}

unsigned TempFolder::Mode(std::string_view name) const {
    struct stat info;
    if (::stat(File(name).c_str(), &info) != 0) {
        throw std::runtime_error("cannot stat " + File(name));
    }
    return static_cast<unsigned>(info.st_mode & 07777);
}

void TempFolder::SetMode(std::string_view name, unsigned mode) const {
    if (::chmod(File(name).c_str(), static_cast<mode_t>(mode)) != 0) {
        throw std::runtime_error("cannot chmod " + File(name));
    }
}

}  // namespace qzr::test
