// Makes the store of a catalogue controller fail to be created, as when memory runs out: the
// only way a controller comes to have no store. The controller allocates its store with the
// ordinary `new`, so this header replaces the global allocation functions of the test binary;
// include it in exactly one source file of a binary.
#ifndef QZR_TESTS_CATALOGUE_STORECREATIONFAILURE_H
#define QZR_TESTS_CATALOGUE_STORECREATIONFAILURE_H

#include <cstddef>
#include <cstdlib>
#include <new>

#include "catalogue/QZRMoldingMachineDatabase.h"

namespace qzr::test {

// Allocations of a store's size still to fail.
inline int g_storeAllocationsToFail = 0;

// The next `count` store creations of the process fail (0 disarms).
inline void FailNextStoreCreations(int count) {
    g_storeAllocationsToFail = count;
}

}  // namespace qzr::test

void* operator new(std::size_t size) {
    if (size == sizeof(qzr::catalogue::CQZRMoldingMachineDatabase) &&
        qzr::test::g_storeAllocationsToFail > 0) {
        --qzr::test::g_storeAllocationsToFail;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size > 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

#endif  // QZR_TESTS_CATALOGUE_STORECREATIONFAILURE_H
