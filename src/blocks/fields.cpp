#include "blocks/fields.h"

namespace vak {

void index_counts(Block& io, const Index& x)
{
    integer(io, "nindex", x.nindex);
    if (x.indexic.at != nullptr) integer(io, "indexic", x.indexic);
}

void index_values(Block& io, const Index& x, const char* section)
{
    if (io.stopped || (reading(io) && *x.nindex <= 0)) return;
    enter(io, section);
    integers(io, "indexident", x.indexident, {*x.nindex});
    reals(io, "indexval", x.indexval, {*x.nindex});
}

BlockPath state_path(const Index& x, int32_t state, const char* type, const char* name)
{
    return {.nstate = *x.nindex, .states = x.indexident.at, .state = state, .names = {type, name}};
}

void unit_tables(Block& io, const Units& u, int64_t n)
{
    const Counts bases = counts(io, "mbunit", u.mbunit, {n});
    const Counts derived = counts(io, "mdunit", u.mdunit, {n});
    unit_lists(io, u, total(io, bases), total(io, derived));
}

void unit_lists(Block& io, const Units& u, int64_t nbase, int64_t nderived)
{
    integers(io, "ubid", u.ubid, {nbase});
    reals(io, "ubexp", u.ubexp, {nbase});
    integers(io, "udid", u.udid, {nderived});
    reals(io, "udexp", u.udexp, {nderived});
}

bool fits_count(int64_t total) { return total <= std::numeric_limits<int32_t>::max(); }

int32_t refuse_total(const BlockKind& kind) { return writing_failed(kind.key, -3); }

ValueForm value_form(int32_t ivsize)
{
    switch (ivsize) {
        case 8: return {8, false};
        case 16: return {4, true};
        case 32: return {8, true};
        default: return {4, false};
    }
}

}  // namespace vak
