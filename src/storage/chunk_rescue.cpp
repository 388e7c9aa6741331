// Past HDF5: reading what the file tells with another driver, which shares nothing, and writing to it.
#include "storage/chunk_rescue.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "storage/hdf5_id.h"
#include "storage/whole_flush.h"

namespace vak {

namespace {

struct ChunkPlace {
    haddr_t address = HADDR_UNDEF;
    hsize_t size = 0;

    bool operator==(const ChunkPlace&) const = default;
};

ChunkPlace place_of(hid_t dataset, const Extents& corner)
{
    ChunkPlace place;
    unsigned mask = 0;
    if (H5Dget_chunk_info_by_coord(dataset, corner.data(), &mask, &place.address, &place.size) < 0) return {};
    return place;
}

std::string name_of(hid_t object)
{
    const ssize_t length = H5Iget_name(object, nullptr, 0);
    std::string name(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (!name.empty()) H5Iget_name(object, name.data(), name.size() + 1);
    return name;
}

ChunkPlace place_in_file(const std::string& path, const std::string& dataset, const Extents& corner)
{
    const Properties access(H5Pcreate(H5P_FILE_ACCESS));
    H5Pset_fapl_stdio(access.get());
    H5Pset_file_locking(access.get(), false, true);
    const File file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.get()));
    const Dataset there(file.valid() ? H5Dopen2(file.get(), dataset.c_str(), H5P_DEFAULT) : H5I_INVALID_HID);
    return there.valid() ? place_of(there.get(), corner) : ChunkPlace();
}

void overwrite(const std::string& path, haddr_t address, const StoredChunk& bytes)
{
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0) return;
    for (size_t done = 0; done < bytes.size;) {
        const ssize_t now =
            pwrite(file, bytes.bytes + done, bytes.size - done, static_cast<off_t>(address + done));
        if (now <= 0) break;
        done += static_cast<size_t>(now);
    }
    close(file);
}

}  // namespace

void put_back_old_chunk(hid_t dataset, const Extents& corner, const StoredChunk& old, bool has_moved)
{
    const std::string path = path_to_reopen(dataset);
    const std::string name = name_of(dataset);
    if (path.empty() || name.empty()) return;
    const ChunkPlace place = place_in_file(path, name, corner);
    if (place.size != old.size || (has_moved && place == place_of(dataset, corner))) return;
    overwrite(path, place.address, old);
}

}  // namespace vak
