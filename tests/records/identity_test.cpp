// The identity comparisons: which attributes each of them looks at, how numbers and texts are
// compared, and that texts are read through the records' virtual getters in order.
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

#include "records/RecordAttributes.h"

namespace qzr::records::testing {
namespace {

struct Results {
    bool full;
    bool simple;
    bool name;
};

template <class Record>
Results Compare(const Record& a, const Record& b) {
    return {a.IsMachineIdentity(b), a.IsSimpleMachineIdentity(b), a.IsNameIdentity(b)};
}

// Compares both ways round and checks that the answer does not depend on the direction.
template <class Record>
void ExpectResults(const Record& a, const Record& b, Results expected, const std::string& label) {
    const Results forward = Compare(a, b);
    const Results backward = Compare(b, a);
    EXPECT_EQ(forward.full, expected.full) << label << ": IsMachineIdentity";
    EXPECT_EQ(forward.simple, expected.simple) << label << ": IsSimpleMachineIdentity";
    EXPECT_EQ(forward.name, expected.name) << label << ": IsNameIdentity";
    EXPECT_EQ(backward.full, forward.full) << label << ": IsMachineIdentity is not symmetric";
    EXPECT_EQ(backward.simple, forward.simple) << label << ": IsSimpleMachineIdentity ditto";
    EXPECT_EQ(backward.name, forward.name) << label << ": IsNameIdentity ditto";
}

Results Unaffected(Affects affects) {
    return {!affects.full, !affects.simple, !affects.name};
}

template <class Record>
std::vector<Attribute<Record>> TableOf();
template <>
std::vector<Attribute<CQZRIM>> TableOf<CQZRIM>() {
    return InjectionAttributes();
}
template <>
std::vector<Attribute<CQZRRTM>> TableOf<CQZRRTM>() {
    return TransferAttributes();
}

template <class Record>
class IdentityTest : public ::testing::Test {
  protected:
    const std::vector<Attribute<Record>> table_ = TableOf<Record>();

    Record Filled() const {
        Record record;
        FillAll(table_, record, 1);
        return record;
    }
};

using RecordTypes = ::testing::Types<CQZRIM, CQZRRTM>;
TYPED_TEST_SUITE(IdentityTest, RecordTypes);

TYPED_TEST(IdentityTest, DefaultRecordsAreIdentical) {
    const TypeParam a;
    const TypeParam b;
    ExpectResults(a, b, {true, true, true}, "two defaults");
    ExpectResults(a, a, {true, true, true}, "a default with itself");
    const TypeParam filled = this->Filled();
    ExpectResults(filled, TypeParam(filled), {true, true, true}, "a filled record and its copy");
}

// For every attribute: does a difference in it alone change each comparison?
TYPED_TEST(IdentityTest, WhichAttributesEachComparisonLooksAt) {
    const TypeParam base = this->Filled();
    for (size_t row = 0; row < this->table_.size(); ++row) {
        const Attribute<TypeParam>& attribute = this->table_[row];
        TypeParam changed(base);
        SetVariant(attribute, changed, static_cast<int>(row), 2);
        ExpectResults(base, changed, Unaffected(attribute.affects), attribute.name);
    }
}

TYPED_TEST(IdentityTest, NaNNeverEqualsEvenItself) {
    for (const Attribute<TypeParam>& attribute : this->table_) {
        if (attribute.kind != Kind::Real) {
            continue;
        }
        TypeParam record = this->Filled();
        attribute.setReal(record, std::numeric_limits<double>::quiet_NaN());
        const std::string label = std::string("NaN in ") + attribute.name;
        ExpectResults(record, TypeParam(record), Unaffected(attribute.affects), label);
        ExpectResults(record, record, Unaffected(attribute.affects), label + ", same record");
    }
}

TYPED_TEST(IdentityTest, PlusZeroEqualsMinusZero) {
    for (const Attribute<TypeParam>& attribute : this->table_) {
        if (attribute.kind != Kind::Real) {
            continue;
        }
        TypeParam plus = this->Filled();
        attribute.setReal(plus, 0.0);
        TypeParam minus(plus);
        attribute.setReal(minus, -0.0);
        ExpectResults(plus, minus, {true, true, true}, std::string("+0/-0 in ") + attribute.name);
    }
}

TYPED_TEST(IdentityTest, MakerCaseIgnoredButTrailingBlankCounts) {
    TypeParam a = this->Filled();
    a.SetMaker("Kestrel Works");
    a.SetGrade("KX-250e");
    TypeParam b(a);
    b.SetMaker("KESTREL works");
    b.SetGrade("kx-250E");
    ExpectResults(a, b, {true, true, true}, "case of maker and grade");
    b.SetMaker("Kestrel Works ");
    ExpectResults(a, b, {false, false, false}, "trailing blank in the maker");
}

TEST(InjectionIdentity, CaseOfRemarkAndDimensionsIgnored) {
    CQZRIM a;
    a.SetMaker("Harrowgate");
    a.SetRemark("servo drive, refit 2019");
    a.SetDistanceBetweenTieBars("560x560");
    a.SetPlatenSize("820x800");
    a.SetMachineDimension("5200x1400x2100");
    CQZRIM b(a);
    b.SetRemark("SERVO Drive, Refit 2019");
    b.SetDistanceBetweenTieBars("560X560");
    b.SetPlatenSize("820X800");
    b.SetMachineDimension("5200X1400x2100");
    ExpectResults(a, b, {true, true, true}, "case only");
    b.SetPlatenSize("820 x 800");
    ExpectResults(a, b, {false, true, true}, "blanks in a dimension");
}

TEST(InjectionIdentity, NumbersMustBeExactlyEqual) {
    CQZRIM a;
    a.SetClampingForce(100.0);
    CQZRIM b(a);
    b.SetClampingForce(100.0000001);
    ExpectResults(a, b, {false, false, true}, "clamping force 100 against 100.0000001");
}

TEST(InjectionIdentity, KindIsNotCompared) {
    OpenIM odd;
    odd.SetMachineType(5);
    ExpectResults<CQZRIM>(odd, CQZRIM(), {true, true, true}, "kind 5 against kind 0");
}

// A record that logs which virtual text getters the comparisons call.
template <class Base>
class Spy : public Base {
  public:
    using Record = Base;
    explicit Spy(std::vector<std::string>* log) : log_(log) {}
    const char* GetMaker() const override { return Logged("Maker", Base::GetMaker()); }
    const char* GetGrade() const override { return Logged("Grade", Base::GetGrade()); }
    const char* GetRemark() const override { return Logged("Remark", Base::GetRemark()); }

  private:
    const char* Logged(const char* what, const char* text) const {
        log_->push_back(what);
        return text;
    }
    std::vector<std::string>* log_;
};
using SpyIM = Spy<CQZRIM>;
using SpyRTM = Spy<CQZRRTM>;

using Log = std::vector<std::string>;
const Log kMaker = {"Maker", "Maker"};
const Log kMakerGrade = {"Maker", "Maker", "Grade", "Grade"};
const Log kMakerGradeRemark = {"Maker", "Maker", "Grade", "Grade", "Remark", "Remark"};

template <class SpyRecord>
struct SpyCase {
    const char* label;
    void (*change)(SpyRecord&);
    Log full;
    Log simple;
    Log name;
};

template <class SpyRecord>
void RunSpyCases(const std::vector<SpyCase<SpyRecord>>& cases) {
    using Record = typename SpyRecord::Record;
    for (const SpyCase<SpyRecord>& c : cases) {
        Log log;
        SpyRecord a(&log);
        a.SetMaker("Tidewater");
        a.SetGrade("TW-80");
        a.SetRemark("hybrid");
        SpyRecord b(&log);
        b.SetMaker("Tidewater");
        b.SetGrade("TW-80");
        b.SetRemark("hybrid");
        c.change(b);
        const struct {
            const char* comparison;
            bool (Record::*compare)(const Record&) const;
            const Log& expected;
        } runs[] = {{"IsMachineIdentity", &Record::IsMachineIdentity, c.full},
                    {"IsSimpleMachineIdentity", &Record::IsSimpleMachineIdentity, c.simple},
                    {"IsNameIdentity", &Record::IsNameIdentity, c.name}};
        for (const auto& run : runs) {
            log.clear();
            (a.*run.compare)(b);
            EXPECT_EQ(log, run.expected) << c.label << ": " << run.comparison;
        }
    }
}

// Texts are read through the virtual getters, in order, and each comparison stops at the first
// difference; the remark comes before every number of the full comparison.
TEST(InjectionIdentity, TextsReadThroughVirtualGettersInOrder) {
    RunSpyCases<SpyIM>({
        {"all equal", [](SpyIM&) {}, kMakerGradeRemark, kMakerGrade, kMakerGrade},
        {"maker differs", [](SpyIM& r) { r.SetMaker("Tidewater Ltd"); }, kMaker, kMaker, kMaker},
        {"grade differs", [](SpyIM& r) { r.SetGrade("TW-90"); }, kMakerGrade, kMakerGrade,
         kMakerGrade},
        {"shot weight differs", [](SpyIM& r) { r.SetShotWeight(9.0); }, kMakerGradeRemark,
         kMakerGrade, kMakerGrade},
    });
}

TEST(TransferIdentity, TextsReadThroughVirtualGettersInOrder) {
    RunSpyCases<SpyRTM>({
        {"all equal", [](SpyRTM&) {}, kMakerGrade, kMakerGrade, kMakerGrade},
        {"maker differs", [](SpyRTM& r) { r.SetMaker("Tidewater Ltd"); }, kMaker, kMaker, kMaker},
        {"remark differs", [](SpyRTM& r) { r.SetRemark("older"); }, kMakerGrade, kMakerGrade,
         kMakerGrade},
    });
}

}  // namespace
}  // namespace qzr::records::testing
