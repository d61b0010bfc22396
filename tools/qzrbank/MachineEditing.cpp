#include "MachineEditing.h"

#include <type_traits>

#include "Finding.h"
#include "platform/CNumbers.h"
#include "records/MachineFields.h"

namespace qzrbank {

namespace {

using qzr::records::FieldDescriptor;
using qzr::records::FieldList;
using qzr::records::FieldType;

// A number as a user writes one: the library reads a leading number and ignores the rest, so
// the rest must be empty for the value to mean what was typed.
bool IsWholeNumber(const std::string& text, bool integer) {
    if (text.empty()) {
        return false;
    }
    size_t start = (text[0] == '+' || text[0] == '-') ? 1 : 0;
    const std::string body = text.substr(start);
    if (!integer && (body == "inf" || body == "nan")) {
        return true;
    }
    const char* allowed = integer ? "0123456789" : "0123456789.eE+-";
    return !body.empty() && body.find_first_not_of(allowed) == std::string::npos;
}

template <class Target>
bool Assign(const FieldDescriptor<Target>& field, const std::string& value, Target* target) {
    switch (field.type) {
        case FieldType::kText:
            field.setText(*target, value.c_str());
            return true;
        case FieldType::kInteger: {
            int number = 0;
            if (!IsWholeNumber(value, true) || !qzr::platform::ScanInt(value.c_str(), &number)) {
                return false;
            }
            field.setInteger(*target, number);
            return true;
        }
        case FieldType::kReal: {
            double number = 0.0;
            if (!IsWholeNumber(value, false) ||
                !qzr::platform::ScanDouble(value.c_str(), &number)) {
                return false;
            }
            field.setReal(*target, number);
            return true;
        }
    }
    return false;
}

template <class Target>
const FieldDescriptor<Target>* Find(FieldList<Target> fields, const std::string& key) {
    for (const FieldDescriptor<Target>& field : fields) {
        if (key == field.name || (field.section.key != nullptr && key == field.section.key)) {
            return &field;
        }
    }
    return nullptr;
}

// A value for one of the record's own fields or those of its nozzle data.
template <class Record>
bool AssignField(const std::string& key, const std::string& value, Record* machine,
                 std::string* error) {
    const FieldDescriptor<Record>* field = Find(qzr::records::CommonFields<Record>(), key);
    if (field == nullptr) {
        field = Find(qzr::records::KindFields<Record>(), key);
    }
    bool assigned = false;
    if (field != nullptr) {
        assigned = Assign(*field, value, machine);
    } else if constexpr (std::is_same_v<Record, CQZRIM>) {
        const FieldDescriptor<NozzleSpecification>* nozzle =
            Find(qzr::records::NozzleFields(), key);
        if (nozzle == nullptr) {
            *error = "unknown key " + Quoted(key);
            return false;
        }
        assigned = Assign(*nozzle, value, &machine->GetNozzleSpecification());
    } else {
        *error = "unknown key " + Quoted(key);
        return false;
    }
    if (!assigned) {
        *error = key + " " + Quoted(value) + " is not a number";
    }
    return assigned;
}

// One KEY=VALUE of set or add, which name the machine by their arguments.
template <class Record>
bool AssignOne(const std::string& assignment, Record* machine, std::string* error) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos) {
        *error = Quoted(assignment) + " is no KEY=VALUE";
        return false;
    }
    const std::string key = assignment.substr(0, equals);
    if (key == "Maker" || key == "Grade") {
        *error = key + " changes through 'qzrbank rename'";
        return false;
    }
    return AssignField(key, assignment.substr(equals + 1), machine, error);
}

template <class Record>
bool AssignAll(const std::vector<std::string>& assignments, Record* machine, std::string* error) {
    for (const std::string& assignment : assignments) {
        if (!AssignOne(assignment, machine, error)) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool AssignAttributes(const std::vector<std::string>& assignments, CQZRIM* machine,
                      std::string* error) {
    return AssignAll(assignments, machine, error);
}

bool AssignAttributes(const std::vector<std::string>& assignments, CQZRRTM* machine,
                      std::string* error) {
    return AssignAll(assignments, machine, error);
}

bool AssignAttribute(const std::string& key, const std::string& value, CQZRIM* machine,
                     std::string* error) {
    return AssignField(key, value, machine, error);
}

bool AssignAttribute(const std::string& key, const std::string& value, CQZRRTM* machine,
                     std::string* error) {
    return AssignField(key, value, machine, error);
}

}  // namespace qzrbank
