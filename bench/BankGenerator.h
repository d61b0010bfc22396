// Invented banks of any size for the benchmarks (and for tests that want many machines): the
// same machines every run, spread over about twenty invented makers, some of them with bytes
// above 127 in their names and remarks, as a Western code page writes them.
//
// The texts are formed here with the plain C formats of each bank format (snprintf), line by
// line, independently of the library's writers, and written with CR LF line ends as the
// banks lie on disk.
#ifndef QZR_BENCH_BANKGENERATOR_H
#define QZR_BENCH_BANKGENERATOR_H

#include <cstddef>
#include <string>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRRTM.h>

namespace qzr::bench {

// Number of invented makers; machine i belongs to one of them, chosen pseudo-randomly.
constexpr int kInventedMakerCount = 20;

// Machine number `index` (0-based) of the invented sequence, every attribute a bank carries
// set. Values have at most two decimals, so every format reads them back unchanged.
void InventIMM(std::size_t index, CQZRIM& machine);
void InventRTM(std::size_t index, CQZRRTM& machine);

// Bank texts with "\n" line ends (see WriteBankFile), machines first to first + count - 1.
// A sectioned bank: format 1 is a user bank, 0 a system bank; createDate is the "CreateDate"
// value, line end included, as the writers take it from their time stamp.
std::string SectionedIMMBankText(int format, std::size_t first, std::size_t count,
                                 const std::string& createDate);
std::string SectionedRTMBankText(int format, std::size_t first, std::size_t count,
                                 const std::string& createDate);
// The legacy tabular user bank of version 7007, as its writer lays it out.
std::string LegacyUserBankText(std::size_t first, std::size_t count);
// A legacy tabular system bank of version 7007 (rows in the system 7007 layout).
std::string LegacySystemBankText(std::size_t first, std::size_t count);

// Writes text with every "\n" as CR LF. False when the file cannot be written.
bool WriteBankFile(const std::string& path, const std::string& text);

// A catalogue of machines 0 to count - 1 as a user bank of the kind, with the file attributes
// its writer asks for (sectioned: version 9000; legacy: version 7007).
void FillSectionedIMMUserCatalogue(std::size_t count, CQZRMoldingMachineCtrl& catalogue);
void FillLegacyUserCatalogue(std::size_t count, CQZRMoldingMachineCtrl& catalogue);

}  // namespace qzr::bench

#endif  // QZR_BENCH_BANKGENERATOR_H
