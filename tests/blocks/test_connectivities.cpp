#include "samples/connectivities.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class ConnectivitiesBlock : public BlockTest {};
class ConnectivitiesInBothFamilies : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(, ConnectivitiesInBothFamilies, both_families, family_name);

int32_t everything(Family family) { return family == Family::legacy ? 2 : 1 + 2 + 4 + 8; }

Connectivities legacy_connectivities() { return sample_of<Connectivities>(Family::legacy); }

void take_header(Connectivities& to, const Connectivities& from)
{
    to.etyp = from.etyp;
    to.etypelem = from.etypelem;
    to.etyppart = from.etyppart;
    to.etypnode = from.etypnode;
    to.etypvar = from.etypvar;
    to.nele = from.nele;
    to.npele = from.npele;
    to.ndim = from.ndim;
    to.nbint = from.nbint;
    to.nbfloat = from.nbfloat;
    to.index.nindex = from.index.nindex;
    to.index.indexic = from.index.indexic;
}

// What the attributes of the block alone tell.
Connectivities header_of(const Connectivities& written)
{
    Connectivities expected = emptied(written);
    take_header(expected, written);
    return expected;
}

TEST_F(ConnectivitiesBlock, is_stored_as_described)
{
    const Connectivities block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/connectivities/HEXA 8/vakblock"), R"(
A block int32
A blocktype char[256]
A etyp char[256]
A etypelem char[256]
A etyppart char[256]
A etypnode char[256]
A nele int32
A npele int32
A ndim int32
A nbint int32
A nbfloat int32
A etypvar char[256]
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D idele int32 [2] compact
D pid int32 [2] compact
D ic int32 [2,4] compact
D iparam int32 [2,2] compact
D fparam float32 [2,3] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 300);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"),
              std::string("connectivities") + std::string(242, '\0'));
    EXPECT_EQ(dataset_values<int32_t>(file, block.path() + "/ic"), block.ic);
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/fparam"), block.fparam);
}

TEST_F(ConnectivitiesBlock, legacy_block_is_stored_as_described)
{
    EXPECT_EQ(write(legacy_connectivities()), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/connectivities/HEXA 8"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etypelem char[256]
A header/etyppart char[256]
A header/etypnode char[256]
A header/nele int32
A header/npele int32
A header/ndim int32
A header/nbint int32
A header/nbfloat int32
A header/nindex int32
G index
D index/indexident int32 [2] compact
D index/indexval float32 [2] compact
G data
D data/idele int32 [2] compact
D data/pid int32 [2] compact
D data/ic int32 [2,4] compact
D data/mbunit int32 [3] compact
D data/mdunit int32 [3] compact
D data/ubid int32 [3] compact
D data/ubexp float32 [3] compact
D data/udid int32 [1] compact
D data/udexp float32 [1] compact
D data/iparam int32 [2,2] compact
D data/fparam float32 [2,3] compact
)");
}

TEST_P(ConnectivitiesInBothFamilies, reads_back_what_was_written)
{
    const auto written = sample<Connectivities>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, everything(family())), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
}

TEST_P(ConnectivitiesInBothFamilies, mode_1_reads_the_header_alone)
{
    const auto written = sample<Connectivities>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), success);
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, untouched);
    EXPECT_EQ(block.found_params[0], untouched);
}

TEST_F(ConnectivitiesBlock, mode_4_reads_the_elements_alone)
{
    const Connectivities written;
    EXPECT_EQ(write(written), success);
    Connectivities block = emptied(written);
    block.nele = 2;
    EXPECT_EQ(read(block, 4), success);
    Connectivities expected = emptied(written);
    expected.nele = 2;
    expected.idele = written.idele;
    expected.pid = written.pid;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_F(ConnectivitiesBlock, mode_8_reads_the_parameters_by_the_callers_counts)
{
    const Connectivities written;
    EXPECT_EQ(write(written), success);
    Connectivities block = header_of(written);
    EXPECT_EQ(read(block, 8), success);
    Connectivities expected = header_of(written);
    expected.ic = written.ic;
    expected.iparam = written.iparam;
    expected.fparam = written.fparam;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, 0);
}

TEST_F(ConnectivitiesBlock, mode_2_reads_the_index_values_alone)
{
    const Connectivities written;
    EXPECT_EQ(write(written), success);
    Connectivities block = header_of(written);
    EXPECT_EQ(read(block, 2), success);
    Connectivities expected = header_of(written);
    expected.index = written.index;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_F(ConnectivitiesBlock, mode_that_reads_nothing_gives_the_key)
{
    const Connectivities written;
    EXPECT_EQ(write(written), success);
    for (const int32_t mode : {0, 2, 16}) {
        Connectivities block = emptied(written);
        block.index.nindex = 0;
        EXPECT_EQ(read(block, mode), status(300));
        block.index.nindex = untouched;
        EXPECT_EQ(listing(block), listing(emptied(written)));
        EXPECT_EQ(block.found_flags, untouched);
    }
}

TEST_F(ConnectivitiesBlock, name_of_real_parameters_is_stored_only_when_there_are_any)
{
    for (const int32_t nbfloat : {0, -1}) {
        Connectivities written;
        written.etypelem = padded("nbfloat " + std::to_string(nbfloat));
        written.nbfloat = nbfloat;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("etypvar")));
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("fparam")));
        Connectivities block = emptied(written);
        EXPECT_EQ(read(block, 1), success);
        EXPECT_EQ(block.nbfloat, nbfloat);
        EXPECT_EQ(block.etypvar, std::string(256, '?'));
        EXPECT_EQ(read(block, everything(Family::current)), success);
        EXPECT_EQ(block.fparam, emptied(written).fparam);
        EXPECT_EQ(block.iparam, written.iparam);
    }
}

TEST_F(ConnectivitiesBlock, legacy_pass_0_reads_the_index_values_as_well)
{
    const auto written = legacy_connectivities();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 0), success);
    auto expected = header_of(written);
    expected.index = written.index;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_F(ConnectivitiesBlock, another_legacy_pass_is_refused_behind_the_header)
{
    const auto written = legacy_connectivities();
    EXPECT_EQ(write(written), success);
    for (const int32_t ipass : {3, 15, -1}) {
        auto block = emptied(written);
        EXPECT_EQ(read(block, ipass), failure(-3, "VAK INTERNAL ERROR reading block with key 300 \n"));
        EXPECT_EQ(listing(block), listing(header_of(written)));
    }
}

TEST_F(ConnectivitiesBlock, missing_legacy_subgroup_is_named)
{
    const auto written = legacy_connectivities();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    H5Ldelete(file, (written.path() + "/index").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(block, 0), failure(-1, "VAK ERROR - index not found\n"));
    EXPECT_EQ(read(block, 2), failure(-1, "VAK ERROR - index not found\n"));
    EXPECT_EQ(block.found_flags, untouched);
    H5Ldelete(file, (written.path() + "/data").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(block, 2), failure(-1, "VAK ERROR - data not found\n"));
    H5Ldelete(file, (written.path() + "/header").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(block, 1), failure(-1, "VAK ERROR - header not found\n"));
}

TEST_F(ConnectivitiesBlock, legacy_parameters_without_units_have_no_unit_lists)
{
    auto written = legacy_connectivities();
    written.units.mbunit = written.units.mdunit = {0, 0, 0};
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("D data/mdunit int32 [3] compact\nD data/iparam"));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(block.units.ubid, emptied(written).units.ubid);
    EXPECT_EQ(block.fparam, written.fparam);
}

TEST_F(ConnectivitiesBlock, legacy_counts_of_units_are_read_first_without_the_other_arrays)
{
    const auto written = legacy_connectivities();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    block.wants_arrays = false;
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, 0);
}

TEST_F(ConnectivitiesBlock, negative_number_of_units_is_an_error_and_never_nothing)
{
    auto written = legacy_connectivities();
    written.units.mbunit = {2, -1, 0};
    const Result result = write(written);
    EXPECT_LT(result.ierr, 0);
    EXPECT_THAT(
        result.output.err,
        testing::HasSubstr("in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, error: ubid "));
    EXPECT_FALSE(exists(file, written.path() + "/data/ubid"));
}

TEST_F(ConnectivitiesBlock, negative_stored_number_of_units_is_an_error_on_reading)
{
    const auto written = legacy_connectivities();
    EXPECT_EQ(write(written), success);
    falsify_dataset(written.path() + "/data/mbunit", {4, -1, 0});
    for (const bool wants_arrays : {true, false}) {
        auto block = emptied(written);
        block.wants_arrays = wants_arrays;
        const Result result = read(block, 2);
        EXPECT_EQ(
            result,
            failure(
                -6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: ubid 2 4 0\n"));
        EXPECT_EQ(block.units.ubid, emptied(written).units.ubid);
    }
}

TEST_P(ConnectivitiesInBothFamilies, counts_of_zero_or_less_have_no_arrays)
{
    for (const int32_t n : {0, -1}) {
        auto written = sample<Connectivities>();
        written.etypelem = padded("n " + std::to_string(n));
        written.nele = n;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("idele")));
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("iparam")));
        auto block = emptied(written);
        EXPECT_EQ(read(block, everything(family())), success);
        EXPECT_EQ(block.nele, n);
        EXPECT_EQ(block.ic, emptied(written).ic);
    }
}

TEST_P(ConnectivitiesInBothFamilies, stands_where_its_index_says)
{
    auto block = sample<Connectivities>();
    const std::string end = legacy() ? "" : "/vakblock";
    block.index.nindex = 0;
    EXPECT_EQ(write(block), success);
    EXPECT_TRUE(exists(file, "constant/connectivities/HEXA 8" + end));
    EXPECT_THAT(stored(block), testing::Not(testing::HasSubstr("indexident")));
    EXPECT_EQ(exists(file, "constant/connectivities/HEXA 8/index"), legacy());
    block.index.nindex = -1;
    EXPECT_EQ(write(block), success);
    EXPECT_TRUE(exists(file, "multistate/connectivities/HEXA 8" + end));
    block.index.nindex = 2;
    block.state = -1;
    EXPECT_EQ(write(block), success);
    EXPECT_TRUE(exists(file, "singlestate/state000000000005/state000000000004/connectivities/HEXA 8" + end));
}

TEST_P(ConnectivitiesInBothFamilies, reals_may_be_stored_double_and_come_back_single)
{
    auto written = sample<Connectivities>();
    written.real_size = 8;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("indexval float64 [2]"));
    EXPECT_THAT(stored(written), testing::HasSubstr("fparam float64 [2,3]"));
    EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("float32")));
    auto block = emptied(written);
    EXPECT_EQ(read(block, everything(family())), success);
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(ConnectivitiesInBothFamilies, other_real_sizes_are_refused_above_zero_and_four_below)
{
    auto written = sample<Connectivities>();
    written.real_size = -8;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("fparam float32 [2,3]"));
    written.etypelem = padded("OTHER");
    written.real_size = 2;
    EXPECT_EQ(
        write(written),
        failure(
            -3002,
            "VAK INTERNAL ERROR (2) in VAK_H5gettype - vak_type, data_size: 3 2\n"
            "VAK INTERNAL ERROR (3) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, error: indexval 3 4 2 0 -1\n"));
}

TEST_P(ConnectivitiesInBothFamilies, reals_lose_scale_offset_and_the_others_keep_it)
{
    auto written = sample<Connectivities>();
    written.nele = 8;
    written.npele = written.nbint = written.nbfloat = 1;
    written.idele = written.pid = written.ic = written.iparam = {8, 7, 6, 5, 4, 3, 2, 1};
    written.fparam = {0.1F, 0.2F, 0.3F, 0.4F, 0.5F, 0.6F, 0.7F, 1e20F};
    written.units = {{8}, {8}, written.ic, written.fparam, written.ic, written.fparam};
    written.index.nindex = 0;
    written.flags = 255;
    written.params[0] = 1;
    written.params[1] = 4;
    EXPECT_EQ(write(written), success);
    const std::string data = legacy() ? "D data/" : "D ";
    const std::string integers = " scaleoffset(int,0) shuffle deflate(4) fill=10000\n",
                      reals = " shuffle deflate(4)\n";
    std::string expected = data + "idele int32 [8] chunked(8)" + integers + data +
                           "pid int32 [8] chunked(8)" + integers + data + "ic int32 [8,1] chunked(8,1)" +
                           integers;
    if (legacy())
        expected += data + "mbunit int32 [1] compact\n" + data + "mdunit int32 [1] compact\n" +  //
                    data + "ubid int32 [8] chunked(8)" + integers + data + "ubexp float32 [8] chunked(8)" +
                    reals + data + "udid int32 [8] chunked(8)" + integers + data +
                    "udexp float32 [8] chunked(8)" + reals;
    expected += data + "iparam int32 [8,1] chunked(8,1)" + integers + data +
                "fparam float32 [8,1] chunked(8,1)" + reals;
    EXPECT_THAT(stored(written), testing::EndsWith(expected));
    auto block = emptied(written);
    EXPECT_EQ(read(block, everything(family())), success);
    block.index = written.index;
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 255 - 128 - 4 - 32);
    EXPECT_EQ(block.found_params[0], 0);
    EXPECT_EQ(block.found_params[1], 4);
}

TEST_F(ConnectivitiesBlock, swapped_block_of_another_size_is_refused_untouched)
{
    const Connectivities first;
    EXPECT_EQ(write(first), success);
    Connectivities larger;
    larger.etypelem = padded("LARGER");
    larger.npele = 8;
    larger.ic = std::vector<int32_t>(16, 1);
    EXPECT_EQ(write(larger), success);
    Connectivities block = emptied(first);
    EXPECT_EQ(read(block, 1), success);
    EXPECT_EQ(
        read(block, 8, larger.path()),
        failure(-6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: ic 2 4 1\n"));
    EXPECT_EQ(listing(block), listing(header_of(first)));
}

TEST_P(ConnectivitiesInBothFamilies, counts_larger_than_what_is_stored_are_refused)
{
    const auto written = sample<Connectivities>();
    EXPECT_EQ(write(written), success);
    const std::string header = written.path() + (legacy() ? "/header" : "");
    for (const int32_t hostile : {3, 2147483647, -2147483647 - 1}) {
        falsify_attribute(header, "nele", hostile);
        auto block = emptied(written);
        const Result result = read(block, everything(family()));
        EXPECT_EQ(block.nele, hostile);
        EXPECT_EQ(block.idele, emptied(written).idele);
        if (hostile > 0)
            EXPECT_EQ(
                result,
                failure(
                    -6030,
                    "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: idele 2 4 0\n"));
        else
            EXPECT_EQ(result, success);
    }
}

}  // namespace

}  // namespace vak::test
