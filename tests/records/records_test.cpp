// Defaults, setters, copies and the display name of the machine records.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachine.h>
#include <QZRMachine/QZRRTM.h>

#include "records/RecordAttributes.h"

namespace qzr::records::testing {
namespace {

template <class Record>
struct RecordKind;
template <>
struct RecordKind<CQZRIM> {
    static std::vector<Attribute<CQZRIM>> Table() { return InjectionAttributes(); }
    static constexpr int kKind = 0;
};
template <>
struct RecordKind<CQZRRTM> {
    static std::vector<Attribute<CQZRRTM>> Table() { return TransferAttributes(); }
    static constexpr int kKind = 1;
};

template <class Record>
class RecordTest : public ::testing::Test {
  protected:
    const std::vector<Attribute<Record>> table_ = RecordKind<Record>::Table();

    Record Filled(int variant) const {
        Record record;
        FillAll(table_, record, variant);
        return record;
    }
    Snapshot SnapshotOf(const Record& record) const { return TakeSnapshot(table_, record); }
};

using RecordTypes = ::testing::Types<CQZRIM, CQZRRTM>;
TYPED_TEST_SUITE(RecordTest, RecordTypes);

TYPED_TEST(RecordTest, DefaultsOfEveryAttribute) {
    const TypeParam record;
    EXPECT_EQ(record.GetMachineType(), RecordKind<TypeParam>::kKind);
    for (const auto& attribute : this->table_) {
        EXPECT_EQ(Show(attribute, record), attribute.defaultValue) << attribute.name;
    }
}

// Catches a getter wired to the wrong field and a setter that touches a neighbour.
TYPED_TEST(RecordTest, EachSetterChangesOnlyItsOwnAttribute) {
    const Snapshot defaults = this->SnapshotOf(TypeParam());
    for (size_t row = 0; row < this->table_.size(); ++row) {
        TypeParam record;
        SetVariant(this->table_[row], record, static_cast<int>(row), 1);
        const Snapshot changed = this->SnapshotOf(record);
        for (size_t i = 0; i < changed.size(); ++i) {
            const bool isOwn = changed[i].first == this->table_[row].name;
            EXPECT_EQ(changed[i].second != defaults[i].second, isOwn)
                << "setting " << this->table_[row].name << ", looking at " << changed[i].first;
        }
    }
}

TYPED_TEST(RecordTest, CopyConstructorCopiesEveryAttribute) {
    const TypeParam source = this->Filled(1);
    const TypeParam copy(source);
    EXPECT_EQ(this->SnapshotOf(copy), this->SnapshotOf(source));
}

TYPED_TEST(RecordTest, AssignmentCopiesEveryAttribute) {
    const TypeParam source = this->Filled(1);
    TypeParam target = this->Filled(2);
    TypeParam& result = (target = source);
    EXPECT_EQ(&result, &target);
    EXPECT_EQ(this->SnapshotOf(target), this->SnapshotOf(source));

    TypeParam fresh;
    fresh = source;
    EXPECT_EQ(this->SnapshotOf(fresh), this->SnapshotOf(source));
}

TYPED_TEST(RecordTest, CopiesAreIndependentOfTheirSource) {
    TypeParam source = this->Filled(1);
    const Snapshot before = this->SnapshotOf(source);
    const TypeParam constructed(source);
    TypeParam assigned;
    assigned = source;

    FillAll(this->table_, source, 3);
    EXPECT_EQ(this->SnapshotOf(constructed), before);
    EXPECT_EQ(this->SnapshotOf(assigned), before);
}

TYPED_TEST(RecordTest, SelfAssignmentChangesNothing) {
    TypeParam record = this->Filled(1);
    const Snapshot before = this->SnapshotOf(record);
    const char* makerBefore = record.GetMaker();
    TypeParam& alias = record;
    record = alias;
    EXPECT_EQ(this->SnapshotOf(record), before);
    EXPECT_EQ(record.GetMaker(), makerBefore) << "the text must not have been reallocated";
}

TYPED_TEST(RecordTest, TextSettersStoreBytesAsGiven) {
    const std::string awkward = "  Mixed Case\t\xE9\xFF, \"quoted\" ; ";
    const std::string longText(100000, 'q');
    for (const auto& attribute : this->table_) {
        if (attribute.kind != Kind::Text) {
            continue;
        }
        TypeParam record;
        attribute.setText(record, awkward.c_str());
        EXPECT_EQ(attribute.getText(record), awkward) << attribute.name;
        attribute.setText(record, longText.c_str());
        EXPECT_EQ(attribute.getText(record), longText) << attribute.name;
        attribute.setText(record, "");
        EXPECT_STREQ(attribute.getText(record), "") << attribute.name;
        attribute.setText(record, nullptr);
        ASSERT_NE(attribute.getText(record), nullptr) << attribute.name;
        EXPECT_STREQ(attribute.getText(record), "") << attribute.name;
    }
}

TYPED_TEST(RecordTest, TextSettersAcceptTheRecordsOwnText) {
    for (const auto& attribute : this->table_) {
        if (attribute.kind != Kind::Text) {
            continue;
        }
        TypeParam record;
        attribute.setText(record, "Tidewater Presses 4410");
        attribute.setText(record, attribute.getText(record));
        EXPECT_STREQ(attribute.getText(record), "Tidewater Presses 4410") << attribute.name;
        // A tail of its own text, which overlaps what it replaces.
        attribute.setText(record, attribute.getText(record) + 10);
        EXPECT_STREQ(attribute.getText(record), "Presses 4410") << attribute.name;
    }
}

TEST(MachineRecord, BareRecordDefaults) {
    const CQZRMoldingMachine record;
    EXPECT_EQ(record.GetMachineType(), -1);
    EXPECT_EQ(record.GetMakerID(), -1);
    EXPECT_EQ(record.GetMachineID(), -1);
    EXPECT_EQ(record.GetGradeID(), -1);
    EXPECT_EQ(record.GetControllerID(), 0);
    for (const char* text : {record.GetControllerGrade(), record.GetMaker(), record.GetGrade(),
                             record.GetLastModifiedDate(), record.GetRemark()}) {
        ASSERT_NE(text, nullptr);
        EXPECT_STREQ(text, "");
    }
}

// The kind is copied like any other field, also between records of different classes through
// the base part.
TEST(MachineRecord, KindTravelsWithCopies) {
    OpenIM odd;
    odd.SetMachineType(7);
    EXPECT_EQ(CQZRIM(odd).GetMachineType(), 7);
    CQZRIM assigned;
    assigned = odd;
    EXPECT_EQ(assigned.GetMachineType(), 7);

    const CQZRRTM transfer;
    CQZRMoldingMachine base(transfer);
    EXPECT_EQ(base.GetMachineType(), 1);
    CQZRIM injection;
    static_cast<CQZRMoldingMachine&>(injection) = transfer;
    EXPECT_EQ(injection.GetMachineType(), 1);

    OpenMachine bare;
    bare.SetMachineType(0);
    bare.SetMaker("Harrowgate");
    bare.SetMakerID(12);
    CQZRMoldingMachine copy(bare);
    EXPECT_EQ(copy.GetMachineType(), 0);
    EXPECT_STREQ(copy.GetMaker(), "Harrowgate");
    EXPECT_EQ(copy.GetMakerID(), 12);
}

TEST(InjectionRecord, NozzleSpecificationByReference) {
    CQZRIM record;
    NozzleSpecification& nozzle = record.GetNozzleSpecification();
    nozzle.Type = 3;
    nozzle.Value4 = 12.5;
    EXPECT_EQ(record.GetNozzleSpecification().Type, 3);
    EXPECT_EQ(record.GetNozzleSpecification().Value4, 12.5);

    const CQZRIM copy(record);
    EXPECT_EQ(copy.GetNozzleSpecification().Type, 3);
    EXPECT_EQ(copy.GetNozzleSpecification().Value4, 12.5);
    EXPECT_NE(&copy.GetNozzleSpecification(), &record.GetNozzleSpecification());

    const NozzleSpecification given{2, 1.5, -2.5, 3.5, 0.0, 5.5, 6.5};
    record.SetNozzleSpecification(given);
    const NozzleSpecification& stored = record.GetNozzleSpecification();
    EXPECT_EQ(stored.Type, 2);
    EXPECT_EQ(stored.Value1, 1.5);
    EXPECT_EQ(stored.Value2, -2.5);
    EXPECT_EQ(stored.Value3, 3.5);
    EXPECT_EQ(stored.Value4, 0.0);
    EXPECT_EQ(stored.Value5, 5.5);
    EXPECT_EQ(stored.Value6, 6.5);
    EXPECT_NE(&stored, &given);
    EXPECT_EQ(copy.GetNozzleSpecification().Type, 3) << "the copy keeps its own specification";
}

// GetName into a 64-byte buffer pre-filled with '#', of which only `size` bytes are offered.
struct NameCase {
    const char* label;
    const char* maker;
    const char* grade;
    int size;
    const char* expected;  // what the offered bytes hold up to the first NUL; null: untouched
};

TEST(MachineRecord, GetNameBufferSizes) {
    const NameCase cases[] = {
        {"roomy buffer", "ABC", "X-100", 40, "ABC - X-100"},
        {"exact fit", "ABC", "X-100", 12, "ABC - X-100"},
        {"one byte short", "ABC", "X-100", 11, ""},
        {"one byte", "ABC", "X-100", 1, ""},
        {"zero size", "ABC", "X-100", 0, nullptr},
        {"negative size", "ABC", "X-100", -5, nullptr},
        {"empty texts", "", "", 4, " - "},
        {"empty texts one short", "", "", 3, ""},
        {"blanks kept", " Kestrel ", "K 90", 40, " Kestrel  - K 90"},
    };
    for (const NameCase& c : cases) {
        CQZRIM record;
        record.SetMaker(c.maker);
        record.SetGrade(c.grade);
        char buffer[64];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_TRUE(record.GetName(buffer, c.size)) << c.label;
        const int offered = c.size > 0 ? c.size : 0;
        if (c.expected != nullptr) {
            EXPECT_STREQ(buffer, c.expected) << c.label;
            for (int i = static_cast<int>(std::strlen(c.expected)); i < offered; ++i) {
                EXPECT_EQ(buffer[i], '\0') << c.label << ": the rest is cleared, byte " << i;
            }
        }
        for (int i = offered; i < static_cast<int>(sizeof buffer); ++i) {
            ASSERT_EQ(buffer[i], '#') << c.label << ": wrote past the size, byte " << i;
        }
    }
}

TEST(MachineRecord, GetNameNullBufferAndLongNames) {
    CQZRRTM record;
    record.SetMaker("Wexford");
    EXPECT_FALSE(record.GetName(nullptr, 10));
    EXPECT_FALSE(record.GetName(nullptr, 0));

    const std::string maker(5000, 'm');
    const std::string grade(7000, 'g');
    record.SetMaker(maker.c_str());
    record.SetGrade(grade.c_str());
    const std::string expected = maker + " - " + grade;
    std::vector<char> buffer(expected.size() + 1, '#');
    EXPECT_TRUE(record.GetName(buffer.data(), static_cast<int>(buffer.size())));
    EXPECT_EQ(std::string(buffer.data()), expected);
    EXPECT_TRUE(record.GetName(buffer.data(), static_cast<int>(buffer.size()) - 1));
    EXPECT_EQ(std::string(buffer.data()), "");
}

}  // namespace
}  // namespace qzr::records::testing
