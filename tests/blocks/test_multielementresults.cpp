#include "samples/multielementresults.h"

#include "blocks/one_state_series.h"

namespace vak::test {

namespace {

template <Family of>
struct ElementSeries {
    using Sample = MultiElementResults;
    static constexpr Family family = of;
    static constexpr int32_t read_status = 1150;
    static constexpr const char* ids = "idele";
    static constexpr const char* values_name = "res";
    static constexpr const char* values_message = "res 3";
    static constexpr const char* pass_message = "VAK INTERNAL ERROR reading block with key 1150 or 1151\n";
    static constexpr const char* key_message = "VAK ERROR - wrong block key 1100, 1150 or 1151 expected\n";
    static constexpr const char* writing_message = "VAK ERROR writing block key 1150\n";
    static constexpr const char* chunks_of_8 = "res float32 [unlimited(3),3,2,2] chunked(8,3,2,2)\n";
    static constexpr const char* filtered_values =
        "res float32 [unlimited(2),8,2,2] chunked(1,8,2,2) scaleoffset(float,2) shuffle deflate(6) fill=10000\n";
    static constexpr int32_t filters = 1 + 2 + 8 + 16 + 64 + 128;

    static const std::vector<float>& values(const Sample& s) { return s.res; }
    static Sample without_values()
    {
        auto s = sample_of<Sample>(of);
        s.index.nindex = 0;
        s.nele = 0;
        return s;
    }
    static Sample too_large(Sample s)
    {
        s.numl = 3;
        s.res = some_values(18);
        return s;
    }
    static Sample fails_halfway(Sample s)
    {
        s.zone.fswitch = 3;
        return s;
    }
    static Sample large()
    {
        auto s = sample_of<Sample>(of);
        s.nele = 8;
        s.index.nindex = 8;
        s.index.indexident.assign(8, 3);
        s.index.indexval = some_values(8);
        s.tables.ids = s.tables.fid = {1, 2, 3, 4, 5, 6, 7, 8};
        s.tables.weight = some_values(8);
        s.res = some_values(32);
        return s;
    }
};

using BothSeries = testing::Types<ElementSeries<Family::current>, ElementSeries<Family::legacy>>;
INSTANTIATE_TYPED_TEST_SUITE_P(MultiElementResults, OneStateSeries, BothSeries);

class MultiElementResultsBlock : public BlockTest {};
class MultiElementResultsInBothFamilies : public BothFamilies {
protected:
    std::string header(const MultiElementResults& r) const { return r.path() + (legacy() ? "/header" : ""); }
    std::string data(const MultiElementResults& r, const std::string& name) const
    {
        return r.path() + (legacy() ? "/data/" : "/") + name;
    }
};
INSTANTIATE_TEST_SUITE_P(, MultiElementResultsInBothFamilies, both_families, family_name);

TEST_F(MultiElementResultsBlock, is_stored_as_described)
{
    const MultiElementResults block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(write(block.next()), success);
    EXPECT_EQ(layout(file, "multistate/STATIC/multielementresults/HEXA 8/STRESS/SOLID3_set2/vakblock"), R"(
A block int32
A blocktype char[256]
A series char[256]
A etypelem char[256]
A nele int32
A etypvar char[256]
A ncoo int32
A numl int32
A ndim int32
A etypzone char[256]
A zoneid int32
A etypframe char[256]
A fswitch int32
A dmpswitch int32
A nindex int32
A nstate int32
D idele int32 [3] compact
D fid int32 [3] compact
D operator char[256] [2] compact
D weight float32 [3] compact
D eloc float32 [2,3] compact
D indexident int32 [unlimited(2),2] chunked(1,2)
D indexval float32 [unlimited(2),2] chunked(1,2)
D res float32 [unlimited(2),3,2,2] chunked(1,3,2,2)
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 1150);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"),
              "multielementresults" + std::string(237, '\0'));
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "nstate"), 2);
    EXPECT_EQ(dataset_values<int32_t>(file, block.path() + "/indexident"), (std::vector{4, 5, 14, 15}));
}

TEST_F(MultiElementResultsBlock, legacy_block_is_stored_as_described)
{
    const auto block = sample_of<MultiElementResults>(Family::legacy);
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(write(block.next()), success);
    EXPECT_EQ(layout(file, "multistate/STATIC/multielementresults/HEXA 8/STRESS/SOLID3_set2"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/series char[256]
A header/etypelem char[256]
A header/nele int32
A header/etypvar char[256]
A header/ncoo int32
A header/numl int32
A header/ndim int32
A header/etypzone char[256]
A header/zoneid int32
A header/etypframe char[256]
A header/fswitch int32
A header/dmpswitch int32
A header/nindex int32
A header/nstate int32
G data
D data/idele int32 [3] compact
D data/fid int32 [3] compact
D data/operator char[256] [2] compact
D data/weight float32 [3] compact
D data/eloc float32 [2,3] compact
D data/res float32 [unlimited(2),3,2,2] chunked(1,3,2,2)
G index
D index/indexident int32 [unlimited(2),2] chunked(1,2)
D index/indexval float32 [unlimited(2),2] chunked(1,2)
)");
}

TEST_P(MultiElementResultsInBothFamilies, complex_values_have_a_key_and_an_extent_of_their_own)
{
    for (const int32_t ivsize : {16, 32}) {
        auto written = MultiElementResults::complex_of(family());
        written.ivsize = written.set = ivsize;
        EXPECT_EQ(write(written), success);
        EXPECT_EQ(attribute_value<int32_t>(file, header(written), "block"), 1151);
        EXPECT_EQ(dataset_extents(file, data(written, "res")), (std::vector<int64_t>{1, 3, 2, 2, 2}));
        auto block = emptied(written);
        EXPECT_EQ(read(block, 2), status(1151));
        EXPECT_EQ(listing(block), listing(written));
    }
}

TEST_P(MultiElementResultsInBothFamilies, value_size_code_gives_key_and_stored_size)
{
    struct Row {
        int32_t ivsize, key;
        std::string real;
    };
    for (const Row& row : {Row{4, 1150, "float32"}, Row{8, 1150, "float64"}, Row{16, 1151, "float32"},
                           Row{32, 1151, "float64"}, Row{12, 1150, "float32"}, Row{1032, 1150, "float32"}}) {
        SCOPED_TRACE(row.ivsize);
        auto block = MultiElementResults::complex_of(family());
        block.ivsize = block.set = row.ivsize;
        EXPECT_EQ(write(block), success);
        for (const char* name : {"indexval ", "weight ", "eloc ", "res "})
            EXPECT_THAT(stored(block), testing::HasSubstr(name + row.real + " ["));
        EXPECT_EQ(attribute_value<int32_t>(file, header(block), "block"), row.key);
    }
}

TEST_P(MultiElementResultsInBothFamilies, frame_switch_has_three_forms)
{
    for (const int32_t fswitch : {0, 1, 2}) {
        auto written = sample<MultiElementResults>();
        if (fswitch == 2) written.tables.fid = {1, 2, 3, 4, 5, 6};
        written.zone.fswitch = written.set = fswitch;
        EXPECT_EQ(write(written), success);
        const std::string form = fswitch == 0   ? "fidglob int32 compact\n"
                                 : fswitch == 1 ? "fid int32 [3] compact\n"
                                                : "fid int32 [3,2] compact\n";
        EXPECT_THAT(stored(written), testing::HasSubstr(form));
        auto block = emptied(written);
        EXPECT_EQ(read(block, 2), status(1150));
        EXPECT_EQ(listing(block), listing(written));
    }
}

TEST_P(MultiElementResultsInBothFamilies, another_frame_switch_ends_the_write_behind_idele)
{
    auto written = sample<MultiElementResults>();
    written.zone.fswitch = 3;
    EXPECT_EQ(write(written), status(-123));
    EXPECT_THAT(stored(written), testing::HasSubstr("idele int32 [3]"));
    for (const char* name : {"fid int32", "operator", "eloc", "indexident", "res", "nstate"})
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr(name)));
}

TEST_P(MultiElementResultsInBothFamilies, another_frame_switch_ends_the_read_behind_idele)
{
    const auto written = sample<MultiElementResults>();
    EXPECT_EQ(write(written), success);
    falsify_attribute(header(written), "fswitch", -1);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(-123));
    EXPECT_EQ(block.tables.ids, written.tables.ids);
    EXPECT_EQ(block.res, emptied(written).res);
}

TEST_P(MultiElementResultsInBothFamilies, names_of_blanks_and_negative_numbers_add_nothing_to_the_path)
{
    auto written = sample<MultiElementResults>();
    written.series = written.zone.etypzone = padded(" ");
    written.zone.zoneid = -1;
    written.set = -1;
    EXPECT_EQ(write(written), success);
    EXPECT_TRUE(exists(file, std::string("multistate/multielementresults/HEXA 8/STRESS/") +
                                 (legacy() ? "data" : "vakblock")));
}

TEST_P(MultiElementResultsInBothFamilies, state_of_another_kind_of_values_is_refused)
{
    const auto written = sample<MultiElementResults>();
    EXPECT_EQ(write(written), success);
    auto other = MultiElementResults::complex_of(family());
    EXPECT_EQ(write(other),
              failure(-3020,
                      "VAK INTERNAL ERROR (20) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, "
                      "error: res 3 4 4 1 4\n"));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1150));
    EXPECT_EQ(listing(block), listing(written));
}

}  // namespace

}  // namespace vak::test
