// HDF5's own error text: off within a call of ours, and afterwards as the caller had it in either of its two
// forms.
#include "frame/frame_test.h"

namespace vak::test {

namespace {

int lines_of_hdf5 = 0;

herr_t count_old(void*)
{
    ++lines_of_hdf5;
    return 0;
}
herr_t count_new(hid_t, void*)
{
    ++lines_of_hdf5;
    return 0;
}

void fail_in_hdf5() { H5Gopen2(H5I_INVALID_HID, "nothing", H5P_DEFAULT); }

}  // namespace

class ErrorText : public FrameTest {
protected:
    void SetUp() override
    {
        FrameTest::SetUp();
        H5Eget_auto2(H5E_DEFAULT, &print_, &data_);
        lines_of_hdf5 = 0;
    }
    void TearDown() override
    {
        H5Eset_auto2(H5E_DEFAULT, print_, data_);
        FrameTest::TearDown();
    }

    // call() compares the setting before and after.
    void expect_silence_within_a_call_alone()
    {
        EXPECT_EQ(open_in_vain(path("missing.h5"), 1).ierr, -1);
        EXPECT_EQ(lines_of_hdf5, 0);
        fail_in_hdf5();
        EXPECT_EQ(lines_of_hdf5, 1);
    }

private:
    H5E_auto2_t print_ = nullptr;
    void* data_ = nullptr;
};
IN_BOTH_FAMILIES(ErrorText);

TEST_P(ErrorText, of_a_caller_with_the_newer_form_is_back_after_a_call)
{
    int own = 0;
    H5Eset_auto2(H5E_DEFAULT, count_new, &own);
    expect_silence_within_a_call_alone();
}

TEST_P(ErrorText, of_a_caller_with_the_older_form_is_back_after_a_call)
{
    int own = 0;
    H5Eset_auto1(count_old, &own);
    expect_silence_within_a_call_alone();
}

TEST_P(ErrorText, that_a_caller_has_switched_off_stays_off)
{
    H5Eset_auto1(nullptr, nullptr);
    EXPECT_EQ(open_in_vain(path("missing.h5"), 1).ierr, -1);
    EXPECT_EQ(captured(fail_in_hdf5), nothing_printed);
}

}  // namespace vak::test
