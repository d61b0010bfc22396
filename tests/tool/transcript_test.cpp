// qzrbank sessions written down as data: every case of tests/data/tool/transcripts/*.txt runs its
// commands in a temporary folder of its own and compares what each printed and returned. The
// README.md beside the transcripts describes their format.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CommandLine.h"
#include "DataRows.h"
#include "TempFolder.h"

namespace {

namespace fs = std::filesystem;
using qzr::test::ReadBytes;
using qzr::test::TempFolder;

struct Step {
    std::string line;  // "$ ..." as written
    std::vector<std::string> words;
    std::string input;     // the file standard input reads, or empty
    std::string output;    // the file standard output goes to, or empty
    std::string expected;  // the output lines, "! " error lines and "[exit N]"
};

struct File {
    std::string name;    // below the temporary folder
    std::string source;  // the file it copies, or empty
    std::string text;    // when it copies none
};

struct Case {
    std::string name;   // the test's name: the transcript file and line
    std::string where;  // "file:line: label"
    std::vector<File> files;
    std::vector<Step> steps;
};

bool Starts(const std::string& line, const char* prefix) {
    return line.rfind(prefix, 0) == 0;
}

// A "$ " line split into words, with a final "< FILE" and "> FILE" taken off.
Step ReadStep(const std::string& line) {
    Step step{line, qzr::test::DataFields(line.substr(2)), "", "", ""};
    for (size_t n = step.words.size();
         n > 2 && (step.words[n - 2] == "<" || step.words[n - 2] == ">"); n -= 2) {
        (step.words[n - 2] == "<" ? step.input : step.output) = step.words[n - 1];
        step.words.resize(n - 2);
    }
    return step;
}

// A "| " line of a file: its text with the escapes turned into bytes, and a line end.
std::string FileLine(const std::string& line) {
    std::string bytes;
    for (size_t at = 2; at < line.size(); ++at) {
        bytes += line[at] == '\\' ? qzr::test::Unescaped(line, &at) : line[at];
    }
    return bytes + "\n";
}

// Adds the cases of one transcript; a line that is no part of a case becomes a failing step.
void ReadTranscript(const fs::path& path, std::vector<Case>* cases) {
    std::ifstream in(path);
    bool inStep = false;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const std::string where = path.filename().string() + ":" + std::to_string(number);
        if (inStep) {
            cases->back().steps.back().expected += line + "\n";
            inStep = !Starts(line, "[exit ");
        } else if (Starts(line, "## ") || (cases->empty() && !line.empty() && line[0] != '#')) {
            const std::string name = path.stem().string() + "_" + std::to_string(number);
            cases->push_back({name, where + ": " + line.substr(3), {}, {}});
        } else if (line.empty() || line[0] == '#') {
            continue;
        } else if (Starts(line, "$ ")) {
            cases->back().steps.push_back(ReadStep(line));
            inStep = true;
        } else if (Starts(line, "file ")) {
            const std::vector<std::string> words = qzr::test::DataFields(line.substr(5));
            cases->back().files.push_back(
                {words.empty() ? "" : words[0], words.size() == 3 ? words[2] : "", ""});
        } else if ((line == "|" || Starts(line, "| ")) && !cases->back().files.empty()) {
            cases->back().files.back().text += FileLine(line);
        } else {
            cases->back().steps.push_back(
                {where + ": no transcript line: " + line, {}, "", "", ""});
        }
    }
}

std::vector<Case> ReadTranscripts() {
    std::vector<Case> cases;
    for (const auto& entry : fs::directory_iterator(QZR_TEST_DATA_DIR "/tool/transcripts")) {
        if (entry.path().extension() == ".txt") {
            ReadTranscript(entry.path(), &cases);
        }
    }
    return cases;
}

// The placeholders and the folders they stand for, in generic form.
using Places = std::vector<std::pair<std::string, std::string>>;

std::string Expanded(std::string text, const Places& places) {
    for (const auto& [name, folder] : places) {
        for (size_t at = text.find(name); at != std::string::npos;
             at = text.find(name, at + folder.size())) {
            text.replace(at, name.size(), folder);
        }
    }
    return text;
}

// Output with each folder named by its placeholder again, and the rest of a path below it in
// generic form: Windows writes the names it finds in a folder with backslashes.
std::string Named(std::string text, const Places& places) {
    for (const auto& [name, folder] : places) {
        for (size_t at = text.find(folder); at != std::string::npos; at = text.find(folder, at)) {
            text.replace(at, folder.size(), name);
            for (at += name.size(); at < text.size() && !std::strchr(" \t\n\":,", text[at]); ++at) {
                text[at] = text[at] == '\\' ? '/' : text[at];
            }
        }
    }
    return text;
}

// The files and folders below the temporary folder, one a line, folders with a trailing '/'.
int List(const TempFolder& folder, std::ostream& out) {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder.Folder())) {
        names.push_back(fs::relative(entry.path(), folder.Folder()).generic_string() +
                        (entry.is_directory() ? "/" : ""));
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        out << name << '\n';
    }
    return 0;
}

int Compare(const std::string& a, const std::string& b, std::ostream& out) {
    const bool same = fs::exists(a) && fs::exists(b) && ReadBytes(a) == ReadBytes(b);
    out << (same ? "" : "differ\n");
    return same ? 0 : 1;
}

// The lines of a file that hold the text, without their line ends (LF or CR LF).
int Search(const std::string& text, const std::string& file, std::ostream& out) {
    std::istringstream lines(ReadBytes(file));
    int code = 1;
    for (std::string line; std::getline(lines, line);) {
        if (line.find(text) != std::string::npos) {
            out << line.substr(0, line.find_last_not_of('\r') + 1) << '\n';
            code = 0;
        }
    }
    return code;
}

// What the step printed and returned, written as the transcript writes it.
std::string Outcome(const Step& step, const TempFolder& folder, const Places& places) {
    std::vector<std::string> words;
    for (const std::string& word : step.words) {
        words.push_back(Expanded(word, places));
    }
    std::istringstream in(step.input.empty() ? "" : ReadBytes(Expanded(step.input, places)));
    std::ostringstream out;
    std::ostringstream err;
    const std::string command = words.empty() ? "" : words[0];
    int code = -1;
    if (command == "qzrbank") {
        code = qzrbank::RunCommandLine({words.begin() + 1, words.end()}, in, out, err);
    } else if (command == "ls") {
        code = List(folder, out);
    } else if (command == "cmp" && words.size() == 3) {
        code = Compare(words[1], words[2], out);
    } else if (command == "grep" && words.size() == 3) {
        code = Search(words[1], words[2], out);
    }
    std::string block = Named(out.str(), places);
    if (!step.output.empty()) {
        std::ofstream(Expanded(step.output, places), std::ios::binary) << out.str();
        block.clear();
    }
    std::istringstream errors(Named(err.str(), places));
    for (std::string line; std::getline(errors, line);) {
        block += "! " + line + "\n";
    }
    return block + "[exit " + std::to_string(code) + "]\n";
}

void PrintTo(const Case& session, std::ostream* out) {
    *out << session.where;
}

class Transcript : public testing::TestWithParam<Case> {};

TEST_P(Transcript, PrintsAndReturnsWhatItShows) {
    const Case& session = GetParam();
    SCOPED_TRACE(session.where);
    const TempFolder folder;
    const Places places = {{"{tmp}", fs::path(folder.Folder()).generic_string()},
                           {"{fixture}", QZR_TEST_DATA_DIR "/tool/fixture"},
                           {"{data}", QZR_TEST_DATA_DIR "/tool"},
                           {"{examples}", QZR_EXAMPLES_DIR "/Bank"}};
    for (const File& file : session.files) {
        folder.Write(file.name,
                     file.source.empty() ? file.text : ReadBytes(Expanded(file.source, places)));
    }
    ASSERT_FALSE(session.steps.empty()) << "a case without a command";
    for (const Step& step : session.steps) {
        EXPECT_EQ(Outcome(step, folder, places), step.expected) << step.line;
    }
}

INSTANTIATE_TEST_SUITE_P(Sessions, Transcript, testing::ValuesIn(ReadTranscripts()),
                         [](const testing::TestParamInfo<Case>& info) { return info.param.name; });

}  // namespace
