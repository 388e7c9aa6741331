#include "tools/merge_kinds.h"

namespace vak {

namespace {

using Names = const char* const;

constexpr Column connectivity_columns[] = {
    {"indexident", integer_type, Role::index}, {"indexval", real_type, Role::index},
    {"idele", integer_type, Role::ids},        {"pid", integer_type, Role::row},
    {"ic", integer_type, Role::row},           {"mbunit", integer_type, Role::common},
    {"mdunit", integer_type, Role::common},    {"ubid", integer_type, Role::common},
    {"ubexp", real_type, Role::common},        {"udid", integer_type, Role::common},
    {"udexp", real_type, Role::common},        {"iparam", integer_type, Role::row},
    {"fparam", real_type, Role::row}};
constexpr Names connectivities_agree[] = {"npele", "ndim", "nbint", "nbfloat"};

constexpr Column activation_columns[] = {{"indexident", integer_type, Role::index},
                                         {"indexval", real_type, Role::index},
                                         {"entid", integer_type, Role::ids},
                                         {"status", integer_type, Role::flag}};
constexpr Column activation_series_columns[] = {{"entid", integer_type, Role::ids},
                                                {"indexident", integer_type, Role::index},
                                                {"indexval", real_type, Role::index},
                                                {"status", integer_type, Role::flag}};

constexpr Column parts_columns[] = {
    {"indexident", integer_type, Role::index}, {"indexval", real_type, Role::index},
    {"pid", integer_type, Role::ids},          {"title", text_type, Role::row},
    {"mid", integer_type, Role::row},          {"mtyp", integer_type, Role::row},
    {"pcol", integer_type, Role::row}};

constexpr Column attribute_columns[] = {{"indexident", integer_type, Role::index},
                                        {"indexval", real_type, Role::index},
                                        {"entid", integer_type, Role::ids},
                                        {"title", text_type, Role::row},
                                        {"uid", integer_type, Role::row}};

constexpr Column property_columns[] = {
    {"indexident", integer_type, Role::index}, {"indexval", real_type, Role::index},
    {"entid", integer_type, Role::ids},        {"idparam", integer_type, Role::row},
    {"iparam", integer_type, Role::row},       {"fparam", real_type, Role::row},
    {"cparam", text_type, Role::row}};
constexpr Names properties_agree[] = {"nbid", "nbint", "nbfloat", "nbstring", "length"};

constexpr Column element_columns[] = {
    {"indexident", integer_type, Role::index}, {"indexval", real_type, Role::index},
    {"idele", integer_type, Role::ids},        {"fidglob", integer_type, Role::common},
    {"fid", integer_type, Role::row},          {"operator", text_type, Role::common},
    {"weight", real_type, Role::weight},       {"eloc", real_type, Role::common},
    {"res", real_type, Role::values, true}};
constexpr Column element_series_columns[] = {
    {"idele", integer_type, Role::ids},        {"fidglob", integer_type, Role::common},
    {"fid", integer_type, Role::row},          {"operator", text_type, Role::common},
    {"weight", real_type, Role::weight},       {"eloc", real_type, Role::common},
    {"indexident", integer_type, Role::index}, {"indexval", real_type, Role::index},
    {"res", real_type, Role::values, true}};
constexpr Names elements_agree[] = {"block", "ncoo", "numl", "ndim", "fswitch", "dmpswitch"};

constexpr Column entity_columns[] = {
    {"indexident", integer_type, Role::index}, {"indexval", real_type, Role::index},
    {"entid", integer_type, Role::ids},        {"fidglob", integer_type, Role::common},
    {"fid", integer_type, Role::row},          {"operator", text_type, Role::common},
    {"weight", real_type, Role::weight},       {"res", real_type, Role::values}};
constexpr Column entity_series_columns[] = {
    {"entid", integer_type, Role::ids},   {"fidglob", integer_type, Role::common},
    {"fid", integer_type, Role::row},     {"operator", text_type, Role::common},
    {"weight", real_type, Role::weight},  {"indexident", integer_type, Role::index},
    {"indexval", real_type, Role::index}, {"res", real_type, Role::values, true}};
constexpr Names entities_agree[] = {"block", "ncoo", "fswitch", "dmpswitch"};

constexpr MergedKind kinds[] = {
    {.kind = {.key = 300, .type = "connectivities"},
     .count = "nele",
     .agreeing = connectivities_agree,
     .columns = connectivity_columns},
    {.kind = {.key = 2100, .type = "activflags"}, .count = "nent", .columns = activation_columns},
    {.kind = {.key = 100, .type = "parts"},
     .count = "npart",
     .columns = parts_columns,
     .widens = true,
     .index_in_data = true},
    {.kind = {.key = 200, .type = "attributes"},
     .count = "nent",
     .columns = attribute_columns,
     .widens = true},
    {.kind = {.key = 250, .type = "identifiers"},
     .count = "nent",
     .columns = attribute_columns,
     .widens = true},
    {.kind = {.key = 400, .type = "collector"}, .way = Way::collect, .count = "ncoll"},
    {.kind = {.key = 1100, .type = "elementresults", .complex_key = 1101},
     .count = "nele",
     .agreeing = elements_agree,
     .columns = element_columns},
    {.kind = {.key = 1000, .type = "entityresults", .complex_key = 1001},
     .count = "nent",
     .agreeing = entities_agree,
     .columns = entity_columns},
    {.kind = {.key = 1050, .type = "multientityresults", .complex_key = 1051},
     .count = "nent",
     .agreeing = entities_agree,
     .columns = entity_series_columns,
     .is_series = true},
    {.kind = {.key = 10000, .type = "densematrix", .complex_key = 10001}, .way = Way::copy},
    {.kind = {.key = 10100, .type = "triangularmatrix", .complex_key = 10101}, .way = Way::copy},
    {.kind = {.key = 10200, .type = "sparsematrix", .complex_key = 10201}, .way = Way::copy, .is_rare = true},
    {.kind = {.key = 500, .type = "properties"},
     .count = "nent",
     .agreeing = properties_agree,
     .columns = property_columns,
     .is_rare = true},
    {.kind = {.key = 1150, .type = "multielementresults", .complex_key = 1151},
     .count = "nele",
     .agreeing = elements_agree,
     .columns = element_series_columns,
     .is_series = true,
     .is_rare = true},
    {.kind = {.key = 2150, .type = "multiactivflags"},
     .count = "nent",
     .columns = activation_series_columns,
     .is_series = true,
     .is_rare = true},
};

}  // namespace

std::span<const MergedKind> merged_kinds() { return kinds; }

}  // namespace vak
