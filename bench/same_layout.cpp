#include "same_layout.h"

#include "duel.h"

#include <hdf5.h>

namespace bench {

namespace {

struct Visit {
    hid_t other;
    int objects = 0;
};

bool same_types(hid_t a, hid_t b)
{
    const bool same = H5Tequal(a, b) > 0;
    H5Tclose(a);
    H5Tclose(b);
    return same;
}

bool same_spaces(hid_t a, hid_t b)
{
    const bool same = H5Sextent_equal(a, b) > 0;
    H5Sclose(a);
    H5Sclose(b);
    return same;
}

bool same_lists(hid_t a, hid_t b)
{
    const bool same = H5Pequal(a, b) > 0;
    H5Pclose(a);
    H5Pclose(b);
    return same;
}

bool same_datasets(hid_t a, hid_t b)
{
    return same_types(H5Dget_type(a), H5Dget_type(b)) && same_spaces(H5Dget_space(a), H5Dget_space(b)) &&
           same_lists(H5Dget_create_plist(a), H5Dget_create_plist(b));
}

herr_t compare_attribute(hid_t object, const char* name, const H5A_info_t*, void* other)
{
    const hid_t a = H5Aopen(object, name, H5P_DEFAULT);
    const hid_t b = H5Aopen(*static_cast<hid_t*>(other), name, H5P_DEFAULT);
    const bool same =
        b >= 0 && same_types(H5Aget_type(a), H5Aget_type(b)) && same_spaces(H5Aget_space(a), H5Aget_space(b));
    H5Aclose(a);
    if (b >= 0) H5Aclose(b);
    must(same ? 0 : -1, ("comparing attribute " + std::string(name)).c_str());
    return 0;
}

herr_t compare_object(hid_t file, const char* path, const H5O_info2_t* info, void* data)
{
    auto& visit = *static_cast<Visit*>(data);
    ++visit.objects;
    const std::string what = "comparing " + std::string(path);
    hid_t a = H5Oopen(file, path, H5P_DEFAULT), b = H5Oopen(visit.other, path, H5P_DEFAULT);
    must(b, what.c_str());
    must(H5Aget_num_attrs(a) == H5Aget_num_attrs(b) ? 0 : -1, what.c_str());
    H5Aiterate2(a, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr, compare_attribute, &b);
    if (info->type == H5O_TYPE_DATASET) must(same_datasets(a, b) ? 0 : -1, what.c_str());
    H5Oclose(a);
    H5Oclose(b);
    return 0;
}

int objects_as_in(hid_t file, hid_t other)
{
    Visit visit{other};
    H5Ovisit3(file, H5_INDEX_NAME, H5_ITER_NATIVE, compare_object, &visit, H5O_INFO_BASIC);
    return visit.objects;
}

}  // namespace

void check_same_layout(const std::string& a, const std::string& b)
{
    const hid_t first = H5Fopen(a.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
    const hid_t second = H5Fopen(b.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
    must(objects_as_in(first, second) == objects_as_in(second, first) ? 0 : -1, "comparing the files");
    H5Fclose(first);
    H5Fclose(second);
}

}  // namespace bench
