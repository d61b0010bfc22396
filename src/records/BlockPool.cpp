#include "records/BlockPool.h"

#include <algorithm>
#include <cstring>
#include <thread>

namespace qzr::records {

namespace {

// A slab fits a heap allocation of 64 KiB with the heap's own bookkeeping.
constexpr std::size_t kSlabBytes = 64 * 1024 - 64;

constexpr std::size_t RoundToPointer(std::size_t bytes) {
    return (bytes + alignof(void*) - 1) / alignof(void*) * alignof(void*);
}

}  // namespace

// The slab's bookkeeping, then its blocks, each after a link back to the slab.
struct BlockPool::Slab {
    Slab* previous = nullptr;  // in the list of slabs with room
    Slab* next = nullptr;
    void* freeBlocks = nullptr;  // blocks freed since they were carved, linked through themselves
    std::size_t carved = 0;      // blocks carved from the slab so far, in order
    std::size_t inUse = 0;
    bool listed = false;  // whether it is in the list of slabs with room

    static constexpr std::size_t HeaderBytes();
    unsigned char* Storage();
};

constexpr std::size_t BlockPool::Slab::HeaderBytes() {
    return RoundToPointer(sizeof(Slab));
}

unsigned char* BlockPool::Slab::Storage() {
    return reinterpret_cast<unsigned char*>(this) + HeaderBytes();
}

namespace {
// The free blocks of a slab are linked through their first bytes.
void* NextFree(const void* block) {
    void* next = nullptr;
    std::memcpy(&next, block, sizeof(next));
    return next;
}
}  // namespace

// The pool held for the lifetime of the object.
class BlockPool::Hold {
  public:
    explicit Hold(std::atomic<bool>& held) : m_held(held) {
        while (m_held.exchange(true, std::memory_order_acquire)) {
            while (m_held.load(std::memory_order_relaxed)) {
                std::this_thread::yield();
            }
        }
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold() { m_held.store(false, std::memory_order_release); }

  private:
    std::atomic<bool>& m_held;
};

BlockPool::BlockPool(std::size_t blockSize)
    : m_stride(sizeof(Slab*) + RoundToPointer(blockSize == 0 ? 1 : blockSize)),
      m_slabBlocks(std::max<std::size_t>(1, (kSlabBytes - Slab::HeaderBytes()) / m_stride)) {}

BlockPool::~BlockPool() {
    Slab* slab = m_withRoom;
    while (slab != nullptr) {
        Slab* const next = slab->next;
        if (slab->inUse == 0) {
            slab->~Slab();
            ::operator delete(slab);
        }
        slab = next;
    }
}

BlockPool::Slab* BlockPool::NewSlab() {
    return ::new (::operator new(Slab::HeaderBytes() + m_slabBlocks * m_stride)) Slab();
}

void BlockPool::Unlink(Slab& slab) noexcept {
    (slab.previous != nullptr ? slab.previous->next : m_withRoom) = slab.next;
    if (slab.next != nullptr) {
        slab.next->previous = slab.previous;
    }
    slab.previous = nullptr;
    slab.next = nullptr;
    slab.listed = false;
    --m_slabsWithRoom;
}

void BlockPool::PushWithRoom(Slab& slab) noexcept {
    slab.previous = nullptr;
    slab.next = m_withRoom;
    if (m_withRoom != nullptr) {
        m_withRoom->previous = &slab;
    }
    m_withRoom = &slab;
    slab.listed = true;
    ++m_slabsWithRoom;
}

void* BlockPool::Allocate() {
    const Hold hold(m_held);
    if (m_withRoom == nullptr) {
        PushWithRoom(*NewSlab());
    }
    Slab& slab = *m_withRoom;
    unsigned char* link = nullptr;
    if (slab.freeBlocks != nullptr) {
        link = static_cast<unsigned char*>(slab.freeBlocks) - sizeof(Slab*);
        slab.freeBlocks = NextFree(slab.freeBlocks);
    } else {
        link = slab.Storage() + slab.carved * m_stride;
        ++slab.carved;
        Slab* const owner = &slab;
        std::memcpy(link, &owner, sizeof(owner));
    }
    ++slab.inUse;
    if (slab.freeBlocks == nullptr && slab.carved >= m_slabBlocks) {
        Unlink(slab);
    }
    return link + sizeof(Slab*);
}

void BlockPool::Free(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    Slab* slab = nullptr;
    std::memcpy(&slab, static_cast<unsigned char*>(block) - sizeof(Slab*), sizeof(slab));
    const Hold hold(m_held);
    std::memcpy(block, &slab->freeBlocks, sizeof(slab->freeBlocks));
    slab->freeBlocks = block;
    --slab->inUse;
    if (!slab->listed) {
        PushWithRoom(*slab);
    }
    if (slab->inUse == 0 && m_slabsWithRoom > 1) {
        Unlink(*slab);
        slab->~Slab();
        ::operator delete(slab);
    }
}

}  // namespace qzr::records
