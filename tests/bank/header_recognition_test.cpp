// Header recognition: the three header forms, the values each leaves as they were, their
// carry-over from one recognition to the next on one reader, and the bank kind they give.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DataRows.h"
#include "TempFolder.h"
#include "bank/QZRMoldingMachineReader.h"

using qzr::bank::CQZRMoldingMachineReader;

namespace {

using qzr::test::TempFolder;

// "ok|no version/format/type", and the bank kind the reader reports after the recognition.
std::string Recognise(CQZRMoldingMachineReader& reader, const std::string& path) {
    const bool ok = reader.RecognizeBankHeader(path.c_str());
    std::string text = (ok ? "ok " : "no ") + std::to_string(reader.GetHeaderVersion()) + "/" +
                       std::to_string(reader.GetHeaderFormat()) + "/" +
                       std::to_string(reader.GetHeaderType());
    return text + " kind" + std::to_string(reader.GetBankKind());
}

// The rows of tests/data/headers.txt; a missing file changes nothing on the reader.
TEST(HeaderRecognition, EachFormAndWhatCarriesOverOnOneReader) {
    const std::vector<qzr::test::DataRow> rows = qzr::test::ReadDataRows("headers.txt");
    ASSERT_FALSE(rows.empty());
    TempFolder folder;
    CQZRMoldingMachineReader shared;
    for (const qzr::test::DataRow& row : rows) {
        CQZRMoldingMachineReader fresh;
        EXPECT_EQ(Recognise(row.fields[0] == "shared" ? shared : fresh,
                            folder.Write("b.bnk", row.fields[1])),
                  row.fields[2])
            << row.where;
    }
    EXPECT_EQ(Recognise(shared, folder.File("missing.bnk")), "no 7002/1/0 kind1");
    EXPECT_FALSE(shared.RecognizeBankHeader(nullptr));
}

}  // namespace
