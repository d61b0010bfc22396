// A plain model of one catalogue, walked the obvious way, against which random sequences of adds,
// adoptions, edits, removals and copies are checked through every kind of address. It stays the
// oracle for any faster lookup the catalogue may gain.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "CatalogueTestSupport.h"
#include "catalogue/QZRMoldingMachineCtrlAccess.h"

namespace {

using catalogue_test::IM;
using catalogue_test::Picture;
using catalogue_test::RTM;
using qzr::catalogue::CQZRMoldingMachineCtrlAccess;

bool SameName(const std::string& a, const std::string& b) {
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [&](char x, char y) { return lower(x) == lower(y); });
}

struct Machine {
    std::string maker;  // the record's own, which SetMachineData may make differ from the group's
    std::string grade;
    int id;
};

struct Group {
    std::string name;
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
    // The first machine (in index order) the predicate accepts, or null.
    template <class Predicate>
    Machine* First(Predicate accepts, Group** owner = nullptr) {
        for (Group& group : groups) {
            for (Machine& machine : group.machines) {
                if (accepts(group, machine)) {
                    if (owner != nullptr) {
                        *owner = &group;
                    }
                    return &machine;
                }
            }
        }
        return nullptr;
    }
    template <class Predicate>
    bool RemoveFirst(Predicate accepts) {
        Group* group = nullptr;
        const Machine* machine = First(accepts, &group);
        if (machine != nullptr) {
            group->machines.erase(group->machines.begin() + (machine - group->machines.data()));
        }
        return machine != nullptr;
    }
    bool RemoveGroup(const Group* group) {
        if (group != nullptr) {
            groups.erase(groups.begin() + (group - groups.data()));
        }
        return group != nullptr;
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

// Groups, ids and machines by position and maker id (the picture), the global index (walked
// backwards when asked, so that a remembered position cannot hide a stale index), the lookups by
// machine id, and the lookups and checks by maker and grade and by display name.
void ExpectMatches(const CQZRMoldingMachineCtrl& catalogue, Model& model, bool backwards) {
    ASSERT_EQ(Picture(catalogue), model.Picture());
    std::vector<const Group*> owners;
    for (const Group& group : model.groups) {
        owners.insert(owners.end(), group.machines.size(), &group);
    }
    const int total = static_cast<int>(owners.size());
    for (int step = -1; step <= total; ++step) {
        const int index = backwards ? total - 1 - step : step;
        const bool inRange = index >= 0 && index < total;
        CQZRIM im;
        CQZRRTM rtm;
        EXPECT_EQ(catalogue.GetCurrentMachine(index, im), inRange && !owners[index]->transfer);
        EXPECT_EQ(catalogue.GetCurrentMachine(index, rtm), inRange && owners[index]->transfer);
    }
    for (int id = 0; id <= model.machineCounter + 1; ++id) {
        const auto withId = [&](bool transfer) {
            return model.First([&](const Group& g, const Machine& m) {
                return g.transfer == transfer && m.id == id;
            }) != nullptr;
        };
        CQZRIM im;
        CQZRRTM rtm;
        EXPECT_EQ(catalogue.GetMachine(id, im), withId(false)) << "machine id " << id;
        EXPECT_EQ(catalogue.GetMachine(id, rtm), withId(true)) << "machine id " << id;
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
            const bool displayed = model.First([&](const Group& g, const Machine& m) {
                return model.fileType == (g.transfer ? 1 : 0) &&
                       SameName(m.maker + " - " + m.grade, display);
            }) != nullptr;
            EXPECT_EQ(catalogue.IsMachineNameExist(display.c_str()), displayed) << display;
        }
    }
}

TEST(CatalogueModel, RandomEditSequencesMatchThePlainModel) {
    std::mt19937 random(20240611);
    const auto pick = [&](size_t count) { return static_cast<int>(random() % count); };
    for (int round = 0; round < 12; ++round) {
        auto catalogue = std::make_unique<CQZRMoldingMachineCtrl>();
        Model model;
        for (int step = 0; step < 50 && !HasFailure(); ++step) {
            const int action = pick(17);
            const char* maker = kMakers[pick(7)];
            const char* grade = kGrades[pick(3)];
            SCOPED_TRACE("round " + std::to_string(round) + " step " + std::to_string(step) +
                         " action " + std::to_string(action) + " " + maker + " " + grade);
            CQZRIM im = IM(maker, grade);
            CQZRRTM rtm = RTM(maker, grade);
            const bool transfer = pick(3) == 0;
            const int id = pick(model.machineCounter + 2);
            if (action < 4) {
                int ids[2];
                EXPECT_EQ(transfer ? catalogue->AddMachine(rtm) : catalogue->AddMachine(im),
                          model.Add(maker, grade, transfer, ids));
                EXPECT_EQ(transfer ? rtm.GetMachineID() : im.GetMachineID(), ids[0]);
                EXPECT_EQ(transfer ? rtm.GetMakerID() : im.GetMakerID(), ids[1]);
            } else if (action < 6) {  // as the loaders hand their records over
                auto& store = *CQZRMoldingMachineCtrlAccess::Store(*catalogue);
                int ids[2];
                EXPECT_EQ(transfer ? store.AdoptMachine(std::make_unique<CQZRRTM>(rtm))
                                   : store.AdoptMachine(std::make_unique<CQZRIM>(im)),
                          model.Add(maker, grade, transfer, ids));
            } else if (action == 6) {
                catalogue->SetFileType(model.fileType = pick(4) - 1);
                catalogue->SetDatabaseInitialize(model.initialized = pick(2) == 0);
            } else if (action == 7) {
                EXPECT_EQ(
                    catalogue->RemoveMachine(id),
                    model.RemoveFirst([&](const Group&, const Machine& m) { return m.id == id; }));
            } else if (action == 8) {
                EXPECT_EQ(catalogue->RemoveMachine(maker, grade),
                          model.RemoveFirst([&](const Group& g, const Machine& m) {
                              return SameName(g.name, maker) && SameName(m.grade, grade);
                          }));
            } else if (action == 9) {
                EXPECT_EQ(catalogue->RemoveMaker(maker), model.RemoveGroup(model.ByName(maker)));
            } else if (action == 10) {
                const int makerId = pick(model.makerCounter + 2);
                const auto it = std::find_if(model.groups.begin(), model.groups.end(),
                                             [&](const Group& g) { return g.id == makerId; });
                EXPECT_EQ(catalogue->RemoveMaker(makerId),
                          model.RemoveGroup(it == model.groups.end() ? nullptr : &*it));
            } else if (action == 11) {
                const int position = pick(model.groups.size() + 2) - 1;
                const bool inRange =
                    position >= 0 && position < static_cast<int>(model.groups.size());
                EXPECT_EQ(catalogue->RemoveCurrentMaker(position),
                          model.RemoveGroup(inRange ? &model.groups[position] : nullptr));
            } else if (action <
                       14) {  // by machine id or by global index; the id is overwritten too
                const bool byIndex = action == 13;
                const int index = pick(model.Total() + 1);
                int seen = 0;
                Group* owner = nullptr;
                Machine* target = model.First(
                    [&](const Group& g, const Machine& m) {
                        return byIndex ? seen++ == index : g.transfer == transfer && m.id == id;
                    },
                    &owner);
                const bool fits = target != nullptr && owner->transfer == transfer;
                im.SetMachineID(id + 100);
                rtm.SetMachineID(id + 100);
                EXPECT_EQ(byIndex ? (transfer ? catalogue->SetCurrentMachineData(index, rtm)
                                              : catalogue->SetCurrentMachineData(index, im))
                                  : (transfer ? catalogue->SetMachineData(id, rtm)
                                              : catalogue->SetMachineData(id, im)),
                          fits);
                if (fits) {
                    *target = {maker, grade, id + 100};
                }
            } else if (action == 14) {
                model = Model{{}, -1, false, model.machineCounter, model.makerCounter};
                EXPECT_TRUE(catalogue->RemoveAllMaker());
            } else {  // go on with a copy, constructed or assigned: its indexes start afresh
                auto copy = std::make_unique<CQZRMoldingMachineCtrl>();
                if (action == 15) {
                    copy = std::make_unique<CQZRMoldingMachineCtrl>(*catalogue);
                } else {
                    *copy = *catalogue;
                }
                catalogue = std::move(copy);
            }
            ExpectMatches(*catalogue, model, step % 2 == 1);
        }
    }
}

}  // namespace
