// The three searches by halving: where a key is found, and where it is not.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "catalogue/reference_sorting.h"
#include "support/probe.h"
#include "vak_sp.h"

namespace vak::test {

namespace {

int32_t integer_position(int32_t key, const std::vector<int32_t>& values, const int32_t* perm, int32_t lo,
                         int32_t hi)
{
    int32_t pos = 4711, twin = 4711;
    vak_ibsearch(key, values.data(), perm, lo, hi, &pos);
    vak_jbsearch(key, values.data(), perm, lo, hi, &twin);
    EXPECT_EQ(twin, pos);
    return pos;
}

int32_t field_position(const std::string& key, const std::string& all, const int32_t* perm, int32_t hi,
                       int32_t len)
{
    int32_t pos = 4711;
    vak_cbsearch(key.data(), all.data(), perm, 0, hi, len, &pos);
    return pos;
}

int32_t string_position(const char* key, const char* pool, const int64_t* offsets, int32_t hi)
{
    int32_t pos = 4711;
    vak_cpbsearch(key, pool, offsets, 0, hi, &pos);
    return pos;
}

int32_t three_way(int32_t a, int32_t b) { return a < b ? -1 : static_cast<int32_t>(a > b); }

}  // namespace

TEST(Searching, an_empty_range_gives_minus_1_without_touching_the_data)
{
    int32_t pos = 4711;
    vak_ibsearch(1, nullptr, nullptr, 0, -1, &pos);
    EXPECT_EQ(pos, -1);
    vak_jbsearch(1, nullptr, nullptr, INT32_MAX, INT32_MIN, &(pos = 4711));
    EXPECT_EQ(pos, -1);
    vak_cbsearch("A", nullptr, nullptr, 0, -1, 1, &(pos = 4711));
    EXPECT_EQ(pos, -1);
    vak_cpbsearch("A", nullptr, nullptr, 3, 2, &(pos = 4711));
    EXPECT_EQ(pos, -1);
}

TEST(Searching, every_value_is_found_where_it_stands)
{
    const std::vector<int32_t> values{INT32_MIN, -5, 0, 7, 9, INT32_MAX};
    for (int32_t i = 0; i < 6; ++i)
        EXPECT_EQ(integer_position(values[static_cast<size_t>(i)], values, nullptr, 0, 5), i);
    for (const int32_t missing : {INT32_MIN + 1, -4, 8, INT32_MAX - 1})
        EXPECT_EQ(integer_position(missing, values, nullptr, 0, 5), -1);
}

TEST(Searching, the_position_is_the_one_in_the_permutation)
{
    const std::vector<int32_t> values{30, 10, 20}, perm{1, 2, 0};
    const int32_t pos = integer_position(30, values, perm.data(), 0, 2);
    EXPECT_EQ(pos, 2);
    EXPECT_EQ(perm[static_cast<size_t>(pos)], 0);
    EXPECT_EQ(integer_position(10, values, perm.data(), 0, 2), 0);
    EXPECT_EQ(integer_position(15, values, perm.data(), 0, 2), -1);
}

TEST(Searching, only_the_range_is_searched)
{
    const std::vector<int32_t> values{1, 2, 3, 4, 5};
    EXPECT_EQ(integer_position(1, values, nullptr, 1, 3), -1);
    EXPECT_EQ(integer_position(2, values, nullptr, 1, 3), 1);
    EXPECT_EQ(integer_position(4, values, nullptr, 1, 3), 3);
    EXPECT_EQ(integer_position(5, values, nullptr, 1, 3), -1);
}

TEST(Searching, of_equal_keys_the_halving_meets_the_defined_one)
{
    std::mt19937 random(4);
    for (int round = 0; round < 300; ++round) {
        std::vector<int32_t> values(1 + random() % 60);
        for (int32_t& value : values) value = static_cast<int32_t>(random() % 12);
        const auto hi = static_cast<int32_t>(values.size()) - 1;
        std::vector<int32_t> perm(values.size());
        std::iota(perm.begin(), perm.end(), 0);
        vak_iquicksort(values.data(), perm.data(), 0, hi);
        for (int32_t key = -1; key < 13; ++key)
            EXPECT_EQ(integer_position(key, values, perm.data(), 0, hi),
                      reference_search(0, hi, [&](int32_t at) {
                          const auto element = static_cast<size_t>(perm[static_cast<size_t>(at)]);
                          return three_way(key, values[element]);
                      }));
    }
}

TEST(Searching, a_field_is_found_by_its_significant_characters)
{
    const std::string all = fields({"B", "ELEM", "NODE", "NODESET"}, 8);
    EXPECT_EQ(field_position(padded("NODE", 8), all, nullptr, 3, 8), 2);
    EXPECT_EQ(field_position(std::string("NODE\0xyz", 8), all, nullptr, 3, 8), 2);
    EXPECT_EQ(field_position(padded("NODES", 8), all, nullptr, 3, 8), -1);
    EXPECT_EQ(field_position(padded("", 8), all, nullptr, 3, 8), -1);
    EXPECT_EQ(field_position(padded("B", 8), all, nullptr, 3, 8), 0);
}

TEST(Searching, a_field_is_found_through_a_permutation)
{
    const std::string all = fields({"NODE", "B", "NODESET", "ELEM"}, 8);
    std::vector<int32_t> perm{0, 1, 2, 3};
    vak_cquicksort(all.data(), perm.data(), 0, 3, 8);
    EXPECT_EQ(perm, (std::vector<int32_t>{1, 3, 0, 2}));
    EXPECT_EQ(field_position(padded("NODESET", 8), all, perm.data(), 3, 8), 3);
    EXPECT_EQ(field_position(padded("ELEM", 8), all, perm.data(), 3, 8), 1);
    EXPECT_EQ(field_position(padded("A", 8), all, perm.data(), 3, 8), -1);
}

TEST(Searching, a_string_is_found_by_its_offset_in_the_pool)
{
    constexpr char pool[] = "\xe4\0b\0ab\0a";
    const std::vector<int64_t> offsets{7, 4, 2, 0};
    EXPECT_EQ(string_position("a", pool, offsets.data(), 3), 0);
    EXPECT_EQ(string_position("ab", pool, offsets.data(), 3), 1);
    EXPECT_EQ(string_position("b", pool, offsets.data(), 3), 2);
    EXPECT_EQ(string_position("\xe4", pool, offsets.data(), 3), 3);
    EXPECT_EQ(string_position("a ", pool, offsets.data(), 3), -1);
    EXPECT_EQ(string_position("", pool, offsets.data(), 3), -1);
}

TEST(Searching, without_offsets_string_k_begins_at_byte_k)
{
    EXPECT_EQ(string_position("abc", "abc", nullptr, 2), 0);
    EXPECT_EQ(string_position("bc", "abc", nullptr, 2), 1);
    EXPECT_EQ(string_position("c", "abc", nullptr, 2), 2);
    EXPECT_EQ(string_position("ab", "abc", nullptr, 2), -1);
}

TEST(Searching, a_string_is_found_beyond_2_gib)
{
    constexpr int64_t far = int64_t{3} << 30;
    constexpr size_t bytes = static_cast<size_t>(far) + 4096;
    void* memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) GTEST_SKIP() << "no 3 GiB of address space";
    auto* pool = static_cast<char*>(memory);
    std::memcpy(pool + far, "zz\0zzz", 7);
    const std::vector<int64_t> offsets{far, far + 3};
    EXPECT_EQ(string_position("zzz", pool, offsets.data(), 1), 1);
    munmap(memory, bytes);
}

}  // namespace vak::test
