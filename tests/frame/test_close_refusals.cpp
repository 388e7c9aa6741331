// VAK_CLOSE when HDF5 reports that a step of it failed: told by the status, and everything is closed all the
// same.
#include "frame/frame_test.h"
#include "storage/refusal.h"

// clang-format off
MAY_FAIL_CLOSING(H5Gclose)
MAY_FAIL_CLOSING(H5Dclose)
MAY_FAIL_CLOSING(H5Tclose)
MAY_FAIL_CLOSING(H5Aclose)
MAY_FAIL_CLOSING(H5Fclose)
MAY_REFUSE_ONCE(herr_t, H5Fflush, (hid_t f, H5F_scope_t s), (f, s))
MAY_REFUSE_ONCE(ssize_t, H5Fget_obj_ids, (hid_t f, unsigned t, size_t n, hid_t* i), (f, t, n, i))
// clang-format on

namespace vak::test {

class CloseRefusals : public FrameTest {
protected:
    // One open object of each kind, and one more of each that are several.
    vak_id file_with_open_objects(const std::string& name)
    {
        const vak_id root = opened(name, 8);
        const hid_t space = H5Screate(H5S_SCALAR);
        for (const char* group : {"a", "b"})
            ids_.push_back(H5Gcreate2(root, group, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
        for (const char* set : {"c", "d"})
            ids_.push_back(
                H5Dcreate2(root, set, H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
        for (const char* attribute : {"e", "f"})
            ids_.push_back(H5Acreate2(root, attribute, H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT));
        const hid_t type = H5Tcopy(H5T_STD_I32LE);
        H5Tcommit2(root, "g", type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
        ids_.push_back(type);
        H5Sclose(space);
        H5Fflush(root, H5F_SCOPE_LOCAL);  // what a flush refuses later is not written in part
        return root;
    }

    int32_t close_without(const char* function, vak_id root)
    {
        int32_t ierr = 4711;
        const Output output = captured([&] {
            refused = function;
            GetParam().close(&root, &ierr);
            refused.clear();
        });
        EXPECT_EQ(output, nothing_printed);
        return ierr;
    }

    std::vector<hid_t> ids_;
};
IN_BOTH_FAMILIES(CloseRefusals);

TEST_P(CloseRefusals, failure_of_a_step_is_minus_1_and_nothing_stays_open)
{
    for (const char* function : {"H5Gclose", "H5Dclose", "H5Tclose", "H5Aclose", "H5Fclose", "H5Fflush"}) {
        const std::string name = path(std::string(function) + ".h5");
        const vak_id root = file_with_open_objects(name);
        EXPECT_EQ(close_without(function, root), -1) << function;
        for (const hid_t id : ids_) EXPECT_EQ(H5Iis_valid(id), 0) << function;
        EXPECT_TRUE(exists(read_file(name), "g"));
    }
}

TEST_P(CloseRefusals, objects_that_cannot_be_listed_are_minus_1)
{
    const vak_id root = file_with_open_objects(path("run.h5"));
    EXPECT_EQ(close_without("H5Fget_obj_ids", root), -1);
    for (const hid_t id : ids_)
        while (H5Iis_valid(id) > 0) H5Idec_ref(id);
    while (H5Iis_valid(root) > 0) H5Idec_ref(root);
}

}  // namespace vak::test
