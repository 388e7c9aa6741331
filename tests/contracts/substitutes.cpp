#include "contracts/substitutes.h"

#include <algorithm>
#include <fstream>

namespace vak::test {

namespace {

hsize_t elements(const Field& field)
{
    hsize_t n = 1;
    for (const hsize_t extent : field.extents) n *= extent;
    return n;
}

}  // namespace

TypeId Stage::stored_type() const
{
    const ObjectId object = open_object(holder, ".");
    if (!field.is_attribute) return {H5Dget_type(open_object(holder, kept)), "type"};
    return {H5Aget_type(open_attribute(object, ".", kept)), "type"};
}

std::vector<char> Stage::values(hid_t memory_type) const
{
    std::vector<char> found(elements(field) * std::max<size_t>(H5Tget_size(memory_type), 1));
    const herr_t status =
        field.is_attribute
            ? H5Aread(open_attribute(holder, ".", kept), memory_type, found.data())
            : H5Dread(open_object(holder, kept), memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, found.data());
    if (status < 0) throw std::runtime_error("cannot read " + field.name);
    return found;
}

void Stage::put(hid_t type, hid_t space, hid_t list, const void* data, hid_t memory_type) const
{
    herr_t status = 0;
    if (field.is_attribute) {
        const AttributeId made(H5Acreate2(holder, name(), type, space, H5P_DEFAULT, H5P_DEFAULT), name());
        if (data != nullptr) status = H5Awrite(made, memory_type, data);
    } else {
        const ObjectId made(H5Dcreate2(holder, name(), type, space, H5P_DEFAULT, list, H5P_DEFAULT), name());
        if (data != nullptr) status = H5Dwrite(made, memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, data);
    }
    if (status < 0) throw std::runtime_error(std::string("cannot write ") + name());
}

namespace {

bool any(const Field&) { return true; }
bool dataset(const Field& f) { return !f.is_attribute; }
bool integer(const Field& f) { return f.type_class == H5T_INTEGER && f.size == 4; }
// A key is larger than a byte.
bool small_integer(const Field& f) { return integer(f) && f.name != "block"; }
bool real(const Field& f) { return f.type_class == H5T_FLOAT; }
bool text(const Field& f) { return f.type_class == H5T_STRING; }
bool array(const Field& f) { return !f.is_attribute && !f.extents.empty(); }
Answer before(const Field&) { return {}; }
Answer missing(const Field&) { return not_found; }
Answer refused(const Field&) { return unusable; }

SpaceId space_like(const Field& f)
{
    return f.extents.empty() ? SpaceId(H5Screate(H5S_SCALAR), "space") : array_space(f.extents);
}

// ---- Types ----

template <H5T_class_t type_class>
Answer class_error(const Field&)
{
    return Refusal{3, type_class};
}

template <hid_t (*make)()>
void put_type(const Stage& stage)
{
    const TypeId type(make(), "type");
    stage.put(type, space_like(stage.field));
}

hid_t enumeration()
{
    const hid_t type = H5Tenum_create(H5T_STD_I32LE);
    const int32_t one = 1;
    H5Tenum_insert(type, "one", &one);
    return type;
}
hid_t inner_array()
{
    const hsize_t extent = 4;
    return H5Tarray_create2(H5T_STD_I32LE, 1, &extent);
}
hid_t record()
{
    const hid_t type = H5Tcreate(H5T_COMPOUND, 4);
    H5Tinsert(type, "a", 0, H5T_STD_I32LE);
    return type;
}
hid_t any_text()
{
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, H5T_VARIABLE);
    return type;
}
hid_t one_character() { return H5Tcopy(H5T_C_S1); }
hid_t integer_list() { return H5Tvlen_create(H5T_STD_I32LE); }
hid_t opaque() { return H5Tcreate(H5T_OPAQUE, 4); }
hid_t bits() { return H5Tcopy(H5T_STD_B32LE); }
hid_t object_reference() { return H5Tcopy(H5T_STD_REF_OBJ); }
hid_t reference() { return H5Tcopy(H5T_STD_REF); }
hid_t int8() { return H5Tcopy(H5T_STD_I8LE); }
hid_t int16() { return H5Tcopy(H5T_STD_I16LE); }
hid_t int32_reversed() { return H5Tcopy(H5T_STD_I32BE); }
hid_t uint32() { return H5Tcopy(H5T_STD_U32LE); }
hid_t int64() { return H5Tcopy(H5T_STD_I64LE); }
hid_t int128()
{
    const hid_t type = H5Tcopy(H5T_STD_I64LE);
    H5Tset_size(type, 16);
    return type;
}
hid_t float32_reversed() { return H5Tcopy(H5T_IEEE_F32BE); }
hid_t float64() { return H5Tcopy(H5T_IEEE_F64LE); }

// The field's own values in another type.
template <hid_t (*make)()>
void put_values(const Stage& stage)
{
    const TypeId type(make(), "type");
    const hid_t memory = real(stage.field) ? H5T_NATIVE_FLOAT : H5T_NATIVE_INT32;
    const std::vector<char> values = stage.values(memory);
    stage.put(type, space_like(stage.field), H5P_DEFAULT, values.data(), memory);
}

template <int longer>
void put_text(const Stage& stage)
{
    const TypeId type = text_type_of(std::max<size_t>(stage.field.size + longer, 1), H5T_STR_SPACEPAD);
    const TypeId own = stage.stored_type();
    const std::vector<char> values = stage.values(own);
    stage.put(type, space_like(stage.field), H5P_DEFAULT, values.data(), own);
}

Answer too_long(const Field& f) { return Refusal{10, static_cast<int64_t>(f.size + 1)}; }

template <int64_t size>
Answer too_wide(const Field&)
{
    return Refusal{11, size};
}

void put_committed_type(const Stage& stage)
{
    const TypeId type = stage.stored_type();
    H5Tcommit2(stage.holder, "type of the test", type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    const std::vector<char> values = stage.values(type);
    stage.put(type, space_like(stage.field), H5P_DEFAULT, values.data(), type);
    H5Ldelete(stage.holder, "type of the test", H5P_DEFAULT);
}

// ---- Spaces ----

void put_null(const Stage& stage) { stage.put(stage.stored_type(), SpaceId(H5Screate(H5S_NULL), "space")); }

Answer no_value(const Field& f) { return f.extents.empty() ? unusable : Refusal{20, 0}; }

void put_higher_rank(const Stage& stage)
{
    std::vector<hsize_t> extents = stage.field.extents;
    extents.push_back(1);
    const TypeId own = stage.stored_type();
    const std::vector<char> values = stage.values(own);
    stage.put(own, array_space(extents), H5P_DEFAULT, values.data(), own);
}

// A single value is the first element of whatever is there.
Answer rank_error(const Field& f)
{
    return f.extents.empty() ? Answer() : Refusal{20, static_cast<int64_t>(f.extents.size() + 1)};
}

void put_longer(const Stage& stage)
{
    std::vector<hsize_t> extents = stage.field.extents;
    ++extents.back();
    stage.put(stage.stored_type(), array_space(extents));
}

// Of a series a part is read: more is there than that.
Answer extent_error(const Field& f) { return Refusal{30, static_cast<int64_t>(f.extents.size() - 1)}; }

void put_empty(const Stage& stage) { stage.put(stage.stored_type(), array_space({0})); }

bool single(const Field& f) { return f.extents.empty(); }

// ---- Links and other objects ----

void put_soft_link(const Stage& stage)
{
    H5Lcreate_soft(kept, stage.holder, stage.name(), H5P_DEFAULT, H5P_DEFAULT);
}
void put_hard_link(const Stage& stage)
{
    H5Lcreate_hard(stage.holder, kept, stage.holder, stage.name(), H5P_DEFAULT, H5P_DEFAULT);
}
void put_dangling_link(const Stage& stage)
{
    H5Lcreate_soft("/nowhere", stage.holder, stage.name(), H5P_DEFAULT, H5P_DEFAULT);
}
void put_cyclic_link(const Stage& stage)
{
    H5Lcreate_soft(stage.name(), stage.holder, stage.name(), H5P_DEFAULT, H5P_DEFAULT);
}
void put_external_link(const Stage& stage)
{
    const std::string other = stage.folder + "/other.h5";
    H5Ocopy(stage.holder, kept, create_file(other), "values", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_external(other.c_str(), "/values", stage.holder, stage.name(), H5P_DEFAULT, H5P_DEFAULT);
}
void put_external_link_to_nothing(const Stage& stage)
{
    H5Lcreate_external("nowhere.h5", "/values", stage.holder, stage.name(), H5P_DEFAULT, H5P_DEFAULT);
}
void put_group(const Stage& stage)
{
    ObjectId(H5Gcreate2(stage.holder, stage.name(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "group");
}
void put_type_object(const Stage& stage)
{
    const TypeId type(H5Tcopy(H5T_STD_I32LE), "type");
    H5Tcommit2(stage.holder, stage.name(), type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
}

// ---- Storage ----

PropertiesId creation_list() { return {H5Pcreate(H5P_DATASET_CREATE), "list"}; }

void put_external_storage(const Stage& stage)
{
    const std::string raw = stage.folder + "/raw";
    std::ofstream(raw) << std::string(100000, 'x');
    const PropertiesId list = creation_list();
    H5Pset_external(list, raw.c_str(), 0, H5F_UNLIMITED);
    stage.put(stage.stored_type(), space_like(stage.field), list);
}

void put_virtual(const Stage& stage)
{
    const PropertiesId list = creation_list();
    const SpaceId space = array_space(stage.field.extents);
    H5Pset_virtual(list, space, ".", kept, space);
    stage.put(stage.stored_type(), space, list);
}

PropertiesId one_chunk(const Stage& stage)
{
    PropertiesId list = creation_list();
    H5Pset_chunk(list, static_cast<int>(stage.field.extents.size()), stage.field.extents.data());
    return list;
}

void put_foreign_filter(const Stage& stage)
{
    const PropertiesId list = one_chunk(stage);
    H5Pset_filter(list, 32000, H5Z_FLAG_OPTIONAL, 0, nullptr);
    stage.put(stage.stored_type(), space_like(stage.field), list);
}

// Stores these bytes as the chunk of a deflated dataset.
void put_chunk(const Stage& stage, const std::vector<unsigned char>& bytes)
{
    const PropertiesId list = one_chunk(stage);
    H5Pset_deflate(list, 6);
    stage.put(stage.stored_type(), space_like(stage.field), list);
    const std::vector<hsize_t> origin(stage.field.extents.size(), 0);
    const ObjectId made = open_object(stage.holder, stage.name());
    if (H5Dwrite_chunk(made, H5P_DEFAULT, 0, origin.data(), bytes.size(), bytes.data()) < 0)
        throw std::runtime_error("cannot write the chunk");
}

// As many zeros, as HDF5 deflates them.
std::vector<unsigned char> deflated_zeros(const std::string& scratch, hsize_t n)
{
    const FileId file = create_file(scratch);
    const PropertiesId list = creation_list();
    H5Pset_chunk(list, 1, &n);
    H5Pset_deflate(list, 6);
    H5Pset_alloc_time(list, H5D_ALLOC_TIME_EARLY);
    const ObjectId zeros(
        H5Dcreate2(file, "zeros", H5T_STD_I8LE, array_space({n}), H5P_DEFAULT, list, H5P_DEFAULT), "zeros");
    const hsize_t origin = 0;
    hsize_t size = 0;
    H5Dget_chunk_storage_size(zeros, &origin, &size);
    std::vector<unsigned char> bytes(size);
    uint32_t mask = 0;
    if (H5Dread_chunk(zeros, H5P_DEFAULT, &origin, &mask, bytes.data()) < 0)
        throw std::runtime_error("cannot read the chunk");
    return bytes;
}

// HDF5 stores no more than 64 KiB as a chunk of few values: that much may inflate to some 60 MiB, this to 4.
void put_inflating_chunk(const Stage& stage)
{
    static const std::vector<unsigned char> bytes = deflated_zeros(stage.folder + "/zeros.h5", 1 << 22);
    put_chunk(stage, bytes);
}
void put_damaged_chunk(const Stage& stage) { put_chunk(stage, std::vector<unsigned char>(40, 0xA5)); }

// clang-format off
const Substitute all[] = {
    {"an enumeration", any, class_error<H5T_ENUM>, put_type<enumeration>},
    {"an array type", any, class_error<H5T_ARRAY>, put_type<inner_array>},
    {"a record", any, class_error<H5T_COMPOUND>, put_type<record>},
    {"a text of any length", any, class_error<H5T_VLEN>, put_type<any_text>},
    {"a list of any length", any, class_error<H5T_VLEN>, put_type<integer_list>},
    {"opaque bytes", any, class_error<H5T_OPAQUE>, put_type<opaque>},
    {"bits", any, class_error<H5T_BITFIELD>, put_type<bits>},
    {"an object reference", any, class_error<H5T_REFERENCE>, put_type<object_reference>},
    {"a reference", any, class_error<H5T_REFERENCE>, put_type<reference>},
    {"a text", [](const Field& f) { return !text(f); }, class_error<H5T_STRING>, put_type<one_character>},
    {"an integer", [](const Field& f) { return f.type_class != H5T_INTEGER; }, class_error<H5T_INTEGER>, put_type<int32_reversed>},
    {"a real", [](const Field& f) { return !real(f); }, class_error<H5T_FLOAT>, put_type<float64>},
    {"integers of 1 byte", small_integer, before, put_values<int8>},
    {"integers of 2 bytes", integer, before, put_values<int16>},
    {"integers of the other byte order", integer, before, put_values<int32_reversed>},
    {"integers without a sign", integer, before, put_values<uint32>},
    {"integers of 8 bytes", integer, too_wide<8>, put_values<int64>},
    {"integers of 16 bytes", integer, too_wide<16>, put_type<int128>},
    {"reals of 8 bytes", real, before, put_values<float64>},
    {"reals of the other byte order", real, before, put_values<float32_reversed>},
    {"a longer text", text, too_long, put_text<1>},
    {"a shorter text", text, before, put_text<-1>},
    {"values of a committed type", any, before, put_committed_type},
    {"no space", any, no_value, put_null},
    {"a higher rank", any, rank_error, put_higher_rank},
    {"an empty array", single, refused, put_empty},
    {"a soft link", dataset, before, put_soft_link},
    {"a hard link", dataset, before, put_hard_link},
    {"a link that leads nowhere", dataset, missing, put_dangling_link},
    {"a link to itself", dataset, missing, put_cyclic_link},
    {"an external link", dataset, before, put_external_link},
    {"an external link to no file", dataset, missing, put_external_link_to_nothing},
    {"a group", dataset, missing, put_group},
    {"a type", dataset, missing, put_type_object},
    {"external storage", dataset, refused, put_external_storage},
    {"a virtual dataset", array, refused, put_virtual},
    {"a foreign filter", array, refused, put_foreign_filter},
    {"a damaged chunk", array, refused, put_damaged_chunk},
};
const Substitute longer{"one more", array, extent_error, put_longer};
const Substitute inflating{"a chunk that inflates", array, refused, put_inflating_chunk};
// clang-format on

}  // namespace

std::span<const Substitute> substitutes() { return all; }
const Substitute& longer_array() { return longer; }
const Substitute& inflating_chunk() { return inflating; }

}  // namespace vak::test
