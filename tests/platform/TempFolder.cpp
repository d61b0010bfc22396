#include "platform/TempFolder.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

#if !defined(_WIN32)
#include <stdlib.h>
#endif

namespace qzr::test {

TempFolder::TempFolder() {
#if defined(_WIN32)
    std::random_device seed;
    std::mt19937 random(seed());
    for (int attempt = 0; attempt < 100 && m_path.empty(); ++attempt) {
        const std::filesystem::path candidate =
            std::filesystem::temp_directory_path() / ("qzr-platform-" + std::to_string(random()));
        if (std::filesystem::create_directory(candidate)) {
            m_path = candidate.string();
        }
    }
    if (m_path.empty()) {
        throw std::runtime_error("no temporary folder");
    }
#else
    char name[] = "/tmp/qzr-platform-XXXXXX";
    if (::mkdtemp(name) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    m_path = name;
#endif
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
    return static_cast<unsigned>(std::filesystem::status(File(name)).permissions() &
                                 std::filesystem::perms::mask);
}

void TempFolder::SetMode(std::string_view name, unsigned mode) const {
    std::filesystem::permissions(File(name), static_cast<std::filesystem::perms>(mode));
}

}  // namespace qzr::test
