#include "support/library.h"

namespace vak::test {

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

LinkFollowing link_following()
{
    LinkFollowing links;
    H5Pget_elink_cb(H5P_LINK_ACCESS_DEFAULT, &links.asked, &links.data);
    return links;
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
