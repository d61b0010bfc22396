// One catalogue, one sequence of bytes: the three writers save a catalogue full of hard numbers
// (signed zeros, denormals, the largest doubles, inf, nan, 32-bit extremes) to the files pinned
// under tests/data/pinned, on every platform, and the sectioned ones load and save again to the
// same bytes; banks whose numbers are spelt every way a reader meets them load to the same values
// everywhere, shown by saving them again.
//
// QZR_UPDATE_PINNED=1 rewrites the pinned files from this build (after a deliberate change of
// the bytes; review the difference before committing it).
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QZRMachine/QZRMachine.h>

#include "BankBuilders.h"
#include "DefaultBanks.h"
#include "FixedClock.h"
#include "TempFolder.h"
#include "records/RecordFields.h"

namespace {

using qzr::records::FieldType;
using qzr::records::testing::Field;
using qzr::records::testing::Fields;
using qzr::records::testing::Value;
using qzr::test::FixedClock;
using qzr::test::ReadBytes;
using qzr::test::TempFolder;

const std::string kPinned = std::string(QZR_TEST_DATA_DIR) + "/pinned/";

// The pinned file's bytes, or, with QZR_UPDATE_PINNED=1, the given bytes written in its place.
std::string Pinned(const std::string& name, const std::string& written) {
    const char* update = std::getenv("QZR_UPDATE_PINNED");
    if (update != nullptr && std::string(update) == "1") {
        std::ofstream(kPinned + name, std::ios::binary) << written;
    }
    return ReadBytes(kPinned + name);
}

const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const std::vector<double> kReals = {
    0.0,     -0.0,       1.5,    -2.675,    99.995, 1e-7, 5e-324, 2.2250738585072014e-308,
    DBL_MAX, -DBL_MAX,   1e300,  kInf,      -kInf,  kNaN, -kNaN,  123456789.125,
    0.005,   1e15 + 0.3, 8.5e-5, -1234.5678};
const std::vector<int> kIntegers = {0, -1, 7, INT_MAX, INT_MIN, 65536};

// Every field of each machine a value of its own type from the hard lists, shifted by one
// from machine to machine so that each value passes through every field.
template <class R>
R HardMachine(int machine) {
    R record;
    const std::vector<Field<R>> fields = Fields<R>();
    for (size_t row = 0; row < fields.size(); ++row) {
        const std::string name = fields[row].name;
        if (name == "MakerID" || name == "MachineID" || name == "GradeID") {
            continue;  // the catalogue issues these
        }
        const size_t shift = row + static_cast<size_t>(machine);
        const std::string text = name + " " + std::to_string(machine);
        fields[row].set(record, fields[row].type == FieldType::kText ? Value(text.c_str())
                                : fields[row].type == FieldType::kInteger
                                    ? Value(kIntegers[shift % kIntegers.size()])
                                    : Value(kReals[shift % kReals.size()]));
    }
    record.SetMaker(machine % 3 == 0 ? "Pellwick" : "Ostrander Presswerk");
    record.SetGrade(("PX-" + std::to_string(machine)).c_str());
    return record;
}

constexpr char kCreateBy[] = "bank tests";  // not read back from a bank

CQZRMoldingMachineCtrl HardCatalogue(int version, int type) {
    CQZRMoldingMachineCtrl catalogue = qzr::test::AttributedCatalogue(version, 1, type);
    catalogue.SetDatabaseInitialize(true);
    catalogue.SetFileName("Pinned numbers");
    catalogue.SetFileCreateBy(kCreateBy);
    const int machines = static_cast<int>(kReals.size());
    for (int machine = 0; machine < machines; ++machine) {
        if (type == 1) {
            CQZRRTM record = HardMachine<CQZRRTM>(machine);
            catalogue.AddMachine(record);
        } else {
            CQZRIM record = HardMachine<CQZRIM>(machine);
            catalogue.AddMachine(record);
        }
    }
    return catalogue;
}

struct Format {
    const qzr::test::DefaultBank& bank;
    int version;
    int type;
};

const Format kFormats[] = {{qzr::test::kLegacyUserBank, 7007, 0},
                           {qzr::test::kIMMUserBank, 9000, 0},
                           {qzr::test::kRTMUserBank, 9000, 1}};

// The bytes the format's writer gives for the catalogue.
std::string Saved(const Format& format, const CQZRMoldingMachineCtrl& catalogue) {
    FixedClock clock;
    TempFolder folder;
    folder.MakeFolder("Bank");
    CQZRMoldingMachineIO io;
    EXPECT_TRUE(format.bank.save(io, folder.Folder() + "/", &catalogue));
    return folder.Read(std::string("Bank/") + format.bank.name);
}

TEST(PinnedBytes, HardNumbersSaveToTheSameBytesAndBack) {
    for (const Format& format : kFormats) {
        SCOPED_TRACE(format.bank.name);
        const std::string written = Saved(format, HardCatalogue(format.version, format.type));
        const std::string pinned = Pinned(format.bank.name, written);
        ASSERT_FALSE(pinned.empty()) << "no pinned file " << kPinned << format.bank.name;
        EXPECT_TRUE(written == pinned) << "the bytes differ from " << kPinned << format.bank.name;
        if (format.version < 9000) {
            continue;  // these rows pass the 1023 characters a legacy row is read in
        }
        CQZRMoldingMachineIO io;
        CQZRMoldingMachineCtrl loaded;
        ASSERT_TRUE(format.bank.load(io, kPinned + format.bank.name, &loaded));
        loaded.SetFileCreateBy(kCreateBy);
        EXPECT_TRUE(Saved(format, loaded) == pinned) << "loaded and saved again, it differs";
    }
}

// Each "spellings-" bank holds numbers written as other writers and hand edits leave them
// (blanks, signs, capitals, inf and nan words, hexadecimal, three-digit exponents, overflow,
// trailing text); loading it and saving it again gives the pinned "resaved-" bytes.
TEST(PinnedBytes, EverySpellingOfANumberLoadsToTheSameValue) {
    for (const Format& format : kFormats) {
        SCOPED_TRACE(format.bank.name);
        CQZRMoldingMachineIO io;
        CQZRMoldingMachineCtrl catalogue;
        ASSERT_TRUE(format.bank.load(io, kPinned + "spellings-" + format.bank.name, &catalogue));
        ASSERT_GT(catalogue.GetTotalMachine(), 0);
        const std::string resaved = Saved(format, catalogue);
        EXPECT_TRUE(resaved == Pinned(std::string("resaved-") + format.bank.name, resaved))
            << "the loaded values differ from the ones pinned in resaved-" << format.bank.name;
    }
}

}  // namespace
