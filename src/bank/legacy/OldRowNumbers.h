// The "%.4lg" rounding of the shot volume that the legacy rows derive, fast enough for banks of
// hundreds of thousands of rows. It gives exactly what the platform's C-locale conversions give
// (CNumbers.h), taking a shortcut only where the four digits are certain and handing everything
// else to those conversions. The rows' "%lf" fields are read with bank/BankNumbers.h.
#ifndef QZR_BANK_LEGACY_OLDROWNUMBERS_H
#define QZR_BANK_LEGACY_OLDROWNUMBERS_H

namespace qzr::legacy {

// The value "%.4lg" prints for value, read back as atof reads it: four significant digits.
double RoundToFourDigits(double value);

}  // namespace qzr::legacy

#endif  // QZR_BANK_LEGACY_OLDROWNUMBERS_H
