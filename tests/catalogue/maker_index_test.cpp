// The maker-name index against a plain walk over the public positions, where the index adds
// risks of its own: the locale changing between lookups, names with bytes above 127 or longer
// than a short string, groups whose names only a later locale makes equal, and copies.
#include <clocale>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"
#include "platform/ScopedLocale.h"
#include "records/NameRule.h"

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

}  // namespace
