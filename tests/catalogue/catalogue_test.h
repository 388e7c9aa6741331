// Block files made by plain HDF5, and their listing by the library in both families.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "support/library.h"
#include "vak_sp.h"

namespace vak::test {

using Lookup = decltype(&vak_lookup);

struct CatalogueFamily {
    const char* name;
    Lookup lookup;
    const char* heading;
    const char* block;  // the group that holds a block's attributes
};
inline std::ostream& operator<<(std::ostream& stream, const CatalogueFamily& family)
{
    return stream << family.name;
}
inline const CatalogueFamily current_family{"current", vak_lookup, "VAK_LOOKUP", "vakblock"};
inline const CatalogueFamily legacy_family{"legacy", vak1_lookup, "VAK1_LOOKUP", "header"};

inline std::string name_of_family(const testing::TestParamInfo<CatalogueFamily>& info)
{
    return info.param.name;
}

// The arrays of a listing.
struct Arrays {
    int32_t* keys = nullptr;
    int64_t* offsets = nullptr;
    char* paths = nullptr;

    bool operator==(const Arrays&) const = default;
};

// What a listing routine is given and gives back. The arrays that the call made are freed with it, those that
// it was given are left to the test.
struct List {
    int32_t collect = 1, verbose = 0;
    int32_t capacity = 0;
    int64_t pool_size = 0;
    int32_t nblocks = 4711;
    int64_t total_len = 4711;
    Arrays given;
    Arrays got;
    int32_t ierr = 4711;
    Output output;

    List() = default;
    List(int32_t room, int64_t pool, const Arrays& arrays)
        : capacity(room), pool_size(pool), given(arrays), got(arrays)
    {
    }
    List(const List&) = delete;
    List& operator=(const List&) = delete;
    ~List()
    {
        if (got.keys != given.keys) std::free(got.keys);
        if (got.offsets != given.offsets) std::free(got.offsets);
        if (got.paths != given.paths) std::free(got.paths);
    }

    // "key path" of every block.
    std::vector<std::string> blocks() const
    {
        std::vector<std::string> all;
        for (int32_t i = 0; i < nblocks; ++i)
            all.push_back(std::to_string(got.keys[i]) + " " + (got.paths + got.offsets[i]));
        return all;
    }
};

using Blocks = std::vector<std::string>;

class CatalogueTest : public LibraryTest {
protected:
    static PropertiesId with_parents()
    {
        PropertiesId list(H5Pcreate(H5P_LINK_CREATE), "link creation list");
        H5Pset_create_intermediate_group(list, 1);
        return list;
    }

    static ObjectId make_group(hid_t location, const std::string& name)
    {
        return {H5Gcreate2(location, name.c_str(), with_parents(), H5P_DEFAULT, H5P_DEFAULT), name};
    }
    static void make_integer(hid_t object, const char* name, int32_t value)
    {
        const SpaceId space(H5Screate(H5S_SCALAR), "space");
        const AttributeId attribute(H5Acreate2(object, name, H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT),
                                    name);
        H5Awrite(attribute, H5T_NATIVE_INT32, &value);
    }
    static ObjectId make_block(hid_t location, const std::string& name, int32_t key)
    {
        ObjectId group = make_group(location, name);
        make_integer(group, "block", key);
        return group;
    }
    static ObjectId make_dataset(hid_t location, const std::string& name)
    {
        const SpaceId space(H5Screate(H5S_SCALAR), "space");
        return {H5Dcreate2(location, name.c_str(), H5T_STD_I32LE, space, with_parents(), H5P_DEFAULT,
                           H5P_DEFAULT),
                name};
    }
    static void link_soft(const std::string& target, hid_t location, const std::string& name)
    {
        ASSERT_GE(H5Lcreate_soft(target.c_str(), location, name.c_str(), with_parents(), H5P_DEFAULT), 0);
    }
    static void link_hard(const std::string& target, hid_t location, const std::string& name)
    {
        ASSERT_GE(
            H5Lcreate_hard(location, target.c_str(), location, name.c_str(), with_parents(), H5P_DEFAULT), 0);
    }
    static void link_external(const std::string& file, const std::string& target, hid_t location,
                              const std::string& name)
    {
        ASSERT_GE(H5Lcreate_external(file.c_str(), target.c_str(), location, name.c_str(), with_parents(),
                                     H5P_DEFAULT),
                  0);
    }

    // The arguments as they stand in `list`, changed by the call.
    void look_up(Lookup lookup, hid_t start, List& list)
    {
        list.output = call([&] {
            lookup(&start, &list.collect, &list.verbose, &list.capacity, &list.pool_size, &list.nblocks,
                   &list.total_len, &list.got.keys, &list.got.offsets, &list.got.paths, &list.ierr);
        });
    }
    // A collecting walk that is to succeed and to print nothing.
    Blocks blocks_below(Lookup lookup, hid_t start, int32_t ierr = 0)
    {
        List list;
        look_up(lookup, start, list);
        EXPECT_EQ(list.output, nothing_printed);
        EXPECT_EQ(list.ierr, ierr);
        return list.blocks();
    }
};

class BothCatalogues : public CatalogueTest, public testing::WithParamInterface<CatalogueFamily> {
protected:
    // The path of a block under the given place: "a/b" is "a/b/vakblock" or "a/b/header".
    static std::string block(const std::string& place) { return place + "/" + GetParam().block; }
    static std::string listed(int32_t key, const std::string& place)
    {
        return std::to_string(key) + " " + block(place);
    }
    ObjectId make(const std::string& place, int32_t key) { return make_block(file, block(place), key); }
    Blocks blocks_below(hid_t start, int32_t ierr = 0)
    {
        return CatalogueTest::blocks_below(GetParam().lookup, start, ierr);
    }
    void look_up(List& list) { CatalogueTest::look_up(GetParam().lookup, file, list); }
};

#define IN_BOTH_CATALOGUES(suite) \
    INSTANTIATE_TEST_SUITE_P(Family, suite, testing::Values(current_family, legacy_family), name_of_family)

}  // namespace vak::test
