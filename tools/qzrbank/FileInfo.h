// What qzrbank info tells about one file: its bank kind, header values, the machines its
// loader reads, and the texts its header carries.
#ifndef QZRBANK_FILEINFO_H
#define QZRBANK_FILEINFO_H

#include <string>
#include <utility>
#include <vector>

#include "BankFiles.h"

namespace qzrbank {

struct FileInfo {
    std::string error;  // why the file cannot be read; empty when it can
    Recognition header;
    long machines = 0;          // as the loader of the file's kind reads them
    bool loadAccepted = false;  // the loader's own result
    // Header texts: "CreateDate", "CreateBy", "Remark" of a sectioned bank as its lookups find
    // them, and the machine count the header declares ("TotalMachine" of a sectioned bank,
    // "TotalNo" of a legacy system bank).
    std::vector<std::pair<std::string, std::string>> headerTexts;
};

FileInfo ReadFileInfo(const std::string& path);

// The texts "CreateDate", "CreateBy" and "Remark" of a sectioned bank's "[FileHeader]", each
// that its key lookup finds, in that order.
std::vector<std::pair<std::string, std::string>> SectionedHeaderTexts(const std::string& path);

}  // namespace qzrbank

#endif  // QZRBANK_FILEINFO_H
