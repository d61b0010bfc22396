// The catalogue's two indexes (maker names by their folded key, group starts by global machine
// index) against plain walks over the public positions, where the indexes add risks of their
// own: the locale changing between lookups, names with bytes above 127 or longer than a short
// string, groups whose names only a later locale makes equal, and catalogues made by copying.
#include <clocale>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "catalogue/QZRMoldingMachineDatabase.h"
#include "platform/ScopedLocale.h"
#include "records/NameRule.h"

using qzr::catalogue::CQZRMoldingMachineCtrlAccess;
using qzr::catalogue::CQZRMoldingMachineDatabase;

namespace {

using catalogue_test::IM;

// The first maker position whose name equals the text under the name rule: the walk the name
// index must agree with.
int FirstPositionNamed(const CQZRMoldingMachineCtrl& catalogue, const std::string& maker) {
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        if (qzr::records::NamesEqual(catalogue.GetMaker(catalogue.GetMakerID(position)),
                                     maker.c_str())) {
            return position;
        }
    }
    return -1;
}

// Makers that fold differently by locale: Latin-1 capitals (folded in de_DE.ISO-8859-1 only),
// Shift-JIS characters whose trail byte is a capital (folded in "C" only), and long names.
// clang-format off
const std::vector<std::string> kLocaleMakers = {"\xC5kerlund", "\xE5kerlund", "X\x82\x41", "x\x82\x61",
    "Plain", "PLAIN", "Nordtek Plastics Machinery", "NORDTEK PLASTICS MACHINERY"};
// clang-format on

void ExpectNameLookupsAgree(const CQZRMoldingMachineCtrl& catalogue, const std::string& label) {
    for (const std::string& maker : kLocaleMakers) {
        const int position = FirstPositionNamed(catalogue, maker);
        EXPECT_EQ(catalogue.GetMachineCount(maker.c_str()),
                  position < 0 ? 0 : catalogue.GetMachineCount(catalogue.GetMakerID(position)))
            << label << " maker " << maker;
    }
}

TEST(CatalogueIndexes, NameLookupsFollowEveryChangeOfLocale) {
    using qzr::test::ScopedLocale;
    for (const std::vector<const char*>* needed :
         {&qzr::test::kLatin1German, &qzr::test::kShiftJisJapanese}) {
        if (!ScopedLocale(*needed, LC_CTYPE).installed()) {
            GTEST_SKIP() << "needs the locale " << (*needed)[0] << " (" << (*needed)[1]
                         << " on Windows)";
        }
    }
    const std::vector<const char*> c = {"C"};
    std::mt19937 random(7);
    CQZRMoldingMachineCtrl catalogue;
    for (const std::vector<const char*>* names :
         {&qzr::test::kShiftJisJapanese, &c, &qzr::test::kLatin1German, &qzr::test::kUtf8,
          &qzr::test::kShiftJisJapanese}) {
        const ScopedLocale locale(*names, LC_CTYPE);
        if (!locale.installed()) {
            std::cout << "no UTF-8 locale in this C library: that step is left out\n";
            continue;
        }
        const std::string& name = locale.name();
        ExpectNameLookupsAgree(catalogue, "before adds in " + name);
        for (int add = 0; add < 4; ++add) {
            const std::string& maker = kLocaleMakers[random() % kLocaleMakers.size()];
            CQZRIM machine = IM(maker.c_str(), "G-1");
            catalogue.AddMachine(machine);
            // The machine joins the first group of its name, or a new group at the end.
            EXPECT_EQ(machine.GetMakerID(),
                      catalogue.GetMakerID(FirstPositionNamed(catalogue, maker)))
                << name;
        }
        ExpectNameLookupsAgree(catalogue, "after adds in " + name);
        // Removing by name takes the first group of that name, as the plain walk finds it.
        CQZRMoldingMachineCtrl copy(catalogue);
        const std::string& removed = kLocaleMakers[random() % kLocaleMakers.size()];
        const int position = FirstPositionNamed(copy, removed);
        const int removedId = position < 0 ? -1 : copy.GetMakerID(position);
        EXPECT_EQ(copy.RemoveMaker(removed.c_str()), position >= 0) << name;
        EXPECT_EQ(copy.GetMaker(removedId), nullptr) << name;
        ExpectNameLookupsAgree(copy, "after removal in " + name);
    }
}

// Machine ids in global index order: by the groups, and by GetCurrentMachine (visited
// backwards when asked, so that a cached position cannot hide a stale index).
std::vector<int> IdsByGroups(const CQZRMoldingMachineCtrl& catalogue) {
    std::vector<int> ids;
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int makerId = catalogue.GetMakerID(position);
        for (int k = 0; k < catalogue.GetMachineCount(makerId); ++k) {
            CQZRIM im;
            ids.push_back(catalogue.GetCurrentMakerMachine(makerId, k, im) ? im.GetMachineID()
                                                                           : -1);
        }
    }
    return ids;
}
std::vector<int> IdsByIndex(const CQZRMoldingMachineCtrl& catalogue, bool backwards) {
    const int total = catalogue.GetTotalMachine();
    std::vector<int> ids(static_cast<size_t>(total), -1);
    for (int step = 0; step < total; ++step) {
        const int index = backwards ? total - 1 - step : step;
        CQZRIM im;
        if (catalogue.GetCurrentMachine(index, im)) {
            ids[static_cast<size_t>(index)] = im.GetMachineID();
        }
    }
    CQZRIM outside;
    EXPECT_FALSE(catalogue.GetCurrentMachine(total, outside));
    return ids;
}

// Every kind of change between walks by global index, in the original and in copies made by
// construction and by assignment.
TEST(CatalogueIndexes, GlobalIndexFollowsEveryChange) {
    const char* const makers[] = {"A", "B", "C", "D"};
    std::mt19937 random(11);
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineCtrl assigned;
    for (int step = 0; step < 150; ++step) {
        const std::string label = "step " + std::to_string(step);
        const unsigned action = random() % 10;
        const char* maker = makers[random() % 4];
        if (action < 5) {
            catalogue_test::Add(catalogue, IM(maker, "G"));
        } else if (action == 5) {
            catalogue.RemoveMachine(static_cast<int>(random() % 40));
        } else if (action == 6) {
            catalogue.RemoveMachine(maker, "g");
        } else if (action == 7 && random() % 4 == 0) {
            catalogue.RemoveMaker(maker);
        } else if (action == 8 && random() % 10 == 0) {
            catalogue.RemoveAllMaker();
            catalogue.SetFileType(0);
        } else if (action == 9) {
            assigned = catalogue;
            catalogue_test::Add(assigned, IM("Z", "only in the copy"));
            ASSERT_EQ(IdsByIndex(assigned, true), IdsByGroups(assigned)) << label;
        }
        ASSERT_EQ(IdsByIndex(catalogue, step % 2 == 1), IdsByGroups(catalogue)) << label;
        ASSERT_EQ(IdsByIndex(CQZRMoldingMachineCtrl(catalogue), false), IdsByGroups(catalogue))
            << label;
    }
}

// The loaders hand their records over with AdoptMachine instead of AddMachine: the same ids,
// groups, kinds and results. (The id counters are shared, so each catalogue is built on its own.)
TEST(CatalogueIndexes, AdoptingARecordIsAddingACopy) {
    const struct {
        const char* maker;
        bool transfer;
    } kAdds[] = {{"Arvado", false}, {"ARVADO", false}, {"Hadrex", true}, {"Veloxa", false},
                 {"hadrex", false}, {"Veloxa", true},  {"arvado", false}};
    for (const int fileType : {0, 1}) {
        std::vector<std::string> steps[2];
        for (const bool adopt : {false, true}) {
            CQZRMoldingMachineCtrl catalogue;
            CQZRMoldingMachineDatabase& store = *CQZRMoldingMachineCtrlAccess::Store(catalogue);
            for (const auto& add : kAdds) {
                catalogue.SetFileType(fileType);
                CQZRIM im = IM(add.maker, "I-1");
                CQZRRTM rtm = catalogue_test::RTM(add.maker, "R-1");
                const bool result =
                    !adopt ? (add.transfer ? catalogue.AddMachine(rtm) : catalogue.AddMachine(im))
                    : add.transfer ? store.AdoptMachine(std::make_unique<CQZRRTM>(rtm))
                                   : store.AdoptMachine(std::make_unique<CQZRIM>(im));
                steps[adopt].push_back(std::to_string(result) + " " +
                                       catalogue_test::Picture(catalogue));
            }
        }
        EXPECT_EQ(steps[1], steps[0]) << "file type " << fileType;
    }
    CQZRMoldingMachineCtrl empty;
    EXPECT_FALSE(
        CQZRMoldingMachineCtrlAccess::Store(empty)->AdoptMachine(std::unique_ptr<CQZRIM>()));
}

}  // namespace
