// Memory that grows and is not set to zero, for bytes that are about to be written anyway.
#pragma once

#include <cstddef>
#include <memory>

namespace vak {

class Buffer {
public:
    // Room for so many bytes; what was in it may be lost.
    unsigned char* room(size_t size)
    {
        if (size > size_) {
            bytes_.reset();
            bytes_ = std::make_unique_for_overwrite<unsigned char[]>(size);
            size_ = size;
        }
        return bytes_.get();
    }

    bool holds(const unsigned char* bytes) const { return bytes == bytes_.get(); }

private:
    std::unique_ptr<unsigned char[]> bytes_;
    size_t size_ = 0;
};

}  // namespace vak
