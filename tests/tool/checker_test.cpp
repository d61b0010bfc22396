// The checker on crafted files, one fault each (named after it). (A shipped bank checking clean
// is a row of cli_test.cpp.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BankChecker.h"
#include "tool/tool_test_support.h"

namespace {

using qzrbank::CheckBankFile;
using qzrbank::CheckReport;
using qzrbank::Finding;
using qzrbank_test::ToolData;

struct Expected {
    int line;
    const char* text;  // a part of the message
};

struct FaultCase {
    const char* file;
    int machinesLoaded;
    std::vector<Expected> findings;  // all of them, in line order
};

const std::vector<FaultCase>& FaultCases() {
    static const std::vector<FaultCase> cases = {
        // Headers that no loader accepts, or that hand the file to the other format.
        {"header_unknown.bnk", 0, {{1, "line 1 holds neither"}}},
        {"header_system_without_totalno.bnk", 0, {{3, "does not contain \"TotalNo,\""}}},
        {"header_user_with_totalno.bnk", 0, {{3, "user-bank header contains \"TotalNo,\""}}},
        {"sectioned_header_missing_type.bnk", 0, {{1, "\"[FileHeader]\" has no \"Type\""}}},
        {"sectioned_version_below_9000.bnk", 0, {{2, "Version 8000 is below 9000"}}},
        {"sectioned_format_unknown.bnk", 0, {{3, "neither 0 (system bank) nor 1"}}},
        {"sectioned_type_unknown.bnk", 0, {{4, "take the file for a legacy system bank"}}},
        {"legacy_version_9000.bnk", 0, {{2, "version 9100 is 9000 or above"}}},
        {"legacy_inexact_version_line.bnk", 1, {{2, "characters after the number"}}},
        // Legacy rows the loaders skip, shift or misread.
        {"legacy_row_id_not_one.bnk", 1, {{10, "row ID is 2, not 1"}}},
        {"legacy_id_not_number.bnk",
         2,
         {{9, "takes the ID of the row before it (0)"}, {11, "loaded only because"}}},
        {"legacy_too_few_fields.bnk", 1, {{10, "row has 9 fields"}}},
        {"legacy_field_not_number.bnk", 1, {{9, "ClampForce \"abc\" is not a number"}}},
        {"legacy_empty_field.bnk",
         1,
         {{9, "field 7 (ShotWeight) is empty"}, {9, "ClampForce \" left\" is not a number"}}},
        {"legacy_version_in_row.bnk", 2, {{10, "holds \"Version\""}}},
        {"legacy_totalno_in_user_bank.bnk", 1, {{10, "the whole load fails"}}},
        {"legacy_long_line.bnk",
         0,
         {{9, "1237 characters long"},
          {9, "row has 4 fields"},
          {9, "from character 1024: row has 20 fields"}}},
        {"legacy_eof_in_row.bnk",
         1,
         {{10, "holds \"[EOF]\": the scan ends here"}, {11, "1 line after \"[EOF]\""}}},
        {"legacy_rows_after_eof.bnk", 1, {{11, "2 lines after \"[EOF]\" (line 10)"}}},
        {"legacy_no_database_marker.bnk", 0, {{1, "no line holds \"Database]\""}}},
        {"legacy_database_marker_in_row.bnk", 2, {{10, "database marker again"}}},
        {"legacy_nul_byte.bnk", 0, {{9, "NUL byte"}, {9, "row has 4 fields"}}},
        {"legacy_remark_misread.bnk", 1, {{9, "reads back as \"X,note\", not \"note\""}}},
        {"legacy_duplicate_machines.bnk",
         4,
         {{11, "repeats the machine of line 9 with identical data"},
          {12, "maker and grade of line 9 with other data"}}},
        {"legacy_system_totalno_mismatch.bnk", 2, {{3, "\"TotalNo\" is 3, but 2 machines load"}}},
        // Sectioned banks.
        {"sectioned_missing_key.bnk",
         3,
         {{13,
           "[Machine-1] has no \"Remark\": the loaders take the \"Remark\" of [Machine-2] "
           "(line 33)"},
          {44,
           "[Machine-3] has no \"TransferRate\", nor has any section after it: the machine "
           "keeps the default"}}},
        {"sectioned_system_missing_key.bnk", 2, {{45, "keeps the value of the machine before it"}}},
        {"sectioned_gap.bnk",
         2,
         {{11, "\"TotalMachine\" is 4, but 2 machines load"},
          {77,
           "[Machine-3] is missing: the loaders stop after [Machine-2], so this section and "
           "the 1 after it"}}},
        {"sectioned_missing_grade_stops.bnk",
         1,
         {{11, "\"TotalMachine\" is 2, but 1 machine loads"},
          {45, "[Machine-2] has no \"Grade\", nor has any section after it: the loaders stop"}}},
        {"sectioned_total_machine_mismatch.bnk", 2, {{11, "\"TotalMachine\" is 5, but 2"}}},
        {"sectioned_long_line.bnk", 1, {{18, "631 characters long with its line end"}}},
        {"sectioned_duplicate_section.bnk",
         2,
         {{77, "[Machine-2] appears again (first at line 45)"}}},
        {"sectioned_misnumbered_section.bnk", 1, {{45, "\"[Machine-02]\" is never read"}}},
        {"sectioned_value_not_number.bnk", 1, {{33, "\"ClampingForce\" \"abc\" is not a number"}}},
        {"sectioned_duplicate_machines.bnk",
         4,
         {{77, "\"VARNHOLT - vh-50\" repeats the machine of line 13 with identical data"},
          {109, "maker and grade of line 13 with other data"}}},
        {"sectioned_comma_in_maker.bnk",
         1,
         {{15, "Maker \"Varnholt, Sons\" holds a comma"},
          {18, "Remark \"Version B frame\" holds"}}},
        {"sectioned_duplicate_key.bnk",
         1,
         {{44, "\"Remark\" appears again in [Machine-1] (first at line 18)"},
          {45, "\"Remrak\" is no key of a machine section"}}},
    };
    return cases;
}

std::string Describe(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += "  " + std::to_string(finding.line) + ": " + finding.message + "\n";
    }
    return text;
}

TEST(Checker, EveryFaultIsFoundOnItsLineAndNothingElse) {
    for (const FaultCase& row : FaultCases()) {
        SCOPED_TRACE(row.file);
        const CheckReport report = CheckBankFile(ToolData(row.file));
        ASSERT_TRUE(report.readable) << report.error;
        EXPECT_EQ(report.machinesLoaded, row.machinesLoaded);
        ASSERT_EQ(report.findings.size(), row.findings.size()) << Describe(report.findings);
        for (size_t i = 0; i < row.findings.size(); ++i) {
            EXPECT_EQ(report.findings[i].line, row.findings[i].line) << Describe(report.findings);
            EXPECT_NE(report.findings[i].message.find(row.findings[i].text), std::string::npos)
                << "expected \"" << row.findings[i].text << "\" in\n"
                << Describe(report.findings);
        }
    }
}

// The loaders read in text mode, so a bank reads the same with LF and with CR LF line ends;
// so must the checker, line numbers and lengths included.
TEST(Checker, LineEndsOnDiskChangeNothing) {
    qzrbank_test::TempFolder folder;
    for (const FaultCase& row : FaultCases()) {
        SCOPED_TRACE(row.file);
        std::string lf;
        for (const char c : qzrbank_test::ReadFile(ToolData(row.file))) {
            lf += c == '\r' ? "" : std::string(1, c);
        }
        std::string crlf;
        for (const char c : lf) {
            crlf += c == '\n' ? "\r\n" : std::string(1, c);
        }
        qzrbank_test::WriteFile(folder.Path() / "lf.bnk", lf);
        qzrbank_test::WriteFile(folder.Path() / "crlf.bnk", crlf);
        const CheckReport fromLf = CheckBankFile(folder / "lf.bnk");
        const CheckReport fromCrlf = CheckBankFile(folder / "crlf.bnk");
        EXPECT_EQ(Describe(fromLf.findings), Describe(fromCrlf.findings));
        EXPECT_EQ(fromLf.machinesLoaded, fromCrlf.machinesLoaded);
    }
}

TEST(Checker, AFileThatCannotBeReadIsAnErrorNotAFinding) {
    EXPECT_EQ(CheckBankFile(ToolData("no_such_bank.bnk")).error, "no such file");
    EXPECT_EQ(CheckBankFile(ToolData("fixture")).error, "is a folder, not a file");
}

}  // namespace
