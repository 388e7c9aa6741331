// Attributes read without a word, for walks over files that may hold anything.
#include "catalogue/quiet_attribute.h"

#include <algorithm>

#include "storage/element_type.h"

namespace vak {

namespace {

constexpr hsize_t largest_own_buffer = hsize_t{64} << 20;

// The stored elements, of `size` bytes each in memory; empty when there are none or they cannot be read.
std::string elements(const Attribute& attribute, const FoundType& found, hid_t memory_type, size_t size)
{
    const hsize_t count = H5Aget_storage_size(attribute.get()) / found.size;
    if (count > largest_own_buffer / std::max(size, found.size)) return {};
    std::string values(count * size, '\0');
    if (values.empty() || H5Aread(attribute.get(), memory_type, values.data()) < 0) return {};
    return values;
}

}  // namespace

Attribute first_attribute(hid_t object, std::span<const char* const> names)
{
    for (const char* name : names) {
        Attribute attribute(H5Aopen(object, name, H5P_DEFAULT));
        if (attribute.valid()) return attribute;
    }
    return Attribute();
}

std::optional<int32_t> integer_of(const Attribute& attribute)
{
    const FoundType found(H5Aget_type(attribute.get()));
    int32_t value = 0;
    if (found.type_class != H5T_INTEGER || found.size > sizeof value) return std::nullopt;
    const std::string values = elements(attribute, found, H5T_NATIVE_INT, sizeof value);
    if (values.empty()) return std::nullopt;
    values.copy(reinterpret_cast<char*>(&value), sizeof value);
    return value;
}

std::optional<std::string> text_of(const Attribute& attribute)
{
    const FoundType found(H5Aget_type(attribute.get()));
    if (found.type_class != H5T_STRING) return std::nullopt;
    std::string values = elements(attribute, found, found.id.get(), found.size);
    if (values.empty()) return std::nullopt;
    values.resize(found.size);
    return values;
}

}  // namespace vak
