// Blocks of one size for the private data of the records, carved from slabs of some dozens of
// kilobytes: a catalogue of a hundred thousand machines asks for two blocks per machine, and
// taking them from slabs filled in order is far cheaper than a general allocation each, above
// all in a heap that earlier catalogues have left in pieces. A block may be freed on any thread;
// a slab whose blocks are all free goes back to the heap unless it is the only one with room.
#ifndef QZR_RECORDS_BLOCKPOOL_H
#define QZR_RECORDS_BLOCKPOOL_H

#include <atomic>
#include <cstddef>
#include <new>

namespace qzr::records {

class BlockPool {
  public:
    explicit BlockPool(std::size_t blockSize);
    // Gives back the slabs whose blocks are all free; those of blocks still taken stay theirs.
    ~BlockPool();
    BlockPool(const BlockPool&) = delete;
    BlockPool& operator=(const BlockPool&) = delete;

    // A block of the pool's size, aligned as a pointer; throws std::bad_alloc.
    void* Allocate();
    // Takes back a block Allocate gave (null is ignored).
    void Free(void* block) noexcept;

  private:
    struct Slab;
    class Hold;

    Slab* NewSlab();
    void Unlink(Slab& slab) noexcept;
    void PushWithRoom(Slab& slab) noexcept;

    // Held for the few instructions that take or give back a block: a thread that finds it held
    // yields until it is free, which costs less than a mutex when, as nearly always, it is not.
    std::atomic<bool> m_held{false};
    std::size_t m_stride;        // a block and the link to its slab before it
    std::size_t m_slabBlocks;    // blocks per slab
    Slab* m_withRoom = nullptr;  // the slabs with a free block, most recent first
    std::size_t m_slabsWithRoom = 0;
};

// The pool of one record's private data, never destroyed: records freed while static objects
// are destroyed at exit still find it.
template <class Fields>
BlockPool& PoolOf() {
    alignas(BlockPool) static unsigned char storage[sizeof(BlockPool)];
    static BlockPool* const pool = ::new (storage) BlockPool(sizeof(Fields));
    return *pool;
}

// Whether records take their private data from the pools. A build for AddressSanitizer leaves
// every block to the general heap, so that a block used after it was freed is still caught.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kRecordsUsePools = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kRecordsUsePools = false;
#else
constexpr bool kRecordsUsePools = true;
#endif
#else
constexpr bool kRecordsUsePools = true;
#endif

// Gives the private data of a record its pool: derive Fields from PooledBlock<Fields>.
template <class Fields>
struct PooledBlock {
    // Blocks are aligned for a pointer, which is all the private data needs.
    static void* operator new(std::size_t size) {
        static_assert(alignof(Fields) <= alignof(void*), "blocks are aligned for a pointer");
        return kRecordsUsePools && size == sizeof(Fields) ? PoolOf<Fields>().Allocate()
                                                          : ::operator new(size);
    }
    static void operator delete(void* block, std::size_t size) noexcept {
        if (kRecordsUsePools && size == sizeof(Fields)) {
            PoolOf<Fields>().Free(block);
        } else {
            ::operator delete(block);
        }
    }
};

}  // namespace qzr::records

#endif  // QZR_RECORDS_BLOCKPOOL_H
