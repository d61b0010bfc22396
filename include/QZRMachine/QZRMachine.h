// QZRMachine: moulding-machine records, catalogues and bank files. Hosts include this header.
//
// Threads. Nothing is locked. One catalogue, one front or one record must be used by one
// thread at a time. Separate catalogues and fronts may not be used from separate threads at
// the same time either where machines are added or loaded: machine and maker ids come from
// two unsynchronised counters shared by the whole process, and the time stamp of sectioned
// saves is built in one buffer of the process. Reading separate catalogues (queries, name
// checks) from separate threads is safe, as is copying records. Name comparison follows the
// C library's current locale (setlocale is process-wide): changing it while another thread
// compares names changes that thread's results.
#ifndef QZRMACHINE_QZRMACHINE_H
#define QZRMACHINE_QZRMACHINE_H

#include <QZRMachine/QZRExport.h>
#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachine.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRMoldingMachineIO.h>
#include <QZRMachine/QZRRTM.h>

#endif  // QZRMACHINE_QZRMACHINE_H
