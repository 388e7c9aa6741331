#include "support/library.h"

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

ErrorPrinting error_printing()
{
    ErrorPrinting printing;
    H5Eauto_is_v2(H5E_DEFAULT, &printing.is_v2);
    if (printing.is_v2 != 0)
        H5Eget_auto2(H5E_DEFAULT, &printing.print2, &printing.data);
    else
        H5Eget_auto1(&printing.print1, &printing.data);
    return printing;
}

size_t open_descriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}

void LibraryTest::SetUp()
{
    ids_at_start_ = counter_.count();
    descriptors_at_start_ = open_descriptors();
    file = H5Fcreate(path("fresh.h5").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    ASSERT_GE(file, 0);
}

std::string LibraryTest::close_file()
{
    EXPECT_GE(H5Fclose(file), 0);
    file = H5I_INVALID_HID;
    return path("fresh.h5");
}

void LibraryTest::TearDown()
{
    if (file >= 0) close_file();
    EXPECT_EQ(counter_.count(), ids_at_start_) << "the test left HDF5 identifiers open";
    EXPECT_EQ(open_descriptors(), descriptors_at_start_) << "the test left files open";
}

void LibraryTest::check_after_call(const OpenIds& before, int64_t opened, const ErrorPrinting& printing) const
{
    const OpenIds after = counter_.count();
    EXPECT_EQ(after.total(), before.total() + opened) << "before: " << before << "\nafter:  " << after;
    EXPECT_EQ(error_printing(), printing) << "HDF5's error printing is not as the caller had it";
}

}  // namespace vak::test
