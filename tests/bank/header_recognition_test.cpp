// Header recognition: the three header forms, the values each leaves as they were, their
// carry-over from one recognition to the next on one reader, and the bank kind they give.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TempFolder.h"
#include "bank/QZRMoldingMachineReader.h"

using qzr::bank::CQZRMoldingMachineReader;

namespace {

using namespace std::string_literals;
using qzr::test::TempFolder;

// "ok|no version/format/type", and the bank kind the reader reports after the recognition.
std::string Recognise(CQZRMoldingMachineReader& reader, const std::string& path) {
    const bool ok = reader.RecognizeBankHeader(path.c_str());
    std::string text = (ok ? "ok " : "no ") + std::to_string(reader.GetHeaderVersion()) + "/" +
                       std::to_string(reader.GetHeaderFormat()) + "/" +
                       std::to_string(reader.GetHeaderType());
    return text + " kind" + std::to_string(reader.GetBankKind());
}

std::string Sectioned(const std::string& version, const std::string& format,
                      const std::string& type) {
    std::string text = "[FileHeader]\r\n";
    if (!version.empty()) text += "Version    = " + version + "\r\n";
    if (!format.empty()) text += "Format     = " + format + "\r\n";
    if (!type.empty()) text += "Type       = " + type + "\r\n";
    return text + "\r\n[General]\r\n";
}

// Legacy headers: the system mark or the user mark, then the given lines.
std::string System(const std::string& lines) {
    return "[Header],,,,,,,,,\r\n" + lines;
}
std::string User(const std::string& lines) {
    return "[Header]\r\n" + lines;
}

struct Row {
    const char* label;
    std::string content;
    const char* expected;
};

void Check(const std::vector<Row>& rows, bool oneReader) {
    TempFolder folder;
    CQZRMoldingMachineReader shared;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        CQZRMoldingMachineReader fresh;
        EXPECT_EQ(Recognise(oneReader ? shared : fresh, folder.Write("b.bnk", row.content)),
                  row.expected);
    }
}

TEST(HeaderRecognition, EachFormOnANewReader) {
    const std::string line1023 = "[Header]" + std::string(1015, '.') + "\r\n";
    Check(
        {{"legacy system bank", System("Version,7006,,\r\nTotalNo,2,\r\n"), "ok 7006/0/0 kind0"},
         {"system, no TotalNo", System("Version,7006,,\r\nTotal,2\r\n"), "no 7006/0/-1 kind0"},
         {"system, no version", System("Version,abc\r\nTotalNo,3\r\n"), "no -1/-1/-1 kind1"},
         {"legacy user bank, LF", User("Version,7005\n\n"), "ok 7005/1/0 kind1"},
         {"user, TotalNo on line 3", User("Version,7007\r\nTotalNo,12\r\n"), "no 7007/1/-1 kind1"},
         {"user, blank after the version", User("Version,7007 \r\n\r\n"), "ok 7007/-1/0 kind1"},
         {"user, Version not first", User(" Version,7007\r\n"), "ok -1/-1/0 kind1"},
         {"first line cut at 1023", line1023 + "Version,7003\r\n\r\n", "ok -1/-1/0 kind1"},
         {"IMM system", Sectioned("9000", "0", "0"), "ok 9000/0/0 kind2"},
         {"IMM user", Sectioned("9000", "1", "0"), "ok 9000/1/0 kind3"},
         {"RTM system", Sectioned("9000", "0", "1"), "ok 9000/0/1 kind4"},
         {"RTM user", Sectioned("9000", "1", "1"), "ok 9000/1/1 kind5"},
         {"type 2", Sectioned("9000", "0", "2"), "ok 9000/0/2 kind0"},
         {"sectioned below 9000", Sectioned("8000", "1", "1"), "ok 8000/1/1 kind1"},
         {"no Type", Sectioned("9000", "1", ""), "no 9000/1/-1 kind0"},
         {"Version no number", Sectioned("abc", "1", "0"), "ok -1/1/0 kind1"},
         {"empty file", "", "no -1/-1/-1 kind1"},
         {"lower-case [fileheader]", "[fileheader]\r\nVersion = 9000\r\n", "no -1/-1/-1 kind1"},
         {"NUL before the mark", "\0[Header]\r\nVersion,7007\r\n\r\n"s, "no -1/-1/-1 kind1"}},
        false);
}

// One reader serves every load of its front; each step sees what the steps before it left.
TEST(HeaderRecognition, ValuesCarryOverBetweenRecognitions) {
    Check({{"system, no version", System("Version,abc\r\nTotalNo,3\r\n"), "no -1/-1/-1 kind1"},
           {"legacy system bank", System("Version,7006,\r\nTotalNo,5\r\n"), "ok 7006/0/0 kind0"},
           {"system, no version: now it succeeds", System("Version,abc\r\nTotalNo,3\r\n"),
            "ok 7006/0/0 kind0"},
           {"user, text after the version: fails while the flag is set",
            User("Version,7007,,\r\n\r\n"), "no 7007/0/0 kind0"},
           {"RTM user", Sectioned("9000", "1", "1"), "ok 9000/1/1 kind5"},
           {"no Type keeps the type", Sectioned("9300", "0", ""), "no 9300/0/1 kind4"},
           {"no Format keeps format and flag", Sectioned("9400", "", "0"), "no 9400/0/1 kind4"},
           {"exact user version line clears the flag", User("Version,7004\r\n\r\n"),
            "ok 7004/1/0 kind1"},
           {"blank after the version keeps format 1", User("Version,7002 \r\n\r\n"),
            "ok 7002/1/0 kind1"}},
          true);
    TempFolder folder;
    CQZRMoldingMachineReader reader;
    ASSERT_TRUE(
        reader.RecognizeBankHeader(folder.Write("a.bnk", Sectioned("9000", "1", "1")).c_str()));
    EXPECT_EQ(Recognise(reader, folder.File("missing.bnk")), "no 9000/1/1 kind5")
        << "nothing changes";
    EXPECT_FALSE(reader.RecognizeBankHeader(nullptr));
}

}  // namespace
