// A plain model of the catalogue, walked the obvious way, against which long random sequences of
// adds, edits and removals are checked through every kind of address. It stays the oracle for
// any faster lookup the catalogue may gain.
#include <cctype>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CatalogueTestSupport.h"

namespace {

bool SameName(const std::string& a, const char* b) {
    if (b == nullptr || a.size() != std::string(b).size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return true;
}

struct ModelMachine {
    std::string maker;
    std::string grade;
    int id;
};

struct ModelGroup {
    std::string name;
    int id;
    int kind;
    std::vector<ModelMachine> machines;
    bool Transfer() const { return kind == 1; }
};

struct Model {
    std::vector<ModelGroup> groups;
    int fileType = 0;
    bool initialized = false;
    int machineCounter = 0;
    int makerCounter = 0;

    int Total() const {
        int total = 0;
        for (const ModelGroup& group : groups) {
            total += static_cast<int>(group.machines.size());
        }
        return total;
    }
    const ModelGroup* GroupById(int id) const {
        for (const ModelGroup& group : groups) {
            if (group.id == id) {
                return &group;
            }
        }
        return nullptr;
    }
    const ModelGroup* GroupByName(const char* name) const {
        for (const ModelGroup& group : groups) {
            if (SameName(group.name, name)) {
                return &group;
            }
        }
        return nullptr;
    }
    // Returns {group, machine} positions of the machine at a global index, or {-1, -1}.
    std::pair<int, int> AtIndex(int index) const {
        for (std::size_t g = 0; g < groups.size(); ++g) {
            for (std::size_t m = 0; m < groups[g].machines.size(); ++m) {
                if (index-- == 0) {
                    return {static_cast<int>(g), static_cast<int>(m)};
                }
            }
        }
        return {-1, -1};
    }
    const ModelMachine* ById(int id, bool transfer) const {
        for (const ModelGroup& group : groups) {
            for (const ModelMachine& machine : group.machines) {
                if (group.Transfer() == transfer && machine.id == id) {
                    return &machine;
                }
            }
        }
        return nullptr;
    }

    // Returns the add's result; fills the ids the record receives.
    bool Add(const std::string& maker, const std::string& grade, bool transfer, int* machineId,
             int* makerId) {
        machineCounter = Total() == 0 ? 1 : machineCounter + 1;
        *machineId = machineCounter;
        for (ModelGroup& group : groups) {
            if (SameName(group.name, maker.c_str())) {
                *makerId = group.id;
                if (group.Transfer() == transfer) {
                    group.machines.push_back({maker, grade, *machineId});
                }
                return true;
            }
        }
        const int kind = (Total() > 0 || initialized) ? fileType : (transfer ? 1 : 0);
        makerCounter = groups.empty() ? 1 : makerCounter + 1;
        *makerId = makerCounter;
        if ((kind == 1) != transfer) {
            return false;
        }
        groups.push_back({maker, makerCounter, kind, {{maker, grade, *machineId}}});
        return true;
    }
};

const char* const kMakers[] = {"ACME", "acme", "BETA", "Gamma", "GAMMA", "delta", "Delta "};
const char* const kGrades[] = {"g1", "G1", "g2", "g3"};

void ExpectMatches(const CQZRMoldingMachineCtrl& catalogue, const Model& model) {
    ASSERT_EQ(catalogue.GetTotalMachine(), model.Total());
    ASSERT_EQ(catalogue.GetTotalMaker(), static_cast<int>(model.groups.size()));
    EXPECT_EQ(catalogue.GetFileType(), model.fileType);
    for (int position = -1; position <= static_cast<int>(model.groups.size()); ++position) {
        const bool inRange = position >= 0 && position < static_cast<int>(model.groups.size());
        EXPECT_EQ(catalogue.GetMakerID(position), inRange ? model.groups[position].id : -1);
    }
    for (int index = -1; index <= model.Total(); ++index) {
        const auto [g, m] = model.AtIndex(index);
        CQZRIM im;
        CQZRRTM rtm;
        const bool gotIm = catalogue.GetCurrentMachine(index, im);
        const bool gotRtm = catalogue.GetCurrentMachine(index, rtm);
        EXPECT_EQ(gotIm, g >= 0 && !model.groups[g].Transfer()) << "index " << index;
        EXPECT_EQ(gotRtm, g >= 0 && model.groups[g].Transfer()) << "index " << index;
        if (g >= 0) {
            const CQZRMoldingMachine& copy = gotIm ? static_cast<CQZRMoldingMachine&>(im) : rtm;
            EXPECT_EQ(copy.GetGrade(), model.groups[g].machines[m].grade);
            EXPECT_EQ(copy.GetMachineID(), model.groups[g].machines[m].id);
        }
    }
    for (int id = 0; id <= model.machineCounter + 1; ++id) {
        const ModelGroup* group = model.GroupById(id);
        EXPECT_EQ(catalogue.GetMachineCount(id),
                  group != nullptr ? static_cast<int>(group->machines.size()) : 0);
        EXPECT_EQ(catalogue.GetMaker(id) != nullptr, group != nullptr);
        for (const bool transfer : {false, true}) {
            const ModelMachine* expected = model.ById(id, transfer);
            CQZRIM im;
            CQZRRTM rtm;
            const bool found =
                transfer ? catalogue.GetMachine(id, rtm) : catalogue.GetMachine(id, im);
            EXPECT_EQ(found, expected != nullptr) << "machine id " << id;
            if (found && expected != nullptr) {
                EXPECT_EQ(transfer ? rtm.GetGrade() : im.GetGrade(), expected->grade);
            }
        }
    }
    for (const char* maker : kMakers) {
        const ModelGroup* group = model.GroupByName(maker);
        EXPECT_EQ(catalogue.GetMachineCount(maker),
                  group != nullptr ? static_cast<int>(group->machines.size()) : 0);
        for (const char* grade : kGrades) {
            const ModelMachine* expected = nullptr;
            if (group != nullptr) {
                for (const ModelMachine& machine : group->machines) {
                    if (SameName(machine.grade, grade)) {
                        expected = &machine;
                        break;
                    }
                }
            }
            const bool transferGroup = group != nullptr && group->Transfer();
            CQZRIM im;
            CQZRRTM rtm;
            EXPECT_EQ(catalogue.GetMachine(maker, grade, im), expected && !transferGroup);
            EXPECT_EQ(catalogue.GetMachine(maker, grade, rtm), expected && transferGroup);
            EXPECT_EQ(catalogue.IsMachineNameExist(catalogue_test::IM(maker, grade)),
                      expected && !transferGroup);
            EXPECT_EQ(catalogue.IsMachineNameExist(catalogue_test::RTM(maker, grade)),
                      expected && transferGroup);

            const std::string display = std::string(maker) + " - " + grade;
            bool displayed = false;
            for (const ModelGroup& any : model.groups) {
                for (const ModelMachine& machine : any.machines) {
                    const bool ownKind = (model.fileType == 0 && !any.Transfer()) ||
                                         (model.fileType == 1 && any.Transfer());
                    displayed = displayed ||
                                (ownKind &&
                                 SameName(machine.maker + " - " + machine.grade, display.c_str()));
                }
            }
            EXPECT_EQ(catalogue.IsMachineNameExist(display.c_str()), displayed) << display;
        }
    }
}

TEST(CatalogueModel, RandomEditSequencesMatchThePlainModel) {
    std::mt19937 random(20240611);
    auto pick = [&](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        CQZRMoldingMachineCtrl catalogue;
        Model model;
        for (int step = 0; step < 60; ++step) {
            const int action = pick(20);
            const char* maker = kMakers[pick(7)];
            const char* grade = kGrades[pick(4)];
            std::string label =
                "step " + std::to_string(step) + " action " + std::to_string(action);
            SCOPED_TRACE(label);
            if (action < 9) {
                const bool transfer = action >= 6;
                int machineId = 0;
                int makerId = 0;
                const bool expected = model.Add(maker, grade, transfer, &machineId, &makerId);
                CQZRIM im = catalogue_test::IM(maker, grade);
                CQZRRTM rtm = catalogue_test::RTM(maker, grade);
                CQZRMoldingMachine& added = transfer ? static_cast<CQZRMoldingMachine&>(rtm) : im;
                EXPECT_EQ(transfer ? catalogue.AddMachine(rtm) : catalogue.AddMachine(im),
                          expected);
                EXPECT_EQ(added.GetMachineID(), machineId);
                EXPECT_EQ(added.GetMakerID(), makerId);
            } else if (action == 9) {
                model.fileType = pick(4) - 1;
                catalogue.SetFileType(model.fileType);
                model.initialized = pick(2) == 0;
                catalogue.SetDatabaseInitialize(model.initialized);
            } else if (action == 10 || action == 11) {
                const int id = pick(model.machineCounter + 2);
                bool removed = false;
                for (ModelGroup& group : model.groups) {
                    for (auto it = group.machines.begin(); !removed && it != group.machines.end();
                         ++it) {
                        if (it->id == id) {
                            group.machines.erase(it);
                            removed = true;
                            break;
                        }
                    }
                }
                EXPECT_EQ(catalogue.RemoveMachine(id), removed);
            } else if (action == 12 || action == 13) {
                bool removed = false;
                for (ModelGroup& group : model.groups) {
                    if (!SameName(group.name, maker)) {
                        continue;
                    }
                    for (auto it = group.machines.begin(); it != group.machines.end(); ++it) {
                        if (SameName(it->grade, grade)) {
                            group.machines.erase(it);
                            removed = true;
                            break;
                        }
                    }
                    break;
                }
                EXPECT_EQ(catalogue.RemoveMachine(maker, grade), removed);
            } else if (action == 14) {
                const int position = pick(static_cast<int>(model.groups.size()) + 2) - 1;
                const bool inRange =
                    position >= 0 && position < static_cast<int>(model.groups.size());
                if (inRange) {
                    model.groups.erase(model.groups.begin() + position);
                }
                EXPECT_EQ(catalogue.RemoveCurrentMaker(position), inRange);
            } else if (action == 15) {
                bool removed = false;
                for (auto it = model.groups.begin(); it != model.groups.end(); ++it) {
                    if (SameName(it->name, maker)) {
                        model.groups.erase(it);
                        removed = true;
                        break;
                    }
                }
                EXPECT_EQ(catalogue.RemoveMaker(maker), removed);
            } else if (action == 16 || action == 17) {
                const int index = pick(model.Total() + 1);
                const auto [g, m] = model.AtIndex(index);
                const bool transfer = pick(2) == 0;
                const bool fits = g >= 0 && model.groups[g].Transfer() == transfer;
                if (fits) {
                    model.groups[g].machines[m].grade = grade;
                    model.groups[g].machines[m].maker = maker;
                }
                const int id = fits ? model.groups[g].machines[m].id : 0;
                CQZRIM im = catalogue_test::IM(maker, grade);
                CQZRRTM rtm = catalogue_test::RTM(maker, grade);
                im.SetMachineID(id);
                rtm.SetMachineID(id);
                EXPECT_EQ(transfer ? catalogue.SetCurrentMachineData(index, rtm)
                                   : catalogue.SetCurrentMachineData(index, im),
                          fits);
            } else if (action == 18) {
                const int id = pick(model.makerCounter + 2);
                bool removed = false;
                for (auto it = model.groups.begin(); it != model.groups.end(); ++it) {
                    if (it->id == id) {
                        model.groups.erase(it);
                        removed = true;
                        break;
                    }
                }
                EXPECT_EQ(catalogue.RemoveMaker(id), removed);
            } else if (pick(3) == 0) {
                model.groups.clear();
                model.fileType = -1;
                model.initialized = false;
                EXPECT_TRUE(catalogue.RemoveAllMaker());
            }
            ExpectMatches(catalogue, model);
            if (HasFailure()) {
                return;
            }
        }
    }
}

}  // namespace
