// The zlib streams of the deflate filter, by libdeflate where it is at hand, else by zlib.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vak {

// More than this no stream of so many bytes holds: 258 bytes come of two bits at best.
constexpr size_t largest_inflated(size_t size)
{
    constexpr size_t most_of_each = 1032;
    return size > SIZE_MAX / most_of_each ? SIZE_MAX : size * most_of_each;
}

class Deflater {
public:
    explicit Deflater(unsigned level);  // 0 to 9, as for the filter
    ~Deflater();

    size_t limit(size_t size) const;  // room that a stream of so many bytes may need

    // Gives the size of the stream, or 0 on failure.
    size_t deflate(const void* from, size_t size, unsigned char* to, size_t room);

private:
    struct State;
    std::unique_ptr<State> state_;
};

class Inflater {
public:
    Inflater();
    ~Inflater();

    // Gives the size of what came out, or 0 when the stream is damaged or holds more than fits into the room.
    size_t inflate(const void* from, size_t size, void* to, size_t room);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vak
