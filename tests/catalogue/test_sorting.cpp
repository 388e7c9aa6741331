// The three sorts: the permutation is the defined one to the last entry, on any data and on a small stack.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "catalogue/reference_sorting.h"
#include "support/probe.h"
#include "vak_sp.h"

namespace vak::test {

namespace {

using Permutation = std::vector<int32_t>;

Permutation identity(size_t n)
{
    Permutation perm(n);
    std::iota(perm.begin(), perm.end(), 0);
    return perm;
}

int32_t last(const Permutation& perm) { return static_cast<int32_t>(perm.size()) - 1; }

// Values of which the defined sort makes the worst: each is settled as late and as high as the comparisons
// that were made allow. `sign` -1 makes the long half the left one.
std::vector<int32_t> adversary(int32_t n, int32_t sign)
{
    const int32_t open = n;
    int32_t settled = 0, candidate = 0;
    std::vector<int32_t> values(static_cast<size_t>(n), open);
    const auto at = [&](int32_t i) -> int32_t& { return values[static_cast<size_t>(i)]; };
    const auto below = [&](int32_t a, int32_t b) {
        if (at(a) == open && at(b) == open) at(a == candidate ? a : b) = settled++;
        if (at(a) == open)
            candidate = a;
        else if (at(b) == open)
            candidate = b;
        return sign * at(a) < sign * at(b);
    };
    Permutation perm = identity(values.size());
    reference_quicksort(perm.data(), 0, last(perm), below);
    for (int32_t& value : values) value *= sign;
    return values;
}

std::vector<int32_t> random_values(std::mt19937& random, size_t n, int32_t span)
{
    std::uniform_int_distribution<int32_t> any(-span, span);
    std::vector<int32_t> values(n);
    for (int32_t& value : values) value = any(random);
    return values;
}

void expect_defined_permutation(const std::vector<int32_t>& values, int32_t lo, int32_t hi)
{
    Permutation expected = identity(values.size()), perm = expected;
    reference_quicksort(expected.data(), lo, hi, [&](int32_t a, int32_t b) {
        return values[static_cast<size_t>(a)] < values[static_cast<size_t>(b)];
    });
    vak_iquicksort(values.data(), perm.data(), lo, hi);
    EXPECT_EQ(perm, expected);
    Permutation twin = identity(values.size());
    vak_jquicksort(values.data(), twin.data(), lo, hi);
    EXPECT_EQ(twin, expected);
}

void run_on_small_stack(const std::function<void()>& work)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, size_t{128} * 1024), 0);
    pthread_t thread{};
    const auto run = [](void* data) -> void* {
        (*static_cast<const std::function<void()>*>(data))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace

TEST(Sorting, integers_ascend_through_the_permutation_and_stay_in_place)
{
    const std::vector<int32_t> values{30, -10, 20, INT32_MIN, INT32_MAX, 0}, before = values;
    Permutation perm = identity(values.size());
    vak_iquicksort(values.data(), perm.data(), 0, last(perm));
    EXPECT_EQ(perm, (Permutation{3, 1, 5, 2, 0, 4}));
    EXPECT_EQ(values, before);
}

TEST(Sorting, an_empty_range_touches_nothing)
{
    vak_iquicksort(nullptr, nullptr, 0, -1);
    vak_jquicksort(nullptr, nullptr, 5, 4);
    vak_cquicksort(nullptr, nullptr, 0, -1, 8);
    vak_cpquicksort(nullptr, nullptr, INT32_MAX, INT32_MIN);
}

TEST(Sorting, a_range_of_one_element_is_left_unchanged)
{
    const std::vector<int32_t> values{3, 2, 1};
    Permutation perm{2, 0, 1};
    vak_iquicksort(values.data(), perm.data(), 1, 1);
    EXPECT_EQ(perm, (Permutation{2, 0, 1}));
}

TEST(Sorting, only_the_range_is_sorted)
{
    const std::vector<int32_t> values{5, 4, 3, 2, 1};
    Permutation perm = identity(values.size());
    vak_iquicksort(values.data(), perm.data(), 1, 3);
    EXPECT_EQ(perm, (Permutation{0, 3, 2, 1, 4}));
}

TEST(Sorting, any_permutation_to_begin_with_is_sorted)
{
    const std::vector<int32_t> values{5, 4, 3, 2, 1};
    Permutation perm{4, 2, 0};
    vak_iquicksort(values.data(), perm.data(), 0, 2);
    EXPECT_EQ(perm, (Permutation{4, 2, 0}));
    perm = {0, 4, 2};
    vak_iquicksort(values.data(), perm.data(), 0, 2);
    EXPECT_EQ(perm, (Permutation{4, 2, 0}));
}

TEST(Sorting, the_permutation_is_the_defined_one_for_random_values)
{
    std::mt19937 random(1);
    for (int round = 0; round < 400; ++round) {
        const auto n = 1 + random() % 300;
        const auto values = random_values(random, n, static_cast<int32_t>(1 + random() % 200));
        const auto lo = static_cast<int32_t>(random() % n);
        const auto hi = lo + static_cast<int32_t>(random() % (n - static_cast<size_t>(lo)));
        expect_defined_permutation(values, lo, hi);
        expect_defined_permutation(values, 0, static_cast<int32_t>(n) - 1);
    }
}

TEST(Sorting, the_permutation_is_the_defined_one_for_regular_values)
{
    for (const int32_t n : {2, 3, 4, 5, 64, 1001}) {
        std::vector<int32_t> ascending(static_cast<size_t>(n)), pipe = ascending;
        std::iota(ascending.begin(), ascending.end(), -3);
        for (int32_t i = 0; i < n; ++i) pipe[static_cast<size_t>(i)] = std::min(i, n - i);
        expect_defined_permutation(ascending, 0, n - 1);
        expect_defined_permutation({ascending.rbegin(), ascending.rend()}, 0, n - 1);
        expect_defined_permutation(pipe, 0, n - 1);
        expect_defined_permutation(std::vector<int32_t>(static_cast<size_t>(n), 7), 0, n - 1);
    }
}

TEST(Sorting, the_worst_values_need_no_deep_stack)
{
    for (const int32_t sign : {1, -1}) {
        const auto values = adversary(6000, sign);
        Permutation perm = identity(values.size());
        run_on_small_stack([&] { vak_iquicksort(values.data(), perm.data(), 0, last(perm)); });
        EXPECT_TRUE(std::is_sorted(perm.begin(), perm.end(), [&](int32_t a, int32_t b) {
            return values[static_cast<size_t>(a)] < values[static_cast<size_t>(b)];
        }));
        expect_defined_permutation(values, 0, last(perm));
    }
}

TEST(Sorting, positions_up_to_the_largest_do_not_wrap)
{
    const size_t bytes = (size_t{INT32_MAX} + 1) * sizeof(int32_t);
    void* memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) GTEST_SKIP() << "no 8 GiB of address space";
    auto* perm = static_cast<int32_t*>(memory);
    constexpr int32_t hi = INT32_MAX, lo = hi - 4;
    const std::vector<int32_t> values{40, 10, 30, 20, 0};
    for (int32_t i = 0; i < 5; ++i) perm[lo + i] = i;
    vak_iquicksort(values.data(), perm, lo, hi);
    EXPECT_EQ(Permutation(perm + lo, perm + lo + 5), (Permutation{4, 1, 3, 2, 0}));
    int32_t pos = 0;
    vak_ibsearch(40, values.data(), perm, lo, hi, &pos);
    EXPECT_EQ(pos, hi);
    munmap(memory, bytes);
}

TEST(Sorting, fields_ascend_by_their_significant_characters)
{
    const std::string all = fields({"NODE", "ELEM", "", "NODESET", std::string_view("ELEM\0Z", 6), "B"}, 8);
    Permutation perm = identity(6), expected = perm;
    const auto below = [&](int32_t a, int32_t b) {
        return VAK_strncmp(all.data() + 8 * a, all.data() + 8 * b, 8) < 0;
    };
    reference_quicksort(expected.data(), 0, 5, below);
    vak_cquicksort(all.data(), perm.data(), 0, 5, 8);
    EXPECT_EQ(perm, expected);
    EXPECT_TRUE(std::is_sorted(perm.begin(), perm.end(), below));
    EXPECT_EQ(perm.front(), 2);
    EXPECT_EQ(perm.back(), 3);
}

TEST(Sorting, fields_of_random_characters_are_permuted_as_defined)
{
    std::mt19937 random(2);
    for (int round = 0; round < 100; ++round) {
        const auto n = static_cast<int32_t>(1 + random() % 100), len = static_cast<int32_t>(1 + random() % 6);
        std::string all(static_cast<size_t>(n * len), ' ');
        for (char& c : all) c = "AB \xff"[random() % 4];
        Permutation perm = identity(static_cast<size_t>(n)), expected = perm;
        reference_quicksort(expected.data(), 0, n - 1, [&](int32_t a, int32_t b) {
            return VAK_strncmp(all.data() + a * len, all.data() + b * len, len) < 0;
        });
        vak_cquicksort(all.data(), perm.data(), 0, n - 1, len);
        EXPECT_EQ(perm, expected);
    }
}

TEST(Sorting, strings_ascend_as_unsigned_bytes)
{
    const std::vector<const char*> strings{"b", "", "ab", "a", "\xe4", "B", "a "};
    Permutation perm = identity(strings.size());
    vak_cpquicksort(strings.data(), perm.data(), 0, last(perm));
    EXPECT_EQ(perm, (Permutation{1, 5, 3, 6, 2, 0, 4}));
}

TEST(Sorting, random_strings_are_permuted_as_defined)
{
    std::mt19937 random(3);
    for (int round = 0; round < 100; ++round) {
        std::vector<std::string> texts(1 + random() % 100);
        for (auto& text : texts) text = std::string(random() % 4, "ab\x80"[random() % 3]);
        std::vector<const char*> strings;
        for (const auto& text : texts) strings.push_back(text.c_str());
        Permutation perm = identity(strings.size()), expected = perm;
        reference_quicksort(expected.data(), 0, last(perm), [&](int32_t a, int32_t b) {
            return std::strcmp(strings[static_cast<size_t>(a)], strings[static_cast<size_t>(b)]) < 0;
        });
        vak_cpquicksort(strings.data(), perm.data(), 0, last(perm));
        EXPECT_EQ(perm, expected);
    }
}

}  // namespace vak::test
