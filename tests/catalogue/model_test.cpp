// A plain model of one catalogue, walked the obvious way, against which random sequences of adds,
// edits and removals are checked through every kind of address. It stays the oracle for any
// faster lookup the catalogue may gain.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <vector>

#include "CatalogueTestSupport.h"

namespace {

using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;

bool SameName(const std::string& a, const std::string& b) {
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [&](char x, char y) { return lower(x) == lower(y); });
}

struct Machine {
    std::string maker;
    std::string grade;
    int id;
};

struct Group {
    std::string name;  // unique by the name rule within one catalogue, and so is the id
    int id;
    bool transfer;
    std::vector<Machine> machines;
};

struct Model {
    std::vector<Group> groups;
    int fileType = 0;
    bool initialized = false;
    int machineCounter = 0;
    int makerCounter = 0;

    int Total() const {
        int total = 0;
        for (const Group& group : groups) {
            total += static_cast<int>(group.machines.size());
        }
        return total;
    }
    Group* ByName(const std::string& name) {
        const auto it = std::find_if(groups.begin(), groups.end(), [&](const Group& group) {
            return SameName(group.name, name);
        });
        return it == groups.end() ? nullptr : &*it;
    }
    // The add's result; `ids` receives the machine id and maker id the record gets.
    bool Add(const std::string& maker, const std::string& grade, bool transfer, int* ids) {
        const bool empty = Total() == 0;
        ids[0] = machineCounter = empty ? 1 : machineCounter + 1;
        if (Group* group = ByName(maker)) {
            ids[1] = group->id;
            if (group->transfer == transfer) {
                group->machines.push_back({maker, grade, ids[0]});
            }
            return true;
        }
        const bool fits = ((!empty || initialized) ? fileType == 1 : transfer) == transfer;
        ids[1] = makerCounter = groups.empty() ? 1 : makerCounter + 1;
        if (fits) {
            groups.push_back({maker, ids[1], transfer, {{maker, grade, ids[0]}}});
        }
        return fits;
    }
    // Removes the first machine (in index order) the predicate accepts.
    template <class Predicate>
    bool RemoveFirst(Predicate accepts) {
        for (Group& group : groups) {
            for (auto it = group.machines.begin(); it != group.machines.end(); ++it) {
                if (accepts(group, *it)) {
                    group.machines.erase(it);
                    return true;
                }
            }
        }
        return false;
    }
    // The picture the catalogue test support draws of a catalogue.
    std::string Picture() const {
        std::string picture;
        for (const Group& group : groups) {
            picture += (picture.empty() ? "" : " ") + group.name + "#" + std::to_string(group.id) +
                       (group.machines.empty() ? "("
                        : group.transfer       ? "{"
                                               : "[");
            for (const Machine& machine : group.machines) {
                picture += (&machine == group.machines.data() ? "" : " ") + machine.grade + ":" +
                           std::to_string(machine.id);
            }
            picture += group.machines.empty() ? ")" : group.transfer ? "}" : "]";
        }
        return picture;
    }
};

const char* const kMakers[] = {"ACME", "acme", "BETA", "Gamma", "GAMMA", "delta", "Delta "};
const char* const kGrades[] = {"g1", "G1", "g2"};

// Groups, ids and machines by position and maker id (the picture), the global index, and the
// lookups and checks by maker and grade and by display name.
void ExpectMatches(const CQZRMoldingMachineCtrl& catalogue, Model& model) {
    ASSERT_EQ(Picture(catalogue), model.Picture());
    std::vector<const Group*> owners;
    for (const Group& group : model.groups) {
        owners.insert(owners.end(), group.machines.size(), &group);
    }
    for (int index = -1; index <= static_cast<int>(owners.size()); ++index) {
        const bool inRange = index >= 0 && index < static_cast<int>(owners.size());
        CQZRIM im;
        CQZRRTM rtm;
        EXPECT_EQ(catalogue.GetCurrentMachine(index, im), inRange && !owners[index]->transfer);
        EXPECT_EQ(catalogue.GetCurrentMachine(index, rtm), inRange && owners[index]->transfer);
    }
    for (const char* maker : kMakers) {
        for (const char* grade : kGrades) {
            const Group* group = model.ByName(maker);
            const bool named =
                group != nullptr &&
                std::any_of(group->machines.begin(), group->machines.end(),
                            [&](const Machine& m) { return SameName(m.grade, grade); });
            const bool transfer = group != nullptr && group->transfer;
            CQZRIM im;
            CQZRRTM rtm;
            EXPECT_EQ(catalogue.GetMachine(maker, grade, im), named && !transfer) << maker << grade;
            EXPECT_EQ(catalogue.GetMachine(maker, grade, rtm), named && transfer) << maker << grade;
            EXPECT_EQ(catalogue.IsMachineNameExist(IM(maker, grade)), named && !transfer);
            EXPECT_EQ(catalogue.IsMachineNameExist(RTM(maker, grade)), named && transfer);
            const std::string display = std::string(maker) + " - " + grade;
            bool displayed = false;  // among the machines of the catalogue's own kind
            for (const Group& g : model.groups) {
                for (const Machine& m : g.machines) {
                    displayed |= model.fileType == (g.transfer ? 1 : 0) &&
                                 SameName(m.maker + " - " + m.grade, display);
                }
            }
            EXPECT_EQ(catalogue.IsMachineNameExist(display.c_str()), displayed) << display;
        }
    }
}

TEST(CatalogueModel, RandomEditSequencesMatchThePlainModel) {
    std::mt19937 random(20240611);
    const auto pick = [&](size_t count) { return static_cast<int>(random() % count); };
    for (int round = 0; round < 12; ++round) {
        CQZRMoldingMachineCtrl catalogue;
        Model model;
        for (int step = 0; step < 50 && !HasFailure(); ++step) {
            const int action = pick(13);
            const char* maker = kMakers[pick(7)];
            const char* grade = kGrades[pick(3)];
            SCOPED_TRACE("round " + std::to_string(round) + " step " + std::to_string(step) +
                         " action " + std::to_string(action) + " " + maker + " " + grade);
            CQZRIM im = IM(maker, grade);
            CQZRRTM rtm = RTM(maker, grade);
            const bool transfer = pick(3) == 0;
            if (action < 6) {
                int ids[2];
                EXPECT_EQ(transfer ? catalogue.AddMachine(rtm) : catalogue.AddMachine(im),
                          model.Add(maker, grade, transfer, ids));
                EXPECT_EQ(transfer ? rtm.GetMachineID() : im.GetMachineID(), ids[0]);
                EXPECT_EQ(transfer ? rtm.GetMakerID() : im.GetMakerID(), ids[1]);
            } else if (action == 6) {
                catalogue.SetFileType(model.fileType = pick(4) - 1);
                catalogue.SetDatabaseInitialize(model.initialized = pick(2) == 0);
            } else if (action <= 8) {
                const int id = pick(model.machineCounter + 2);
                EXPECT_EQ(
                    catalogue.RemoveMachine(id),
                    model.RemoveFirst([&](const Group&, const Machine& m) { return m.id == id; }));
            } else if (action <= 10) {
                EXPECT_EQ(catalogue.RemoveMachine(maker, grade),
                          model.RemoveFirst([&](const Group& g, const Machine& m) {
                              return SameName(g.name, maker) && SameName(m.grade, grade);
                          }));
            } else if (action == 11) {
                const Group* group = model.ByName(maker);
                if (group != nullptr) {
                    model.groups.erase(model.groups.begin() + (group - model.groups.data()));
                }
                EXPECT_EQ(catalogue.RemoveMaker(maker), group != nullptr);
            } else {
                model = Model{{}, -1, false, model.machineCounter, model.makerCounter};
                EXPECT_TRUE(catalogue.RemoveAllMaker());
            }
            ExpectMatches(catalogue, model);
        }
    }
}

}  // namespace
