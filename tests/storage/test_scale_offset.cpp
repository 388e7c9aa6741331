// Packing and unpacking of scale-offset chunks, with HDF5's own filter as the judge in both directions.
#include "storage/scale_offset.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "chunk_judge.h"
#include "support/library.h"

namespace vak::test {
namespace {

template <class T>
std::string told(const std::vector<T>& values)
{
    return std::to_string(values.size()) + " values, the first " + std::to_string(values.front());
}

// One array in one dataset of one chunk, and the filter's values that HDF5 stored with it.
template <class T>
struct Case {
    Case(hid_t file, const Recipe& recipe, std::vector<T> array)
        : values(std::move(array)), file_(file), recipe_(recipe)
    {
        make("form");
        const auto dataset = open_dataset(file_, "form");
        const PropertiesId list(H5Dget_create_plist(dataset), "creation list");
        unsigned flags = 0;
        unsigned stored[20];
        size_t count = 20;
        H5Pget_filter_by_id2(list, H5Z_FILTER_SCALEOFFSET, &flags, &count, stored, 0, nullptr, nullptr);
        form = *scale_offset_form(stored, count);
    }
    ~Case()
    {
        for (const auto& name : made_) H5Ldelete(file_, name.c_str(), H5P_DEFAULT);
    }
    Case(const Case&) = delete;
    Case& operator=(const Case&) = delete;

    void make(const std::string& name)
    {
        make_dataset<T>(file_, name, recipe_, values.size());
        made_.push_back(name);
    }

    // Empty when the form refuses the values.
    std::vector<unsigned char> packed() const
    {
        std::vector<unsigned char> bytes(scale_offset_limit(form));
        bytes.resize(pack_scale_offset(form, values.data(), bytes.data()));
        return bytes;
    }

    std::vector<T> unpacked(const std::vector<unsigned char>& bytes) const
    {
        std::vector<T> result(values.size());
        const bool good = unpack_scale_offset(form, bytes.data(), bytes.size(), result.data());
        return good ? result : std::vector<T>();
    }

    ChunkBytes stored_by_hdf5()
    {
        make("by_hdf5");
        EXPECT_TRUE(write_by_hdf5(file_, "by_hdf5", values));
        return stored_chunk(file_, "by_hdf5");
    }

    std::vector<T> read_back_by_hdf5() { return read_by_hdf5<T>(file_, "by_hdf5", values.size()); }

    std::vector<T> read_by_hdf5_from(const std::vector<unsigned char>& bytes)
    {
        make("ours");
        EXPECT_TRUE(store_chunk(file_, "ours", {bytes, 0}));
        return read_by_hdf5<T>(file_, "ours", values.size());
    }

    std::vector<T> values;
    ScaleOffset form;

private:
    hid_t file_;
    Recipe recipe_;
    std::vector<std::string> made_;
};

// Equal bit by bit, which also tells 0 from -0 and lets a NaN equal itself.
template <class T>
bool same_bits(const std::vector<T>& a, const std::vector<T>& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

class ScaleOffsetTest : public LibraryTest {
protected:
    // What holds for every array: a packed chunk is byte for byte HDF5's, and HDF5 reads it as we do.
    template <class T>
    bool agrees_with_hdf5(const Recipe& recipe, const std::vector<T>& values)
    {
        Case<T> c(file, recipe, values);
        const auto packed = c.packed();
        if (packed.empty()) return false;
        EXPECT_EQ(c.stored_by_hdf5(), (ChunkBytes{packed, 0}))
            << told(values) << ", factor " << recipe.factor;
        const auto read = c.read_by_hdf5_from(packed);
        EXPECT_TRUE(same_bits(read, c.unpacked(packed))) << told(values) << ", factor " << recipe.factor;
        return true;
    }

    // Whatever HDF5 wrote and can read, we read alike.
    template <class T>
    bool reads_what_hdf5_wrote(const Recipe& recipe, const std::vector<T>& values)
    {
        Case<T> c(file, recipe, values);
        const auto stored = c.stored_by_hdf5();
        const auto read = c.read_back_by_hdf5();
        if (read.empty()) return false;
        EXPECT_TRUE(same_bits(read, c.unpacked(stored.bytes)))
            << told(values) << ", factor " << recipe.factor;
        return true;
    }

    std::mt19937_64 random{20240607};
};

template <class T>
std::vector<T> uniform(std::mt19937_64& random, size_t count, double low, double high)
{
    std::vector<T> values(count);
    std::uniform_real_distribution<double> draw(low, high);
    for (auto& v : values) v = static_cast<T>(draw(random));
    return values;
}

template <class T>
std::vector<T> whole_numbers(std::mt19937_64& random, size_t count, int64_t low, int64_t high)
{
    std::vector<T> values(count);
    std::uniform_int_distribution<int64_t> draw(low, high);
    for (auto& v : values) v = static_cast<T>(draw(random));
    return values;
}

// Lengths around the blocks in which values are packed, and short ones.
const std::vector<size_t> lengths = {1, 7, 8, 511, 512, 513, 1030};

template <class T>
T most_units_of()
{
    return sizeof(T) == 4 ? T{0x1p20} : T{0x1p49};
}

// ---- Integers ----

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

// ---- Reals ----

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

// ---- Damaged chunks ----

TEST_F(ScaleOffsetTest, chunks_that_are_too_short_are_refused)
{
    const auto values = uniform<float>(random, 600, -5, 5);
    Case<float> c(file, {.factor = 3}, values);
    auto bytes = c.packed();
    bytes.pop_back();  // the byte that HDF5 adds
    ASSERT_FALSE(c.unpacked(bytes).empty());
    const std::vector<unsigned char> whole(bytes.begin(), bytes.end());
    for (const size_t size : {whole.size() - 2, size_t{22}, size_t{21}, size_t{20}, size_t{4}, size_t{0}}) {
        EXPECT_TRUE(c.unpacked({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}).empty())
            << size;
    }
}

TEST_F(ScaleOffsetTest, more_bits_than_the_type_has_are_refused)
{
    Case<float> c(file, {.factor = 3}, uniform<float>(random, 600, -5, 5));
    for (const int bits : {33, 64, 255}) {
        auto bytes = c.packed();
        bytes.resize(100000);
        bytes[0] = static_cast<unsigned char>(bits);
        EXPECT_TRUE(c.unpacked(bytes).empty()) << bits;
        bytes[0] = 32;
        bytes[3] = static_cast<unsigned char>(bits);
        EXPECT_TRUE(c.unpacked(bytes).empty()) << bits;
    }
}

TEST_F(ScaleOffsetTest, random_bytes_never_reach_outside)
{
    for (int round = 0; round < 300; ++round) {
        std::vector<unsigned char> bytes(random() % 3000);
        for (auto& b : bytes) b = static_cast<unsigned char>(random());
        if (bytes.size() > 4) bytes[0] %= 66, bytes[1] = bytes[2] = bytes[3] = 0;
        for (const bool real : {true, false}) {
            for (const size_t size : {size_t{4}, size_t{8}}) {
                std::vector<unsigned char> values(517 * size);
                const ScaleOffset form{.real = real, .size = size, .count = 517, .fill_defined = true};
                unpack_scale_offset(form, bytes.data(), bytes.size(), values.data());
            }
        }
    }
}

TEST_F(ScaleOffsetTest, other_forms_are_not_ours)
{
    unsigned values[20] = {0, 3, 100, 1, 4, 0, 0, 1};
    ASSERT_TRUE(scale_offset_form(values, 20));
    EXPECT_FALSE(scale_offset_form(values, 19));
    const auto with = [&](size_t place, unsigned value) {
        unsigned changed[20];
        std::copy(values, values + 20, changed);
        changed[place] = value;
        return scale_offset_form(changed, 20).has_value();
    };
    EXPECT_FALSE(with(0, 1));  // fixed number of bits for reals
    EXPECT_FALSE(with(2, 0));  // no elements
    EXPECT_FALSE(with(3, 0));  // integers by a rule for reals
    EXPECT_FALSE(with(4, 2));  // 2 bytes
    EXPECT_FALSE(with(6, 1));  // big-endian
    EXPECT_TRUE(with(1, 5));
}

}  // namespace
}  // namespace vak::test
