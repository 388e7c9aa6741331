// Errors that a healthy HDF5 never gives: one of its functions, named by the test, says no.
#include "refusal.h"
#include "storage_test.h"

// clang-format off
MAY_REFUSE(hid_t, H5Pcreate, (hid_t c), (c))
MAY_REFUSE(herr_t, H5Pset_layout, (hid_t p, H5D_layout_t l), (p, l))
MAY_REFUSE(herr_t, H5Pset_fill_value, (hid_t p, hid_t t, const void* v), (p, t, v))
MAY_REFUSE(herr_t, H5Pset_scaleoffset, (hid_t p, H5Z_SO_scale_type_t t, int f), (p, t, f))
MAY_REFUSE(herr_t, H5Pset_shuffle, (hid_t p), (p))
MAY_REFUSE(herr_t, H5Pset_filter, (hid_t p, H5Z_filter_t f, unsigned m, size_t n, const unsigned v[]), (p, f, m, n, v))
MAY_REFUSE(hid_t, H5Screate_simple, (int r, const hsize_t d[], const hsize_t m[]), (r, d, m))
MAY_REFUSE(herr_t, H5Sselect_hyperslab, (hid_t s, H5S_seloper_t o, const hsize_t a[], const hsize_t b[], const hsize_t c[], const hsize_t d[]), (s, o, a, b, c, d))
MAY_REFUSE(herr_t, H5Sselect_elements, (hid_t s, H5S_seloper_t o, size_t n, const hsize_t* c), (s, o, n, c))
MAY_REFUSE(hid_t, H5Dget_space, (hid_t d), (d))
MAY_REFUSE(hid_t, H5Dget_create_plist, (hid_t d), (d))
MAY_REFUSE(herr_t, H5Dset_extent, (hid_t d, const hsize_t e[]), (d, e))
MAY_REFUSE(herr_t, H5Dwrite, (hid_t d, hid_t t, hid_t m, hid_t f, hid_t x, const void* v), (d, t, m, f, x, v))
MAY_REFUSE(herr_t, H5Dread, (hid_t d, hid_t t, hid_t m, hid_t f, hid_t x, void* v), (d, t, m, f, x, v))
MAY_REFUSE(herr_t, H5Awrite, (hid_t a, hid_t t, const void* v), (a, t, v))
MAY_REFUSE(herr_t, H5Aread, (hid_t a, hid_t t, void* v), (a, t, v))
MAY_REFUSE(hid_t, H5Aopen, (hid_t o, const char* n, hid_t p), (o, n, p))
MAY_REFUSE(hid_t, H5Aget_space, (hid_t a), (a))
MAY_REFUSE(hid_t, H5Tcopy, (hid_t t), (t))
MAY_REFUSE(herr_t, H5Oget_native_info, (hid_t o, H5O_native_info_t* i, unsigned f), (o, i, f))
MAY_FAIL_CLOSING(H5Dclose)
MAY_FAIL_CLOSING(H5Aclose)
// clang-format on

namespace vak::test {
namespace {

class StorageRefusals : public StorageTest {
protected:
    // The outcome of a call during which that function says no.
    template <class Call>
    Outcome without(const char* name, Call&& call)
    {
        chosen_ = name;
        const Outcome result = call();
        chosen_.clear();
        return result;
    }

    Outcome write_without(const char* name, Access access)
    {
        return without(name, [&] { return write(numbers<int32_t>(8), access); });
    }

    Outcome read_without(const char* name, const Access& access)
    {
        std::vector<int32_t> found(8, -1);
        const Outcome result = without(name, [&] { return read(found, access); });
        EXPECT_EQ(found, std::vector<int32_t>(8, -1));
        return result;
    }

    void begin_routine() override { refused = chosen_; }
    void end_routine() override { refused.clear(); }

private:
    std::string chosen_;
};

const Access whole{.dims = {8}};
const Access filtered{.dims = {8}, .flags = 64 | 8 | 1};
const Access slab{.dims = {H5S_UNLIMITED}, .count = {8}, .start = {0}, .mode = hyperslab};

TEST_F(StorageRefusals, creation_errors_60_to_100_leave_no_dataset)
{
    EXPECT_EQ(write_without("H5Pcreate", filtered), not_written(-2060, 60, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Pset_layout", filtered), not_written(-2070, 70, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Pcreate", whole), not_written(-2100, 100, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Pset_layout", whole), not_written(-2100, 100, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Screate_simple", whole), not_written(-2040, 40, "values 2 4 4 0 -1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(StorageRefusals, creation_errors_120_to_180_leave_no_dataset)
{
    EXPECT_EQ(write_without("H5Pset_fill_value", filtered), not_written(-2120, 120, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Pset_scaleoffset", filtered), not_written(-2150, 150, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Pset_shuffle", filtered), not_written(-2160, 160, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Pset_filter", filtered), not_written(-2180, 180, "values 2 4 4 0 -1"));
    EXPECT_EQ(
        without("H5Pset_scaleoffset", [&] { return write(numbers<float>(8), {.dims = {8}, .flags = 128}); }),
        not_written(-2140, 140, "values 3 4 4 0 -1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(StorageRefusals, writing_error_50_a_text_type_that_cannot_be_made)
{
    EXPECT_EQ(without("H5Tcopy", [&] { return write("ab", 1, {.dims = {2}}); }),
              not_written(-2050, 50, "values 1 1 1 0 -1"));
}

TEST_F(StorageRefusals, writing_error_100_growth_that_fails_keeps_the_values)
{
    EXPECT_EQ(write(numbers<int32_t>(8), Access(slab)), done);
    EXPECT_EQ(write_without("H5Dset_extent", slab), not_written(-3100, 100, "values 2 4 4 1 -1"));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(8));
}

TEST_F(StorageRefusals, writing_errors_110_and_120_selections_that_fail)
{
    EXPECT_EQ(write(numbers<int32_t>(8), Access(slab)), done);
    EXPECT_EQ(write_without("H5Dget_space", slab), not_written(-3110, 110, "values 2 4 4 1 -1"));
    EXPECT_EQ(write_without("H5Sselect_hyperslab", slab), not_written(-3120, 120, "values 2 4 4 1 -1"));
    EXPECT_EQ(write_without("H5Screate_simple", slab), not_written(-3120, 120, "values 2 4 4 1 -1"));
    EXPECT_EQ(
        write_without("H5Sselect_elements", {.dims = {16}, .count = {1}, .start = {3}, .mode = point_list}),
        not_written(-3120, 120, "values 2 4 4 2 -1"));
}

TEST_F(StorageRefusals, writing_error_999_values_that_do_not_reach_the_file)
{
    EXPECT_EQ(write_without("H5Dwrite", whole), not_written(-3999, 999, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Dclose", whole), not_written(-3999, 999, "values 2 4 4 0 -1"));
    EXPECT_EQ(write_without("H5Dclose", {.name = "filtered", .dims = {8}, .flags = 1}),
              not_written(-3999, 999, "filtered 2 4 4 0 -1"));
}

TEST_F(StorageRefusals, what_was_made_for_values_that_failed_is_taken_back)
{
    for (const char* name : {"H5Dwrite", "H5Dclose"}) {
        EXPECT_EQ(write_without(name, slab), not_written(-3999, 999, "values 2 4 4 1 -1"));
        EXPECT_EQ(layout(file, "/"), "\n") << name;
    }
    EXPECT_EQ(write(numbers<int32_t>(8), Access(slab)), done);
    for (const char* name : {"H5Dwrite", "H5Dclose", "H5Sselect_hyperslab"}) {
        EXPECT_NE(write_without(name, slab), done);
        EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(8)) << name;
    }
}

TEST_F(StorageRefusals, a_layout_that_cannot_be_asked_for_is_refused)
{
    EXPECT_EQ(write(numbers<int32_t>(8), Access(filtered)), done);
    EXPECT_EQ(write_without("H5Dget_create_plist", filtered), not_written(-3999, 999, "values 2 4 4 0 -1"));
    EXPECT_EQ(read_without("H5Dget_create_plist", whole), not_read(999, "values 2 4 -1"));
}

TEST_F(StorageRefusals, reading_error_2_chunks_that_cannot_be_opened_past_the_cache)
{
    EXPECT_EQ(write(numbers<int32_t>(8), Access(slab)), done);
    EXPECT_EQ(read_without("H5Pcreate", whole), not_read(2, "values 2 4 -1"));
    const Access part{.dims = {8}, .count = {8}, .start = {0}, .mode = hyperslab};
    EXPECT_EQ(read_without("H5Pcreate", part), not_read(2, "values 2 4 -1"));
}

TEST_F(StorageRefusals, without_the_object_header_the_creation_list_tells_the_layout)
{
    EXPECT_EQ(write(numbers<int32_t>(8), Access(whole)), done);
    std::vector<int32_t> found(8);
    EXPECT_EQ(without("H5Oget_native_info", [&] { return read(found, whole); }), done);
    EXPECT_EQ(found, numbers<int32_t>(8));
}

TEST_F(StorageRefusals, reading_errors_120_and_999)
{
    EXPECT_EQ(write(numbers<int32_t>(8), Access(whole)), done);
    const Access part{.dims = {8}, .count = {2}, .start = {1}, .mode = hyperslab};
    EXPECT_EQ(read_without("H5Sselect_hyperslab", part), not_read(120, "values 2 4 -1"));
    EXPECT_EQ(read_without("H5Screate_simple", part), not_read(120, "values 2 4 -1"));
    EXPECT_EQ(
        read_without("H5Sselect_elements", {.dims = {8}, .count = {1}, .start = {1}, .mode = point_list}),
        not_read(120, "values 2 4 -1"));
    EXPECT_EQ(read_without("H5Dget_space", whole), not_read(999, "values 2 4 -1"));
    EXPECT_EQ(read_without("H5Dread", whole), not_read(999, "values 2 4 -1"));
}

Outcome attribute_not_written(int32_t number)
{
    return {-1000 - number,
            "VAK INTERNAL ERROR (" + std::to_string(number) +
                ") in VAK_H5Awrite - name, vak_type, data_size, vak_size, error: n 2 4 4 -1\n"};
}

TEST_F(StorageRefusals, attribute_writing_errors_20_to_999)
{
    const std::array<int32_t, 2> values{1, 2};
    const auto write_attribute_without = [&](const char* name) {
        return without(name, [&] { return write_attribute("n", values.data(), 2, 4, 4, {2}); });
    };
    EXPECT_EQ(write_attribute_without("H5Screate_simple"), attribute_not_written(40));
    EXPECT_EQ(write_attribute_without("H5Aclose"), attribute_not_written(999));
    EXPECT_EQ(H5Aexists(file, "n"), 0);  // without its values it would read as zeros
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {2}), done);
    EXPECT_EQ(write_attribute_without("H5Aopen"), attribute_not_written(100));
    EXPECT_EQ(write_attribute_without("H5Aget_space"), attribute_not_written(20));
    EXPECT_EQ(write_attribute_without("H5Awrite"), attribute_not_written(999));
    EXPECT_EQ(attribute_values<int32_t>(file, "/", "n"), (std::vector<int32_t>{1, 2}));
}

TEST_F(StorageRefusals, attribute_reading_errors_20_and_999)
{
    const std::array<int32_t, 2> values{1, 2};
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {2}), done);
    std::array<int32_t, 2> found{-1, -1};
    EXPECT_EQ(
        without("H5Aget_space", [&] { return read_attribute("n", found.data(), 2, 4, {2}); }),
        (Outcome{-4020,
                 "VAK INTERNAL ERROR (20) in VAK_H5Aread - name, vak_type, data_size, error: n 2 4 -1\n"}));
    EXPECT_EQ(
        without("H5Aread", [&] { return read_attribute("n", found.data(), 2, 4, {2}); }),
        (Outcome{-4999,
                 "VAK INTERNAL ERROR (999) in VAK_H5Aread - name, vak_type, data_size, error: n 2 4 -1\n"}));
    EXPECT_EQ(
        without("H5Tcopy", [&] { return write_attribute("t", "ab", 1, 2, 2); }),
        (Outcome{
            -1100,
            "VAK INTERNAL ERROR (100) in VAK_H5Awrite - name, vak_type, data_size, vak_size, error: t 1 2 2 -1\n"}));
    EXPECT_EQ(found, (std::array<int32_t, 2>{-1, -1}));
}

}  // namespace
}  // namespace vak::test
