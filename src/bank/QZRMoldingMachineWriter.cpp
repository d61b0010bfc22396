#include "bank/QZRMoldingMachineWriter.h"

namespace qzr::bank {

// The writer keeps no state: every save reads the catalogue it is given and nothing else.
CQZRMoldingMachineWriter::CQZRMoldingMachineWriter() = default;

CQZRMoldingMachineWriter::~CQZRMoldingMachineWriter() = default;

}  // namespace qzr::bank
