#include "bank/QZRMoldingMachineReader.h"

namespace qzr::bank {

// A new reader knows no header yet: version, format and type -1, not a system bank, and an
// empty load path (the field initialisers in the class say so).
CQZRMoldingMachineReader::CQZRMoldingMachineReader() = default;

CQZRMoldingMachineReader::~CQZRMoldingMachineReader() = default;

}  // namespace qzr::bank
