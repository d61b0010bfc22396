// The one-pass index of a load against the reference lookup it replaces: on the same file,
// SectionedBankIndex must answer every machine-section lookup exactly as CQZRFileIO does, with
// the same result and the same value. Keys: those of both machine kinds (the lists the loads
// build the index with) and a few tokens taken from the input's own lines. The file is read
// from memory (see InputAsFile); the other targets read real files.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "bank/sectioned/MachineSectionFormat.h"
#include "bank/sectioned/QZRFileIO.h"
#include "bank/sectioned/SectionedBankIndex.h"
#include "bank/sectioned/SectionedLine.h"
#include "support/EnvWrapper.h"
#include "support/ScopedEnvOverride.h"

using qzr::bank::CQZRFileIO;

namespace {

using qzr::bank::SectionedBankIndex;

// Every lookup of the reference reads the whole file again, so the machine numbers asked are
// bounded: the first few, the numbers the input's headers name, and the last one a load asks
// for. (Loads never ask for a number outside 1 to kMaxMachineSection, and the index answers
// none there.)
std::vector<long> MachineNumbersToAsk(std::string_view text) {
    std::set<long> numbers = {1, 2, 3, 4, SectionedBankIndex::kMaxMachineSection};
    constexpr std::string_view kPrefix = "[Machine-";
    size_t at = 0;
    while (numbers.size() < 8 && (at = text.find(kPrefix, at)) != std::string_view::npos) {
        at += kPrefix.size();
        long number = 0;
        size_t digits = 0;
        while (at + digits < text.size() && digits < 9 && text[at + digits] >= '0' &&
               text[at + digits] <= '9') {
            number = number * 10 + (text[at + digits] - '0');
            ++digits;
        }
        if (digits > 0 && number >= 1 && number <= SectionedBankIndex::kMaxMachineSection) {
            numbers.insert(number);
        }
    }
    return std::vector<long>(numbers.begin(), numbers.end());
}

// Up to four distinct tokens of the input's lines, none of them a section header.
std::vector<std::string> TokensOf(std::string_view text) {
    std::vector<std::string> tokens;
    while (!text.empty() && tokens.size() < 4) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view token = qzr::bank::SectionedLineToken(text.substr(0, end));
        if (!token.empty() && token.front() != '[' &&
            std::find(tokens.begin(), tokens.end(), token) == tokens.end()) {
            tokens.emplace_back(token);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return tokens;
}

// The input as the only file there is, read from memory: the reference opens and reads the
// file again for every lookup, and the system calls would cost more than the lookups. Reads
// hand out at most a set number of bytes, so the index can read the file in tiny pieces while
// the reference reads it whole: a line end or a CR LF split between two reads must not change
// what either finds.
class InputAsFile : public qzr::platform::EnvWrapper {
  public:
    InputAsFile(std::string path, std::string_view bytes)
        : EnvWrapper(qzr::platform::Env::Default()),
          m_path(std::move(path)),
          m_bytes(bytes),
          m_use(this) {}

    std::unique_ptr<qzr::platform::ReadableFile> OpenForReading(const std::string& path) override {
        if (path != m_path) {
            return nullptr;
        }
        return std::make_unique<MemoryFile>(m_bytes, m_piece);
    }

    void ReadInPiecesOf(size_t bytes) { m_piece = bytes; }

  private:
    class MemoryFile : public qzr::platform::ReadableFile {
      public:
        MemoryFile(std::string_view bytes, size_t piece) : m_bytes(bytes), m_piece(piece) {}
        size_t Read(char* buffer, size_t n) override {
            const size_t count = std::min({n, m_piece, m_bytes.size() - m_position});
            std::memcpy(buffer, m_bytes.data() + m_position, count);
            m_position += count;
            return count;
        }
        bool Seek(uint64_t offset) override {
            m_position = static_cast<size_t>(std::min<uint64_t>(offset, m_bytes.size()));
            return true;
        }
        uint64_t Size() override { return m_bytes.size(); }

      private:
        std::string_view m_bytes;
        size_t m_piece;
        size_t m_position = 0;
    };

    std::string m_path;
    std::string_view m_bytes;
    size_t m_piece = SIZE_MAX;
    qzr::platform::ScopedEnvOverride m_use;
};

// Every key of the first two machine numbers, and every fourth key (in turn) of the others.
bool Asked(size_t numberPosition, size_t slot) {
    return numberPosition < 2 || (slot + numberPosition) % 4 == 0;
}

void Compare(InputAsFile& file, size_t indexPiece, const std::string& path,
             const std::vector<std::string>& keys, const std::vector<long>& numbers) {
    file.ReadInPiecesOf(indexPiece);
    const SectionedBankIndex index(path, keys);
    file.ReadInPiecesOf(SIZE_MAX);
    CQZRFileIO reference;
    const bool opened = reference.OpenFile(path.c_str());
    if (opened != index.IsOpen()) {
        std::abort();
    }
    for (size_t position = 0; position < numbers.size(); ++position) {
        const long number = numbers[position];
        const std::string section = "[Machine-" + std::to_string(number) + "]";
        for (size_t slot = 0; slot < keys.size(); ++slot) {
            if (!Asked(position, slot)) {
                continue;
            }
            const char* expected = nullptr;
            const int expectedResult =
                reference.GetKeyString(section.c_str(), keys[slot].c_str(), &expected);
            // The reference's value lives in a buffer the next lookup overwrites.
            const std::string expectedValue = expected != nullptr ? expected : "";
            const char* actual = nullptr;
            const int actualResult = index.GetKeyString(number, slot, &actual);
            if (actualResult != expectedResult) {
                std::abort();
            }
            if (actualResult == CQZRFileIO::kFound && expectedValue != actual) {
                std::abort();
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string path = "Bank\\Machine\\IMM\\fuzz.bnk";
    InputAsFile file(path, text);
    // Pieces of 1 to 16 bytes, or whole, as the input's first byte says.
    const size_t piece = size > 0 && data[0] % 17 != 0 ? data[0] % 17 : SIZE_MAX;
    const std::vector<long> numbers = MachineNumbersToAsk(text);
    Compare(file, piece, path, qzr::bank::IMMSectionFormat().KeysInReadOrder(), numbers);
    Compare(file, piece, path, qzr::bank::RTMSectionFormat().KeysInReadOrder(), numbers);
    const std::vector<std::string> tokens = TokensOf(text);
    if (!tokens.empty()) {
        Compare(file, piece, path, tokens, numbers);
    }
    // A file that cannot be opened: every lookup of both says so.
    Compare(file, piece, "Bank\\missing.bnk", {"Maker"}, {1});
    return 0;
}
