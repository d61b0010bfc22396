// A load observer that keeps, for the loads it watches, what the checker and the file
// information need: a finding for everything the loaders dropped, changed or answered from
// elsewhere, the header and machine count of each file, and the line each machine was read
// from, in load order.
#ifndef QZRBANK_LOADWATCHER_H
#define QZRBANK_LOADWATCHER_H

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Finding.h"
#include "bank/LoadObserver.h"

namespace qzrbank {

struct WatchedFile {
    std::string path;
    int kind = -1;  // a qzr::bank::BankKind value, or -1 when the header is no bank's
    int version = -1;
    int format = -1;
    int type = -1;
    bool accepted = false;  // the load read the file
    long machinesRead = 0;
    long declared = 0;  // "TotalMachine" or "TotalNo"
    bool hasDeclared = false;
};

// Where a machine of the watched loads came from: the file by its place among
// LoadWatcher::OriginPaths(), and the line.
struct MachineOrigin {
    size_t path = 0;
    long line = 0;
};

class LoadWatcher : public qzr::bank::LoadObserver {
  public:
    void OnHeader(const qzr::bank::HeaderSeen& seen) override;
    void OnLegacyLine(const qzr::bank::LegacyLineSeen& seen) override;
    void OnSection(const qzr::bank::SectionSeen& seen) override;
    void OnKeyFromLaterSection(const qzr::bank::KeyFromLaterSection& seen) override;
    void OnLineCut(const qzr::bank::LineCut& seen) override;
    void OnMachineCount(const qzr::bank::MachineCount& seen) override;
    void OnFieldNotConverted(const qzr::bank::FieldNotConverted& seen) override;

    const std::vector<WatchedFile>& Files() const { return m_files; }
    const std::vector<MachineOrigin>& Origins() const { return m_origins; }
    // The files machines came from, each once, in the order of their first machine.
    const std::vector<std::string>& OriginPaths() const { return m_originPaths; }
    const std::vector<Finding>& Findings() const { return m_findings; }
    std::vector<Finding> TakeFindings() { return std::move(m_findings); }
    void Add(Finding finding) { m_findings.push_back(std::move(finding)); }
    // Called with each file's path when its load ends (its machine count is known).
    void OnFileEnd(std::function<void(std::string_view)> fileEnded) {
        m_fileEnded = std::move(fileEnded);
    }

  private:
    void Report(std::string_view path, long line, Severity severity, const char* code,
                std::string message);
    void AddOrigin(std::string_view path, long line);

    std::vector<WatchedFile> m_files;
    std::vector<MachineOrigin> m_origins;
    std::vector<std::string> m_originPaths;
    std::vector<Finding> m_findings;
    std::string m_rowsOf;  // the legacy file whose rows are being read
    std::function<void(std::string_view)> m_fileEnded;
};

}  // namespace qzrbank

#endif  // QZRBANK_LOADWATCHER_H
