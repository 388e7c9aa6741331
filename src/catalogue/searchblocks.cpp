// Lists of the blocks below a group that meet criteria.
#include <algorithm>
#include <charconv>
#include <vector>

#include "catalogue/block_list.h"
#include "catalogue/quiet_attribute.h"
#include "frame/exported.h"
#include "vak_sp.h"

namespace vak {

namespace {

struct SearchArguments {
    const char *blocktype, *series, *etyp, *etypvar, *etypzone;
    int32_t zoneid, state, nent, nindex;
};

// What the attribute is to be; of several names the first that the block has counts.
using Names = std::span<const char* const>;
constexpr const char* blocktype_names[]{"blocktype"};
constexpr const char* series_names[]{"series"};
constexpr const char* etyp_names[]{"etyp", "etypelem", "etyppart", "etypcoll", "etyptext"};
constexpr const char* etypvar_names[]{"etypvar"};
constexpr const char* etypzone_names[]{"etypzone"};
constexpr const char* zoneid_names[]{"zoneid"};
constexpr const char* nent_names[]{"nent", "nele", "npart"};
constexpr const char* nindex_names[]{"nindex"};

struct TextCriterion {
    Names names;
    std::string_view wanted;
};

struct NumberCriterion {
    Names names;
    int32_t wanted;
};

// The criteria that apply; state below 0 does not.
struct Criteria {
    std::vector<TextCriterion> texts;
    std::vector<NumberCriterion> numbers;
    int32_t state;
};

void apply_text(Criteria& criteria, Names names, const char* field)
{
    const std::string_view wanted = counted(field);
    if (!wanted.empty() && wanted != "undefined") criteria.texts.push_back({names, wanted});
}

void apply_number(Criteria& criteria, Names names, int32_t wanted, int32_t smallest)
{
    if (wanted >= smallest) criteria.numbers.push_back({names, wanted});
}

Criteria applied(const SearchArguments& arguments)
{
    Criteria criteria{{}, {}, arguments.state};
    apply_text(criteria, blocktype_names, arguments.blocktype);
    apply_text(criteria, series_names, arguments.series);
    apply_text(criteria, etyp_names, arguments.etyp);
    apply_text(criteria, etypvar_names, arguments.etypvar);
    apply_text(criteria, etypzone_names, arguments.etypzone);
    apply_number(criteria, zoneid_names, arguments.zoneid, 0);
    apply_number(criteria, nent_names, arguments.nent, 0);
    apply_number(criteria, nindex_names, arguments.nindex, -1);
    return criteria;
}

bool meets(hid_t block, const TextCriterion& criterion)
{
    const Attribute attribute = first_attribute(block, criterion.names);
    const auto found = attribute.valid() ? text_of(attribute) : std::nullopt;
    return found && counted(found->data(), found->size()) == criterion.wanted;
}

bool meets(hid_t block, const NumberCriterion& criterion)
{
    const Attribute attribute = first_attribute(block, criterion.names);
    return attribute.valid() && integer_of(attribute) == criterion.wanted;
}

// The number of the last level that is a state's, which has 12 digits; -1 when there is none.
int64_t state_of(std::string_view path)
{
    constexpr std::string_view level = "/state";
    const std::string levels = "/" + std::string(path);
    for (size_t at = levels.size(); at > 0 && (at = levels.rfind(level, at - 1)) != std::string::npos;) {
        const std::string_view digits = std::string_view(levels).substr(at + level.size(), 12);
        uint64_t state = 0;
        const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), state).ptr;
        if (end != digits.data()) return static_cast<int64_t>(state);
    }
    return -1;
}

bool matches(const Criteria& criteria, const FoundBlock& block)
{
    const bool file_header = block.group < 0;
    if (file_header) return criteria.texts.empty() && criteria.numbers.empty() && criteria.state < 0;
    const auto met = [&](const auto& criterion) { return meets(block.group, criterion); };
    return (criteria.state < 0 || state_of(block.path) == criteria.state) &&
           std::all_of(criteria.numbers.begin(), criteria.numbers.end(), met) &&
           std::all_of(criteria.texts.begin(), criteria.texts.end(), met);
}

int32_t search_blocks(const BlockList& list, Family family, hid_t start, const char* routine,
                      const SearchArguments& arguments)
{
    return exported([&] {
        const Criteria criteria = applied(arguments);
        return list_blocks_into(list, family, start, routine,
                                [&](const FoundBlock& block) { return matches(criteria, block); });
    });
}

}  // namespace

}  // namespace vak

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_SEARCHBLOCKS(
    const vak_id* loc_id,
    const char* blocktype, const char* series, const char* etyp, const char* etypvar, const char* etypzone,
    const int32_t* zoneid, const int32_t* state, const int32_t* nent, const int32_t* nindex,
    const int32_t* collect, const int32_t* verbose, int32_t* capacity, int64_t* pool_size,
    int32_t* nblocks, int64_t* total_len, int32_t** keys, int64_t** offsets, char** paths, int32_t* ierr)
{
    const vak::SearchArguments wanted{
        .blocktype = blocktype, .series = series, .etyp = etyp, .etypvar = etypvar, .etypzone = etypzone,
        .zoneid = *zoneid, .state = *state, .nent = *nent, .nindex = *nindex};
    const vak::BlockList list{
        .collect = *collect, .verbose = *verbose, .capacity = capacity, .pool_size = pool_size,
        .nblocks = nblocks, .total_len = total_len, .keys = keys, .offsets = offsets, .paths = paths};
    *ierr = vak::search_blocks(list, vak::Family::current, *loc_id, "VAK_SEARCHBLOCKS", wanted);
}

void VAK1_SEARCHBLOCKS(
    const vak_id* loc_id,
    const char* blocktype, const char* series, const char* etyp, const char* etypvar, const char* etypzone,
    const int32_t* zoneid, const int32_t* state, const int32_t* nent, const int32_t* nindex,
    const int32_t* collect, const int32_t* verbose, int32_t* capacity, int64_t* pool_size,
    int32_t* nblocks, int64_t* total_len, int32_t** keys, int64_t** offsets, char** paths, int32_t* ierr)
{
    const vak::SearchArguments wanted{
        .blocktype = blocktype, .series = series, .etyp = etyp, .etypvar = etypvar, .etypzone = etypzone,
        .zoneid = *zoneid, .state = *state, .nent = *nent, .nindex = *nindex};
    const vak::BlockList list{
        .collect = *collect, .verbose = *verbose, .capacity = capacity, .pool_size = pool_size,
        .nblocks = nblocks, .total_len = total_len, .keys = keys, .offsets = offsets, .paths = paths};
    *ierr = vak::search_blocks(list, vak::Family::legacy, *loc_id, "VAK1_SEARCHBLOCKS", wanted);
}
