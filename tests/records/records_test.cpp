// The machine records: defaults, copies, texts, the display name, the name rule and which
// fields each identity comparison looks at.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "records/NameRule.h"
#include "records/RecordFields.h"

namespace qzr::records::testing {
namespace {

template <class R>
class Records : public ::testing::Test {};
using RecordTypes = ::testing::Types<CQZRIM, CQZRRTM>;
TYPED_TEST_SUITE(Records, RecordTypes);

// Every field starts at its default; each getter shows what its own setter stored, through a
// copy, an assignment over other values and a self-assignment; the copies keep their values
// when the source changes.
TYPED_TEST(Records, DefaultsAndCopies) {
    EXPECT_EQ(CQZRMoldingMachine().GetMachineType(), -1);
    EXPECT_EQ(TypeParam().GetMachineType(), (std::is_same_v<TypeParam, CQZRRTM> ? 1 : 0));
    TypeParam source = Filled<TypeParam>(1);
    const TypeParam constructed(source);
    TypeParam assigned = Filled<TypeParam>(2);
    assigned = source;
    TypeParam& alias = assigned;
    assigned = alias;
    source = Filled<TypeParam>(3);
    const auto fields = Fields<TypeParam>();
    for (size_t row = 0; row < fields.size(); ++row) {
        TypeParam alone;
        EXPECT_EQ(fields[row].show(alone), fields[row].defaultValue) << fields[row].name;
        fields[row].set(alone, Value(Number(row, 1)));
        EXPECT_EQ(fields[row].show(constructed), fields[row].show(alone)) << fields[row].name;
        EXPECT_EQ(fields[row].show(assigned), fields[row].show(alone)) << fields[row].name;
    }
}

// Text setters copy the caller's bytes, take null as the empty text, and accept the record's own
// text, even a tail of it that overlaps what it replaces.
TYPED_TEST(Records, TextsAreCopiesAndTakeNull) {
    for (const auto& field : Fields<TypeParam>()) {
        if (field.type == FieldType::kText) {
            TypeParam record;
            std::string text = "Tidewater\t\xE9\xFF";
            field.set(record, Value(text.c_str()));
            text[0] = 'X';
            EXPECT_EQ(field.show(record), "Tidewater\t\xE9\xFF") << field.name;
            field.set(record, Value(nullptr));
            EXPECT_EQ(field.show(record), "") << field.name;
        }
    }
    TypeParam record;
    record.SetMaker("Tidewater Presses 4410");
    record.SetMaker(record.GetMaker());
    record.SetMaker(record.GetMaker() + 10);
    EXPECT_STREQ(record.GetMaker(), "Presses 4410");
}

// The rows of tests/data/records/names.txt: the name rule on pairs of texts, and display names
// into a 64-byte buffer of '#', of which `size` bytes are offered: the whole name or an empty
// text (never a cut name), NULs up to the size, nothing written beyond it.
TEST(Records, NameRuleAndDisplayNames) {
    const std::vector<qzr::test::DataRow> rows = qzr::test::ReadDataRows("records/names.txt");
    ASSERT_FALSE(rows.empty());
    for (const qzr::test::DataRow& row : rows) {
        const std::string& a = row.fields[1];
        const std::string& b = row.fields[2];
        if (row.fields[0] != "name") {  // equal or differ, first, second
            EXPECT_EQ(NamesEqual(a.c_str(), b.c_str()), row.fields[0] == "equal") << row.where;
            EXPECT_EQ(NamesEqual(b.c_str(), a.c_str()), row.fields[0] == "equal") << row.where;
            continue;
        }
        CQZRRTM record;  // name, maker, grade, size, name
        record.SetMaker(a.c_str());
        record.SetGrade(b.c_str());
        char buffer[64];
        std::memset(buffer, '#', sizeof buffer);
        const int size = std::stoi(row.fields[3]);
        EXPECT_TRUE(record.GetName(buffer, size));
        std::string expected = row.fields[4];
        expected.resize(static_cast<size_t>(std::max(size, 0)), '\0');
        expected.resize(sizeof buffer, '#');
        EXPECT_EQ(std::string(buffer, sizeof buffer), expected) << row.where;
    }
    EXPECT_FALSE(NamesEqual(nullptr, nullptr));
    EXPECT_FALSE(CQZRIM().GetName(nullptr, 10));
}

template <class R>
class Identity : public ::testing::Test {};
using ComparableTypes = ::testing::Types<CQZRIM, CQZRRTM>;
TYPED_TEST_SUITE(Identity, ComparableTypes);

// Checks, both ways round, that exactly the comparisons named in `differing` ('f' full, 's'
// simple, 'n' name) answer false.
template <class R>
void ExpectDifferIn(const R& a, const R& b, const char* differing, const std::string& label) {
    for (const auto& [x, y] : {std::pair(&a, &b), std::pair(&b, &a)}) {
        EXPECT_EQ(!x->IsMachineIdentity(*y), std::strchr(differing, 'f') != nullptr)
            << label << ": IsMachineIdentity";
        EXPECT_EQ(!x->IsSimpleMachineIdentity(*y), std::strchr(differing, 's') != nullptr)
            << label << ": IsSimpleMachineIdentity";
        EXPECT_EQ(!x->IsNameIdentity(*y), std::strchr(differing, 'n') != nullptr)
            << label << ": IsNameIdentity";
    }
}

// A difference in one field alone turns exactly the comparisons of its row false; numbers
// compare exactly: a NaN matches nothing, not even itself, and +0 matches -0.
TYPED_TEST(Identity, WhichAttributesEachComparisonLooksAt) {
    const TypeParam base = Filled<TypeParam>(1);
    ExpectDifferIn(base, TypeParam(base), "", "a copy");
    const auto fields = Fields<TypeParam>();
    for (size_t row = 0; row < fields.size(); ++row) {
        const auto& field = fields[row];
        TypeParam changed(base);
        field.set(changed, Value(Number(row, 2)));
        ExpectDifferIn(base, changed, field.compared.c_str(), field.name);
        if (field.type == FieldType::kReal) {
            field.set(changed, Value(std::numeric_limits<double>::quiet_NaN()));
            ExpectDifferIn(changed, changed, field.compared.c_str(), "NaN " + field.name);
            TypeParam minus(base);
            field.set(changed, Value(0.0));
            field.set(minus, Value(-0.0));
            ExpectDifferIn(changed, minus, "", "+0/-0 " + field.name);
        }
    }
}

// Every text follows the name rule: case is ignored, a blank counts. The kind is not compared.
TYPED_TEST(Identity, TextsIgnoreCaseOnly) {
    TypeParam lower;
    TypeParam upper;
    TypeParam blank;
    for (const auto& field : Fields<TypeParam>()) {
        if (field.type == FieldType::kText) {
            field.set(lower, Value("kestrel 560x560"));
            field.set(upper, Value("KESTREL 560X560"));
            field.set(blank, Value("kestrel 560x560 "));
        }
    }
    ExpectDifferIn(lower, upper, "", "case of every text");
    ExpectDifferIn(lower, blank, "fsn", "a trailing blank in every text");
    static_cast<CQZRMoldingMachine&>(upper) = CQZRRTM();
    static_cast<CQZRMoldingMachine&>(lower) = CQZRIM();
    EXPECT_EQ(upper.GetMachineType(), 1) << "the kind travels with the base part";
    ExpectDifferIn(lower, upper, "", "kind 1 against kind 0");
}

// Texts are read through the records' virtual getters, as hosts that override them rely on.
TEST(Identity, TextsReadThroughVirtualGetters) {
    struct OtherRemark : CQZRIM {
        const char* GetRemark() const override { return "other"; }
    };
    EXPECT_FALSE(CQZRIM().IsMachineIdentity(OtherRemark()));
    EXPECT_FALSE(OtherRemark().IsMachineIdentity(CQZRIM()));
    EXPECT_TRUE(CQZRIM().IsSimpleMachineIdentity(OtherRemark()));
}

}  // namespace
}  // namespace qzr::records::testing
