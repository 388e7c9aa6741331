#include "tools/merge_kinds.h"

namespace vak {

namespace {

using Names = const char* const;

constexpr Column indexident{"indexident", integer_type, Role::index, {"nindex"}};
constexpr Column indexval{"indexval", real_type, Role::index, {"nindex"}};
constexpr Column entid{"entid", integer_type, Role::ids};

constexpr Column integer_row(const char* name, const char* width = nullptr)
{
    return {name, integer_type, Role::row, {width}};
}

// Units of each real parameter, one list after the other, and how many each has.
constexpr Column unit_counts(const char* name)
{
    return {.name = name, .type = integer_type, .role = Role::common, .row = {"nbfloat"}, .is_legacy = true};
}
constexpr Column unit_list(const char* name, int32_t type, const char* counts)
{
    return {.name = name, .type = type, .role = Role::common, .total_of = counts, .is_legacy = true};
}

constexpr bool is_none(int32_t value) { return value == 0; }
constexpr bool is_one(int32_t value) { return value == 1; }
constexpr bool is_some(int32_t value) { return value > 0; }
template <int32_t bit>
constexpr bool lacks(int32_t value)
{
    return !(value & bit);
}

constexpr Column connectivity_columns[] = {indexident,
                                           indexval,
                                           {"idele", integer_type, Role::ids},
                                           integer_row("pid"),
                                           integer_row("ic", "npele"),
                                           unit_counts("mbunit"),
                                           unit_counts("mdunit"),
                                           unit_list("ubid", integer_type, "mbunit"),
                                           unit_list("ubexp", real_type, "mbunit"),
                                           unit_list("udid", integer_type, "mdunit"),
                                           unit_list("udexp", real_type, "mdunit"),
                                           integer_row("iparam", "nbint"),
                                           {"fparam", real_type, Role::row, {"nbfloat"}}};
constexpr Names connectivities_agree[] = {"npele", "ndim", "nbint", "nbfloat"};

constexpr Column flags{"status", integer_type, Role::flag};
constexpr Column activation_columns[] = {indexident, indexval, entid, flags};
constexpr Column activation_series_columns[] = {entid, indexident, indexval, flags};

constexpr Column title{.name = "title", .type = text_type, .role = Role::row, .when = {"length", is_some}};
// Parts tell by bits of "off" which columns they have not.
constexpr Column part_column(const char* name, bool (*is_there)(int32_t))
{
    return {.name = name, .type = integer_type, .role = Role::row, .when = {"off", is_there}};
}
constexpr Column parts_columns[] = {indexident,
                                    indexval,
                                    {"pid", integer_type, Role::ids},
                                    title,
                                    part_column("mid", lacks<1>),
                                    part_column("mtyp", lacks<2>),
                                    part_column("pcol", lacks<4>)};
constexpr Column attribute_columns[] = {indexident, indexval, entid, title, integer_row("uid", "nuid")};

// Their filters are found by these; the sets themselves are joined by other means.
constexpr Column collector_columns[] = {indexident,
                                        indexval,
                                        integer_row("idcoll"),
                                        {"etyp", text_type, Role::common, {"ntyp"}},
                                        integer_row("nent", "ntyp"),
                                        integer_row("entid")};

constexpr Column property_columns[] = {indexident,
                                       indexval,
                                       entid,
                                       integer_row("idparam", "nbid"),
                                       integer_row("iparam", "nbint"),
                                       {"fparam", real_type, Role::row, {"nbfloat"}},
                                       {.name = "cparam",
                                        .type = text_type,
                                        .role = Role::row,
                                        .row = {"nbstring"},
                                        .when = {"length", is_some}}};
constexpr Names properties_agree[] = {"nbid", "nbint", "nbfloat", "nbstring", "length"};

// One frame for all; older files have it as an attribute.
constexpr Column fidglob{.name = "fidglob",
                         .type = integer_type,
                         .role = Role::common,
                         .when = {"fswitch", is_none},
                         .is_optional = true};
constexpr Column fid{.name = "fid", .type = integer_type, .role = Role::row, .when = {"fswitch", is_one}};
// One frame for each element, or for each location.
constexpr Column element_fid{.name = "fid",
                             .type = integer_type,
                             .role = Role::row,
                             .row = {"numl"},
                             .when = {"fswitch", is_some},
                             .row_when = "fswitch"};
constexpr Column operators{.name = "operator",
                           .type = text_type,
                           .role = Role::common,
                           .row = {"ncoo"},
                           .when = {"dmpswitch", is_one}};
constexpr Column weight{.name = "weight",
                        .type = real_type,
                        .role = Role::weight,
                        .when = {"dmpswitch", is_one},
                        .is_optional = true};

constexpr Column idele{"idele", integer_type, Role::ids};
constexpr Column eloc{"eloc", real_type, Role::common, {"numl", "ndim"}};
constexpr Column element_values{
    .name = "res", .type = real_type, .role = Role::values, .row = {"numl", "ncoo"}, .is_lossy = true};
constexpr Column element_columns[] = {indexident, indexval, idele, fidglob,       element_fid,
                                      operators,  weight,   eloc,  element_values};
constexpr Column element_series_columns[] = {idele, fidglob,    element_fid, operators,     weight,
                                             eloc,  indexident, indexval,    element_values};
constexpr Names elements_agree[] = {"block", "ncoo", "numl", "ndim", "fswitch", "dmpswitch"};

constexpr Column entity_columns[] = {
    indexident, indexval, entid, fidglob, fid, operators, weight, {"res", real_type, Role::values, {"ncoo"}}};
constexpr Column entity_series_columns[] = {
    entid,  fidglob,    fid,      operators,
    weight, indexident, indexval, {"res", real_type, Role::values, {"ncoo"}, true}};
constexpr Names entities_agree[] = {"block", "ncoo", "fswitch", "dmpswitch"};

constexpr Names elements_need[] = {"etypelem", "etyppart", "etypnode"};
constexpr Names elements_need_now[] = {"etyp", "indexic"};
constexpr Names flags_need[] = {"etyp", "indexic"};
constexpr Names parts_need[] = {"etyppart", "off", "length", "indexic"};
constexpr Names attributes_need[] = {"etyp"};
constexpr Names attributes_need_now[] = {"length", "indexic"};
constexpr Names collectors_need[] = {"etypcoll", "ntyp", "nenttot"};
constexpr Names index_counter[] = {"indexic"};
constexpr Names properties_need[] = {"etyp", "etypprop", "etypzone", "zoneid", "indexic"};
constexpr Names element_results_need[] = {"etypelem", "etypvar",   "etypzone",
                                          "zoneid",   "etypframe", "indexic"};
constexpr Names entity_results_need[] = {"etyp", "etypvar", "etypzone", "zoneid", "etypframe"};
constexpr Names element_series_need[] = {"series", "etypelem", "etypvar", "etypzone", "zoneid", "etypframe"};
constexpr Names entity_series_need[] = {"series", "etyp", "etypvar", "etypzone", "zoneid", "etypframe"};
constexpr Names flag_series_need[] = {"series", "etyp"};

constexpr MergedKind kinds[] = {
    {.kind = {.key = 300, .type = "connectivities"},
     .count = "nele",
     .agreeing = connectivities_agree,
     .needed = elements_need,
     .needed_now = elements_need_now,
     .variable_with = "nbfloat",
     .columns = connectivity_columns},
    {.kind = {.key = 2100, .type = "activflags"},
     .count = "nent",
     .needed = flags_need,
     .columns = activation_columns},
    {.kind = {.key = 100, .type = "parts"},
     .count = "npart",
     .needed = parts_need,
     .columns = parts_columns,
     .widens = true,
     .index_in_data = true},
    {.kind = {.key = 200, .type = "attributes"},
     .count = "nent",
     .needed = attributes_need,
     .needed_now = attributes_need_now,
     .columns = attribute_columns,
     .widens = true},
    {.kind = {.key = 250, .type = "identifiers"},
     .count = "nent",
     .needed = attributes_need,
     .needed_now = attributes_need_now,
     .columns = attribute_columns,
     .widens = true},
    {.kind = {.key = 400, .type = "collector"},
     .way = Way::collect,
     .count = "ncoll",
     .needed = collectors_need,
     .needed_now = index_counter,
     .columns = collector_columns},
    {.kind = {.key = 1100, .type = "elementresults", .complex_key = 1101},
     .count = "nele",
     .agreeing = elements_agree,
     .needed = element_results_need,
     .columns = element_columns,
     .last_fswitch = 2},
    {.kind = {.key = 1000, .type = "entityresults", .complex_key = 1001},
     .count = "nent",
     .agreeing = entities_agree,
     .needed = entity_results_need,
     .needed_now = index_counter,
     .columns = entity_columns,
     .last_fswitch = 1},
    {.kind = {.key = 1050, .type = "multientityresults", .complex_key = 1051},
     .count = "nent",
     .agreeing = entities_agree,
     .needed = entity_series_need,
     .columns = entity_series_columns,
     .is_series = true,
     .last_fswitch = 1},
    {.kind = {.key = 10000, .type = "densematrix", .complex_key = 10001}, .way = Way::copy},
    {.kind = {.key = 10100, .type = "triangularmatrix", .complex_key = 10101}, .way = Way::copy},
    {.kind = {.key = 10200, .type = "sparsematrix", .complex_key = 10201}, .way = Way::copy, .is_rare = true},
    {.kind = {.key = 500, .type = "properties"},
     .count = "nent",
     .agreeing = properties_agree,
     .needed = properties_need,
     .columns = property_columns,
     .is_rare = true},
    {.kind = {.key = 1150, .type = "multielementresults", .complex_key = 1151},
     .count = "nele",
     .agreeing = elements_agree,
     .needed = element_series_need,
     .columns = element_series_columns,
     .is_series = true,
     .last_fswitch = 2,
     .is_rare = true},
    {.kind = {.key = 2150, .type = "multiactivflags"},
     .count = "nent",
     .needed = flag_series_need,
     .columns = activation_series_columns,
     .is_series = true,
     .is_rare = true},
};

}  // namespace

std::span<const MergedKind> merged_kinds() { return kinds; }

}  // namespace vak
