// vak show: descriptive and model blocks, every field of both layouts.
#include "cli/show_test.h"
#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/indices.h"
#include "samples/parts.h"
#include "samples/properties.h"
#include "samples/system.h"
#include "samples/text.h"
#include "store/call.h"

using namespace vak::test;
using vak::Family;
using vak::store::call;
using vak::store::Int;

namespace {

using Samples = testing::Types<System, Indices, Text, Parts, Attributes, Connectivities, Collector>;

template <class Sample>
class ShowModel : public ShowSample<Sample> {
};
TYPED_TEST_SUITE(ShowModel, Samples);

class ShowIdentifiers : public ShowSample<Identifiers> {};
using ShowVariable = Show;

constexpr int32_t no_parameters[2] = {};

}  // namespace

TYPED_TEST(ShowModel, every_field_is_shown) { this->shows_all_fields(Family::current); }
TYPED_TEST(ShowModel, every_field_is_shown_in_the_legacy_layout) { this->shows_all_fields(Family::legacy); }

TEST_F(ShowIdentifiers, every_field_is_shown) { shows_all_fields(Family::current); }

TEST_F(Show, every_field_of_properties_is_shown)
{
    const PropertyTables sample;
    const std::string place = "constant/properties/vakblock";
    make([&](hid_t file) {
        vak_id group = -1;
        call("making", VAK_H5GOPEN, &file, place.c_str(), Int{-1}, Int{0}, &group);
        ASSERT_EQ(sample.write_into(group), 0);
    });
    const json blocks = shown({"--all", place});
    ASSERT_EQ(blocks.size(), 1U);
    EXPECT_EQ(blocks[0]["key"], 500);
    PropertyTables::each(sample,
                         [&](const char* name, const auto& value) { expect_field(blocks[0], name, value); });
    const json& extremes = blocks[0]["arrays"]["fparam"]["components"][2];
    EXPECT_EQ(extremes["maximum"], (json{{"value", 11.25}, {"entity", 5}}));
}

TEST_F(ShowVariable, units_subscripts_and_map_are_shown)
{
    make([](hid_t file) {
        const int32_t mbunit[2] = {1, 2}, mdunit[2] = {0, 1}, ubid[3] = {1, 2, 3}, udid[1] = {7};
        const int32_t counts[2] = {1, 2}, offsets[2] = {0, 1};
        const float ubexp[3] = {1, -2, 0.5F}, udexp[1] = {2}, map[6] = {1, 0, 0, 0, 1, 0};
        call("writing", VAK_WRITE_VARIABLE, &file, nullptr, nullptr, "U", "CLASS", "displacement", Int{2},
             Int{1}, Int{3}, Int{2}, "FLOAT", Int{1}, Int{3}, mbunit, mdunit, ubid, ubexp, udid, udexp, "XYY",
             counts, offsets, map, Int{0}, no_parameters, Int{4});
    });
    const json block = shown({"variable/U"})[0];
    EXPECT_EQ(block["attributes"]["lenb"], 3);
    EXPECT_EQ(block["attributes"]["varnam"], "displacement");
    EXPECT_EQ(block["arrays"]["ubexp"]["values"], (json{1, -2, 0.5}));
    EXPECT_EQ(block["arrays"]["udid"]["values"], (json{7}));
    EXPECT_EQ(block["arrays"]["subscr"]["values"], (json{"XYY"}));
    EXPECT_EQ(block["arrays"]["vmap"]["shape"], (json{2, 3}));
    EXPECT_EQ(block["arrays"]["vmap"]["values"], (json{1, 0, 0, 0, 1, 0}));
}

TEST_F(ShowVariable, what_a_variable_does_not_have_is_not_shown)
{
    make([](hid_t file) {
        const int32_t none[1] = {0};
        call("writing", VAK_WRITE_VARIABLE, &file, nullptr, nullptr, "T", "CLASS", "T", Int{1}, Int{0},
             Int{0}, Int{1}, "FLOAT", Int{0}, Int{0}, none, none, nullptr, nullptr, nullptr, nullptr, nullptr,
             nullptr, nullptr, nullptr, Int{0}, no_parameters, Int{4});
    });
    const json arrays = shown({"variable/T"})[0]["arrays"];
    for (const char* name : {"subscr", "subscnt", "subsoffs", "vmap"})
        EXPECT_FALSE(arrays.contains(name)) << name;
    EXPECT_EQ(arrays["ubid"]["shape"], (json{0}));
}

TEST_F(ShowVariable, a_group_of_variables_is_shown)
{
    make([](hid_t file) {
        const int32_t cnt[2] = {3, 6}, offs[2] = {0, 3};
        std::string keys = padded("U") + padded("S");
        call("writing", VAK_WRITE_VARIABLEGROUP, &file, "NODE", nullptr, "ALL", Int{2}, Int{9}, cnt, offs,
             keys.c_str(), Int{0}, no_parameters);
    });
    const json block = shown({"variablegroup"})[0];
    EXPECT_EQ(block["attributes"]["ncoo"], 9);
    EXPECT_EQ(block["arrays"]["cnt"]["values"], (json{3, 6}));
    EXPECT_EQ(block["arrays"]["varkey"]["values"], (json{"U", "S"}));
}

TEST_F(ShowVariable, legacy_variables_are_shown)
{
    make([](hid_t file) {
        const int32_t mbunit[2] = {1, 0}, mdunit[2] = {0, 2}, ubid[1] = {1}, udid[2] = {7, 8},
                      cid[2] = {3, 4}, comp[2] = {1, 2};
        const float ubexp[1] = {1}, udexp[2] = {2, 3};
        const std::string names = padded("X") + padded("Y");
        call("writing", VAK1_WRITE_VARIABLES, &file, "NODE", Int{5}, Int{1}, Int{3}, Int{2}, mbunit, mdunit,
             ubid, ubexp, udid, udexp, names.c_str(), cid, comp, Int{0}, no_parameters, Int{4});
    });
    const json block = shown({"variables"})[0];
    EXPECT_EQ(block["attributes"]["idtrans"], 5);
    EXPECT_EQ(block["arrays"]["cname"]["values"], (json{"X", "Y"}));
    EXPECT_EQ(block["arrays"]["udid"]["values"], (json{7, 8}));
    EXPECT_EQ(block["arrays"]["comp"]["values"], (json{1, 2}));
}

TEST_F(Show, the_header_of_both_layouts_is_shown)
{
    make([](hid_t file) { call("writing", VAK_WRITE_FILEHEADER, &file, nullptr, nullptr); });
    EXPECT_EQ(shown({"vakheader"})[0]["attributes"]["version"], "2 2 14");
    make([](hid_t file) { call("writing", VAK1_WRITE_FILEHEADER, &file, nullptr, nullptr); });
    EXPECT_EQ(shown({"vakheader", "--legacy"})[0]["attributes"]["version"], "1 2 0");
}

TEST_F(Show, a_compressed_block_tells_its_filters)
{
    Connectivities sample;
    sample.flags = 1 + 2;
    sample.params[1] = 6;
    sample.nele = 100;
    sample.idele.assign(100, 1);
    sample.pid.assign(100, 1);
    sample.ic.assign(static_cast<size_t>(100 * sample.npele), 1);
    sample.iparam.assign(static_cast<size_t>(100 * sample.nbint), 1);
    sample.fparam.assign(static_cast<size_t>(100 * sample.nbfloat), 1);
    make([&](hid_t file) { ASSERT_EQ(sample.write(file), 0); });
    const json attributes = shown({"connectivities"})[0]["attributes"];
    EXPECT_EQ(attributes["flags"], 3);
    EXPECT_EQ(attributes["params"], (json{0, 6}));
}

TEST_F(Show, matrices_are_shown_with_row_and_column_of_the_extremes)
{
    make([](hid_t file) {
        const float values[4] = {1, 5, -3, 2};
        call("writing", VAK_WRITE_DENSEMATRIX, &file, "SUPER", Int{4}, "STIFFNESS", Int{2}, Int{2}, Int{0},
             Int{0}, nullptr, nullptr, values, Int{-1}, Int{0}, no_parameters, Int{4}, Int{0}, nullptr,
             nullptr);
    });
    const json block = shown({"densematrix"})[0];
    EXPECT_EQ(block["attributes"]["entid"], 4);
    EXPECT_EQ(block["arrays"]["val"]["shape"], (json{2, 2}));
    EXPECT_EQ(block["arrays"]["val"]["components"][0]["minimum"],
              (json{{"value", -3}, {"row", 2}, {"column", 1}}));
}

TEST_F(Show, complex_and_packed_matrices_are_shown)
{
    make([](hid_t file) {
        const float values[6] = {1, -1, 2, -2, 3, -3};
        call("writing", VAK_WRITE_TRIANGULARMATRIX, &file, "", Int{-1}, "K", Int{2}, Int{9}, Int{0}, Int{0},
             nullptr, nullptr, values, Int{-1}, Int{0}, no_parameters, Int{16}, Int{0}, nullptr, nullptr);
    });
    const json block = shown({"triangularmatrix"})[0];
    EXPECT_EQ(block["key"], 10101);
    EXPECT_EQ(block["attributes"]["matrixtype"], 9);
    EXPECT_EQ(block["arrays"]["val"]["shape"], (json{3, 2}));
    EXPECT_EQ(block["arrays"]["val"]["components"][1]["name"], "im");
    EXPECT_EQ(block["arrays"]["val"]["components"][1]["minimum"], (json{{"value", -3}, {"entry", 3}}));
}

TEST_F(Show, sparse_matrices_of_both_layouts_are_shown)
{
    for (const auto routine : {VAK_WRITE_SPARSEMATRIX, VAK1_WRITE_SPARSEMATRIX}) {
        make([&](hid_t file) {
            const int32_t colind[3] = {0, 1, 1};
            const int64_t rowptr[3] = {0, 2, 3}, nnz = 3;
            const float values[3] = {1, 2, 3};
            call("writing", routine, &file, "", Int{-1}, "M", Int{2}, &nnz, Int{0}, Int{0}, nullptr, nullptr,
                 colind, rowptr, values, Int{-1}, Int{0}, no_parameters, Int{4}, Int{0}, nullptr, nullptr);
        });
        const json block = shown({"sparsematrix"})[0];
        EXPECT_EQ(block["attributes"]["nnz"], 3);
        EXPECT_EQ(block["arrays"]["rowptr"]["type"], "int64");
        EXPECT_EQ(block["arrays"]["rowptr"]["values"], (json{0, 2, 3}));
        EXPECT_EQ(block["arrays"]["colind"]["values"], (json{0, 1, 1}));
        EXPECT_EQ(block["arrays"]["val"]["values"], (json{1, 2, 3}));
    }
}
