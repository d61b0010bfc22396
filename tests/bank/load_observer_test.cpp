// The load observer hears what each loader did, line by line, and a watched load gives the same
// catalogue as one nobody watches.
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include "BankBuilders.h"
#include "TempFolder.h"
#include "bank/LoadObserver.h"

namespace {

using qzr::bank::LegacyLine;
using qzr::test::Lines;
using qzr::test::TempFolder;

// Every event as one short line, paths left out.
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
    std::string events;

  private:
    void Add(const std::string& line) { events += line + "\n"; }
};

using Load = std::function<bool(CQZRMoldingMachineIO&, const char*, CQZRMoldingMachineCtrl*)>;

struct Row {
    const char* name;
    const char* file;
    std::string text;
    Load load;
    const char* events;
};

const std::string kLongRemark(600, 'r');

const Row kRows[] = {
    {"legacy system bank: marker, version, rows, a short row, the declared count", "s.bnk",
     Lines({"[Header],,,,,,,,,", "Version,7007,,", "TotalNo,3,,", "[Database],,",
            "1,Ardmoor,AM-1,,40,61.6,210,86.2,28,110,0,11.8", "2,Ardmoor,AM-2,,1,2",
            "3,Ardmoor,AM-3,,75,134.3,205,142.5,36,145,0,11.8", "[EOF]"}),
     [](auto& io, auto path, auto c) { return io.LoadOldIMMSystemDatabase(path, c); },
     "header kind 0 v7007 accepted\n2: version v7007\n4: marker v7007\n5: row v7007\n"
     "6: too few fields v7007\n7: row v7007\n8: end v7007\nread 2 of 3\n"},
    {"legacy user bank: rows with another ID are passed over, TotalNo ends the load", "u.bnk",
     Lines({"[Header]", "Version,7007", "[Database]",
            "1,Ardmoor,AM-1,,1,2,3,4,5,6,0.1,0.2,3,2500,0,1,1,1,2,3,4,5,6",
            "2,Ardmoor,AM-2,,1,2,3,4,5,6,0.1,0.2,3,2500,0,1,1,1,2,3,4,5,6", "TotalNo,2"}),
     [](auto& io, auto path, auto c) { return io.LoadOldIMMUserDatabase(path, c); },
     "header kind 1 v7007 accepted\n2: version v7007\n3: marker v7007\n4: row v7007\n"
     "5: id not 1 v7007\n6: TotalNo v7007\nread 1\n"},
    {"sectioned user bank: a key from the next section, a long line, the stop", "User-RTMIC.bnk",
     Lines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = 1", "[General]",
            "TotalMachine = 3", "[Machine-1]", "Maker = Ardmoor", "Grade = T-1",
            "Remark = " + kLongRemark, "[Machine-2]", "Maker = Ardmoor", "Grade = T-2",
            "ClampingForce = 90", "[EOF]"}),
     [](auto& io, auto path, auto c) { return io.LoadRTMUserDatabase(path, c); },
     "header kind 5 v9000 accepted\n10: cut at 511\nsection 1 at 7 loaded\n"
     "section 1 takes ClampingForce from 14\nsection 2 at 11 loaded\nsection 3 at 0 stops\n"
     "read 2 of 3\n"},
    {"a bank of the other kind is refused at its header", "User-IMM.bnk",
     Lines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = 1"}),
     [](auto& io, auto path, auto c) { return io.LoadIMMUserDatabase(path, c); },
     "header kind 5 v9000 refused\n"},
};

TEST(LoadObserver, EachLoaderTellsWhatItDidLineByLine) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        TempFolder folder;
        const std::string path = folder.Write(row.file, row.text);
        CQZRMoldingMachineIO watchedIo;
        CQZRMoldingMachineCtrl watched;
        Recorder recorder;
        {
            qzr::bank::ScopedLoadObserver observe(&recorder);
            row.load(watchedIo, path.c_str(), &watched);
        }
        EXPECT_EQ(recorder.events, row.events);

        CQZRMoldingMachineIO plainIo;
        CQZRMoldingMachineCtrl plain;
        row.load(plainIo, path.c_str(), &plain);
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

// Values that do not convert, in reading order: a section's keys as a section is read (a
// transfer press reads ClampingForce right after PlungerSpeed), a row's columns left to right.
TEST(LoadObserver, EveryValueThatDoesNotConvertIsToldWithItsLineAndField) {
    struct NotConverted : qzr::bank::LoadObserver {
        void OnFieldNotConverted(const qzr::bank::FieldNotConverted& e) override {
            events += std::to_string(e.line) + ": [" + std::to_string(e.number) + "] " +
                      std::string(e.field) + " '" + std::string(e.value) + "'\n";
        }
        std::string events;
    };
    const Row rows[] = {
        {"sectioned: an empty integer, a key taken from the next section; \"7x\" reads 7",
         "User-IMM.bnk",
         Lines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = 0", "[Machine-1]",
                "Maker = Ardmoor", "Grade = I-1", "ScrewDiameter = abc",
                "TemperatureControlZones = ", "ShotWeight = 12.5", "[Machine-2]", "Maker = Ardmoor",
                "Grade = I-2", "EjectorPoint = 7x", "ClampingForce = -"}),
         [](auto& io, auto path, auto c) { return io.LoadIMMUserDatabase(path, c); },
         "8: [1] ScrewDiameter 'abc'\n9: [1] TemperatureControlZones ''\n"
         "15: [1] ClampingForce '-'\n15: [2] ClampingForce '-'\n"},
        {"sectioned transfer press", "User-RTMIC.bnk",
         Lines({"[FileHeader]", "Version = 9000", "Format = 1", "Type = 1", "[Machine-1]",
                "Maker = Ardmoor", "Grade = T-1", "TransferPressure = n/a", "ClampingForce = ?",
                "PlungerSpeed = fast"}),
         [](auto& io, auto path, auto c) { return io.LoadRTMUserDatabase(path, c); },
         "10: [1] PlungerSpeed 'fast'\n9: [1] ClampingForce '?'\n"
         "8: [1] TransferPressure 'n/a'\n"},
        {"legacy user bank: record and nozzle columns", "u.bnk",
         Lines({"[Header]", "Version,7007", "[Database]",
                "1,Ardmoor,AM-1,,x,2,3,4,5,6,0.1,0.2,3,2500,e,1,1,1,2,3,4,5,q"}),
         [](auto& io, auto path, auto c) { return io.LoadOldIMMUserDatabase(path, c); },
         "4: [0] ClampForce 'x'\n4: [0] MachineType 'e'\n"
         "4: [0] NozzleSpecification.Value6 'q'\n"},
        {"legacy system bank: a blank field", "s.bnk",
         Lines({"[Header],,,,,,,,,", "Version,7007,,", "TotalNo,1,,", "[Database],,",
                "1,Ardmoor,AM-1,,40, ,210,86.2,28,110,0,--1"}),
         [](auto& io, auto path, auto c) { return io.LoadOldIMMSystemDatabase(path, c); },
         "5: [0] ShotWeight ' '\n5: [0] HydralicPressureTransferFactor '--1'\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TempFolder folder;
        const std::string path = folder.Write(row.file, row.text);
        NotConverted recorder;
        qzr::bank::ScopedLoadObserver observe(&recorder);
        CQZRMoldingMachineIO io;
        CQZRMoldingMachineCtrl catalogue;
        row.load(io, path.c_str(), &catalogue);
        EXPECT_EQ(recorder.events, row.events);
    }
}

TEST(LoadObserver, AFolderLoadNamesEveryFileItLooksAt) {
    TempFolder folder;
    const std::string header = Lines({"[FileHeader]", "Version = 9000", "Format = 0", "Type = 0"});
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
