// The "%.4lg" rounding of the shot volume that the legacy rows derive, fast enough for banks of
// hundreds of thousands of rows. It gives exactly what writing and reading back with the
// platform's number conversions give (platform/CNumbers.h), taking a shortcut only where the four
// digits are certain and handing everything else to those conversions.
#ifndef QZR_BANK_LEGACY_LEGACYROWNUMBERS_H
#define QZR_BANK_LEGACY_LEGACYROWNUMBERS_H

namespace qzr::legacy {

// The value "%.4lg" prints for value, read back as atof reads it: four significant digits.
double RoundToFourDigits(double value);

}  // namespace qzr::legacy

#endif  // QZR_BANK_LEGACY_LEGACYROWNUMBERS_H
