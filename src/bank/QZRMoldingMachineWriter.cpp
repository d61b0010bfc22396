#include "bank/QZRMoldingMachineWriter.h"

// The writer keeps no state: every save reads the catalogue it is given and nothing else.
CQZRMoldingMachineWriter::CQZRMoldingMachineWriter() = default;

CQZRMoldingMachineWriter::~CQZRMoldingMachineWriter() = default;
