// The numeric conversions of the legacy tabular rows, fast enough for banks of hundreds of
// thousands of rows: "%lf" for real fields and the "%.4lg" rounding of the derived shot
// volume. Both give exactly what the platform's C-locale conversions give (CNumbers.h); they
// only take a shortcut for the plain decimal forms that fill real banks and hand everything
// else (hex, inf, nan, an exponent without digits, values out of range) to those conversions.
#ifndef QZR_BANK_LEGACY_OLDROWNUMBERS_H
#define QZR_BANK_LEGACY_OLDROWNUMBERS_H

namespace qzr::legacy {

// sscanf(text, "%lf") under the "C" locale: false, and *value untouched, when nothing converts.
bool ScanRealField(const char* text, double* value);

// The value "%.4lg" prints for value, read back as atof reads it: four significant digits.
double RoundToFourDigits(double value);

}  // namespace qzr::legacy

#endif  // QZR_BANK_LEGACY_OLDROWNUMBERS_H
