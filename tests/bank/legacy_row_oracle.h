// The legacy row parser written the slow and literal way, step by step as the DLL did it:
// strtok over a copy, sscanf conversions, "%.4lg" printed and read back, and the remark cut
// back field by field at the last occurrence of each trailing token. The library's parser
// takes shortcuts (one pass, no copies, fast number paths) and must agree with it on every row.
// Also a dump of the attributes a legacy bank carries, so that a failing comparison names the
// field that differs.
#ifndef QZR_TESTS_BANK_LEGACY_ROW_ORACLE_H
#define QZR_TESTS_BANK_LEGACY_ROW_ORACLE_H

#include <algorithm>
#include <string>
#include <vector>

#include <QZRMachine/QZRIM.h>

#include "bank/legacy/OldRowLayout.h"
#include "platform/CNumbers.h"

namespace qzr::legacy::testing {

using OracleField = void (*)(const std::string& token, CQZRIM& m, NozzleSpecification& n);

template <void (CQZRIM::*Set)(double)>
void Real(const std::string& token, CQZRIM& m, NozzleSpecification&) {
    double value = 0;
    if (platform::ScanDouble(token.c_str(), &value)) (m.*Set)(value);
}
template <void (CQZRIM::*Set)(int)>
void Int(const std::string& token, CQZRIM& m, NozzleSpecification&) {
    int value = 0;
    if (platform::ScanInt(token.c_str(), &value)) (m.*Set)(value);
}
template <double NozzleSpecification::*Member>
void Nozzle(const std::string& token, CQZRIM&, NozzleSpecification& n) {
    platform::ScanDouble(token.c_str(), &(n.*Member));
}
inline void NozzleType(const std::string& token, CQZRIM&, NozzleSpecification& n) {
    platform::ScanInt(token.c_str(), &n.Type);
}

// The trailing numeric fields of each layout, in the order they stand in a row.
inline std::vector<OracleField> OracleTrailingFields(OldRowLayout layout) {
    using M = CQZRIM;
    using N = NozzleSpecification;
    std::vector<OracleField> fields = {Real<&M::SetClampingForce>,     Real<&M::SetShotWeight>,
                                       Real<&M::SetInjectionPressure>, Real<&M::SetInjectionRate>,
                                       Real<&M::SetScrewDiameter>,     Real<&M::SetScrewStroke>};
    const std::vector<OracleField> times = {Real<&M::SetTimeConstFR>, Real<&M::SetTimeConstIP>,
                                            Real<&M::SetNozzleVolume>,
                                            Real<&M::SetMaxPressureSlope>};
    const std::vector<OracleField> energy = {Int<&M::SetMachineEnergyType>,
                                             Real<&M::SetHydraulicPressureTransferFactor>};
    const std::vector<OracleField> nozzle = {
        NozzleType,         Nozzle<&N::Value1>, Nozzle<&N::Value2>, Nozzle<&N::Value3>,
        Nozzle<&N::Value4>, Nozzle<&N::Value5>, Nozzle<&N::Value6>};
    if (layout == OldRowLayout::kSystem7007)
        fields.insert(fields.end(), energy.begin(), energy.end());
    if (layout == OldRowLayout::kUser7003)
        fields.insert(fields.end(), times.begin(), times.end() - 1);
    if (layout == OldRowLayout::kUser7004) fields.insert(fields.end(), times.begin(), times.end());
    if (layout == OldRowLayout::kUser7005) {
        fields.insert(fields.end(), times.begin(), times.end());
        fields.insert(fields.end(), energy.begin(), energy.end());
        fields.insert(fields.end(), nozzle.begin(), nozzle.end());
    }
    return fields;
}

inline bool OracleParseOldRow(const char* row, OldRowLayout layout, CQZRIM& m) {
    const std::string text = std::string(row).substr(0, 1023);  // the 1024-byte work buffer
    std::vector<std::string> tokens;
    std::string current;
    for (const char c : text + ',') {
        if (c != ',' && c != '\n') {
            current += c;
        } else if (!current.empty()) {
            tokens.push_back(current);
            current.clear();
        }
    }
    const std::vector<OracleField> fields = OracleTrailingFields(layout);
    const size_t count = tokens.size();
    if (count < 3 + fields.size()) return false;
    const size_t firstTrailing = count - fields.size();
    NozzleSpecification nozzle;
    for (size_t i = 0; i < fields.size(); ++i) fields[i](tokens[firstTrailing + i], m, nozzle);
    if (layout == OldRowLayout::kUser7005) m.SetNozzleSpecification(nozzle);
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
        if (at != std::string::npos && at != 0) copy.erase(at - 1);
    }
    size_t grade = copy.find(tokens[2]);
    if (tokens[1] == tokens[2]) grade += tokens[1].size() + 1;
    copy.erase(0, std::min(copy.size(), grade + tokens[2].size() + 1));
    m.SetRemark(copy.c_str());
    return true;
}

// Every attribute a legacy bank writes or derives, in the order of a 7005 row (the shot
// volume after the stroke), reals with "%.*g" of the given precision (17: equal texts mean
// equal values).
inline std::string LegacyFields(const CQZRIM& m, int precision = 6) {
    const NozzleSpecification& n = m.GetNozzleSpecification();
    std::string text =
        std::string("[") + m.GetMaker() + "|" + m.GetGrade() + "|" + m.GetRemark() + "]";
    for (const double value : {m.GetClampingForce(),
                               m.GetShotWeight(),
                               m.GetInjectionPressure(),
                               m.GetInjectionRate(),
                               m.GetScrewDiameter(),
                               m.GetScrewStroke(),
                               m.GetShotVolume(),
                               m.GetTimeConstFR(),
                               m.GetTimeConstIP(),
                               m.GetNozzleVolume(),
                               m.GetMaxPressureSlope(),
                               double(m.GetMachineEnergyType()),
                               m.GetHydraulicPressureTransferFactor(),
                               double(n.Type),
                               n.Value1,
                               n.Value2,
                               n.Value3,
                               n.Value4,
                               n.Value5,
                               n.Value6}) {
        text += platform::FormatC(" %.*g", precision, value);
    }
    return text;
}

}  // namespace qzr::legacy::testing

#endif  // QZR_TESTS_BANK_LEGACY_ROW_ORACLE_H
