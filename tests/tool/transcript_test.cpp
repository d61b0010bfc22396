// qzrbank sessions written down as data: every case of tests/data/tool/transcripts/*.txt runs its
// commands in a temporary folder of its own and compares what each printed and returned. The
// README.md beside the transcripts describes their format.
#include <gtest/gtest.h>

#include <algorithm>
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

const std::string kTranscripts = std::string(QZR_TEST_DATA_DIR) + "/tool/transcripts";

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

std::string Unescaped(const std::string& text) {
    std::string bytes;
    for (size_t at = 0; at < text.size(); ++at) {
        bytes += text[at] == '\\' ? qzr::test::Unescaped(text, &at) : text[at];
    }
    return bytes;
}

// Reads one transcript into cases; a line that belongs to no part of a case fails the file.
void ReadTranscript(const fs::path& path, std::vector<Case>* cases) {
    std::ifstream in(path);
    const std::string file = path.filename().string();
    bool inStep = false;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        const std::string where = file + ":" + std::to_string(number);
        if (inStep) {
            cases->back().steps.back().expected += line + "\n";
            inStep = line.rfind("[exit ", 0) != 0;
        } else if (line.rfind("## ", 0) == 0) {
            const std::string name = path.stem().string() + "_" + std::to_string(number);
            cases->push_back({name, where + ": " + line.substr(3), {}, {}});
        } else if (line.empty() || line[0] == '#') {
            continue;
        } else if (cases->empty()) {
            cases->push_back({"bad_" + path.stem().string(), where + ": no case", {}, {}});
        } else if (line.rfind("$ ", 0) == 0) {
            Step step{line, qzr::test::DataFields(line.substr(2)), "", "", ""};
            while (step.words.size() > 2 && (step.words[step.words.size() - 2] == "<" ||
                                             step.words[step.words.size() - 2] == ">")) {
                (step.words[step.words.size() - 2] == "<" ? step.input : step.output) =
                    step.words.back();
                step.words.resize(step.words.size() - 2);
            }
            cases->back().steps.push_back(step);
            inStep = true;
        } else if (line.rfind("file ", 0) == 0) {
            const std::vector<std::string> words = qzr::test::DataFields(line.substr(5));
            cases->back().files.push_back(
                {words.empty() ? "" : words[0], words.size() == 3 ? words[2] : "", ""});
        } else if ((line == "|" || line.rfind("| ", 0) == 0) && !cases->back().files.empty()) {
            cases->back().files.back().text +=
                Unescaped(line.substr(std::min<size_t>(2, line.size()))) + "\n";
        } else {
            cases->back().steps.push_back(
                {where + ": not transcript syntax: " + line, {}, "", "", ""});
        }
    }
    if (inStep) {
        cases->back().steps.back().expected += "[no exit line]\n";
    }
}

std::vector<Case> ReadTranscripts() {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::directory_iterator(kTranscripts)) {
        if (entry.path().extension() == ".txt") {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Case> cases;
    for (const fs::path& path : paths) {
        ReadTranscript(path, &cases);
    }
    return cases;
}

// The placeholders of a transcript and the folders they stand for, in generic form.
class Places {
  public:
    explicit Places(const TempFolder& folder)
        : m_places{{"{tmp}", fs::path(folder.Folder()).generic_string()},
                   {"{fixture}", std::string(QZR_TEST_DATA_DIR) + "/tool/fixture"},
                   {"{data}", std::string(QZR_TEST_DATA_DIR) + "/tool"},
                   {"{examples}", std::string(QZR_EXAMPLES_DIR) + "/Bank"}} {}

    std::string Expand(std::string text) const {
        for (const auto& [name, folder] : m_places) {
            Replace(&text, name, folder);
        }
        return text;
    }
    // Output with the folders named by their placeholders again.
    std::string Named(std::string text) const {
        for (const auto& [name, folder] : m_places) {
            Replace(&text, folder, name);
        }
        return text;
    }

  private:
    static void Replace(std::string* text, const std::string& from, const std::string& to) {
        for (size_t at = text->find(from); at != std::string::npos;
             at = text->find(from, at + to.size())) {
            text->replace(at, from.size(), to);
        }
    }

    std::vector<std::pair<std::string, std::string>> m_places;
};

// The files and folders below the temporary folder, one a line, folders with a trailing '/'.
int List(const TempFolder& folder, std::ostream& out) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder.Folder())) {
        names.push_back(fs::relative(entry.path(), folder.Folder()).generic_string() +
                        (entry.is_directory() ? "/" : ""));
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        out << name << '\n';
    }
    return 0;
}

int Compare(const std::vector<std::string>& words, std::ostream& out) {
    if (words.size() != 3 || !fs::exists(words[1]) || !fs::exists(words[2]) ||
        ReadBytes(words[1]) != ReadBytes(words[2])) {
        out << "differ\n";
        return 1;
    }
    return 0;
}

// The lines of a file that hold a text; a line end is LF or CR LF.
int Search(const std::vector<std::string>& words, std::ostream& out) {
    std::istringstream text(words.size() == 3 ? ReadBytes(words[2]) : "");
    int code = 1;
    for (std::string line; std::getline(text, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.find(words[1]) != std::string::npos) {
            out << line << '\n';
            code = 0;
        }
    }
    return code;
}

// What the step printed and returned, written as the transcript writes it.
std::string Outcome(const Step& step, const TempFolder& folder, const Places& places) {
    std::vector<std::string> words;
    for (const std::string& word : step.words) {
        words.push_back(places.Expand(word));
    }
    std::istringstream in(step.input.empty() ? "" : ReadBytes(places.Expand(step.input)));
    std::ostringstream out;
    std::ostringstream err;
    int code = -1;
    if (!words.empty() && words[0] == "qzrbank") {
        code = qzrbank::RunCommandLine({words.begin() + 1, words.end()}, in, out, err);
    } else if (words == std::vector<std::string>{"ls"}) {
        code = List(folder, out);
    } else if (!words.empty() && words[0] == "cmp") {
        code = Compare(words, out);
    } else if (!words.empty() && words[0] == "grep") {
        code = Search(words, out);
    } else {
        err << "unknown command\n";
    }
    std::string block = places.Named(out.str());
    if (!step.output.empty()) {
        std::ofstream(places.Expand(step.output), std::ios::binary) << out.str();
        block.clear();
    }
    std::istringstream errors(places.Named(err.str()));
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
    const Places places(folder);
    for (const File& file : session.files) {
        folder.Write(file.name,
                     file.source.empty() ? file.text : ReadBytes(places.Expand(file.source)));
    }
    ASSERT_FALSE(session.steps.empty()) << "a case without a command";
    for (const Step& step : session.steps) {
        EXPECT_EQ(Outcome(step, folder, places), step.expected) << step.line;
    }
}

INSTANTIATE_TEST_SUITE_P(Sessions, Transcript, testing::ValuesIn(ReadTranscripts()),
                         [](const testing::TestParamInfo<Case>& info) { return info.param.name; });

}  // namespace
