// Versions, build strings, and the chunk size along extendible extents.
#include "frame/version.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "frame/exported.h"
#include "frame/paths.h"
#include "storage/storage.h"
#include "vak_sp.h"

#define VAK_RELEASE "2.2.14"
#define VAK_REVISION "a155c1e"

namespace vak {

namespace {

constexpr size_t field_length = 256;
constexpr const char* build_id = "vak__sp";
constexpr const char* description = "legacy API for reading/writing vakh5 files";
constexpr const char* module_version = " vak version " VAK_RELEASE;
constexpr const char* build_line =
    "vak version " VAK_RELEASE "+" VAK_REVISION "; cl: 192729120; " H5_VERS_INFO "; compiler: " __VERSION__;

void print_versions(const Hdf5Version& hdf5)
{
    std::printf("\nVAK INFO - hdf5-lib version: %u.%u.%u\n", hdf5.major, hdf5.minor, hdf5.release);
    std::printf("           VAK      version: %u.%u.%u\n", release[0], release[1], release[2]);
    std::printf("           VAK      BuildID: %s\n", build_id);
}

std::string version_text(int32_t which, const Hdf5Version& hdf5)
{
    std::string library = "VAK-" VAK_RELEASE;
    std::string of_hdf5 = "HDF5-" + std::to_string(hdf5.major) + "." + std::to_string(hdf5.minor) + "." +
                          std::to_string(hdf5.release);
    switch (which) {
        case 1: return build_id;
        case 2: return of_hdf5;
        case 4: return library;
        case 6: return of_hdf5 + " " + library;
        default: return build_id + (" " + of_hdf5) + " " + library;
    }
}

// Fills the field, blank padded; the significant length.
int32_t fill(char* field, std::string_view text)
{
    const std::string_view significant = counted(text.data(), std::min(text.size(), field_length));
    if (field != nullptr) {
        std::fill_n(field, field_length, ' ');
        std::copy(significant.begin(), significant.end(), field);
    }
    return static_cast<int32_t>(significant.size());
}

int32_t get_version(char* field, int32_t which, int32_t verbose, int32_t& length)
{
    Hdf5Version hdf5;
    const int32_t status = check_hdf5(hdf5);
    if (status == unfit_hdf5)
        std::fprintf(stderr, "\nVAK ERROR - vak_get_version - hdf version check failed\n");
    if (status == unknown_hdf5)
        std::fprintf(stderr, "\nVAK ERROR - vak_get_version - unable to get hdf lib version\n");
    if (status != 0) return status;
    if (verbose > 0) print_versions(hdf5);
    length = fill(field, version_text(which, hdf5));
    return 0;
}

}  // namespace

int32_t check_hdf5(Hdf5Version& version)
{
    if (H5get_libversion(&version.major, &version.minor, &version.release) < 0) return unknown_hdf5;
    // On another series H5check_version would end the process, so it is asked only where it answers.
    if (version.major != 1 || version.minor != 14) return unfit_hdf5;
    return H5check_version(1, 14, 5) < 0 ? unfit_hdf5 : 0;
}

}  // namespace vak

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

int32_t VAK_GET_VERSION(char* text, const int32_t* which, const int32_t* verbose, int32_t* ierr)
{
    int32_t length = 0;
    *ierr = vak::exported([&] { return vak::get_version(text, *which, *verbose, length); });
    return length;
}

int32_t VAK1_GET_VERSION(char* text, const int32_t* which, const int32_t* verbose, int32_t* ierr)
{
    return VAK_GET_VERSION(text, which, verbose, ierr);
}

const char* VAK_get_build_info(void)
{
    return vak::build_line;
}

const char* VAK_get_module_description(void)
{
    return vak::description;
}

const char* VAK_get_module_info(int32_t kind)
{
    if (kind == 0) return vak::description;
    return kind == 1 ? vak::module_version : vak::build_line;
}

const char* VAK_get_revision(void)
{
    return VAK_REVISION;
}

int32_t VAK_GET_CHUNK_SIZE(int32_t* size)
{
    *size = vak::chunk_size();
    return *size;
}

int32_t VAK_SET_CHUNK_SIZE(const int32_t* size)
{
    vak::set_chunk_size(*size);
    return *size;
}
