#include "ScopedEnvOverride.h"

namespace qzr::platform {

namespace {

Env* g_override = nullptr;

}  // namespace

Env* CurrentEnv() {
    return g_override != nullptr ? g_override : Env::Default();
}

ScopedEnvOverride::ScopedEnvOverride(Env* env) : m_previous(g_override) {
    g_override = env;
}

ScopedEnvOverride::~ScopedEnvOverride() {
    g_override = m_previous;
}

}  // namespace qzr::platform
