// Header recognition: the three header forms, the values each leaves as they were, their
// carry-over from one recognition to the next on one reader, and the bank kind they give.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bank/QZRMoldingMachineReader.h"
#include "bank_test_support.h"

namespace {

using namespace std::string_literals;
using qzr::bank::testing::Lines;
using qzr::bank::testing::TempFolder;

// "ok|no version/format/type [sys]", and the bank kind after a recognition that succeeds.
std::string Recognise(CQZRMoldingMachineReader& reader, const std::string& path) {
    const bool ok = reader.RecognizeBankHeader(path.c_str());
    std::string text = (ok ? "ok " : "no ") + std::to_string(reader.GetHeaderVersion()) + "/" +
                       std::to_string(reader.GetHeaderFormat()) + "/" +
                       std::to_string(reader.GetHeaderType()) +
                       (reader.IsSystemBank() ? " sys" : "");
    return ok ? text + " kind" + std::to_string(reader.GetBankKind()) : text;
}

std::string Sectioned(const std::string& version, const std::string& format,
                      const std::string& type) {
    std::string text = "[FileHeader]\r\n";
    if (!version.empty()) text += "Version    = " + version + "\r\n";
    if (!format.empty()) text += "Format     = " + format + "\r\n";
    if (!type.empty()) text += "Type       = " + type + "\r\n";
    return text + "\r\n[General]\r\n";
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
    const std::string dots1014(1014, '.');
    Check({{"legacy user bank", Lines({"[Header]", "Version,7007", "", "[Format]"}),
            "ok 7007/1/0 kind1"},
           {"legacy system bank", Lines({"[Header],,,,,,,,,", "Version,7006,,,", "TotalNo,250,,"}),
            "ok 7006/0/0 sys kind0"},
           {"system bank without TotalNo keeps what it read",
            Lines({"[Header],,,,,,,,,", "Version,7006,,", "Total,2"}), "no 7006/0/-1 sys"},
           {"system bank without a version",
            Lines({"[Header],,,,,,,,,", "Version,abc", "TotalNo,3"}), "no -1/-1/-1"},
           {"user bank with TotalNo on line 3", Lines({"[Header]", "Version,7007", "TotalNo,12"}),
            "no 7007/1/-1"},
           {"blank after the user version: format not set",
            Lines({"[Header]", "Version,7007 ", ""}), "ok 7007/-1/0 kind1"},
           {"lone CR after the user version", "[Header]\r\nVersion,7007\r\r\n\r\n",
            "ok 7007/-1/0 kind1"},
           {"LF line ends", Lines({"[Header]", "Version,7005", ""}, "\n"), "ok 7005/1/0 kind1"},
           {"Version not at the line start", Lines({"[Header]", " Version,7007", ""}),
            "ok -1/-1/0 kind1"},
           {"first line of 1022 characters", Lines({"[Header]" + dots1014, "Version,7003", ""}),
            "ok 7003/1/0 kind1"},
           {"first line of 1023 characters pushes the version to line 3",
            Lines({"[Header]" + dots1014 + ".", "Version,7003", ""}), "ok -1/-1/0 kind1"},
           {"sectioned IMM system bank", Sectioned("9000", "0", "0"), "ok 9000/0/0 sys kind2"},
           {"sectioned IMM user bank", Sectioned("9000", "1", "0"), "ok 9000/1/0 kind3"},
           {"sectioned RTM system bank", Sectioned("9000", "0", "1"), "ok 9000/0/1 sys kind4"},
           {"sectioned RTM user bank", Sectioned("9000", "1", "1"), "ok 9000/1/1 kind5"},
           {"sectioned type 2", Sectioned("9000", "0", "2"), "ok 9000/0/2 sys kind0"},
           {"sectioned header below 9000 is a legacy kind", Sectioned("8000", "1", "1"),
            "ok 8000/1/1 kind1"},
           {"sectioned without Type", Sectioned("9000", "1", ""), "no 9000/1/-1"},
           {"sectioned without Version", Sectioned("", "0", "1"), "no -1/-1/-1"},
           {"number with trailing letters", Sectioned("9100abc", "1", "0"), "ok 9100/1/0 kind3"},
           {"Version that is no number records nothing", Sectioned("abc", "1", "0"),
            "ok -1/1/0 kind1"},
           {"empty file", "", "no -1/-1/-1"},
           {"lower-case [fileheader]", "[fileheader]\r\nVersion = 9000\r\n", "no -1/-1/-1"},
           {"NUL before the mark", "\0[Header]\r\nVersion,7007\r\n\r\n"s, "no -1/-1/-1"}},
          false);
}

// One reader serves every load of its front; each step sees what the steps before it left.
TEST(HeaderRecognition, ValuesCarryOverBetweenRecognitions) {
    Check({{"system header without a version",
            Lines({"[Header],,,,,,,,,", "Version,abc", "TotalNo,3"}), "no -1/-1/-1"},
           {"legacy system bank", Lines({"[Header],,,,,,,,,", "Version,7006,", "TotalNo,5"}),
            "ok 7006/0/0 sys kind0"},
           {"now the same header succeeds with the earlier version",
            Lines({"[Header],,,,,,,,,", "Version,abc", "TotalNo,3"}), "ok 7006/0/0 sys kind0"},
           {"user header with text after the version fails while the flag is set",
            Lines({"[Header]", "Version,7007,,,", ""}), "no 7007/0/0 sys"},
           {"sectioned RTM user bank", Sectioned("9000", "1", "1"), "ok 9000/1/1 kind5"},
           {"sectioned without Type keeps the type", Sectioned("9300", "0", ""), "no 9300/0/1 sys"},
           {"sectioned without Format keeps format and flag", Sectioned("9400", "", "0"),
            "no 9400/0/1 sys"},
           {"exact user version line clears the flag", Lines({"[Header]", "Version,7004", ""}),
            "ok 7004/1/0 kind1"},
           {"blank after the version keeps format 1", Lines({"[Header]", "Version,7002 ", ""}),
            "ok 7002/1/0 kind1"}},
          true);
    TempFolder folder;
    CQZRMoldingMachineReader reader;
    ASSERT_TRUE(
        reader.RecognizeBankHeader(folder.Write("a.bnk", Sectioned("9000", "1", "1")).c_str()));
    EXPECT_EQ(Recognise(reader, folder.File("missing.bnk")), "no 9000/1/1") << "nothing changes";
    EXPECT_FALSE(reader.RecognizeBankHeader(nullptr));
}

}  // namespace
