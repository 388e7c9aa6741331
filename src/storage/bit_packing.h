// Unsigned numbers of a fixed count of bits, one behind the other, the highest bit first.
//
// Blocks of `block_length` numbers start at a whole byte whatever the bits, so that long arrays can be
// turned block by block, each small enough for the nearest cache.
#pragma once

#include <algorithm>
#include <bit>
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

inline uint64_t highest_first(const unsigned char* from)
{
    uint64_t word;
    std::memcpy(&word, from, sizeof word);
    return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

// Where each of eight neighbours begins; together they fill whole bytes.
struct Neighbours {
    Neighbours(unsigned bits, unsigned skipped)
    {
        for (unsigned i = 0; i < 8; ++i) {
            byte[i] = (i * bits + skipped) / 8;
            shift[i] = (i * bits + skipped) % 8;
        }
    }

    // The bits from there on as the upper end of a word; the lower 7 may be missing.
    uint64_t word(const unsigned char* from, unsigned i) const
    {
        return highest_first(from + byte[i]) << shift[i];
    }

    unsigned byte[8];
    unsigned shift[8];
};

// `codes` has room for a whole block; `bits` are fewer than those of Code. Reads packed_bytes(count, bits)
// bytes.
template <class Code>
void unpack_block(const unsigned char* from, size_t count, unsigned bits, Code* codes)
{
    if (bits == 0) {
        std::fill_n(codes, count, Code{0});
        return;
    }
    // Eights are completed, and words reach behind the end.
    unsigned char padded[block_length * sizeof(Code) + sizeof(uint64_t)];
    const size_t size = packed_bytes(count, bits);
    const size_t eights = (count + 7) / 8;
    std::memcpy(padded, from, size);
    std::memset(padded + size, 0, eights * bits + sizeof(uint64_t) - size);
    const unsigned upper = bits > 32 ? bits - 32 : 0;
    const Neighbours first(bits, 0);
    const Neighbours last(bits, upper);
    for (size_t n = 0; n < eights; ++n) {
        const unsigned char* p = padded + n * bits;
        Code* to = codes + n * 8;
        if (upper == 0) {
            for (unsigned i = 0; i < 8; ++i) to[i] = static_cast<Code>(first.word(p, i) >> (64 - bits));
        } else {
            for (unsigned i = 0; i < 8; ++i)
                to[i] = static_cast<Code>(first.word(p, i) >> (64 - upper) << 32 | last.word(p, i) >> 32);
        }
    }
}

}  // namespace vak
