#include "support/open_ids.h"

#include <filesystem>

namespace vak::test {

namespace {

OpenIds next_ids()
{
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    const TypeId type(H5Tcopy(H5T_NATIVE_INT), "type");
    const PropertiesId properties(H5Pcreate(H5P_DATASET_CREATE), "properties");
    const Id<H5Eclose_stack> errors(H5Ecreate_stack(), "error stack");
    return {0, space, type, properties, errors};
}

int64_t valid_between(hid_t first, hid_t end)
{
    int64_t count = 0;
    for (hid_t id = first; id < end; ++id) count += H5Iis_valid(id) > 0 ? 1 : 0;
    return count;
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const OpenIds& ids)
{
    return stream << ids.objects << " objects, " << ids.spaces << " spaces, " << ids.types << " types, "
                  << ids.properties << " property lists, " << ids.error_stacks << " error stacks";
}

IdCounter::IdCounter() : first_(next_ids()) {}

OpenIds IdCounter::count() const
{
    const OpenIds next = next_ids();
    return {H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_ALL), valid_between(first_.spaces, next.spaces),
            valid_between(first_.types, next.types), valid_between(first_.properties, next.properties),
            valid_between(first_.error_stacks, next.error_stacks)};
}

size_t open_descriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}

}  // namespace vak::test
