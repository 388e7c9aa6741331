// The element types by code and size, and the identifiers that the fields of a call share.
#include "storage/element_type.h"

#include <cstring>

#include "storage_test.h"

namespace vak::test {
namespace {

struct Found {
    int32_t code;
    int32_t type_class;
    hid_t type;
};

class ElementTypes : public StorageTest {
protected:
    Outcome get_type(int32_t type, size_t size, Found& found)
    {
        return outcome(
            [&] { return found.code = VAK_H5gettype(type, size, &found.type_class, &found.type); });
    }

    void expect_type(int32_t type, size_t size, int32_t type_class, hid_t id)
    {
        Found found{};
        EXPECT_EQ(get_type(type, size, found), done);
        EXPECT_EQ(found.type_class, type_class);
        EXPECT_EQ(found.type, id);
    }

    template <class T>
    T fill_value(int32_t type)
    {
        T value{};
        EXPECT_EQ(outcome([&] { return VAK_H5getfillvalue(type, sizeof value, &value); }), done);
        return value;
    }
};

TEST_F(ElementTypes, codes_and_sizes_give_native_types_and_their_class)
{
    expect_type(1, 1, H5T_STRING, H5T_C_S1);
    expect_type(1, 256, H5T_STRING, H5T_C_S1);
    expect_type(2, 4, H5T_INTEGER, H5T_NATIVE_INT);
    expect_type(2, 8, H5T_INTEGER, H5T_NATIVE_LLONG);
    expect_type(3, 4, H5T_FLOAT, H5T_NATIVE_FLOAT);
    expect_type(3, 8, H5T_FLOAT, H5T_NATIVE_DOUBLE);
}

TEST_F(ElementTypes, other_integer_sizes_are_refused)
{
    Found found{};
    EXPECT_EQ(get_type(2, 2, found),
              (Outcome{-1, "VAK INTERNAL ERROR (1) in VAK_H5gettype - vak_type, data_size: 2 2\n"}));
}

TEST_F(ElementTypes, other_real_sizes_are_refused)
{
    Found found{};
    EXPECT_EQ(get_type(3, 16, found),
              (Outcome{-1, "VAK INTERNAL ERROR (2) in VAK_H5gettype - vak_type, data_size: 3 16\n"}));
}

TEST_F(ElementTypes, other_codes_are_refused)
{
    Found found{};
    EXPECT_EQ(get_type(0, 4, found),
              (Outcome{-1, "VAK INTERNAL ERROR (3) in VAK_H5gettype - vak_type, data_size: 0 4\n"}));
    EXPECT_EQ(get_type(-7, 8, found),
              (Outcome{-1, "VAK INTERNAL ERROR (3) in VAK_H5gettype - vak_type, data_size: -7 8\n"}));
}

TEST_F(ElementTypes, fill_value_is_10000_in_each_number_type)
{
    EXPECT_EQ(fill_value<int32_t>(2), 10000);
    EXPECT_EQ(fill_value<int64_t>(2), 10000);
    EXPECT_EQ(fill_value<float>(3), 10000.0f);
    EXPECT_EQ(fill_value<double>(3), 10000.0);
}

TEST_F(ElementTypes, fill_value_of_other_types_is_refused)
{
    double value = 0;
    EXPECT_EQ(outcome([&] { return VAK_H5getfillvalue(2, 3, &value); }),
              (Outcome{-1, "VAK INTERNAL ERROR (1) in VAK_H5getfillvalue - vak_type, data_size: 2 3\n"}));
    EXPECT_EQ(outcome([&] { return VAK_H5getfillvalue(3, 2, &value); }),
              (Outcome{-1, "VAK INTERNAL ERROR (2) in VAK_H5getfillvalue - vak_type, data_size: 3 2\n"}));
    EXPECT_EQ(outcome([&] { return VAK_H5getfillvalue(1, 256, &value); }),
              (Outcome{-1, "VAK INTERNAL ERROR (3) in VAK_H5getfillvalue - vak_type, data_size: 1 256\n"}));
    EXPECT_EQ(value, 0);
}

// What a little-endian copy of the native type is, on any machine.
Type little_endian(hid_t native)
{
    Type type(H5Tcopy(native));
    H5Tset_order(type.get(), H5T_ORDER_LE);
    return type;
}

TEST_F(ElementTypes, stored_numbers_equal_little_endian_copies_of_the_native_types)
{
    SharedIds ids;
    EXPECT_GT(H5Tequal(stored_type(2, 4, ids), little_endian(H5T_NATIVE_INT).get()), 0);
    EXPECT_GT(H5Tequal(stored_type(2, 8, ids), little_endian(H5T_NATIVE_LLONG).get()), 0);
    EXPECT_GT(H5Tequal(stored_type(3, 4, ids), little_endian(H5T_NATIVE_FLOAT).get()), 0);
    EXPECT_GT(H5Tequal(stored_type(3, 8, ids), little_endian(H5T_NATIVE_DOUBLE).get()), 0);
}

TEST_F(ElementTypes, shared_texts_are_made_once_and_two_lengths_stay_valid)
{
    SharedIds ids;
    const hid_t long_text = ids.text(256);
    const hid_t short_text = ids.text(32);
    EXPECT_EQ(ids.text(256), long_text);
    EXPECT_EQ(ids.text(32), short_text);
    EXPECT_EQ(ids.text(256), long_text);
    const hid_t third = ids.text(80);  // takes the place of the one used less recently
    EXPECT_EQ(ids.text(256), long_text);
    EXPECT_EQ(H5Tget_size(long_text), 256U);
    EXPECT_EQ(H5Tget_size(third), 80U);
    EXPECT_EQ(H5Tget_strpad(third), H5T_STR_SPACEPAD);
}

TEST_F(ElementTypes, shared_ids_are_made_once_and_closed_with_their_owner)
{
    EXPECT_EQ(outcome([] {
                  SharedIds ids;
                  const bool same = ids.scalar() == ids.scalar() && ids.compact() == ids.compact() &&
                                    ids.uncached() == ids.uncached();
                  const bool valid =
                      ids.scalar() >= 0 && ids.compact() >= 0 && ids.uncached() >= 0 && ids.text(9) >= 0;
                  return same && valid ? 0 : 1;
              }),
              done);
}

TEST_F(ElementTypes, texts_longer_than_the_file_can_say_have_no_type)
{
    SharedIds ids;
    H5E_BEGIN_TRY
    {
        EXPECT_LT(ids.text(size_t{1} << 32), 0);
        EXPECT_LT(ids.text(0), 0);
    }
    H5E_END_TRY
    EXPECT_GE(ids.text(1), 0);
}

TEST_F(ElementTypes, chunk_size_is_one_value_of_the_process)
{
    EXPECT_EQ(chunk_size(), 1);
    set_chunk_size(-5);
    EXPECT_EQ(chunk_size(), -5);
    set_chunk_size(1);
    EXPECT_EQ(chunk_size(), 1);
}

}  // namespace
}  // namespace vak::test
