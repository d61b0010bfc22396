// The one-pass index of a load against the reference lookup it replaces: on the same file,
// SectionedBankIndex must answer every machine-section lookup exactly as CQZRFileIO does, with
// the same result and the same value. Keys: those of both machine kinds (the lists the loads
// build the index with) and a few tokens taken from the input's own lines.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "FuzzSupport.h"
#include "bank/sectioned/MachineSectionFormat.h"
#include "bank/sectioned/QZRFileIO.h"
#include "bank/sectioned/SectionedBankIndex.h"
#include "bank/sectioned/SectionedLine.h"
#include "platform/CNumbers.h"

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

void Compare(const std::string& path, const std::vector<std::string>& keys,
             const std::vector<long>& numbers) {
    const SectionedBankIndex index(path, keys);
    CQZRFileIO reference;
    const bool opened = reference.OpenFile(path.c_str());
    if (opened != index.IsOpen()) {
        std::abort();
    }
    for (const long number : numbers) {
        const std::string section = qzr::platform::FormatC("[Machine-%ld]", number);
        for (size_t slot = 0; slot < keys.size(); ++slot) {
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
    const qzr::fuzz::ScratchFolder& folder = qzr::fuzz::ScratchFolder::Get();
    const std::string path = folder.Write("bank.bnk", data, size);
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::vector<long> numbers = MachineNumbersToAsk(text);
    Compare(path, qzr::bank::IMMSectionFormat().KeysInReadOrder(), numbers);
    Compare(path, qzr::bank::RTMSectionFormat().KeysInReadOrder(), numbers);
    const std::vector<std::string> tokens = TokensOf(text);
    if (!tokens.empty()) {
        Compare(path, tokens, numbers);
    }
    return 0;
}
