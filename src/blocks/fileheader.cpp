// The file header: what marks a file as ours, and the generation of its format.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "blocks/block.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr size_t record_size = 64;
constexpr size_t version_at = 8;
constexpr size_t version_size = 32;  // of the caller's field
constexpr std::array<char, version_at> signature{'\x89', 'V', 'A', 'K', '\r', '\n', '\x1a', '\n'};

using Version = std::array<int, 3>;

constexpr Version version_of(Family family)
{
    return family == Family::current ? Version{2, 2, 14} : Version{1, 2, 0};
}

std::array<char, record_size> header_record(Family family)
{
    std::array<char, record_size> record;
    record.fill(' ');
    std::copy(signature.begin(), signature.end(), record.begin());
    char text[version_size];
    const Version v = version_of(family);
    const int length = std::snprintf(text, sizeof text, "%d %d %d", v[0], v[1], v[2]);
    std::copy_n(text, length, record.begin() + version_at);
    return record;
}

int32_t write_fileheader(Family family, hid_t location)
{
    Group group(H5Gcreate2(location, "vakheader", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    if (!group.valid()) {
        const auto status = static_cast<int32_t>(group.get());
        std::fprintf(stderr, "VAK ERROR writing header: %d\n", status);
        return status;
    }
    const auto record = header_record(family);
    constexpr uint32_t params[2]{};
    hsize_t no_extents[1]{};
    int32_t status =
        VAK_H5Dwrite("vakheader", record.data(), text_type, record_size, record_size, no_extents, 0, nullptr,
                     nullptr, whole_dataset, {group.get(), true, nullptr}, 0, params);
    if (!group.close() && status == 0) status = -1;
    if (status != 0) std::fprintf(stderr, "VAK ERROR writing header\n");
    return status;
}

int32_t wrong_signature_bytes(const char* record)
{
    int32_t wrong = 0;
    for (size_t i = 0; i < signature.size(); ++i) {
        if (record[i] == signature[i]) continue;
        std::fprintf(stderr, "VAK WARNING - wrong file signature or format\n");
        ++wrong;
    }
    return wrong;
}

bool has_version_of(Family family, const char* text)
{
    Version v{-1, -1, -1};
    return std::sscanf(text, "%d %d %d", &v[0], &v[1], &v[2]) == 3 && v == version_of(family);
}

bool has_several_records(hid_t location)
{
    const Dataset dataset(H5Dopen2(location, "vakheader", H5P_DEFAULT));
    const Space space(H5Dget_space(dataset.get()));
    return H5Sget_simple_extent_npoints(space.get()) > 1;
}

// Of several records the first could be read as a single value, but a header has one. So they are asked for
// in a rank that they do not have, which the storage layer refuses.
int32_t read_record(hid_t location, char* record, uint32_t* flags, int32_t* params)
{
    constexpr int32_t impossible_rank = H5S_MAX_RANK - 1;
    std::array<hsize_t, impossible_rank> extents;
    extents.fill(1);
    const int32_t rank = has_several_records(location) ? impossible_rank : 0;
    return VAK_H5Dread("vakheader", record, text_type, record_size, extents.data(), rank, nullptr, nullptr,
                       whole_dataset, location, flags, params);
}

int32_t read_fileheader(Family family, hid_t location, char* version, int32_t* flags, int32_t* params)
{
    std::array<char, record_size + 1> record{};
    uint32_t found_flags = 0;
    int32_t found_params[2]{};
    int32_t status = read_record(location, record.data(), &found_flags, found_params);
    if (status != 0) {
        std::fprintf(stderr, "VAK ERROR reading header\n");
        return status;
    }
    *flags = static_cast<int32_t>(found_flags);
    if (params != nullptr) std::copy_n(found_params, 2, params);
    const char* const text = record.data() + version_at;
    status = wrong_signature_bytes(record.data());
    if (!has_version_of(family, text)) status += 100;
    std::memset(version, 0, version_size);
    std::memcpy(version, text, strnlen(text, version_size));
    return status;
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_FILEHEADER(const vak_id* location, const void*, const void*, int32_t* ierr)
{
    *ierr = exported([&] { return write_fileheader(Family::current, *location); });
}

void VAK1_WRITE_FILEHEADER(const vak_id* location, const void*, const void*, int32_t* ierr)
{
    *ierr = exported([&] { return write_fileheader(Family::legacy, *location); });
}

void VAK_READ_FILEHEADER(const vak_id* location, char* version, int32_t* flags, int32_t* params, int32_t* ierr)
{
    *ierr = exported([&] { return read_fileheader(Family::current, *location, version, flags, params); });
}

void VAK1_READ_FILEHEADER(const vak_id* location, char* version, int32_t* flags, int32_t* params, int32_t* ierr)
{
    *ierr = exported([&] { return read_fileheader(Family::legacy, *location, version, flags, params); });
}
