// The load observer hears what each loader did, line by line, and a watched load gives the same
// catalogue as one nobody watches.
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include "BankBuilders.h"
#include "DataRows.h"
#include "DefaultBanks.h"
#include "TempFolder.h"
#include "bank/LoadObserver.h"

namespace {

using qzr::test::Lines;
using qzr::test::TempFolder;

// Every event as one short line, paths left out; values that do not convert apart.
class Recorder : public qzr::bank::LoadObserver {
  public:
    void OnHeader(const qzr::bank::HeaderSeen& e) override {
        Add("header kind " + std::to_string(e.bankKind) + " v" + std::to_string(e.version) +
            (e.accepted ? " accepted" : " refused"));
    }
    void OnLegacyLine(const qzr::bank::LegacyLineSeen& e) override {
        static const char* const kNames[] = {"row",    "too few fields", "id not 1", "not added",
                                             "marker", "version",        "TotalNo",  "end"};
        Add(std::to_string(e.line) + ": " + kNames[static_cast<int>(e.what)] + " v" +
            std::to_string(e.fileVersion));
    }
    void OnSection(const qzr::bank::SectionSeen& e) override {
        Add("section " + std::to_string(e.number) + " at " + std::to_string(e.line) +
            (e.loaded ? " loaded" : " stops"));
    }
    void OnKeyFromLaterSection(const qzr::bank::KeyFromLaterSection& e) override {
        Add("section " + std::to_string(e.number) + " takes " + std::string(e.key) + " from " +
            std::to_string(e.line));
    }
    void OnLineCut(const qzr::bank::LineCut& e) override {
        Add(std::to_string(e.line) + ": cut at " + std::to_string(e.limit));
    }
    void OnMachineCount(const qzr::bank::MachineCount& e) override {
        Add("read " + std::to_string(e.read) +
            (e.hasDeclared ? " of " + std::to_string(e.declared) : std::string()));
    }
    void OnFieldNotConverted(const qzr::bank::FieldNotConverted& e) override {
        values += std::to_string(e.line) + ": [" + std::to_string(e.number) + "] " +
                  std::string(e.field) + " '" + std::string(e.value) + "'\n";
    }
    std::string events;
    std::string values;  // that do not convert

  private:
    void Add(const std::string& line) { events += line + "\n"; }
};

// The rows of tests/data/observer.txt; a watched load gives the same catalogue as one nobody
// watches.
TEST(LoadObserver, EachLoaderTellsWhatItDidLineByLine) {
    const std::vector<qzr::test::DataRow> rows = qzr::test::ReadDataRows("observer.txt");
    ASSERT_FALSE(rows.empty());
    for (const qzr::test::DataRow& row : rows) {  // shown, bank, events, text
        SCOPED_TRACE(row.where);
        const auto bank =
            std::find_if(std::begin(qzr::test::kDefaultBanks), std::end(qzr::test::kDefaultBanks),
                         [&](const qzr::test::DefaultBank& b) { return row.fields[1] == b.name; });
        ASSERT_NE(bank, std::end(qzr::test::kDefaultBanks));
        TempFolder folder;
        const std::string path = folder.Write(row.fields[1], row.fields[3]);
        CQZRMoldingMachineIO io;
        CQZRMoldingMachineCtrl watched;
        Recorder recorder;
        {
            qzr::bank::ScopedLoadObserver observe(&recorder);
            bank->load(io, path, &watched);
        }
        EXPECT_EQ(row.fields[0] == "steps" ? recorder.events : recorder.values, row.fields[2]);

        CQZRMoldingMachineIO plainIo;
        CQZRMoldingMachineCtrl plain;
        bank->load(plainIo, path, &plain);
        ASSERT_EQ(plain.GetTotalMachine(), watched.GetTotalMachine());
        for (int i = 0; i < plain.GetTotalMachine(); ++i) {
            CQZRRTM a, b;
            CQZRIM c, d;
            EXPECT_EQ(plain.GetCurrentMachine(i, a), watched.GetCurrentMachine(i, b));
            EXPECT_EQ(plain.GetCurrentMachine(i, c), watched.GetCurrentMachine(i, d));
            EXPECT_TRUE(a.IsMachineIdentity(b) && c.IsMachineIdentity(d)) << "machine " << i;
        }
    }
}

TEST(LoadObserver, AFolderLoadNamesEveryFileItLooksAt) {
    TempFolder folder;
    const std::string header = qzr::test::SectionedHead(9000, 0, 0);
    folder.Write("Machine/IMM/A.bnk",
                 header + Lines({"[Machine-1]", "Maker = Ardmoor", "Grade = A"}));
    folder.Write("Machine/IMM/B.bnk", Lines({"[Header]", "Version,7007"}));
    struct PathRecorder : qzr::bank::LoadObserver {
        void OnHeader(const qzr::bank::HeaderSeen& e) override {
            files += std::string(e.path.substr(e.path.size() - 5)) + (e.accepted ? "+ " : "- ");
        }
        std::string files;
    } recorder;
    qzr::bank::ScopedLoadObserver observe(&recorder);
    CQZRMoldingMachineIO io;
    CQZRMoldingMachineCtrl catalogue;
    EXPECT_TRUE(io.LoadIMMSystemDatabase(folder.File("Machine/IMM/*.bnk").c_str(), &catalogue));
    EXPECT_EQ(recorder.files, "A.bnk+ B.bnk- ");
    EXPECT_EQ(catalogue.GetTotalMachine(), 1);
}

}  // namespace
