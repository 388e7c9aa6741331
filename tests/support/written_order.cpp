// HDF5 lists an ordinary group by name only. Its names stand in a heap of the file, each new one behind those
// before it; so that heap is read here from the file's bytes.
#include "support/written_order.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <map>
#include <optional>

namespace vak::test {

namespace {

std::vector<std::string> names_in(hid_t group, H5_index_t index)
{
    std::vector<std::string> names;
    H5Literate2(
        group, index, H5_ITER_NATIVE, nullptr,
        [](hid_t, const char* name, const H5L_info2_t*, void* data) -> herr_t {
            static_cast<std::vector<std::string>*>(data)->emplace_back(name);
            return 0;
        },
        &names);
    return names;
}

class Bytes {
public:
    explicit Bytes(hid_t object)
    {
        H5Fflush(object, H5F_SCOPE_LOCAL);
        std::string name(4096, '\0');
        const ssize_t length = H5Fget_name(object, name.data(), name.size());
        if (length > 0) stream_.open(name.substr(0, static_cast<size_t>(length)), std::ios::binary);
    }

    std::string read(uint64_t at, size_t count)
    {
        std::string bytes(count, '\0');
        stream_.seekg(static_cast<std::streamoff>(at));
        if (!stream_.read(bytes.data(), static_cast<std::streamsize>(count))) stream_.clear();
        return bytes;
    }

    template <class T>
    T number(uint64_t at)
    {
        T value{};
        std::memcpy(&value, read(at, sizeof value).data(), sizeof value);
        return value;
    }

private:
    std::ifstream stream_;
};

uint64_t header_address(hid_t group)
{
    H5O_info2_t info{};
    haddr_t address = HADDR_UNDEF;
    H5Oget_info3(group, &info, H5O_INFO_BASIC);
    H5VLnative_token_to_addr(group, info.token, &address);
    return address;
}

// The heap's address stands in the symbol table message; a header is a chain of blocks of messages.
std::optional<uint64_t> heap_address(Bytes& file, uint64_t header)
{
    struct Block {
        uint64_t at, size;
    };
    constexpr uint16_t continuation = 0x10, symbol_table = 0x11;
    if (file.number<uint8_t>(header) != 1) return std::nullopt;
    std::vector<Block> blocks{{header + 16, file.number<uint32_t>(header + 8)}};
    for (size_t i = 0; i < blocks.size(); ++i) {
        const Block block = blocks[i];
        for (uint64_t at = block.at; at < block.at + block.size; at += 8 + file.number<uint16_t>(at + 2)) {
            const auto kind = file.number<uint16_t>(at);
            if (kind == symbol_table) return file.number<uint64_t>(at + 16);
            if (kind == continuation)
                blocks.push_back({file.number<uint64_t>(at + 8), file.number<uint64_t>(at + 16)});
        }
    }
    return std::nullopt;
}

std::string heap_names(Bytes& file, uint64_t heap)
{
    const auto size = file.number<uint64_t>(heap + 8);
    return file.read(file.number<uint64_t>(heap + 24), size);
}

size_t place_of(const std::string& name, const std::string& heap)
{
    const std::string closed(name.c_str(), name.size() + 1);
    for (size_t at = 8; at + closed.size() <= heap.size(); at += 8)
        if (heap.compare(at, closed.size(), closed) == 0) return at;
    return heap.size();
}

}  // namespace

std::vector<std::string> names_as_written(hid_t group)
{
    std::vector<std::string> names = names_in(group, H5_INDEX_NAME);
    Bytes file(group);
    const auto address = heap_address(file, header_address(group));
    if (!address) return names;
    const std::string heap = heap_names(file, *address);
    std::map<std::string, size_t> places;
    for (const auto& name : names) places[name] = place_of(name, heap);
    std::stable_sort(names.begin(), names.end(),
                     [&](const auto& a, const auto& b) { return places[a] < places[b]; });
    return names;
}

}  // namespace vak::test
