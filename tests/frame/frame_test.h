// Every test of the frame runs with the routines of both families.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/library.h"
#include "vak_sp.h"

namespace vak::test {

struct Routines {
    const char* family;
    decltype(&VAK_OPEN) open;
    decltype(&VAK_CLOSE) close;
    decltype(&VAK_FLUSH) flush;
    decltype(&VAK_H5GOPEN) h5gopen;
    decltype(&VAK_H5GCLOSE) h5gclose;
    decltype(&VAK_OPENAUTOPATH) openautopath;
    decltype(&VAK_GET_VERSION) get_version;
};

inline std::ostream& operator<<(std::ostream& stream, const Routines& routines)
{
    return stream << routines.family;
}

constexpr Routines current{.family = "current",
                           .open = VAK_OPEN,
                           .close = VAK_CLOSE,
                           .flush = VAK_FLUSH,
                           .h5gopen = VAK_H5GOPEN,
                           .h5gclose = VAK_H5GCLOSE,
                           .openautopath = VAK_OPENAUTOPATH,
                           .get_version = VAK_GET_VERSION};
constexpr Routines legacy{.family = "legacy",
                          .open = VAK1_OPEN,
                          .close = VAK1_CLOSE,
                          .flush = VAK1_FLUSH,
                          .h5gopen = VAK1_H5GOPEN,
                          .h5gclose = VAK1_H5GCLOSE,
                          .openautopath = VAK1_OPENAUTOPATH,
                          .get_version = VAK1_GET_VERSION};

constexpr int32_t verbose = 1024;

// What a call of VAK_OPEN is given besides the file's name and the option.
struct RootNames {
    std::string group = "model";
    std::string domain = {};
    bool with_domain = false;
};

struct Opened {
    vak_id group = 4711;  // so that a group left untouched shows
    int32_t ierr = 4711;
    Output output;
};

class FrameTest : public LibraryTest, public testing::WithParamInterface<Routines> {
protected:
    // `left` identifiers are open afterwards that were not before: the group when all went well.
    Opened open(const std::string& name, int32_t option, const RootNames& names = {}, int64_t left = 1)
    {
        Opened o;
        const auto name_len = static_cast<int32_t>(name.size());
        const auto group_len = static_cast<int32_t>(names.group.size());
        const auto domain_len = static_cast<int32_t>(names.domain.size());
        const int32_t with_domain = names.with_domain ? 1 : 0;
        o.output = call(
            [&] {
                GetParam().open(name.data(), &name_len, names.group.data(), &group_len, names.domain.data(),
                                &domain_len, &o.group, &with_domain, &option, &o.ierr);
            },
            left);
        return o;
    }

    Opened open_in_vain(const std::string& name, int32_t option, const RootNames& names = {})
    {
        return open(name, option, names, 0);
    }

    // Opens what must open without a word, and gives the group.
    vak_id opened(const std::string& name, int32_t option, const RootNames& names = {})
    {
        const Opened o = open(name, option, names);
        EXPECT_EQ(o.ierr, 0);
        EXPECT_EQ(o.output, nothing_printed);
        return o.group;
    }

    // Closes the file of the group, which must be sound and leave nothing of it open.
    void close(vak_id group)
    {
        int32_t ierr = 4711;
        const int64_t open_in_file = count_open(group);
        EXPECT_EQ(call([&] { GetParam().close(&group, &ierr); }, -open_in_file), nothing_printed);
        EXPECT_EQ(ierr, 0);
    }

    static int64_t count_open(vak_id group)
    {
        const FileId of_group(H5Iget_file_id(group), "file of the group");
        // The identifier that asks is one more, unless it is the file's own.
        const int64_t own = H5Iget_ref(of_group) == 1 ? 1 : 0;
        return H5Fget_obj_count(of_group, H5F_OBJ_ALL) - own;
    }

    // The identifier that VAK_OPEN leaves open when it has no group to hand back.
    void close_left_file(const std::string& name)
    {
        hid_t ids[2] = {};
        ASSERT_EQ(H5Fget_obj_ids(H5F_OBJ_ALL, H5F_OBJ_FILE, 2, ids), 2) << "the fixture's and the one left";
        const hid_t left = ids[0] == file ? ids[1] : ids[0];
        std::string found(name.size(), '\0');
        H5Fget_name(left, found.data(), found.size() + 1);
        EXPECT_EQ(found, name);
        H5Fclose(left);
    }

    // A file with a group "post" that holds the group "inside", written by HDF5 alone.
    std::string made_file(const std::string& name)
    {
        const FileId made = create_file(path(name));
        const ObjectId post(H5Gcreate2(made, "post", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "post");
        const ObjectId inside(H5Gcreate2(post, "inside", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "inside");
        return path(name);
    }
};

inline std::string family_name(const testing::TestParamInfo<Routines>& info) { return info.param.family; }

// The path of an object in its file.
inline std::string path_of(hid_t object)
{
    std::string name(static_cast<size_t>(H5Iget_name(object, nullptr, 0)), '\0');
    H5Iget_name(object, name.data(), name.size() + 1);
    return name;
}

}  // namespace vak::test

#define IN_BOTH_FAMILIES(topic) \
    INSTANTIATE_TEST_SUITE_P(Families, topic, testing::Values(current, legacy), family_name)
