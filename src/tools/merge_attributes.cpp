// The attributes of a merged block: the lowest file's in their order, with the counts of the merged block.
#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "tools/merge_join.h"
#include "tools/same_contents.h"

namespace vak {

namespace {

int32_t merged_count(Join& join, std::string_view name, int32_t value)
{
    if (name == join.kind.count) return static_cast<int32_t>(join.order->size());
    if (!join.kind.widens) return value;
    for (SourceBlock& s : join.sources) {
        const int32_t other = s.integer_attribute(name.data()).value_or(value);
        if (read_failed(join, s.attribute_status())) return value;
        if (name == "length" || name == "nuid") value = std::max(value, other);
        if (name == "off") value &= other;  // a column is left out when no file has it
    }
    return value;
}

void copy_text(Join& join, Block& io, hid_t group, const char* name)
{
    char value[256];
    size_t size = 0;
    if (!read_failed(join, VAK_H5Aread(name, value, text_type, sizeof value, nullptr, 0, group, &size)))
        text(io, name, value);
}

void copy_integer(Join& join, Block& io, hid_t group, const char* name)
{
    int32_t value = 0;
    size_t size = 0;
    if (read_failed(join, VAK_H5Aread(name, &value, integer_type, sizeof value, nullptr, 0, group, &size)))
        return;
    value = merged_count(join, name, value);
    if (join.read_status == 0) integer(io, name, &value);
}

bool is_text(H5T_class_t type_class, const Type& stored)
{
    return type_class == H5T_STRING && H5Tis_variable_str(stored.get()) == 0 &&
           H5Tget_size(stored.get()) <= 256;
}

bool is_integer(H5T_class_t type_class, const Type& stored)
{
    return type_class == H5T_INTEGER && H5Tget_size(stored.get()) <= sizeof(int32_t);
}

bool copy_bytes(hid_t to, const Attribute& from, const Type& stored, const char* name)
{
    constexpr hsize_t largest = 65536;  // HDF5's limit for an attribute beside an object
    const hsize_t bytes = H5Aget_storage_size(from.get());
    if (bytes > largest || !stands_alone(stored)) return false;
    std::array<char, largest> value;
    const Space space(H5Aget_space(from.get()));
    Attribute made(H5Acreate2(to, name, stored.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT));
    if (bytes == 0) return made.valid();
    return H5Aread(from.get(), stored.get(), value.data()) >= 0 &&
           H5Awrite(made.get(), stored.get(), value.data()) >= 0 && made.close();
}

// An attribute that no writer of ours has made is kept where it can be.
void copy_foreign(Block& io, const Attribute& from, const char* name)
{
    if (io.stopped) return;
    const Type stored(H5Aget_type(from.get()));
    if (!copy_bytes(current_group(io), from, stored, name))
        std::fprintf(stderr, "VAK WARNING target file: attribute \"%s\" of a \"%s\" block is left out\n",
                     name, io.kind.type);
}

constexpr int32_t lost_attributes = -4002;  // status, as of an attribute that cannot be opened

struct Attributes {
    Join* join;
    Block* io;
};

herr_t copy_attribute(hid_t group, const char* name, const H5A_info_t*, void* data) noexcept
{
    auto& [join, io] = *static_cast<Attributes*>(data);
    if (join->kind.is_series && std::string_view(name) == "nstate") return 0;  // written last
    const Attribute attribute(H5Aopen(group, name, H5P_DEFAULT));
    if (!attribute.valid()) return -1;
    const Type stored(H5Aget_type(attribute.get()));
    const Space space(H5Aget_space(attribute.get()));
    const H5S_class_t extents = H5Sget_simple_extent_type(space.get());
    const H5T_class_t type_class = H5Tget_class(stored.get());
    if (extents == H5S_NO_CLASS || type_class == H5T_NO_CLASS) return -1;
    const bool is_one = extents == H5S_SCALAR;
    if (is_one && is_text(type_class, stored))
        copy_text(*join, *io, group, name);
    else if (is_one && is_integer(type_class, stored))
        copy_integer(*join, *io, group, name);
    else
        copy_foreign(*io, attribute, name);
    return io->stopped || join->read_status != 0 ? -1 : 0;
}

}  // namespace

static bool has_attributes(hid_t group)
{
    H5O_info2_t info;
    return H5Oget_info3(group, &info, H5O_INFO_NUM_ATTRS) < 0 || info.num_attrs > 0;
}

static void copy_attributes(Join& join, Block& io, hid_t from, const char* section)
{
    Attributes attributes{&join, &io};
    hsize_t at = 0;
    if (has_attributes(from)) enter(io, section);
    const herr_t status = H5Aiterate2(from, H5_INDEX_NAME, H5_ITER_NATIVE, &at, copy_attribute, &attributes);
    if (status < 0 && join.read_status == 0 && !io.stopped) read_failed(join, lost_attributes);
}

void write_attributes(Join& join, Block& io)
{
    copy_attributes(join, io, join.ruling().attributes(), "header");
    // Legacy: the frame of older results, and what others have put there.
    for (const auto& [section, group] : join.ruling().sections()) copy_attributes(join, io, group, section);
}

}  // namespace vak
