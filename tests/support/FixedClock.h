// While one lives, the library's clock stands still: every sectioned save is stamped
// "Wed Jan 02 02:03:55 1980" (UTC).
#ifndef QZR_TESTS_SUPPORT_FIXEDCLOCK_H
#define QZR_TESTS_SUPPORT_FIXEDCLOCK_H

#include <cstdint>

#include "EnvWrapper.h"
#include "ScopedEnvOverride.h"

namespace qzr::test {

class FixedClock : public qzr::platform::EnvWrapper {
  public:
    static constexpr int64_t kSeconds = 315626635;

    FixedClock() : EnvWrapper(qzr::platform::Env::Default()), m_override(this) {}
    int64_t NowUtcSeconds() override { return kSeconds; }

  private:
    qzr::platform::ScopedEnvOverride m_override;
};

}  // namespace qzr::test

#endif  // QZR_TESTS_SUPPORT_FIXEDCLOCK_H
