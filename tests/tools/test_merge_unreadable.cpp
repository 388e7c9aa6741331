// What is in a domain file and cannot be read ends the merge: a target without it would look complete.
#include <gtest/gtest.h>

#include <fstream>
#include <numeric>

#include "samples/activflags.h"
#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/elementresults.h"
#include "samples/indices.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "samples/parts.h"
#include "samples/sparsematrix.h"
#include "samples/text.h"
#include "tools/merge_failures.h"
#include "tools/merge_samples.h"

using namespace vak;
using namespace vak::test;

namespace {

std::vector<std::string> links_of(hid_t file, const std::string& group)
{
    const ObjectId holder = open_object(file, group);
    H5G_info_t info;
    H5Gget_info(holder, &info);
    std::vector<std::string> names(info.nlinks);
    for (hsize_t i = 0; i < info.nlinks; ++i) {
        char name[256];
        H5Lget_name_by_idx(holder, ".", H5_INDEX_NAME, H5_ITER_INC, i, name, sizeof name, H5P_DEFAULT);
        names[i] = name;
    }
    return names;
}

// Takes a message out of the header of an object in a closed file, as damage may.
void blot_out(const std::string& name, haddr_t header, uint16_t message)
{
    std::fstream bytes(name, std::ios::in | std::ios::out | std::ios::binary);
    uint16_t type_and_size[2] = {};
    haddr_t at = header + 16;
    for (int i = 0; i < 20; ++i, at += 8 + haddr_t{type_and_size[1]}) {
        bytes.seekg(static_cast<std::streamoff>(at));
        bytes.read(reinterpret_cast<char*>(type_and_size), sizeof type_and_size);
        if (type_and_size[0] != message) continue;
        bytes.seekp(static_cast<std::streamoff>(at));
        bytes.write("\0", 2);
        return;
    }
    ADD_FAILURE() << "no such message";
}

class MergeUnreadable : public MergeFailures {
protected:
    // A domain with a block, one dataset of which has no data type any more.
    template <class S>
    void add_without_type(const S& sample, const std::string& dataset)
    {
        const hid_t domain = create_domain();
        EXPECT_GE(sample.write(domain), 0);
        haddr_t header = HADDR_UNDEF;
        {
            H5O_info2_t info;
            const ObjectId damaged = open_object(domain, sample.path() + "/" + dataset);
            H5Oget_info3(damaged, &info, H5O_INFO_BASIC);
            EXPECT_GE(H5VLnative_token_to_addr(domain, info.token, &header), 0);
        }
        std::string name(static_cast<size_t>(H5Fget_name(domain, nullptr, 0)), '\0');
        H5Fget_name(domain, name.data(), name.size() + 1);
        H5Fclose(domain);
        constexpr uint16_t data_type = 3;
        blot_out(name, header, data_type);
        adopt(H5Fopen(name.c_str(), H5F_ACC_RDWR, H5P_DEFAULT));
    }

    // Every array of a block, behind its path.
    std::vector<std::string> arrays_of(hid_t domain, const std::string& block) const
    {
        if (!legacy()) return links_of(domain, block);
        std::vector<std::string> all;
        for (const std::string& section : links_of(domain, block))
            for (const std::string& name : links_of(domain, block + "/" + section))
                all.push_back(section + "/" + name);
        return all;
    }

    // The merge of one file whose block lacks an array, each in turn. One that readers do without is none.
    template <class S>
    void lack_each_array(const S& sample)
    {
        restart();
        write_closed(sample, add_domain());
        const hid_t whole = create_domain();
        write_closed(sample, whole);
        int lacking = 0;
        for (const std::string& array : arrays_of(whole, sample.path())) {
            SCOPED_TRACE(std::string(S::type) + " without " + array);
            restart();
            const hid_t domain = add_domain();
            write_closed(sample, domain);
            remove(domain, sample.path() + "/" + array);
            if (array.ends_with("fidglob") || array.ends_with("weight")) {
                EXPECT_EQ(merge(), 0) << printed();
                continue;
            }
            expect_failure(reading(S::type), -6002);
            ++lacking;
        }
        EXPECT_GT(lacking, 2);
        H5Fclose(whole);
    }
    template <class S>
    void lack_each_array()
    {
        lack_each_array(sample_of<S>(family()));
    }

    // The same with each attribute: what the block's own reader does not read is not merged either.
    template <class S>
    void lack_each_attribute(const S& sample)
    {
        const hid_t whole = create_domain();
        write_closed(sample, whole);
        int lacking = 0;
        for (const std::string& name : attributes_of(whole, sample.path() + header())) {
            if (name == "block") continue;  // without it there is no block
            SCOPED_TRACE(std::string(S::type) + " without " + name);
            restart();
            const hid_t domain = add_domain();
            write_closed(sample, domain);
            EXPECT_GE(
                H5Adelete_by_name(domain, (sample.path() + header()).c_str(), name.c_str(), H5P_DEFAULT), 0);
            S read = sample;
            bool is_needed = false;
            {
                const ObjectId block = open_object(domain, sample.path());
                call([&] { is_needed = read.read(block, everything<S>(legacy())) < 0; });
            }
            if (is_needed && name != "nuid") {
                expect_failure(reading(S::type, 1), -4002);
                ++lacking;
            } else {
                EXPECT_EQ(merge(), 0) << printed();
            }
        }
        EXPECT_GT(lacking, 2);
        H5Fclose(whole);
    }
    template <class S>
    void lack_each_attribute()
    {
        lack_each_attribute(sample_of<S>(family()));
    }
    static std::vector<std::string> attributes_of(hid_t file, const std::string& group)
    {
        std::vector<std::string> names;
        hsize_t at = 0;
        const auto visit = [](hid_t, const char* name, const H5A_info_t*, void* found) {
            static_cast<std::vector<std::string>*>(found)->emplace_back(name);
            return herr_t{0};
        };
        H5Aiterate2(open_object(file, group), H5_INDEX_NAME, H5_ITER_INC, &at, visit, &names);
        return names;
    }

    void damage_chunk(hid_t domain, const std::string& path) const
    {
        const ObjectId dataset = open_object(domain, path);
        const hsize_t corner[] = {0, 0, 0, 0};
        const std::string garbage(40, '#');
        EXPECT_GE(H5Dwrite_chunk(dataset, H5P_DEFAULT, 0, corner, garbage.size(), garbage.data()), 0);
    }
    template <class S>
    void damage_chunk_of_a_copied(const S& block, const std::string& array)
    {
        SCOPED_TRACE(array);
        restart();
        damage_chunk(add(block), block.path() + data() + array);
        expect_failure(reading(S::type), -6999);
        EXPECT_FALSE(exists(target(), block.path()));
    }
};

// What the catalogue lists nothing of would be missing in the target.
// HDF5 may crash where it copies such an object.
TEST_P(MergeUnreadable, object_in_a_copied_block_that_is_half_a_dataset_ends_the_merge)
{
    const auto sparse = sample_of<SparseMatrix>(family());
    add_without_type(sparse, legacy() ? "data/colind" : "colind");
    expect_failure(reading(SparseMatrix::type), -6999);
}

TEST_P(MergeUnreadable, key_of_a_block_is_told_with_its_path)
{
    const EntityResults r = results();
    add(r);
    const hid_t domain = add(r);
    {
        const ObjectId holder = open_object(domain, r.path() + header());
        EXPECT_GE(H5Adelete(holder, "block"), 0);
        const SpaceId space{H5Screate(H5S_SCALAR), "space"};
        const AttributeId attribute{
            H5Acreate2(holder, "block", H5T_IEEE_F32LE, space, H5P_DEFAULT, H5P_DEFAULT), "block"};
    }
    expect_failure(
        "VAK WARNING file [1]: \"" + r.path() + header() + "\" cannot be read\n" + reading("vakblock", 1),
        -1);
    EXPECT_EQ(layout(target(), "."), "\n");
}

TEST_P(MergeUnreadable, is_not_what_a_group_without_a_key_is)
{
    const EntityResults r = results();
    const hid_t domain = add(r);
    EXPECT_GE(H5Adelete_by_name(domain, (r.path() + header()).c_str(), "block", H5P_DEFAULT), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_FALSE(exists(target(), r.path()));
}

// Also in the only file that has the block: its own reader would not read it.
TEST_P(MergeUnreadable, is_a_block_that_lacks_an_array)
{
    lack_each_array<EntityResults>();
    lack_each_array<ElementResults>();
    lack_each_array(MultiEntityResults::of_states(family(), 2));
    lack_each_array<MultiElementResults>();
    lack_each_array<ActivFlags>();
    lack_each_array<MultiActivFlags>();
    lack_each_array<Connectivities>();
    lack_each_array<Parts>();
    lack_each_array<Attributes>();
    lack_each_array<Collector>();
    if (legacy()) return;
    lack_each_array<Identifiers>();
    lack_each_array<ListedProperties>();
}

TEST_P(MergeUnreadable, is_a_block_that_lacks_an_attribute)
{
    lack_each_attribute<EntityResults>();
    lack_each_attribute<ElementResults>();
    lack_each_attribute(MultiEntityResults::of_states(family(), 2));
    lack_each_attribute<ActivFlags>();
    lack_each_attribute<Connectivities>();
    lack_each_attribute<Parts>();
    lack_each_attribute<Attributes>();
    lack_each_attribute<Collector>();
    lack_each_attribute<MultiActivFlags>();
    lack_each_attribute<MultiElementResults>();
    if (!legacy()) lack_each_attribute<Identifiers>();
}

TEST_P(MergeUnreadable, is_a_result_with_a_frame_switch_that_there_is_not)
{
    const EntityResults entities = results();
    const auto elements = sample_of<ElementResults>(family());
    for (const int32_t fswitch : {-1, 2, 3}) {
        restart();
        set_attribute(add(entities), entities.path(), "fswitch", fswitch);
        expect_failure(reading("entityresults", 1), -123);
        EXPECT_FALSE(exists(target(), entities.path()));
    }
    restart();
    const hid_t domain = add_domain();
    write_closed(elements, domain);
    set_attribute(domain, elements.path(), "fswitch", 3);
    expect_failure(reading("elementresults", 1), -123);
}

// HDF5 copies such chunks without a look at them.
TEST_P(MergeUnreadable, are_damaged_chunks_of_blocks_that_are_copied)
{
    auto matrix = sample_of<DenseMatrix>(family());
    matrix.nrow = 8;
    matrix.val = some_values(24);
    matrix.flags = 2;
    matrix.params[1] = 6;
    damage_chunk_of_a_copied(matrix, "val");

    auto text = sample_of<Text>(family());
    text.nlines = 20;
    text.line = std::string(static_cast<size_t>(20 * text.length), 'x');
    text.flags = 4;
    text.params[1] = 6;
    damage_chunk_of_a_copied(text, "line");

    auto sparse = sample_of<SparseMatrix>(family());
    sparse.nrow = 40;
    sparse.nnz = 40;
    sparse.colind.assign(40, 1);
    sparse.rowptr.resize(41);
    std::iota(sparse.rowptr.begin(), sparse.rowptr.end(), 0);
    sparse.val = some_values(40);
    sparse.flags = 1;
    sparse.params[1] = 6;
    damage_chunk_of_a_copied(sparse, "colind");
    damage_chunk_of_a_copied(sparse, "rowptr");
}

// No reader of ours reads them.
TEST_P(MergeUnreadable, are_no_chunks_of_a_type_that_the_library_does_not_store)
{
    const auto matrix = sample_of<DenseMatrix>(family());
    const std::string records = matrix.path() + data() + "records";
    const TypeId type(H5Tcreate(H5T_COMPOUND, 8), "type");
    H5Tinsert(type, "from", 0, H5T_STD_I32LE);
    H5Tinsert(type, "to", 4, H5T_STD_I32LE);
    const std::vector<int32_t> values{1, 2, 3, 4, 5, 6};
    {
        const hsize_t extent = 3;
        const SpaceId space(H5Screate_simple(1, &extent, nullptr), "space");
        const PropertiesId chunked(H5Pcreate(H5P_DATASET_CREATE), "list");
        H5Pset_chunk(chunked, 1, &extent);
        H5Pset_deflate(chunked, 6);
        const ObjectId made(
            H5Dcreate2(add(matrix), records.c_str(), type, space, H5P_DEFAULT, chunked, H5P_DEFAULT),
            records);
        EXPECT_GE(H5Dwrite(made, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    }
    EXPECT_EQ(merge(), 0) << printed();
    std::vector<int32_t> found(values.size());
    const ObjectId copied = open_object(target(), records);
    EXPECT_GE(H5Dread(copied, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, found.data()), 0);
    EXPECT_EQ(found, values);
    EXPECT_EQ(dataset_values<float>(target(), matrix.path() + data() + "val"), matrix.val);
}

TEST_P(MergeUnreadable, is_not_a_copied_block_with_filters)
{
    auto matrix = sample_of<DenseMatrix>(family());
    matrix.nrow = 8;
    matrix.val = some_values(24);
    matrix.flags = 2 + 16 + 128;
    matrix.params[0] = 2;
    matrix.params[1] = 6;
    add(matrix);
    add(matrix);
    EXPECT_EQ(merge(), 0) << printed();
    EXPECT_EQ(dataset_values<float>(target(), matrix.path() + data() + "val").size(), 24U);
    EXPECT_THAT(printed().err, testing::Not(testing::HasSubstr("left out")));
}

TEST_P(MergeUnreadable, are_more_index_values_than_can_be_merged_in_any_block_of_any_file)
{
    const std::string line = "\nVAK ERROR - nindex too large = 6. Increase " +
                             std::string(legacy() ? "MAXINDEX1" : "MAXINDEX") + ": 5\n";
    const auto expect_refusal = [&](const auto& block) {
        restart();
        add(results());
        set_attribute(add(block), block.path(), "nindex", 6);
        EXPECT_EQ(merge(), 1) << printed();
        EXPECT_THAT(printed().err, testing::EndsWith(line));
    };
    expect_refusal(sample_of<Indices>(family()));
    expect_refusal(sample_of<DenseMatrix>(family()));
    expect_refusal(sample_of<Collector>(family()));
    expect_refusal(sample_of<Parts>(family()));
    expect_refusal(results());
    if (!legacy()) expect_refusal(sample_of<Text>(family()));
}

TEST_P(MergeUnreadable, matrix_that_differs_is_bounded_as_well)
{
    const auto matrix = sample_of<DenseMatrix>(family());
    add(matrix);
    set_attribute(add(matrix), matrix.path(), "nindex", 6);
    EXPECT_EQ(merge(), 1);
}

TEST_P(MergeUnreadable, is_no_end_where_groups_go_round_in_a_circle)
{
    const auto matrix = sample_of<DenseMatrix>(family());
    for (int i = 0; i < 2; ++i) {
        const ObjectId block = open_object(add(matrix), matrix.path() + (legacy() ? "/data" : ""));
        EXPECT_GE(H5Lcreate_hard(block, ".", block, "again", H5P_DEFAULT, H5P_DEFAULT), 0);
        EXPECT_GE(H5Lcreate_soft(".", block, "round", H5P_DEFAULT, H5P_DEFAULT), 0);
    }
    EXPECT_EQ(merge(), 0);
    EXPECT_THAT(printed().err, testing::HasSubstr("differs in its contents"));
    EXPECT_EQ(dataset_values<float>(target(), matrix.path() + data() + "val"), matrix.val);
}

INSTANTIATE_TEST_SUITE_P(, MergeUnreadable, both_families, family_name);

}  // namespace
