#include "store/integers.h"

#include <hdf5.h>

namespace vak::store {

namespace {

bool has_values(hid_t dataset, size_t n)
{
    const hid_t space = H5Dget_space(dataset), type = H5Dget_type(dataset);
    const bool fits =
        H5Sget_simple_extent_npoints(space) == static_cast<hssize_t>(n) && H5Tequal(type, H5T_STD_I32LE) > 0;
    H5Tclose(type);
    H5Sclose(space);
    return fits;
}

// Chunks that HDF5 cannot read are the library's matter.
bool read(hid_t dataset, std::vector<int32_t>& values)
{
    return has_values(dataset, values.size()) &&
           H5Dread(dataset, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()) >= 0;
}

}  // namespace

bool read_integers(const File& file, const std::string& block, Layout layout, const std::string& array,
                   std::vector<int32_t>& values)
{
    const std::string path = block + (layout == Layout::legacy ? "/data/" : "/") + array;
    bool done = false;
    H5E_BEGIN_TRY
    {
        const hid_t dataset = H5Dopen2(*file.root(), path.c_str(), H5P_DEFAULT);
        done = dataset >= 0 && read(dataset, values);
        if (dataset >= 0) H5Dclose(dataset);
    }
    H5E_END_TRY
    return done;
}

}  // namespace vak::store
