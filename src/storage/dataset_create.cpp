// Making datasets: layout, chunk, filters and fill value.
#include "storage/dataset_write.h"
#include "storage/element_type.h"

namespace vak {

namespace {

uint32_t param(const DatasetWrite& w, size_t i) { return w.params == nullptr ? 0 : w.params[i]; }

// Readers of a filtered series see this value where nothing was written.
int32_t set_fill_value(const DatasetWrite& w, hid_t list)
{
    int32_t type_class;
    hid_t number;
    char value[sizeof(double)];
    if (VAK_H5getfillvalue(w.type, w.vak_size, value) < 0) return fail(w, 110, -1, -2110);
    VAK_H5gettype(w.type, w.vak_size, &type_class, &number);
    const herr_t status = H5Pset_fill_value(list, number, value);
    return status < 0 ? fail(w, 120, status, -2120) : 0;
}

int32_t set_scale_offset(const DatasetWrite& w, hid_t list)
{
    if (const int32_t status = set_fill_value(w, list)) return status;
    if (w.type == integer_type) {
        const herr_t status = H5Pset_scaleoffset(list, H5Z_SO_INT, H5Z_SO_INT_MINBITS_DEFAULT);
        return status < 0 ? fail(w, 150, status, -2150) : 0;
    }
    const uint32_t factor = param(w, 0);
    if (factor > 256) return fail(w, 130, factor, -2130);
    const herr_t status = H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, static_cast<int>(factor));
    return status < 0 ? fail(w, 140, status, -2140) : 0;
}

int32_t set_deflate(const DatasetWrite& w, hid_t list)
{
    const unsigned level = param(w, 1);
    if (level > 9) return fail(w, 170, level, -2170);
    const herr_t status = H5Pset_filter(list, H5Z_FILTER_DEFLATE, H5Z_FLAG_MANDATORY, 1, &level);
    return status < 0 ? fail(w, 180, status, -2180) : 0;
}

int32_t set_filters(const DatasetWrite& w, Filters filters, hid_t list)
{
    if (filters.scale_offset)
        if (const int32_t status = set_scale_offset(w, list)) return status;
    if (filters.shuffle) {
        const herr_t status = H5Pset_shuffle(list);
        if (status < 0) return fail(w, 160, status, -2160);
    }
    return filters.deflate ? set_deflate(w, list) : 0;
}

int32_t make_chunked(const DatasetWrite& w, Filters filters, Properties& list)
{
    list = Properties(H5Pcreate(H5P_DATASET_CREATE));
    if (!list.valid()) return fail(w, 60, list.get(), -2060);
    herr_t status = H5Pset_layout(list.get(), H5D_CHUNKED);
    if (status < 0) return fail(w, 70, status, -2070);
    const Extents chunk = w.extendible() ? growing_chunk({w.maximum.data(), w.dims.size()}, chunk_size())
                                         : filtered_chunk(w.dims, w.vak_size);
    status = H5Pset_chunk(list.get(), static_cast<int>(w.dims.size()), chunk.data());
    if (status < 0) return fail(w, 80, status, -2080);
    return set_filters(w, filters, list.get());
}

// Contiguous datasets need no list of their own: that is HDF5's default.
int32_t creation_list(const DatasetWrite& w, hsize_t elements, Properties& own, hid_t& list)
{
    const Filters filters = filters_for(w.type, w.flags, elements);
    if (w.extendible() || filters.any()) {
        const int32_t status = make_chunked(w, filters, own);
        list = own.get();
        return status;
    }
    if (elements * w.vak_size > largest_compact) return 0;
    list = w.ids.compact();
    return list < 0 ? fail(w, 100, list, -2100) : 0;
}

Space new_space(const DatasetWrite& w)
{
    if (w.dims.empty()) return Space(H5Screate(H5S_SCALAR));
    return Space(H5Screate_simple(static_cast<int>(w.dims.size()), w.dims.data(),
                                  w.extendible() ? w.maximum.data() : nullptr));
}

}  // namespace

int32_t create_dataset(DatasetWrite& w, Target& target)
{
    Extents present = w.maximum;
    std::replace(present.begin(), present.end(), H5S_UNLIMITED, hsize_t{0});
    if (const int32_t status = place(w, present)) return status;
    const auto elements = elements_of(w.dims, w.vak_size);
    if (!elements) return fail(w, 999, -1, -3999);
    target.space = new_space(w);
    if (!target.space.valid()) return fail(w, 40, target.space.get(), -2040);
    const hid_t type = stored_type(w.type, w.vak_size, w.ids);
    if (type < 0) return fail(w, 50, type, -2050);
    hid_t list = H5P_DEFAULT;
    if (const int32_t status = creation_list(w, *elements, target.list, list)) return status;
    target.dataset =
        Dataset(H5Dcreate2(w.location.id, w.name, type, target.space.get(), H5P_DEFAULT, list, H5P_DEFAULT));
    if (!target.dataset.valid()) return fail(w, 190, target.dataset.get(), -2190);
    target.is_new = true;
    if (w.type == text_type) w.memory_type = w.ids.text(w.data_size);
    return 0;
}

}  // namespace vak
