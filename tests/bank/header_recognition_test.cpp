// Header recognition: the three header forms, what each leaves untouched, the carry-over of
// header values between recognitions on one reader, and the bank kind they fold into.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bank/QZRMoldingMachineReader.h"
#include "sectioned_test_support.h"

namespace {

using namespace std::string_literals;
using qzr::sectioned::testing::JoinLines;
using qzr::sectioned::testing::ScratchFolder;

struct HeaderValues {
    bool recognised;
    int version;
    int format;
    int type;
    bool systemBank;
};

std::string Describe(const HeaderValues& v) {
    return std::string(v.recognised ? "true" : "false") + " v=" + std::to_string(v.version) +
           " f=" + std::to_string(v.format) + " t=" + std::to_string(v.type) +
           " sys=" + (v.systemBank ? "1" : "0");
}

HeaderValues Recognise(CQZRMoldingMachineReader& reader, const std::string& path) {
    const bool recognised = reader.RecognizeBankHeader(path.c_str());
    return {recognised, reader.GetHeaderVersion(), reader.GetHeaderFormat(), reader.GetHeaderType(),
            reader.IsSystemBank()};
}

std::string SectionedHeader(const std::string& version, const std::string& format,
                            const std::string& type) {
    std::string text = "[FileHeader]\r\n";
    if (!version.empty()) text += "Version    = " + version + "\r\n";
    if (!format.empty()) text += "Format     = " + format + "\r\n";
    if (!type.empty()) text += "Type       = " + type + "\r\n";
    return text + "CreateDate = Wed Jan 02 02:03:55 1980\r\n\r\n\r\n[General]\r\n";
}

struct RecognitionRow {
    const char* label;
    std::string content;
    HeaderValues expected;
    int kind;  // checked only when recognised
};

TEST(HeaderRecognition, EachFormOnANewReader) {
    const std::string longFirstLine1023 = "[Header]" + std::string(1015, '.');
    const std::string longFirstLine1022 = "[Header]" + std::string(1014, '.');
    const std::vector<RecognitionRow> rows = {
        {"legacy writer output",
         JoinLines({"[Header]", "Version,7007", "", "[Format]", "Maker,Grade"}),
         {true, 7007, 1, 0, false},
         1},
        {"legacy system bank",
         JoinLines({"[Header],,,,,,,,,", "Version,7006,,,,,,,,,", "TotalNo,250,,,,,,,,,"}),
         {true, 7006, 0, 0, true},
         0},
        {"system bank without TotalNo keeps what step one set",
         JoinLines({"[Header],,,,,,,,,", "Version,7006,,,,,,,,,", "Total,250"}),
         {false, 7006, 0, -1, true},
         -1},
        {"system bank of two lines",
         JoinLines({"[Header],,,,,,,,,", "Version,7006,,,,,,,,,"}),
         {false, 7006, 0, -1, true},
         -1},
        {"system bank without a version",
         JoinLines({"[Header],,,,,,,,,", "Version,abc", "TotalNo,3"}),
         {false, -1, -1, -1, false},
         -1},
        {"user bank with TotalNo on line 3",
         JoinLines({"[Header]", "Version,7007", "TotalNo,12"}),
         {false, 7007, 1, -1, false},
         -1},
        {"user bank with a blank after the version",
         JoinLines({"[Header]", "Version,7007 ", ""}),
         {true, 7007, -1, 0, false},
         1},
        {"user bank with a lone CR after the version",
         "[Header]\r\nVersion,7007\r\r\n\r\n",
         {true, 7007, -1, 0, false},
         1},
        {"user bank with LF line ends",
         JoinLines({"[Header]", "Version,7005", ""}, "\n"),
         {true, 7005, 1, 0, false},
         1},
        {"user bank of two lines, the last without line end",
         "[Header]\r\nVersion,7007",
         {true, 7007, 1, 0, false},
         1},
        {"user bank without a version line",
         JoinLines({"[Header]", "", ""}),
         {true, -1, -1, 0, false},
         1},
        {"user bank whose Version is not at the start",
         JoinLines({"[Header]", " Version,7007", ""}),
         {true, -1, -1, 0, false},
         1},
        {"first line of 1022 characters",
         JoinLines({longFirstLine1022, "Version,7003", ""}),
         {true, 7003, 1, 0, false},
         1},
        {"first line of 1023 characters moves the version to line 3",
         JoinLines({longFirstLine1023, "Version,7003", ""}),
         {true, -1, -1, 0, false},
         1},
        {"sectioned IMM system bank",
         SectionedHeader("9000", "0", "0"),
         {true, 9000, 0, 0, true},
         2},
        {"sectioned IMM user bank",
         SectionedHeader("9000", "1", "0"),
         {true, 9000, 1, 0, false},
         3},
        {"sectioned RTM system bank",
         SectionedHeader("9000", "0", "1"),
         {true, 9000, 0, 1, true},
         4},
        {"sectioned RTM user bank",
         SectionedHeader("9000", "1", "1"),
         {true, 9000, 1, 1, false},
         5},
        {"sectioned bank of type 2",
         SectionedHeader("9000", "0", "2"),
         {true, 9000, 0, 2, true},
         0},
        {"sectioned bank of version 8000, format 0",
         SectionedHeader("8000", "0", "1"),
         {true, 8000, 0, 1, true},
         0},
        {"sectioned bank of version 8000, format 1",
         SectionedHeader("8000", "1", "1"),
         {true, 8000, 1, 1, false},
         1},
        {"sectioned bank without Type",
         SectionedHeader("9000", "1", ""),
         {false, 9000, 1, -1, false},
         -1},
        {"sectioned bank without Version",
         SectionedHeader("", "0", "1"),
         {false, -1, -1, -1, false},
         -1},
        {"sectioned number with trailing letters",
         SectionedHeader("9100abc", "1", "0"),
         {true, 9100, 1, 0, false},
         3},
        {"sectioned Version present but not a number records nothing",
         SectionedHeader("abc", "1", "0"),
         {true, -1, 1, 0, false},
         1},
        {"sectioned Format empty records nothing",
         SectionedHeader("9000", " ", "0"),
         {true, 9000, -1, 0, false},
         3},
        {"a later [fileheader] line is just another line",
         "[FileHeader]\r\n[fileheader]\r\nVersion = 9000\r\n",
         {false, 9000, -1, -1, false},
         -1},
        {"empty file", "", {false, -1, -1, -1, false}, -1},
        {"first line [Database]",
         JoinLines({"[Database]", "Version,7007", ""}),
         {false, -1, -1, -1, false},
         -1},
        {"lower-case first line [fileheader]",
         "[fileheader]\r\nVersion = 9000\r\n",
         {false, -1, -1, -1, false},
         -1},
        {"NUL before the mark",
         "\0[Header]\r\nVersion,7007\r\n\r\n"s,
         {false, -1, -1, -1, false},
         -1},
    };
    ScratchFolder folder;
    for (const RecognitionRow& row : rows) {
        SCOPED_TRACE(row.label);
        const std::string path = folder.Write("bank.bnk", row.content);
        CQZRMoldingMachineReader reader;
        const HeaderValues got = Recognise(reader, path);
        EXPECT_EQ(Describe(got), Describe(row.expected));
        if (row.expected.recognised) {
            EXPECT_EQ(reader.GetBankKind(), row.kind);
        }
    }
}

TEST(HeaderRecognition, FileThatCannotBeOpenedChangesNothing) {
    ScratchFolder folder;
    CQZRMoldingMachineReader reader;
    ASSERT_TRUE(
        Recognise(reader, folder.Write("a.bnk", SectionedHeader("9000", "1", "1"))).recognised);
    EXPECT_EQ(Describe(Recognise(reader, folder.File("missing.bnk"))),
              Describe({false, 9000, 1, 1, false}));
    EXPECT_FALSE(reader.RecognizeBankHeader(folder.Folder().c_str()));
    EXPECT_FALSE(reader.RecognizeBankHeader(nullptr));
}

// One reader serves every load of its front; each step sees what the previous ones left.
TEST(HeaderRecognition, ValuesCarryOverBetweenRecognitions) {
    struct Step {
        const char* label;
        std::string content;
        HeaderValues expected;
    };
    const std::vector<Step> steps = {
        {"new reader: system header without a version is refused",
         JoinLines({"[Header],,,,,,,,,", "Version,abc", "TotalNo,3"}),
         {false, -1, -1, -1, false}},
        {"user header with a trailing blank keeps format -1",
         JoinLines({"[Header]", "Version,7007 ", ""}),
         {true, 7007, -1, 0, false}},
        {"legacy system bank",
         JoinLines({"[Header],,,,,,,,,", "Version,7006,", "TotalNo,5"}),
         {true, 7006, 0, 0, true}},
        {"system header without a version now succeeds with the earlier version",
         JoinLines({"[Header],,,,,,,,,", "Version,abc", "TotalNo,3"}),
         {true, 7006, 0, 0, true}},
        {"user header with characters after the version fails while the flag is true",
         JoinLines({"[Header]", "Version,7007,,,", ""}),
         {false, 7007, 0, 0, true}},
        {"sectioned RTM user bank", SectionedHeader("9000", "1", "1"), {true, 9000, 1, 1, false}},
        {"sectioned bank without Type keeps the earlier type",
         SectionedHeader("9300", "0", ""),
         {false, 9300, 0, 1, true}},
        {"sectioned bank without Format keeps format and flag",
         SectionedHeader("9400", "", "0"),
         {false, 9400, 0, 1, true}},
        {"exact user version line clears the flag",
         JoinLines({"[Header]", "Version,7004", ""}),
         {true, 7004, 1, 0, false}},
        {"user header with a trailing blank keeps format 1",
         JoinLines({"[Header]", "Version,7002 ", ""}),
         {true, 7002, 1, 0, false}},
    };
    ScratchFolder folder;
    CQZRMoldingMachineReader reader;
    int number = 0;
    for (const Step& step : steps) {
        SCOPED_TRACE(step.label);
        const std::string path =
            folder.Write("bank" + std::to_string(++number) + ".bnk", step.content);
        EXPECT_EQ(Describe(Recognise(reader, path)), Describe(step.expected));
    }
}

TEST(HeaderRecognition, BankKindOfEveryCombination) {
    struct KindRow {
        const char* version;
        const char* format;
        const char* type;
        int kind;
    };
    const KindRow rows[] = {
        {"8999", "0", "5", 0},  {"8999", "1", "0", 1},  {"-5", "0", "1", 0},
        {"-5", "3", "1", 1},    {"9000", "0", "0", 2},  {"9000", "1", "0", 3},
        {"9000", "0", "1", 4},  {"9000", "1", "1", 5},  {"9000", "0", "2", 0},
        {"9000", "1", "-1", 0}, {"12000", "7", "0", 3}, {"12000", "7", "1", 5},
    };
    ScratchFolder folder;
    for (const KindRow& row : rows) {
        SCOPED_TRACE(std::string(row.version) + "/" + row.format + "/" + row.type);
        const std::string path =
            folder.Write("kind.bnk", SectionedHeader(row.version, row.format, row.type));
        CQZRMoldingMachineReader reader;
        ASSERT_TRUE(reader.RecognizeBankHeader(path.c_str()));
        EXPECT_EQ(reader.GetBankKind(), row.kind);
    }
    // A new reader: version -1, not a system bank.
    EXPECT_EQ(CQZRMoldingMachineReader().GetBankKind(), 1);
}

}  // namespace
