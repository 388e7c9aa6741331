// Scale-offset chunks of integers.
#include <limits>

#include "scale_offset_test.h"

namespace vak::test {
namespace {

template <class T>
class Integers : public ScaleOffsetTest {
};
using IntegerTypes = testing::Types<int32_t, int64_t>;
TYPED_TEST_SUITE(Integers, IntegerTypes);

TYPED_TEST(Integers, every_span_packs_as_hdf5_packs_it)
{
    using T = TypeParam;
    constexpr auto least = std::numeric_limits<T>::lowest();
    const unsigned most = 8 * sizeof(T) - 2;  // spans of one bit more need the whole type
    for (unsigned bits = 0; bits <= most; ++bits) {
        const int64_t span = static_cast<int64_t>((uint64_t{1} << bits) - 1);
        for (const int64_t low : {int64_t{0}, -span / 2, int64_t{least} + 1, int64_t{-3}}) {
            auto values = whole_numbers<T>(this->random, lengths[bits % lengths.size()], low, low + span);
            values.front() = static_cast<T>(low);
            EXPECT_TRUE(this->agrees_with_hdf5({}, values)) << bits << " bits from " << low;
            Case<T> c(this->file, {}, values);
            EXPECT_TRUE(same_bits(values, c.unpacked(c.packed())));
        }
    }
}

TYPED_TEST(Integers, fill_values_among_others_come_back)
{
    using T = TypeParam;
    auto values = whole_numbers<T>(this->random, 700, -40, 25000);
    for (size_t i = 0; i < values.size(); i += 3) values[i] = 10000;
    EXPECT_TRUE(this->agrees_with_hdf5({}, values));
    EXPECT_TRUE(this->agrees_with_hdf5({}, std::vector<T>(600, 10000)));
    EXPECT_TRUE(this->agrees_with_hdf5({}, std::vector<T>{10000, 5}));
    EXPECT_TRUE(this->agrees_with_hdf5({.fill = 0}, values));
    EXPECT_TRUE(this->agrees_with_hdf5({.fill_defined = false}, values));
    EXPECT_TRUE(this->agrees_with_hdf5({.fill_defined = false}, std::vector<T>(9, 77)));
}

TYPED_TEST(Integers, spans_that_need_the_whole_type_are_refused)
{
    using T = TypeParam;
    constexpr T least = std::numeric_limits<T>::lowest();
    constexpr T largest = std::numeric_limits<T>::max();
    const T half = static_cast<T>(largest / 2);
    for (const auto& values : {std::vector<T>{least, largest},
                               {0, largest},
                               {-1, largest},
                               {least, 0},
                               {static_cast<T>(-half - 1), static_cast<T>(half + 1)}}) {
        EXPECT_TRUE(Case<T>(this->file, {}, values).packed().empty()) << values[0] << " to " << values[1];
    }
}

TYPED_TEST(Integers, chunks_that_hdf5_writes_but_cannot_read_are_read)
{
    using T = TypeParam;
    constexpr T least = std::numeric_limits<T>::lowest();
    constexpr T largest = std::numeric_limits<T>::max();
    for (const auto& values : {std::vector<T>{least, largest, 10000, 4}, {0, largest, 1}, {-3, 9, largest}}) {
        Case<T> c(this->file, {}, values);
        const auto stored = c.stored_by_hdf5();
        EXPECT_TRUE(c.read_back_by_hdf5().empty()) << "HDF5 reads it, the refusal above is not needed";
        EXPECT_EQ(c.unpacked(stored.bytes), values);
    }
}

TYPED_TEST(Integers, a_fixed_number_of_bits_is_kept_where_it_is_enough)
{
    using T = TypeParam;
    const auto values = whole_numbers<T>(this->random, 100, 100, 200);
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 9}, values));
    EXPECT_TRUE(Case<T>(this->file, {.factor = 6}, values).packed().empty());
    EXPECT_TRUE(this->reads_what_hdf5_wrote({.factor = 8 * static_cast<int>(sizeof(T))}, values));
}

}  // namespace
}  // namespace vak::test
