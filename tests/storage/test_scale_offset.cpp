// Scale-offset chunks that are damaged, and forms that are not ours.
#include <algorithm>

#include "scale_offset_test.h"

namespace vak::test {
namespace {

TEST_F(ScaleOffsetTest, chunks_of_another_size_are_refused)
{
    const auto values = uniform<float>(random, 600, -5, 5);
    Case<float> c(file, {.factor = 3}, values);
    auto bytes = c.packed();
    bytes.pop_back();  // the byte that HDF5 adds
    ASSERT_FALSE(c.unpacked(bytes).empty());
    const std::vector<unsigned char> whole(bytes.begin(), bytes.end());
    auto longer = c.packed();
    for (const size_t more : {1, 100}) {
        longer.resize(c.packed().size() + more);
        EXPECT_TRUE(c.unpacked(longer).empty()) << more;
    }
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
