// The fixture of every test that calls an exported routine.
//
// A test in five lines, named for its topic:
//
//   using System = vak::test::LibraryTest;
//
//   TEST_F(System, second_write_is_refused)
//   {
//       int32_t ierr = 0;
//       EXPECT_EQ(call([&] { VAK_WRITE_SYSTEM(&file, ..., &ierr); }), nothing_printed);
//       EXPECT_EQ(layout(file, "constant/system/vakblock"), R"(
//   A block int32
//   )");
//   }
//
// `file` is a fresh file, opened for writing by plain HDF5; path("name") names further ones in the test's own
// folder. call() gives what was printed and checks that the routine left no HDF5 identifier open (or as many
// as the second argument says) and HDF5's error printing and default list as they were. At the end of the
// test no identifier and no file descriptor may be left over.
#pragma once

#include <gmock/gmock.h>
#include <hdf5.h>

#include <optional>
#include <string>

#include "support/capture.h"
#include "support/open_ids.h"
#include "support/probe.h"
#include "support/temp_file.h"

namespace vak::test {

// HDF5's automatic error printing, in whichever of its two forms it is set.
struct ErrorPrinting {
    unsigned is_v2 = 1;
    H5E_auto1_t print1 = nullptr;
    H5E_auto2_t print2 = nullptr;
    void* data = nullptr;

    bool operator==(const ErrorPrinting&) const = default;
};
ErrorPrinting error_printing();

// How HDF5 follows links where a call names no list.
struct LinkFollowing {
    H5L_elink_traverse_t asked = nullptr;
    void* data = nullptr;

    bool operator==(const LinkFollowing&) const = default;
};
LinkFollowing link_following();

class LibraryTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    std::string path(const std::string& name) const { return folder_.file(name); }

    // Runs one exported call; `opened` tells how many identifiers more (or less) it is to leave.
    template <class Routine>
    Output call(Routine&& routine, int64_t opened = 0)
    {
        const OpenIds before = counter_.count();
        const ErrorPrinting printing = error_printing();
        const LinkFollowing links = link_following();
        Output output = captured(routine);
        check_after_call(before, opened, printing);
        EXPECT_TRUE(link_following() == links) << "HDF5's default list is not as the caller had it";
        return output;
    }

    // Closes the fresh file, so that the next look at it is at what reached the disk. Gives its name.
    std::string close_file();

    // A count takes as long as there were identifiers since its beginning: for tests of very many calls,
    // where none but those of files and their objects may be open.
    void count_anew() { counter_ = IdCounter(); }

    hid_t file = H5I_INVALID_HID;

private:
    void check_after_call(const OpenIds& before, int64_t opened, const ErrorPrinting& printing) const;

    TempFolder folder_;
    IdCounter counter_;
    OpenIds ids_at_start_;
    size_t descriptors_at_start_ = 0;
};

}  // namespace vak::test
