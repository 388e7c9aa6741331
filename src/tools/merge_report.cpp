// Lines that several steps of the merge print.
#include <cstdio>

#include "tools/merge.h"
#include "vak_sp.h"

namespace vak {

int32_t read_failed(const char* type, int32_t pass, int32_t status)
{
    std::fprintf(stderr, "\nVAK ERROR reading \"%s\" block pass %d - error code = %d \n", type, pass, status);
    return status;
}

int32_t write_failed(const char* type, int32_t status)
{
    std::fprintf(stderr, "\nVAK ERROR writing \"%s\" block - error code = %d\n", type, status);
    return status;
}

int32_t refuse_index(const Merge& merge, int32_t nindex)
{
    if (merge.family == Family::current)
        std::fprintf(stderr, "\nVAK ERROR - nindex too large = %d. Increase MAXINDEX: %d\n", nindex,
                     max_index);
    else
        std::fprintf(stderr, "\nVAK ERROR - nindex too large = %d. Increase MAXINDEX1: %d\n", nindex,
                     max_index);
    return 1;  // positive, unlike all other failures; required as it stands
}

void warn_left_out(const DomainBlock& source, const char* what, const DomainBlock& ruling)
{
    std::fprintf(stderr,
                 "VAK WARNING file [%d]: block key %d \"%s\" differs in %s from file [%d] and is left out\n",
                 source.file, source.key, source.path.c_str(), what, ruling.file);
}

namespace {

int32_t find_exponent(const Exponents& exponents, const char* name)
{
    int32_t at = -1;
    vak_cbsearch(name, exponents.names, exponents.sorted.data(), 0,
                 static_cast<int32_t>(exponents.sorted.size()) - 1, 256, &at);
    return at < 0 ? -1 : exponents.sorted[static_cast<size_t>(at)];
}

void print_scale_offset(const char* type, const StorageOptions& storage, const char* name)
{
    std::printf(" >-< float scaleoffset %-20s: flag exp aggr: %6d ", type, static_cast<int>(storage.flags));
    for (int bit = 7; bit >= 0; --bit) std::printf("%1d", static_cast<int>(storage.flags >> bit & 1));
    std::printf(" %6d %6d: ", static_cast<int>(storage.params[0]), 0);
    std::printf("\"%.256s\"\n", name);
}

}  // namespace

StorageOptions merged_storage(const Merge& merge, const char* type, const FoundStorage& found,
                              const char* etypvar)
{
    StorageOptions storage = merge.storage;
    if (found.flags != 0) {
        storage.flags = found.flags;
        storage.params = {static_cast<uint32_t>(found.params[0]), static_cast<uint32_t>(found.params[1])};
    }
    const int32_t variable = find_exponent(merge.exponents, etypvar);
    if (variable >= 0) {
        storage.flags |= scale_offset_reals;
        storage.params[0] = static_cast<uint32_t>(merge.exponents.values[variable]);
    }
    if ((storage.flags & scale_offset_reals) && merge.level == 2) print_scale_offset(type, storage, etypvar);
    return storage;
}

}  // namespace vak
