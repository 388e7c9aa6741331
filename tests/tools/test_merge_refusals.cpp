// A merge in which HDF5 refuses one call, each in turn: it ends with a status and a line, or what it made is
// whole.
#include <gtest/gtest.h>

#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/entityresults.h"
#include "samples/multiactivflags.h"
#include "samples/system.h"
#include "samples/variable.h"
#include "samples/variablegroup.h"
#include "storage/refusal.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

namespace vak::test {

int calls_until_refusal = 0;

// The n-th call of the function that the test names, and no other.
bool refuses_this_call(const char* name)
{
    return refuses(name) && calls_until_refusal > 0 && --calls_until_refusal == 0;
}

}  // namespace vak::test

#define MAY_REFUSE_NTH(result, name, parameters, arguments)                        \
    extern "C" result name parameters                                              \
    {                                                                              \
        static const auto original = vak::test::next<result(*) parameters>(#name); \
        return vak::test::refuses_this_call(#name) ? -1 : original arguments;      \
    }
// clang-format off
MAY_REFUSE_NTH(herr_t, H5Ocopy, (hid_t f, const char* n, hid_t t, const char* m, hid_t a, hid_t b), (f, n, t, m, a, b))
MAY_REFUSE_NTH(hid_t, H5Gcreate2, (hid_t l, const char* n, hid_t a, hid_t b, hid_t c), (l, n, a, b, c))
MAY_REFUSE_NTH(hid_t, H5Dcreate2, (hid_t l, const char* n, hid_t t, hid_t s, hid_t a, hid_t b, hid_t c), (l, n, t, s, a, b, c))
MAY_REFUSE_NTH(hid_t, H5Acreate2, (hid_t l, const char* n, hid_t t, hid_t s, hid_t a, hid_t b), (l, n, t, s, a, b))
MAY_REFUSE_NTH(herr_t, H5Awrite, (hid_t a, hid_t t, const void* v), (a, t, v))
MAY_REFUSE_NTH(herr_t, H5Dwrite, (hid_t d, hid_t t, hid_t m, hid_t f, hid_t x, const void* v), (d, t, m, f, x, v))
MAY_REFUSE_NTH(herr_t, H5Dread, (hid_t d, hid_t t, hid_t m, hid_t f, hid_t x, void* v), (d, t, m, f, x, v))
MAY_REFUSE_NTH(htri_t, H5Aexists, (hid_t o, const char* n), (o, n))
MAY_REFUSE_NTH(hid_t, H5Aopen, (hid_t o, const char* n, hid_t a), (o, n, a))
MAY_REFUSE_NTH(herr_t, H5Aread, (hid_t a, hid_t t, void* v), (a, t, v))
MAY_REFUSE_NTH(hid_t, H5Oopen_by_token, (hid_t l, H5O_token_t t), (l, t))
MAY_REFUSE_NTH(hid_t, H5Dopen2, (hid_t l, const char* n, hid_t a), (l, n, a))
MAY_REFUSE_NTH(herr_t, H5Fflush, (hid_t o, H5F_scope_t s), (o, s))
// clang-format on

using namespace vak;
using namespace vak::test;

namespace {

constexpr const char* functions[] = {"H5Ocopy",  "H5Gcreate2", "H5Dcreate2",      "H5Acreate2", "H5Awrite",
                                     "H5Dwrite", "H5Dread",    "H5Dopen2",        "H5Fflush",   "H5Aexists",
                                     "H5Aopen",  "H5Aread",    "H5Oopen_by_token"};

class MergeRefusals : public MergeTest, public testing::WithParamInterface<std::tuple<Family, const char*>> {
protected:
    MergeRefusals() : MergeTest(std::get<Family>(GetParam())) {}

    template <class S>
    void put(hid_t domain) const
    {
        EXPECT_GE(sample_of<S>(family()).write(domain), 0);
    }
    void add_small_domain()
    {
        const hid_t domain = add_domain();
        put_header(domain);
        put<System>(domain);
        if (!legacy()) put<Variable>(domain), put<VariableGroup>(domain);
        put<Connectivities>(domain);
        put<Collector>(domain);
        put<DenseMatrix>(domain);
        put<EntityResults>(domain);
        put<MultiActivFlags>(domain);
    }

    // As the text of each step gives it, status included.
    static std::string last_line(int32_t status)
    {
        return "\nVAK ERROR (reading \"[a-z]+\" block pass [12]|writing \"[a-z]+\" block|- incompatible file) "
               "- error code = " +
               std::to_string(status) + " ?\n$";
    }

    int32_t merge_refusing(int number)
    {
        for (const char* group : {"constant", "singlestate", "multistate", "vakheader"})
            if (H5Lexists(target(), group, H5P_DEFAULT) > 0) H5Ldelete(target(), group, H5P_DEFAULT);
        refused = std::get<const char*>(GetParam());
        calls_until_refusal = number;
        const int32_t status = merge(0);
        was_refused = calls_until_refusal == 0 && number > 0;
        refused.clear();
        return status;
    }

    bool was_refused = false;
};

TEST_P(MergeRefusals, end_with_a_status_and_a_line_or_change_nothing)
{
    add_small_domain();
    add_small_domain();
    ASSERT_EQ(merge_refusing(0), 0);
    const std::string whole = layout(target(), "/"), warnings = printed().err;
    int number = 0;
    for (was_refused = true; was_refused && number < 1000;) {
        const int32_t status = merge_refusing(++number);
        SCOPED_TRACE(number);
        EXPECT_THAT(printed().err, testing::AnyOf("", testing::EndsWith("\n")));
        if (status != 0) {
            EXPECT_THAT(printed().err, testing::ContainsRegex(last_line(status)));
        } else if (printed().err == warnings) {
            EXPECT_EQ(layout(target(), "/"), whole);
        }
    }
    EXPECT_GT(number, 1);
}

std::string name_of(const testing::TestParamInfo<std::tuple<Family, const char*>>& info)
{
    return std::string(std::get<1>(info.param)) +
           (std::get<0>(info.param) == Family::legacy ? "_legacy" : "");
}

INSTANTIATE_TEST_SUITE_P(, MergeRefusals, testing::Combine(both_families, testing::ValuesIn(functions)),
                         name_of);

}  // namespace
