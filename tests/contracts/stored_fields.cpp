#include "contracts/stored_fields.h"

namespace vak::test {

namespace {

void describe(Field& field, hid_t type, hid_t space)
{
    const TypeId type_id(type, "type");
    const SpaceId space_id(space, "space");
    field.type_class = H5Tget_class(type_id);
    field.size = H5Tget_size(type_id);
    field.extents.resize(static_cast<size_t>(H5Sget_simple_extent_ndims(space_id)));
    H5Sget_simple_extent_dims(space_id, field.extents.data(), nullptr);
}

void add_dataset(hid_t dataset, const std::string& path, std::vector<Field>& found)
{
    const size_t slash = path.rfind('/');
    Field field{slash == std::string::npos ? "." : path.substr(0, slash),
                path.substr(slash + 1),
                false,
                H5T_NO_CLASS,
                0,
                {}};
    describe(field, H5Dget_type(dataset), H5Dget_space(dataset));
    found.push_back(field);
}

void add_attributes(hid_t object, const std::string& path, std::vector<Field>& found)
{
    H5O_info2_t info;
    H5Oget_info3(object, &info, H5O_INFO_NUM_ATTRS);
    for (hsize_t i = 0; i < info.num_attrs; ++i) {
        const AttributeId attribute(
            H5Aopen_by_idx(object, ".", H5_INDEX_NAME, H5_ITER_INC, i, H5P_DEFAULT, H5P_DEFAULT),
            "attribute");
        char name[64];
        H5Aget_name(attribute, sizeof name, name);
        Field field{path, name, true, H5T_NO_CLASS, 0, {}};
        describe(field, H5Aget_type(attribute), H5Aget_space(attribute));
        found.push_back(field);
    }
}

}  // namespace

std::vector<Field> fields_of(hid_t block)
{
    std::vector<Field> fields;
    H5Ovisit3(
        block, H5_INDEX_NAME, H5_ITER_NATIVE,
        [](hid_t from, const char* name, const H5O_info2_t* info, void* data) -> herr_t {
            auto& found = *static_cast<std::vector<Field>*>(data);
            const ObjectId object = open_object(from, name);
            if (info->type == H5O_TYPE_DATASET) add_dataset(object, name, found);
            add_attributes(object, name, found);
            return 0;
        },
        &fields, H5O_INFO_BASIC);
    return fields;
}

void remove_field(hid_t block, const Field& field)
{
    const ObjectId holder = open_object(block, field.group);
    const herr_t removed = field.is_attribute ? H5Adelete(holder, field.name.c_str())
                                              : H5Ldelete(holder, field.name.c_str(), H5P_DEFAULT);
    if (removed < 0) throw std::runtime_error("cannot remove " + field.name);
}

TypeId text_type_of(size_t length, H5T_str_t padding)
{
    TypeId type(H5Tcopy(H5T_C_S1), "text");
    H5Tset_size(type, length);
    H5Tset_strpad(type, padding);
    return type;
}

SpaceId array_space(const std::vector<hsize_t>& extents)
{
    return {H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr), "space"};
}

}  // namespace vak::test
