// Reading and writing text eight bytes at a time: a byte of the text per byte of a 64-bit word, the
// first in the lowest, whatever the processor's byte order, and the tests the scanners make on
// them.
#ifndef QZR_PLATFORM_EIGHTBYTES_H
#define QZR_PLATFORM_EIGHTBYTES_H

#include <cstdint>
#include <cstring>

namespace qzr::platform {

constexpr uint64_t kEveryByte = 0x0101010101010101ULL;
constexpr uint64_t kTopBits = 0x8080808080808080ULL;

// The eight bytes from p (all of which must be readable).
inline uint64_t LoadEightBytes(const char* p) {
    uint64_t word = 0;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    for (int i = 0; i < 8; ++i) {
        word |= static_cast<uint64_t>(static_cast<unsigned char>(p[i])) << (8 * i);
    }
#else
    std::memcpy(&word, p, sizeof(word));  // one load on the little-endian processors
#endif
    return word;
}

// Writes the eight bytes of word at p, its lowest byte first, whatever the byte order.
inline void StoreEightBytes(uint64_t word, char* p) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    for (int i = 0; i < 8; ++i) {
        p[i] = static_cast<char>(word >> (8 * i));
    }
#else
    std::memcpy(p, &word, sizeof(word));
#endif
}

// The top bit of each byte of word from low to high (both below 0x80), and no other bit.
inline uint64_t BytesInRange(uint64_t word, unsigned char low, unsigned char high) {
    const uint64_t sevenBits = word & ~kTopBits;  // no carry leaves a byte below
    const uint64_t atLeastLow = sevenBits + kEveryByte * (0x80 - low);
    const uint64_t aboveHigh = sevenBits + kEveryByte * (0x80 - high - 1);
    return atLeastLow & ~aboveHigh & ~word & kTopBits;
}

// The index of the lowest set bit of a word that is not zero.
inline int LowestSetBit(uint64_t bits) {
#if defined(__GNUC__)
    return __builtin_ctzll(bits);
#else
    constexpr uint64_t kDeBruijn = 0x03F79D71B4CB0A89ULL;
    constexpr int kPositions[64] = {0,  1,  48, 2,  57, 49, 28, 3,  61, 58, 50, 42, 38, 29, 17, 4,
                                    62, 55, 59, 36, 53, 51, 43, 22, 45, 39, 33, 30, 24, 18, 12, 5,
                                    63, 47, 56, 27, 60, 41, 37, 16, 54, 35, 52, 21, 44, 32, 23, 11,
                                    46, 26, 40, 15, 34, 20, 31, 10, 25, 14, 19, 9,  13, 8,  7,  6};
    return kPositions[((bits & (~bits + 1)) * kDeBruijn) >> 58];
#endif
}

// The number of leading bytes (0 to 8) whose top bit is set in bytes, which has no other bits.
inline int LeadingMarkedBytes(uint64_t bytes) {
    const uint64_t unmarked = ~bytes & kTopBits;
    return unmarked == 0 ? 8 : LowestSetBit(unmarked) / 8;
}

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_EIGHTBYTES_H
