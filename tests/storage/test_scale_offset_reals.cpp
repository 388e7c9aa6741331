// Scale-offset chunks of floating point numbers.
#include <algorithm>
#include <cmath>
#include <limits>

#include "scale_offset_test.h"

namespace vak::test {
namespace {

template <class T>
T most_units_of()
{
    return sizeof(T) == 4 ? T{0x1p20} : T{0x1p49};
}

template <class T>
class Reals : public ScaleOffsetTest {
};
using RealTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(Reals, RealTypes);

TYPED_TEST(Reals, whatever_is_packed_is_hdf5s_and_comes_back_within_half_a_unit)
{
    using T = TypeParam;
    int packed = 0;
    int refused = 0;
    for (const int factor : {0, 1, 2, 3, 4, 5, 6, 8, 10, 12, 20, 37, 38, 39, 60, 256, -1, -3}) {
        for (int power = -8; power <= 12; ++power) {
            const double span = std::pow(10.0, power);
            for (const double low : {0.0, -span / 2, -span, 3 * span, -12 * span, 9990.0}) {
                const size_t count = lengths[this->random() % lengths.size()];
                const auto values = uniform<T>(this->random, count, low, low + span);
                if (!this->agrees_with_hdf5({.factor = factor}, values)) {
                    ++refused;
                    continue;
                }
                ++packed;
                Case<T> c(this->file, {.factor = factor}, values);
                const auto back = c.unpacked(c.packed());
                const double unit = std::pow(10.0, -factor);
                for (size_t i = 0; i < values.size(); ++i) {
                    const double largest = std::max(std::abs(low), std::abs(low + span));
                    const double rounding = 3.5 * std::numeric_limits<T>::epsilon() * largest;
                    const double error = std::abs(double{values[i]} - double{back[i]});
                    ASSERT_LE(error, unit / 2 + rounding) << values[i] << ", factor " << factor;
                    ASSERT_LT(error, unit);
                }
            }
        }
    }
    EXPECT_GT(packed, 500);
    EXPECT_GT(refused, 500);
}

TYPED_TEST(Reals, what_hdf5_wrote_and_can_read_is_read_alike_however_much_it_lost)
{
    using T = TypeParam;
    int read = 0;
    for (const int factor : {0, 2, 3, 6, 9, -2}) {
        for (int power = -6; power <= 14; ++power) {
            const double span = std::pow(10.0, power);
            for (const double low : {0.0, -span, 100 * span, 9999.0}) {
                const auto values =
                    uniform<T>(this->random, lengths[this->random() % lengths.size()], low, low + span);
                read += this->reads_what_hdf5_wrote({.factor = factor}, values) ? 1 : 0;
            }
        }
    }
    EXPECT_GT(read, 250);
}

TYPED_TEST(Reals, ordinary_results_are_packed)
{
    using T = TypeParam;
    for (const double span : {1e-3, 1.0, 20.0, 500.0, 1000.0}) {
        const auto values = uniform<T>(this->random, 1030, -span, span);
        EXPECT_TRUE(this->agrees_with_hdf5({.factor = 3}, values)) << span;
        EXPECT_TRUE(this->agrees_with_hdf5({.factor = 3, .fill_defined = false}, values)) << span;
    }
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 3}, std::vector<T>(20, T(1.25))));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 3}, std::vector<T>{0}));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 3, .fill_defined = false}, std::vector<T>(20, T(1.25))));
}

TYPED_TEST(Reals, ties_and_their_neighbours_round_as_hdf5_rounds_them)
{
    using T = TypeParam;
    std::vector<T> values{0};
    for (int i = 0; i < 2000; ++i) {
        const T tie = static_cast<T>(i) + T{0.5};
        values.insert(values.end(), {tie, std::nextafter(tie, T{0}), std::nextafter(tie, T{1e6})});
    }
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 0}, values));
    values.front() = T{-0.25};
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 0}, values));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 1}, values));
}

TYPED_TEST(Reals, values_that_are_not_finite_are_refused_wherever_they_stand)
{
    using T = TypeParam;
    using limits = std::numeric_limits<T>;
    for (const T odd : {limits::quiet_NaN(), limits::infinity(), -limits::infinity()}) {
        for (const size_t place : {size_t{0}, size_t{3}, size_t{16}, size_t{99}}) {
            auto values = uniform<T>(this->random, 100, -1, 1);
            values[place] = odd;
            EXPECT_TRUE(Case<T>(this->file, {.factor = 3}, values).packed().empty())
                << odd << " at " << place;
        }
    }
}

TYPED_TEST(Reals, subnormal_numbers_and_both_zeros_are_packed)
{
    using T = TypeParam;
    const T tiny = std::numeric_limits<T>::denorm_min();
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 3}, std::vector<T>{tiny, -tiny, 7 * tiny, 0, T{1.5}}));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 37}, std::vector<T>{tiny, -tiny, 0}));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 2}, std::vector<T>{T{-0.0}, 0, 5}));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 2}, std::vector<T>{5, 0, T{-0.0}}));
}

TYPED_TEST(Reals, fill_values_among_others_come_back)
{
    using T = TypeParam;
    auto values = uniform<T>(this->random, 700, -3, 3);
    for (size_t i = 0; i < values.size(); i += 5) values[i] = 10000;
    for (const int factor : {0, 3, 5}) EXPECT_TRUE(this->agrees_with_hdf5({.factor = factor}, values));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 2}, std::vector<T>(600, 10000)));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 2}, std::vector<T>{10000, 5}));
}

TYPED_TEST(Reals, a_value_that_would_turn_into_the_fill_value_is_refused)
{
    using T = TypeParam;
    for (const double value : {9999.3, 10000.7}) {
        EXPECT_TRUE(Case<T>(this->file, {.factor = 0}, std::vector<T>{1, T(value)}).packed().empty())
            << value;
    }
    // Within half a unit it is what rounding would have made of it.
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 0}, std::vector<T>{1, T(9999.75), T(10000.25)}));
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 0}, std::vector<T>{1, 9999, 10001}));
}

TYPED_TEST(Reals, values_too_large_for_the_decimals_asked_for_are_refused)
{
    using T = TypeParam;
    const T border = most_units_of<T>() / 1000;
    EXPECT_TRUE(this->agrees_with_hdf5({.factor = 3}, std::vector<T>{0, border * T(0.999)}));
    EXPECT_TRUE(Case<T>(this->file, {.factor = 3}, std::vector<T>{0, border * T(1.001)}).packed().empty());
    EXPECT_TRUE(Case<T>(this->file, {.factor = 3}, std::vector<T>{-border * T(1.001), 0}).packed().empty());
    EXPECT_TRUE(Case<T>(this->file, {.factor = 256}, std::vector<T>{0, 1}).packed().empty());
}

TYPED_TEST(Reals, chunks_that_hdf5_writes_but_cannot_read_are_read)
{
    using T = TypeParam;
    using limits = std::numeric_limits<T>;
    for (const auto& values : {std::vector<T>{limits::lowest(), limits::max(), 10000, 4},
                               {0, limits::infinity(), 1},
                               {-3, T{9}, limits::max()}}) {
        Case<T> c(this->file, {.factor = 3}, values);
        const auto stored = c.stored_by_hdf5();
        EXPECT_TRUE(c.read_back_by_hdf5().empty()) << "HDF5 reads it, the refusal is not needed";
        EXPECT_TRUE(same_bits(c.unpacked(stored.bytes), values));
    }
}

}  // namespace
}  // namespace vak::test
