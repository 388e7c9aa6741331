// The eraser on values that went through scale-offset: it changes no bit of what stays, whatever the chunks
// hold.
#include <cmath>
#include <cstring>
#include <limits>

#include "tools/eraser_test.h"

namespace vak::test {

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

class EraseLossy : public EraserTest {
protected:
    void SetUp() override
    {
        EraserTest::SetUp();
        write_frame();
    }
    void TearDown() override
    {
        const int32_t one = 1;
        VAK_SET_CHUNK_SIZE(&one);
        EraserTest::TearDown();
    }

    // Twelve states, six of which stay; some hold what scale-offset cannot.
    MultiEntityResults difficult(int32_t ivsize, int32_t flags) const
    {
        auto s = series({1, 9, 2, 3, 9, 9, 1, 1, 9, 2, 9, 9}, ivsize);
        s.flags = flags;
        s.params[0] = 3;
        s.params[1] = 6;
        for (size_t i = 0; i < s.res.size(); ++i) s.res[i] = std::sin(static_cast<float>(i)) * 40;
        s.res[0] = infinity;        // the first state stays
        s.res[6] = -infinity;       // the second goes
        s.res[13] = std::nanf("");  // the third stays
        s.res[20] = 3.0e38F;        // as does the fourth, whose span is too wide
        s.res[21] = -3.0e38F;
        s.res[37] = 1.0e-42F;  // denormal
        s.res[38] = -0.0F;
        s.res[54] = 7.0e9F;
        return s;
    }
    const std::vector<int32_t> places{0, 2, 3, 6, 7, 9};

    std::vector<float> values(const MultiEntityResults& s)
    {
        auto found = emptied(s);
        EXPECT_EQ(read(found, 2), status(1050));
        return found.res;
    }
    std::vector<uint32_t> bits(const std::vector<float>& reals) const
    {
        std::vector<uint32_t> b(reals.size());
        std::memcpy(b.data(), reals.data(), 4 * reals.size());
        return b;
    }
    std::vector<uint32_t> kept_bits(const MultiEntityResults& s, const std::vector<float>& reals) const
    {
        auto whole = s;
        whole.res = reals;
        return bits(only(whole, places).res);
    }
    void expect_same_bits(const MultiEntityResults& s)
    {
        const auto before = kept_bits(s, values(s));
        const std::string form = stored(s);
        EXPECT_EQ(erase({3}), erased());
        EXPECT_EQ(bits(values(only(s, places))), before);
        EXPECT_EQ(stored(s), replaced(form, "unlimited\\(12\\)", "unlimited(6)"));
    }
    // By HDF5 alone.
    std::vector<float> read_plainly(const std::string& path) const
    {
        std::vector<float> reals(6 * 6);
        const ObjectId set = open_object(file, path);
        EXPECT_GE(H5Dread(set, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, reals.data()), 0);
        return reals;
    }
    // Values written by HDF5 alone, chunks included that it cannot read back itself.
    void rewrite_plainly(const MultiEntityResults& s)
    {
        const ObjectId old = open_object(file, data_of(s, "res"));
        const PropertiesId list(H5Dget_create_plist(old), "list");
        const SpaceId space(H5Dget_space(old), "space");
        const TypeId type(H5Dget_type(old), "type");
        EXPECT_GE(H5Ldelete(file, data_of(s, "res").c_str(), H5P_DEFAULT), 0);
        const ObjectId set(
            H5Dcreate2(file, data_of(s, "res").c_str(), type, space, H5P_DEFAULT, list, H5P_DEFAULT), "res");
        EXPECT_GE(H5Dwrite(set, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, s.res.data()), 0);
    }
};
INSTANTIATE_TEST_SUITE_P(, EraseLossy, both_families, family_name);

TEST_P(EraseLossy, infinite_wide_and_missing_values_stay_bit_for_bit)
{
    for (const int32_t chunk : {1, 8, 3, 12})
        for (const int32_t flags : {128, 128 + 18, 255})
            for (const int32_t ivsize : {4, 8}) {
                VAK_SET_CHUNK_SIZE(&chunk);
                const auto s = difficult(ivsize, flags);
                EXPECT_EQ(write(s), success);
                const auto first = values(s);
                EXPECT_EQ(first[0], infinity);
                EXPECT_TRUE(std::isnan(first[13]));
                expect_same_bits(s);
                EXPECT_EQ(bits(read_plainly(data_of(s, "res"))), kept_bits(s, first));
                EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
            }
}

TEST_P(EraseLossy, chunks_that_hdf5_wrote_and_cannot_read_stay_as_the_library_reads_them)
{
    for (const int32_t chunk : {1, 8}) {
        VAK_SET_CHUNK_SIZE(&chunk);
        auto s = difficult(4, 255);
        s.res[13] = 4.0F;  // what is no number HDF5 writes as 0
        EXPECT_EQ(write(s), success);
        rewrite_plainly(s);
        const auto first = values(s);
        EXPECT_EQ(first[0], infinity);
        EXPECT_EQ(first[20], 3.0e38F);
        expect_same_bits(s);
        EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
    }
}

TEST_P(EraseLossy, a_series_erased_again_and_again_does_not_drift)
{
    const int32_t chunk = 8;
    VAK_SET_CHUNK_SIZE(&chunk);
    auto s = series({1, 20, 2, 19, 3, 18, 4, 17, 5, 16, 6, 15, 7, 14, 8, 13, 9, 12, 10, 11});
    s.flags = 255;
    s.params[0] = 2;
    for (size_t i = 0; i < s.res.size(); ++i) s.res[i] = std::cos(static_cast<float>(i)) * 1000;
    EXPECT_EQ(write(s), success);
    const auto first = values(s);
    std::vector<int32_t> kept(20);
    for (int32_t i = 0; i < 20; ++i) kept[static_cast<size_t>(i)] = i;
    for (int32_t last = 19; last > 0; --last) {
        EXPECT_EQ(erase({last}), erased());
        std::erase_if(kept, [&](int32_t i) { return s.index.indexident[2 * static_cast<size_t>(i)] > last; });
        auto whole = s;
        whole.res = first;
        EXPECT_EQ(bits(values(only(s, kept))), bits(only(whole, kept).res)) << last;
    }
}

}  // namespace

}  // namespace vak::test
