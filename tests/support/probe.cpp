// One line of text for every object below a group.
#include "support/probe.h"

#include <array>

#include "support/ids.h"
#include "support/written_order.h"

namespace vak::test {

namespace {

std::string text_type(hid_t type)
{
    if (H5Tis_variable_str(type) > 0) return "string";
    static constexpr std::array<const char*, 3> paddings{":nullterm", ":nullpad", ""};
    return "char[" + std::to_string(H5Tget_size(type)) + "]" +
           paddings.at(static_cast<size_t>(H5Tget_strpad(type))) +
           (H5Tget_cset(type) == H5T_CSET_ASCII ? "" : ":utf8");
}

std::string type_text(hid_t type)
{
    const std::string bits = std::to_string(8 * H5Tget_size(type));
    const std::string order = H5Tget_order(type) == H5T_ORDER_BE ? "be" : "";
    switch (H5Tget_class(type)) {
        case H5T_INTEGER: return (H5Tget_sign(type) == H5T_SGN_NONE ? "uint" : "int") + bits + order;
        case H5T_FLOAT: return "float" + bits + order;
        case H5T_STRING: return text_type(type);
        default: return "class" + std::to_string(H5Tget_class(type)) + "[" + bits + "]";
    }
}

std::string list(const std::vector<hsize_t>& numbers, const char* open, const char* close)
{
    std::string text;
    for (const hsize_t n : numbers) text += (text.empty() ? "" : ",") + std::to_string(n);
    return open + text + close;
}

std::string space_text(hid_t space)
{
    if (H5Sget_simple_extent_type(space) == H5S_NULL) return " [null]";
    std::array<hsize_t, H5S_MAX_RANK> extents{}, limits{};
    const int rank = H5Sget_simple_extent_dims(space, extents.data(), limits.data());
    std::string text;
    for (size_t i = 0; i < static_cast<size_t>(rank); ++i) {
        std::string extent = std::to_string(extents[i]);
        if (limits[i] == H5S_UNLIMITED)
            extent = "unlimited(" + extent + ")";
        else if (limits[i] != extents[i])
            extent += "to" + std::to_string(limits[i]);
        text += (text.empty() ? "" : ",") + extent;
    }
    return rank <= 0 ? "" : " [" + text + "]";
}

std::string layout_text(hid_t properties)
{
    std::array<hsize_t, H5S_MAX_RANK> chunk{};
    switch (H5Pget_layout(properties)) {
        case H5D_COMPACT: return " compact";
        case H5D_CONTIGUOUS: return H5Pget_external_count(properties) > 0 ? " external" : " contiguous";
        case H5D_CHUNKED: {
            const int rank = H5Pget_chunk(properties, H5S_MAX_RANK, chunk.data());
            return " chunked" + list({chunk.data(), chunk.data() + rank}, "(", ")");
        }
        default: return " otherlayout";
    }
}

std::string filter_text(hid_t properties, unsigned place)
{
    unsigned flags = 0, config = 0;
    std::array<unsigned, 20> values{};
    size_t count = values.size();
    const H5Z_filter_t filter =
        H5Pget_filter2(properties, place, &flags, &count, values.data(), 0, nullptr, &config);
    const std::string optional = (flags & H5Z_FLAG_OPTIONAL) != 0 && filter != H5Z_FILTER_DEFLATE &&
                                         filter != H5Z_FILTER_SHUFFLE && filter != H5Z_FILTER_SCALEOFFSET
                                     ? ":optional"
                                     : "";
    switch (filter) {
        case H5Z_FILTER_DEFLATE: return " deflate(" + std::to_string(values[0]) + ")";
        case H5Z_FILTER_SHUFFLE: return " shuffle";
        case H5Z_FILTER_SCALEOFFSET:
            return std::string(" scaleoffset(") + (values[0] == H5Z_SO_INT ? "int," : "float,") +
                   std::to_string(static_cast<int>(values[1])) + ")";
        default: return " filter" + std::to_string(filter) + optional;
    }
}

std::string fill_text(hid_t properties, hid_t type)
{
    H5D_fill_value_t defined = H5D_FILL_VALUE_DEFAULT;
    H5Pfill_value_defined(properties, &defined);
    if (defined == H5D_FILL_VALUE_UNDEFINED) return " fill=undefined";
    if (defined != H5D_FILL_VALUE_USER_DEFINED) return "";
    if (H5Tget_class(type) == H5T_STRING) {
        std::string text(H5Tget_size(type), '\0');
        H5Pget_fill_value(properties, type, text.data());
        return " fill=\"" + text + "\"";
    }
    double value = 0;
    H5Pget_fill_value(properties, H5T_NATIVE_DOUBLE, &value);
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return " fill=" + text;
}

// Times at which storage is made and filled, where they are not HDF5's choice for the layout.
std::string times_text(hid_t properties)
{
    H5D_alloc_time_t made = H5D_ALLOC_TIME_DEFAULT;
    H5D_fill_time_t filled = H5D_FILL_TIME_IFSET;
    H5Pget_alloc_time(properties, &made);
    H5Pget_fill_time(properties, &filled);
    const H5D_layout_t form = H5Pget_layout(properties);
    const H5D_alloc_time_t usual = form == H5D_COMPACT   ? H5D_ALLOC_TIME_EARLY
                                   : form == H5D_CHUNKED ? H5D_ALLOC_TIME_INCR
                                                         : H5D_ALLOC_TIME_LATE;
    std::string text;
    if (made != usual)
        text += " alloc=" + std::string(made == H5D_ALLOC_TIME_EARLY  ? "early"
                                        : made == H5D_ALLOC_TIME_LATE ? "late"
                                                                      : "incr");
    if (filled != H5D_FILL_TIME_IFSET)
        text += filled == H5D_FILL_TIME_NEVER ? " filled=never" : " filled=alloc";
    return text;
}

std::string dataset_text(hid_t dataset)
{
    const TypeId type(H5Dget_type(dataset), "type");
    const SpaceId space(H5Dget_space(dataset), "space");
    const PropertiesId properties(H5Dget_create_plist(dataset), "properties");
    std::string text = type_text(type) + space_text(space) + layout_text(properties);
    const int filters = H5Pget_nfilters(properties);
    for (unsigned i = 0; i < static_cast<unsigned>(filters); ++i) text += filter_text(properties, i);
    return text + fill_text(properties, type) + times_text(properties);
}

// Attributes come in the order in which they stand in the object's header: the order of writing.
std::string attribute_lines(hid_t object, const std::string& prefix)
{
    struct Lines {
        std::string prefix, text;
    } lines{prefix, ""};
    H5Aiterate2(
        object, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr,
        [](hid_t from, const char* name, const H5A_info_t*, void* data) -> herr_t {
            auto& to = *static_cast<Lines*>(data);
            const AttributeId attribute(H5Aopen(from, name, H5P_DEFAULT), name);
            const TypeId type(H5Aget_type(attribute), "type");
            const SpaceId space(H5Aget_space(attribute), "space");
            to.text += "A " + to.prefix + name + " " + type_text(type) + space_text(space) + "\n";
            return 0;
        },
        &lines);
    return lines.text;
}

std::string group_lines(hid_t group, const std::string& prefix);

std::string object_lines(hid_t group, const std::string& name, const std::string& path)
{
    const ObjectId object = open_object(group, name);
    H5O_info2_t info{};
    H5Oget_info3(object, &info, H5O_INFO_BASIC);
    const std::string end = (info.rc > 1 ? " links=" + std::to_string(info.rc) : "") + "\n";
    switch (info.type) {
        case H5O_TYPE_GROUP: return "G " + path + end + group_lines(object, path + "/");
        case H5O_TYPE_DATASET:
            return "D " + path + " " + dataset_text(object) + end + attribute_lines(object, path + "@");
        default: return "T " + path + end;
    }
}

std::string link_lines(hid_t group, const std::string& name, const std::string& path)
{
    H5L_info2_t info{};
    H5Lget_info2(group, name.c_str(), &info, H5P_DEFAULT);
    if (info.type == H5L_TYPE_HARD) return object_lines(group, name, path);
    std::string target(info.u.val_size, '\0');
    H5Lget_val(group, name.c_str(), target.data(), target.size(), H5P_DEFAULT);
    if (info.type == H5L_TYPE_SOFT) return "L " + path + " -> " + target.c_str() + "\n";
    const char *file = nullptr, *inside = nullptr;
    unsigned flags = 0;
    H5Lunpack_elink_val(target.data(), target.size(), &flags, &file, &inside);
    return "X " + path + " -> " + file + ":" + inside + "\n";
}

std::string group_lines(hid_t group, const std::string& prefix)
{
    std::string text = attribute_lines(group, prefix);
    for (const std::string& name : names_as_written(group)) text += link_lines(group, name, prefix + name);
    return text;
}

}  // namespace

std::string layout(hid_t location, const std::string& group)
{
    return "\n" + group_lines(open_object(location, group), "");
}

std::string layout(const std::string& file_name, const std::string& group)
{
    return layout(read_file(file_name), group);
}

}  // namespace vak::test
