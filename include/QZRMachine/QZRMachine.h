// QZRMachine: moulding-machine records, catalogues and bank files. Hosts include this header.
#ifndef QZRMACHINE_QZRMACHINE_H
#define QZRMACHINE_QZRMACHINE_H

#include <QZRMachine/QZRExport.h>
#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachine.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRMoldingMachineIO.h>
#include <QZRMachine/QZRRTM.h>

#endif  // QZRMACHINE_QZRMACHINE_H
