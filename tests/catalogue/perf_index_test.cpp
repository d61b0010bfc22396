// The catalogue's two indexes (maker names by their folded key, group starts by global machine
// index) against plain walks over the public positions, where the indexes add risks of their
// own: the locale changing between lookups (process-wide and per thread), names with bytes
// above 127 or longer than a short string, two groups whose names only a later locale makes
// equal, and catalogues made by copying.
#include <clocale>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <locale.h>
#endif

#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"
#include "catalogue/QZRMoldingMachineDatabase.h"
#include "records/NameRule.h"

namespace {

using catalogue_test::IM;

// The first maker position whose group name equals the text under the name rule: the walk
// that the name index must agree with, done through the public positions and ids.
int FirstPositionNamed(const CQZRMoldingMachineCtrl& catalogue, const char* maker) {
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        if (qzr::records::NamesEqual(catalogue.GetMaker(catalogue.GetMakerID(position)), maker)) {
            return position;
        }
    }
    return -1;
}

// Machine ids in global index order, gathered group by group.
std::vector<int> IdsByGroups(const CQZRMoldingMachineCtrl& catalogue) {
    std::vector<int> ids;
    for (int position = 0; position < catalogue.GetTotalMaker(); ++position) {
        const int makerId = catalogue.GetMakerID(position);
        for (int k = 0; k < catalogue.GetMachineCount(makerId); ++k) {
            CQZRIM im;
            CQZRRTM rtm;
            const bool got = catalogue.GetCurrentMakerMachine(makerId, k, im) ||
                             catalogue.GetCurrentMakerMachine(makerId, k, rtm);
            ids.push_back(!got                     ? -1
                          : im.GetMachineID() != 0 ? im.GetMachineID()
                                                   : rtm.GetMachineID());
        }
    }
    return ids;
}

// Machine ids in global index order, by GetCurrentMachine, visited in the given order.
std::vector<int> IdsByIndex(const CQZRMoldingMachineCtrl& catalogue, bool backwards) {
    const int total = catalogue.GetTotalMachine();
    std::vector<int> ids(static_cast<size_t>(total), -1);
    for (int step = 0; step < total; ++step) {
        const int index = backwards ? total - 1 - step : step;
        CQZRIM im;
        CQZRRTM rtm;
        if (catalogue.GetCurrentMachine(index, im)) {
            ids[static_cast<size_t>(index)] = im.GetMachineID();
        } else if (catalogue.GetCurrentMachine(index, rtm)) {
            ids[static_cast<size_t>(index)] = rtm.GetMachineID();
        }
    }
    CQZRIM outside;
    EXPECT_FALSE(catalogue.GetCurrentMachine(total, outside));
    return ids;
}

void ExpectNameLookupsAgree(const CQZRMoldingMachineCtrl& catalogue,
                            const std::vector<std::string>& makers, const std::string& label) {
    for (const std::string& maker : makers) {
        const int position = FirstPositionNamed(catalogue, maker.c_str());
        const int makerId = position < 0 ? 0 : catalogue.GetMakerID(position);
        EXPECT_EQ(catalogue.GetMachineCount(maker.c_str()),
                  position < 0 ? 0 : catalogue.GetMachineCount(makerId))
            << label << " maker " << maker;
        CQZRIM byName;
        CQZRIM byId;
        const bool gotByName = catalogue.GetCurrentMakerMachine(maker.c_str(), 0, byName);
        EXPECT_EQ(gotByName, position >= 0 && catalogue.GetCurrentMakerMachine(makerId, 0, byId))
            << label << " maker " << maker;
        if (gotByName) {
            EXPECT_EQ(byName.GetMachineID(), byId.GetMachineID()) << label << " maker " << maker;
        }
    }
}

bool SetCType(const char* name) {
    return std::setlocale(LC_CTYPE, name) != nullptr;
}

// Makers that fold differently by locale: Latin-1 capitals (folded in de_DE.ISO-8859-1 only),
// Shift-JIS double-byte characters whose trail byte is a capital (folded in "C" only), and names
// too long for a short string.
const std::vector<std::string> kLocaleMakers = {"\xC5kerlund",
                                                "\xE5kerlund",
                                                "\xC5KERLUND",
                                                "X\x82"
                                                "A",
                                                "x\x82"
                                                "a",
                                                "X\x82"
                                                "a",
                                                "Plain",
                                                "PLAIN",
                                                "Nordtek Plastics Machinery",
                                                "NORDTEK PLASTICS MACHINERY"};

struct LocaleStep {
    const char* locale;  // the LC_CTYPE the step's adds and lookups run in
    int adds;
};

TEST(CatalogueIndexes, NameLookupsFollowEveryChangeOfLocale) {
    const std::string previous = std::setlocale(LC_CTYPE, nullptr);
    if (!SetCType("de_DE.ISO-8859-1") || !SetCType("ja_JP.SJIS")) {
        SetCType(previous.c_str());
        GTEST_SKIP() << "needs the locales de_DE.ISO-8859-1 and ja_JP.SJIS";
    }
    const LocaleStep kSteps[] = {{"ja_JP.SJIS", 6}, {"C", 4},          {"de_DE.ISO-8859-1", 6},
                                 {"C.UTF-8", 3},    {"ja_JP.SJIS", 2}, {"C", 0}};
    std::mt19937 random(7);
    CQZRMoldingMachineCtrl catalogue;
    for (const LocaleStep& step : kSteps) {
        ASSERT_TRUE(SetCType(step.locale)) << step.locale;
        ExpectNameLookupsAgree(catalogue, kLocaleMakers,
                               std::string("before adds in ") + step.locale);
        for (int add = 0; add < step.adds; ++add) {
            const std::string& maker = kLocaleMakers[random() % kLocaleMakers.size()];
            CQZRIM machine = IM(maker.c_str(), "G-1");
            catalogue.AddMachine(machine);
            // The machine joins the first group of its name, or a new group at the end.
            const int position = FirstPositionNamed(catalogue, maker.c_str());
            EXPECT_EQ(machine.GetMakerID(), catalogue.GetMakerID(position)) << step.locale;
        }
        ExpectNameLookupsAgree(catalogue, kLocaleMakers,
                               std::string("after adds in ") + step.locale);
        // Removing by name takes the first group of that name, as the plain walk finds it.
        CQZRMoldingMachineCtrl copy(catalogue);
        const std::string& removed = kLocaleMakers[random() % kLocaleMakers.size()];
        const int position = FirstPositionNamed(copy, removed.c_str());
        const int removedId = position < 0 ? -1 : copy.GetMakerID(position);
        EXPECT_EQ(copy.RemoveMaker(removed.c_str()), position >= 0) << step.locale;
        EXPECT_EQ(copy.GetMaker(removedId), nullptr) << step.locale;
        ExpectNameLookupsAgree(copy, kLocaleMakers, std::string("after removal in ") + step.locale);
    }
    SetCType(previous.c_str());
}

#if !defined(_WIN32)
TEST(CatalogueIndexes, ThreadLocaleOfItsOwnIsFollowed) {
    const locale_t latin1 = newlocale(LC_CTYPE_MASK, "de_DE.ISO-8859-1", static_cast<locale_t>(0));
    if (latin1 == static_cast<locale_t>(0)) {
        GTEST_SKIP() << "needs the locale de_DE.ISO-8859-1";
    }
    const std::string previous = std::setlocale(LC_CTYPE, nullptr);
    SetCType("C");
    CQZRMoldingMachineCtrl catalogue;
    catalogue_test::Add(catalogue, IM("\xC5kerlund", "A-1"));
    EXPECT_EQ(catalogue.GetMachineCount("\xE5kerlund"), 0);  // not the same name in "C"
    const locale_t before = uselocale(latin1);
    EXPECT_EQ(catalogue.GetMachineCount("\xE5kerlund"), 1);
    catalogue_test::Add(catalogue, IM("\xE5KERLUND", "A-2"));
    EXPECT_EQ(catalogue.GetTotalMaker(), 1);
    uselocale(before);
    EXPECT_EQ(catalogue.GetMachineCount("\xE5kerlund"), 0);
    EXPECT_EQ(catalogue.GetMachineCount("\xC5kerlund"), 2);
    freelocale(latin1);
    SetCType(previous.c_str());
}
#endif

// Every kind of change between walks by global index; the walks go forwards, backwards and
// after each change, in the original and in copies made by construction and by assignment.
TEST(CatalogueIndexes, GlobalIndexFollowsEveryChange) {
    const char* const makers[] = {"A", "B", "C", "D"};
    std::mt19937 random(11);
    CQZRMoldingMachineCtrl catalogue;
    CQZRMoldingMachineCtrl assigned;
    for (int step = 0; step < 400; ++step) {
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
            ASSERT_EQ(IdsByIndex(assigned, false), IdsByGroups(catalogue)) << label;
            catalogue_test::Add(assigned, IM("Z", "only in the copy"));
            ASSERT_EQ(IdsByIndex(assigned, true), IdsByGroups(assigned)) << label;
        }
        ASSERT_EQ(IdsByIndex(catalogue, step % 2 == 1), IdsByGroups(catalogue)) << label;
        const CQZRMoldingMachineCtrl copy(catalogue);
        ASSERT_EQ(IdsByIndex(copy, false), IdsByGroups(catalogue)) << label;
    }
}

// The loaders hand their records over with AdoptMachine instead of AddMachine: the same ids,
// groups, kinds and results, over adds of both kinds, new and known makers, and a group of the
// other kind. (The id counters are shared, so each catalogue is built on its own.)
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
                bool result = false;
                if (add.transfer) {
                    result = adopt ? store.AdoptMachine(std::make_unique<CQZRRTM>(rtm))
                                   : catalogue.AddMachine(rtm);
                } else {
                    result = adopt ? store.AdoptMachine(std::make_unique<CQZRIM>(im))
                                   : catalogue.AddMachine(im);
                }
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
