// NozzleSpecification: the nozzle data carried by every injection-moulding record.
#ifndef QZRMACHINE_NOZZLESPECIFICATION_H
#define QZRMACHINE_NOZZLESPECIFICATION_H

struct NozzleSpecification {
    int Type = 0;
    double Value1 = 0.0;
    double Value2 = 0.0;
    double Value3 = 0.0;
    double Value4 = 0.0;
    double Value5 = 0.0;
    double Value6 = 0.0;
};

#endif  // QZRMACHINE_NOZZLESPECIFICATION_H
