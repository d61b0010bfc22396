// The test builds' seam into the library's Env: while one lives, every file the library opens,
// copies, renames or lists, and its clock, go through the Env it was given. The test binaries
// and fuzz targets link ScopedEnvOverride.cpp, whose CurrentEnv() stands in for the library's
// own (which always answers Env::Default()).
#ifndef QZR_TESTS_SUPPORT_SCOPEDENVOVERRIDE_H
#define QZR_TESTS_SUPPORT_SCOPEDENVOVERRIDE_H

#include "platform/Env.h"

namespace qzr::platform {

// Installs an Env for the lifetime of this object; overrides nest. Not thread-safe.
class ScopedEnvOverride {
  public:
    explicit ScopedEnvOverride(Env* env);
    ~ScopedEnvOverride();
    ScopedEnvOverride(const ScopedEnvOverride&) = delete;
    ScopedEnvOverride& operator=(const ScopedEnvOverride&) = delete;

  private:
    Env* m_previous;
};

}  // namespace qzr::platform

#endif  // QZR_TESTS_SUPPORT_SCOPEDENVOVERRIDE_H
