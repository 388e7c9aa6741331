#include "support/block_test.h"
#include "vak_sp.h"

namespace vak::test {

namespace {

const std::string signature("\x89VAK\r\n\x1a\n", 8);

class FileHeaderBlock : public BothFamilies {
protected:
    Result write_header(Family family, hid_t location)
    {
        return run([&] {
            int32_t ierr = -77;
            (family == Family::legacy ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&location, nullptr,
                                                                                      nullptr, &ierr);
            return ierr;
        });
    }
    Result write_header() { return write_header(family(), file); }

    // From the group or the file that holds the record.
    Result read_header(const std::string& from = "vakheader")
    {
        version.assign(33, '?');
        flags = params[0] = params[1] = -77;
        const ObjectId holder = open_object(file, from);
        return run([&] {
            const hid_t location = holder;
            int32_t ierr = -77;
            (legacy() ? VAK1_READ_FILEHEADER : VAK_READ_FILEHEADER)(&location, version.data(), &flags, params,
                                                                    &ierr);
            return ierr;
        });
    }

    // A header that no writer of ours makes.
    void put_record(const std::string& record, hsize_t records = 0)
    {
        const ObjectId group(H5Gcreate2(file, "vakheader", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "group");
        const TypeId type(H5Tcopy(H5T_C_S1), "type");
        H5Tset_size(type, 64);
        H5Tset_strpad(type, H5T_STR_SPACEPAD);
        const SpaceId space(records == 0 ? H5Screate(H5S_SCALAR) : H5Screate_simple(1, &records, nullptr),
                            "space");
        const ObjectId dataset(
            H5Dcreate2(group, "vakheader", type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "dataset");
        std::string all;
        for (hsize_t i = 0; i < std::max<hsize_t>(records, 1); ++i) all += record;
        EXPECT_GE(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, all.data()), 0);
    }

    std::string own_text() const { return legacy() ? "1 2 0" : "2 2 14"; }
    std::string own_record() const { return signature + padded(own_text(), 56); }

    std::string version;
    int32_t flags = 0, params[2] = {0, 0};
};
INSTANTIATE_TEST_SUITE_P(, FileHeaderBlock, both_families, family_name);

const std::string warning = "VAK WARNING - wrong file signature or format\n";

std::string warnings(int n)
{
    std::string lines;
    for (int i = 0; i < n; ++i) lines += warning;
    return lines;
}

TEST_P(FileHeaderBlock, is_stored_as_one_record_of_64_characters)
{
    EXPECT_EQ(write_header(), success);
    EXPECT_EQ(layout(file, "/"), "\nG vakheader\nD vakheader/vakheader char[64] compact\n");
    EXPECT_EQ(dataset_texts(file, "vakheader/vakheader"), std::vector{own_record()});
}

TEST_P(FileHeaderBlock, reads_back_with_the_32_characters_of_its_version)
{
    EXPECT_EQ(write_header(), success);
    EXPECT_EQ(read_header(), success);
    EXPECT_EQ(version, padded(own_text(), 32) + "?");
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(params[0], 0);
    EXPECT_EQ(params[1], 0);
}

TEST_P(FileHeaderBlock, header_of_the_other_generation_gives_100_and_its_version)
{
    EXPECT_EQ(write_header(legacy() ? Family::current : Family::legacy, file), success);
    EXPECT_EQ(read_header(), status(100));
    EXPECT_EQ(version, padded(legacy() ? "2 2 14" : "1 2 0", 32) + "?");
}

TEST_P(FileHeaderBlock, second_header_is_refused_with_the_answer_of_hdf5)
{
    EXPECT_EQ(write_header(), success);
    EXPECT_EQ(write_header(), failure(-1, "VAK ERROR writing header: -1\n"));
    EXPECT_EQ(dataset_texts(file, "vakheader/vakheader"), std::vector{own_record()});
}

TEST_P(FileHeaderBlock, invalid_location_is_refused_with_the_answer_of_hdf5)
{
    EXPECT_EQ(write_header(family(), -1), failure(-1, "VAK ERROR writing header: -1\n"));
}

TEST_P(FileHeaderBlock, each_wrong_byte_of_the_signature_is_one_warning)
{
    for (int i = 0; i < 8; ++i) {
        std::string record = own_record();
        record[static_cast<size_t>(i)] = 'x';
        put_record(record);
        EXPECT_EQ(read_header(), failure(1, warning));
        EXPECT_EQ(version, padded(own_text(), 32) + "?");
        H5Ldelete(file, "vakheader", H5P_DEFAULT);
    }
}

TEST_P(FileHeaderBlock, blank_record_is_wrong_in_every_byte_and_in_version)
{
    put_record(padded("", 64));
    EXPECT_EQ(read_header(), failure(108, warnings(8)));
    EXPECT_EQ(version, padded("", 32) + "?");
}

TEST_P(FileHeaderBlock, other_versions_give_100)
{
    const std::string a = legacy() ? "1" : "2", c = legacy() ? "0" : "14";
    for (const std::string& text : {a + " 2", a + " 2 x", a + " 3 " + c, a + " 2 15", "3 2 " + c,
                                    std::string("x"), "-" + a + " 2 " + c, a + ".2." + c}) {
        put_record(signature + padded(text, 56));
        EXPECT_EQ(read_header(), status(100)) << text;
        EXPECT_EQ(version, padded(text, 32) + "?");
        H5Ldelete(file, "vakheader", H5P_DEFAULT);
    }
}

TEST_P(FileHeaderBlock, own_version_may_be_followed_by_other_text)
{
    put_record(signature + padded(own_text() + " and more", 56));
    EXPECT_EQ(read_header(), success);
}

TEST_P(FileHeaderBlock, version_stops_at_a_zero_byte_and_is_filled_with_zeros)
{
    std::string record = own_record();
    record[8 + own_text().size()] = '\0';
    put_record(record);
    EXPECT_EQ(read_header(), success);
    EXPECT_EQ(version, own_text() + std::string(32 - own_text().size(), '\0') + "?");
}

TEST_P(FileHeaderBlock, missing_record_leaves_the_outputs_untouched)
{
    EXPECT_EQ(
        read_header("/"),
        failure(
            -6002,
            "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, error: vakheader 1 64 -1\n"
            "VAK ERROR reading header\n"));
    EXPECT_EQ(version, std::string(33, '?'));
    EXPECT_EQ(flags, -77);
    EXPECT_EQ(params[0], -77);
}

TEST_P(FileHeaderBlock, dangling_link_counts_as_missing)
{
    EXPECT_GE(H5Lcreate_soft("/nowhere", file, "vakheader", H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_EQ(
        read_header("/"),
        failure(
            -6002,
            "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, error: vakheader 1 64 -1\n"
            "VAK ERROR reading header\n"));
}

TEST_P(FileHeaderBlock, group_in_place_of_the_record_counts_as_missing)
{
    EXPECT_EQ(write_header(), success);
    EXPECT_EQ(
        read_header("/"),
        failure(
            -6002,
            "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, error: vakheader 1 64 -1\n"
            "VAK ERROR reading header\n"));
}

TEST_P(FileHeaderBlock, more_than_one_record_is_refused)
{
    put_record(own_record(), 3);
    EXPECT_EQ(
        read_header(),
        failure(
            -6020,
            "VAK INTERNAL ERROR (20) in VAK_H5Dread - name, vak_type, data_size, error: vakheader 1 64 1\n"
            "VAK ERROR reading header\n"));
    EXPECT_EQ(version, std::string(33, '?'));
}

}  // namespace

}  // namespace vak::test
