// Sorting and searching of numbers and texts, and counted texts; the results are checked.
#include <vak_sp.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "support/input.h"

namespace vak::fuzz {

namespace {

std::vector<int32_t> positions(size_t n)
{
    std::vector<int32_t> perm(n);
    std::iota(perm.begin(), perm.end(), 0);
    return perm;
}

int32_t last(const std::vector<int32_t>& perm) { return static_cast<int32_t>(perm.size()) - 1; }

void expect(bool good)
{
    if (!good) std::abort();
}

void expect_permutation(std::vector<int32_t> perm)
{
    std::sort(perm.begin(), perm.end());
    expect(perm == positions(perm.size()));
}

void sort_numbers(Bytes input, decltype(&vak_iquicksort) sort, decltype(&vak_ibsearch) search)
{
    std::vector<int32_t> values(input.size() / 4);
    if (!values.empty()) std::memcpy(values.data(), input.data(), values.size() * 4);
    std::vector<int32_t> perm = positions(values.size());
    sort(values.data(), perm.data(), 0, last(perm));
    expect_permutation(perm);
    const auto value = [&](int32_t i) { return values[static_cast<size_t>(i)]; };
    expect(
        std::is_sorted(perm.begin(), perm.end(), [&](int32_t a, int32_t b) { return value(a) < value(b); }));
    for (const int32_t key : values) {
        int32_t at = -1;
        search(key, values.data(), perm.data(), 0, last(perm), &at);
        expect(at >= 0 && value(perm[static_cast<size_t>(at)]) == key);
    }
}

void sort_fields(Bytes input, size_t length)
{
    const std::vector<char> fields(input.begin(), input.end());
    const auto n = static_cast<int32_t>(length);
    std::vector<int32_t> perm = positions(fields.size() / length);
    vak_cquicksort(fields.data(), perm.data(), 0, last(perm), n);
    expect_permutation(perm);
    const auto field = [&](int32_t i) { return fields.data() + static_cast<size_t>(i) * length; };
    for (size_t i = 1; i < perm.size(); ++i) expect(VAK_strncmp(field(perm[i - 1]), field(perm[i]), n) <= 0);
    for (const int32_t key : perm) {
        int32_t at = -1;
        vak_cbsearch(field(key), fields.data(), perm.data(), 0, last(perm), n, &at);
        expect(at >= 0 && VAK_strncmp(field(perm[static_cast<size_t>(at)]), field(key), n) == 0);
        expect(VAK_strlen(field(key), n) <= n);
        VAK_putc(field(key), n, stdout);
    }
}

void sort_strings(Bytes input)
{
    std::string pool = text_of(input);
    pool.push_back('\0');
    std::vector<const char*> strings;
    for (size_t at = 0; at < pool.size(); at += strlen(&pool[at]) + 1) strings.push_back(&pool[at]);
    std::vector<int32_t> perm = positions(strings.size());
    vak_cpquicksort(strings.data(), perm.data(), 0, last(perm));
    expect_permutation(perm);
    std::vector<int64_t> offsets;
    for (const int32_t i : perm) offsets.push_back(strings[static_cast<size_t>(i)] - pool.data());
    for (const char* const key : strings) {
        int32_t at = -1;
        vak_cpbsearch(key, pool.data(), offsets.data(), 0, last(perm), &at);
        expect(at >= 0 && strcmp(pool.data() + offsets[static_cast<size_t>(at)], key) == 0);
    }
}

}  // namespace

void try_input(Bytes input)
{
    const size_t length = 1 + take_tail<uint8_t>(input) % 32;
    sort_numbers(input, vak_iquicksort, vak_ibsearch);
    sort_numbers(input, vak_jquicksort, vak_jbsearch);
    sort_fields(input, length);
    sort_strings(input);
}

}  // namespace vak::fuzz
