// KEY=VALUE assignments to the attributes of a machine record, through the field table: KEY is
// the field's sectioned key or its name in the tool, values are read by the library's number
// conversions.
#ifndef QZRBANK_MACHINEEDITING_H
#define QZRBANK_MACHINEEDITING_H

#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRRTM.h>

namespace qzrbank {

// Applies each "KEY=VALUE" in order. False, with the reason naming the assignment, for a text
// without "=", an unknown key, a value that is no number of the field's type, or a key of the
// maker or grade (those change through rename, or add).
bool AssignAttributes(const std::vector<std::string>& assignments, CQZRIM* machine,
                      std::string* error);
bool AssignAttributes(const std::vector<std::string>& assignments, CQZRRTM* machine,
                      std::string* error);

// One attribute, the maker and grade included; false, with the reason, for an unknown key or a
// value that is no number of the field's type.
bool AssignAttribute(const std::string& key, const std::string& value, CQZRIM* machine,
                     std::string* error);
bool AssignAttribute(const std::string& key, const std::string& value, CQZRRTM* machine,
                     std::string* error);

}  // namespace qzrbank

#endif  // QZRBANK_MACHINEEDITING_H
