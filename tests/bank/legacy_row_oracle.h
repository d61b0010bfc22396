// The legacy row parser written the slow and literal way, step by step as the DLL did it:
// strtok over a copy, sscanf-style conversions, "%.4lg" printed and read back, and the remark
// cut back field by field at the last occurrence of each trailing token. The library's parser
// takes shortcuts (one pass, no copies, fast number paths); it must agree with this one on
// every row.
#ifndef QZR_TESTS_BANK_LEGACY_ROW_ORACLE_H
#define QZR_TESTS_BANK_LEGACY_ROW_ORACLE_H

#include <algorithm>
#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>

#include "bank/legacy/OldRowLayout.h"
#include "platform/CNumbers.h"

namespace qzr::legacy::testing {

enum class OracleField {
    kClampingForce,
    kShotWeight,
    kInjectionPressure,
    kInjectionRate,
    kScrewDiameter,
    kScrewStroke,
    kTimeConstFR,
    kTimeConstIP,
    kNozzleVolume,
    kMaxPressureSlope,
    kMachineEnergyType,
    kHydraulicFactor,
    kNozzleType,
    kNozzleValue1,
    kNozzleValue2,
    kNozzleValue3,
    kNozzleValue4,
    kNozzleValue5,
    kNozzleValue6,
};

// The trailing numeric fields of each layout in the order they stand in the file.
inline std::vector<OracleField> OracleTrailingFields(OldRowLayout layout) {
    using F = OracleField;
    std::vector<F> fields = {F::kClampingForce, F::kShotWeight,    F::kInjectionPressure,
                             F::kInjectionRate, F::kScrewDiameter, F::kScrewStroke};
    switch (layout) {
        case OldRowLayout::kBase:
            break;
        case OldRowLayout::kSystem7007:
            fields.insert(fields.end(), {F::kMachineEnergyType, F::kHydraulicFactor});
            break;
        case OldRowLayout::kUser7003:
            fields.insert(fields.end(), {F::kTimeConstFR, F::kTimeConstIP, F::kNozzleVolume});
            break;
        case OldRowLayout::kUser7004:
            fields.insert(fields.end(), {F::kTimeConstFR, F::kTimeConstIP, F::kNozzleVolume,
                                         F::kMaxPressureSlope});
            break;
        case OldRowLayout::kUser7005:
            fields.insert(fields.end(),
                          {F::kTimeConstFR, F::kTimeConstIP, F::kNozzleVolume, F::kMaxPressureSlope,
                           F::kMachineEnergyType, F::kHydraulicFactor, F::kNozzleType,
                           F::kNozzleValue1, F::kNozzleValue2, F::kNozzleValue3, F::kNozzleValue4,
                           F::kNozzleValue5, F::kNozzleValue6});
            break;
    }
    return fields;
}

inline std::vector<std::string> OracleTokens(const std::string& text) {
    std::vector<std::string> tokens;
    std::string current;
    for (char c : text) {
        if (c == ',' || c == '\n') {
            if (!current.empty()) {
                tokens.push_back(current);
            }
            current.clear();
        } else {
            current += c;
        }
    }
    if (!current.empty()) {
        tokens.push_back(current);
    }
    return tokens;
}

inline void OracleApply(OracleField field, const std::string& token, CQZRIM& m,
                        NozzleSpecification& nozzle) {
    using F = OracleField;
    double real = 0.0;
    int integer = 0;
    const bool isReal = platform::ScanDouble(token.c_str(), &real);
    const bool isInt = platform::ScanInt(token.c_str(), &integer);
    switch (field) {
        // clang-format off
        case F::kClampingForce: if (isReal) m.SetClampingForce(real); break;
        case F::kShotWeight: if (isReal) m.SetShotWeight(real); break;
        case F::kInjectionPressure: if (isReal) m.SetInjectionPressure(real); break;
        case F::kInjectionRate: if (isReal) m.SetInjectionRate(real); break;
        case F::kScrewDiameter: if (isReal) m.SetScrewDiameter(real); break;
        case F::kScrewStroke: if (isReal) m.SetScrewStroke(real); break;
        case F::kTimeConstFR: if (isReal) m.SetTimeConstFR(real); break;
        case F::kTimeConstIP: if (isReal) m.SetTimeConstIP(real); break;
        case F::kNozzleVolume: if (isReal) m.SetNozzleVolume(real); break;
        case F::kMaxPressureSlope: if (isReal) m.SetMaxPressureSlope(real); break;
        case F::kMachineEnergyType: if (isInt) m.SetMachineEnergyType(integer); break;
        case F::kHydraulicFactor: if (isReal) m.SetHydraulicPressureTransferFactor(real); break;
        case F::kNozzleType: if (isInt) nozzle.Type = integer; break;
        case F::kNozzleValue1: if (isReal) nozzle.Value1 = real; break;
        case F::kNozzleValue2: if (isReal) nozzle.Value2 = real; break;
        case F::kNozzleValue3: if (isReal) nozzle.Value3 = real; break;
        case F::kNozzleValue4: if (isReal) nozzle.Value4 = real; break;
        case F::kNozzleValue5: if (isReal) nozzle.Value5 = real; break;
        case F::kNozzleValue6: if (isReal) nozzle.Value6 = real; break;
            // clang-format on
    }
}

inline bool OracleParseOldRow(const char* row, OldRowLayout layout, CQZRIM& m) {
    const std::string text = std::string(row).substr(0, 1023);  // the 1024-byte work buffer
    const std::vector<std::string> tokens = OracleTokens(text);
    const std::vector<OracleField> fields = OracleTrailingFields(layout);
    const size_t count = tokens.size();
    if (count < 3 + fields.size()) {
        return false;
    }
    const size_t firstTrailing = count - fields.size();

    NozzleSpecification nozzle;
    for (size_t i = 0; i < fields.size(); ++i) {
        OracleApply(fields[i], tokens[firstTrailing + i], m, nozzle);
    }
    if (layout == OldRowLayout::kUser7005) {
        m.SetNozzleSpecification(nozzle);
    }
    m.SetMaker(tokens[1].c_str());
    m.SetGrade(tokens[2].c_str());

    const double volume =
        m.GetScrewDiameter() * 0.7853975 * m.GetScrewDiameter() * m.GetScrewStroke() * 0.001;
    double rounded = 0.0;
    platform::ScanDouble(platform::FormatC("%.4lg", volume).c_str(), &rounded);
    m.SetShotVolume(rounded);

    std::string copy = text;
    for (size_t i = count; i-- > firstTrailing;) {
        const size_t at = copy.rfind(tokens[i]);
        if (at != std::string::npos && at != 0) {
            copy.erase(at - 1);
        }
    }
    size_t g = copy.find(tokens[2]);
    if (tokens[1] == tokens[2]) {
        g += tokens[1].size() + 1;
    }
    copy.erase(0, std::min(copy.size(), g + tokens[2].size() + 1));
    m.SetRemark(copy.c_str());
    return true;
}

}  // namespace qzr::legacy::testing

#endif  // QZR_TESTS_BANK_LEGACY_ROW_ORACLE_H
