#include "bank/LoadObserver.h"

namespace qzr::bank {

namespace {

// One per thread, so that a tool checking banks on several threads gives each its own.
thread_local LoadObserver* t_observer = nullptr;

}  // namespace

LoadObserver* CurrentLoadObserver() {
    return t_observer;
}

ScopedLoadObserver::ScopedLoadObserver(LoadObserver* observer) : m_previous(t_observer) {
    t_observer = observer;
}

ScopedLoadObserver::~ScopedLoadObserver() {
    t_observer = m_previous;
}

}  // namespace qzr::bank
