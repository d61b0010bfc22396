#include "TemporaryFolder.h"

#include <random>
#include <string>
#include <system_error>

namespace qzrbank {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder(const fs::path& parent) {
    if (parent.empty()) {
        return;
    }
    std::random_device random;
    for (int attempt = 0; attempt < 16 && m_path.empty(); ++attempt) {
        const fs::path candidate =
            parent / (".qzrbank-" + std::to_string(random()) + std::to_string(attempt));
        std::error_code error;
        if (fs::create_directory(candidate, error)) {
            m_path = candidate;
        }
    }
}

TemporaryFolder::~TemporaryFolder() {
    if (!m_path.empty()) {
        std::error_code error;
        fs::remove_all(m_path, error);
    }
}

}  // namespace qzrbank
