// Unsigned numbers of a fixed count of bits, one behind the other, the highest bit first.
//
// Blocks of `block_length` numbers start at a whole byte whatever the bits, so that long arrays can be
// turned block by block, each small enough for the nearest cache.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vak {

constexpr size_t block_length = 512;

inline size_t packed_bytes(size_t count, unsigned bits) { return (count * bits + 7) / 8; }

// Collects bits and writes them out as whole bytes.
class BitWriter {
public:
    explicit BitWriter(unsigned char* to) : to_(to) {}

    // bits: 1 to 32, value below 2^bits.
    void put(uint64_t value, unsigned bits)
    {
        pending_ = pending_ << bits | value;
        pending_bits_ += bits;
        if (pending_bits_ < 32) return;
        pending_bits_ -= 32;
        const auto word = static_cast<uint32_t>(pending_ >> pending_bits_);
        for (unsigned i = 0; i < 4; ++i) to_[i] = static_cast<unsigned char>(word >> (24 - 8 * i));
        to_ += 4;
    }

    void finish()
    {
        for (; pending_bits_ >= 8; pending_bits_ -= 8) {
            *to_++ = static_cast<unsigned char>(pending_ >> (pending_bits_ - 8));
        }
        if (pending_bits_ > 0) *to_ = static_cast<unsigned char>(pending_ << (8 - pending_bits_));
    }

private:
    unsigned char* to_;
    uint64_t pending_ = 0;
    unsigned pending_bits_ = 0;
};

// count <= block_length; writes packed_bytes(count, bits) bytes.
template <class Code>
void pack_block(const Code* codes, size_t count, unsigned bits, unsigned char* to)
{
    BitWriter writer(to);
    if (bits <= 32) {
        for (size_t i = 0; i < count; ++i) writer.put(codes[i], bits);
    } else {
        for (size_t i = 0; i < count; ++i) {
            writer.put(static_cast<uint64_t>(codes[i]) >> 32, bits - 32);
            writer.put(static_cast<uint32_t>(codes[i]), 32);
        }
    }
    writer.finish();
}

// The bits from the given one on, as the upper end of a word; the lower 7 may be missing.
inline uint64_t word_at(const unsigned char* from, size_t bit)
{
    const unsigned char* p = from + bit / 8;
    uint64_t word = 0;
    for (unsigned i = 0; i < 8; ++i) word |= static_cast<uint64_t>(p[i]) << (56 - 8 * i);
    return word << bit % 8;
}

// count <= block_length, bits below those of Code; reads packed_bytes(count, bits) bytes.
template <class Code>
void unpack_block(const unsigned char* from, size_t count, unsigned bits, Code* codes)
{
    if (bits == 0) {
        std::fill_n(codes, count, Code{0});
        return;
    }
    unsigned char padded[block_length * sizeof(Code) + sizeof(uint64_t)];  // words reach behind the end
    const size_t size = packed_bytes(count, bits);
    std::memcpy(padded, from, size);
    std::memset(padded + size, 0, sizeof(uint64_t));
    if (bits <= 32) {
        for (size_t i = 0; i < count; ++i)
            codes[i] = static_cast<Code>(word_at(padded, i * bits) >> (64 - bits));
    } else {
        const unsigned high = bits - 32;
        for (size_t i = 0; i < count; ++i) {
            const size_t bit = i * bits;
            const uint64_t upper = word_at(padded, bit) >> (64 - high);
            codes[i] = static_cast<Code>(upper << 32 | word_at(padded, bit + high) >> 32);
        }
    }
}

}  // namespace vak
