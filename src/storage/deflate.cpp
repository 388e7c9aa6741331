// The two libraries behind one face.
#include "storage/deflate.h"

#ifdef VAK_HAVE_LIBDEFLATE
#include <libdeflate.h>
#else
#include <zlib.h>
#endif

#include <new>

namespace vak {

#ifdef VAK_HAVE_LIBDEFLATE

struct Deflater::State {
    explicit State(unsigned level) : compressor(libdeflate_alloc_compressor(static_cast<int>(level)))
    {
        if (!compressor) throw std::bad_alloc();
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { libdeflate_free_compressor(compressor); }
    libdeflate_compressor* compressor;
};

struct Inflater::State {
    State() : decompressor(libdeflate_alloc_decompressor())
    {
        if (!decompressor) throw std::bad_alloc();
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { libdeflate_free_decompressor(decompressor); }
    libdeflate_decompressor* decompressor;
};

size_t Deflater::limit(size_t size) const { return libdeflate_zlib_compress_bound(state_->compressor, size); }

size_t Deflater::deflate(const void* from, size_t size, unsigned char* to, size_t room)
{
    return libdeflate_zlib_compress(state_->compressor, from, size, to, room);
}

size_t Inflater::inflate(const void* from, size_t size, void* to, size_t room)
{
    size_t out = 0;
    const auto result = libdeflate_zlib_decompress(state_->decompressor, from, size, to, room, &out);
    return result == LIBDEFLATE_SUCCESS ? out : 0;
}

#else

struct Deflater::State {
    explicit State(unsigned l) : level(static_cast<int>(l)) {}
    int level;
};

struct Inflater::State {};

size_t Deflater::limit(size_t size) const { return compressBound(size); }

size_t Deflater::deflate(const void* from, size_t size, unsigned char* to, size_t room)
{
    uLongf out = room;
    const auto result = compress2(to, &out, static_cast<const Bytef*>(from), size, state_->level);
    return result == Z_OK ? out : 0;
}

size_t Inflater::inflate(const void* from, size_t size, void* to, size_t room)
{
    uLongf out = room;
    const auto result = uncompress(static_cast<Bytef*>(to), &out, static_cast<const Bytef*>(from), size);
    return result == Z_OK ? out : 0;
}

#endif

Deflater::Deflater(unsigned level) : state_(std::make_unique<State>(level)) {}
Deflater::~Deflater() = default;
Inflater::Inflater() : state_(std::make_unique<State>()) {}
Inflater::~Inflater() = default;

}  // namespace vak
