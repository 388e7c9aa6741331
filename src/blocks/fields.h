// Groups of fields that many block kinds have in common.
#pragma once

#include "blocks/block.h"

namespace vak {

// The index values of a state. Legacy blocks have no "indexic", except matrices.
struct Index {
    Arg<int32_t> nindex, indexic, indexident;
    Arg<float> indexval;
};

void index_counts(Block&, const Index&);

// Legacy: in the subgroup named. Always written, also with length 0; read when there are any.
void index_values(Block&, const Index&, const char* section = "index");

// The place of a block that belongs to a state, or to none.
BlockPath state_path(const Index&, int32_t state, const char* type, const char* name);

// Units as powers of base and derived units, one after the other for `n` columns.
struct Units {
    Arg<int32_t> mbunit, mdunit;
    Arg<int32_t> ubid;
    Arg<float> ubexp;
    Arg<int32_t> udid;
    Arg<float> udexp;
};

void unit_tables(Block&, const Units&, int64_t n);
void unit_lists(Block&, const Units&, int64_t nbase, int64_t nderived);  // without the counts

// A total that is stored as a 32-bit count and does not fit: refused before anything is written.
bool fits_count(int64_t total);
int32_t refuse_total(const BlockKind&);

// What a value-size code stands for: 4 and 8 real values, 16 and 32 complex ones with parts of a quarter
// of it. Other codes silently mean 4; this is required as it stands.
struct ValueForm {
    size_t size;
    bool is_complex;
};

ValueForm value_form(int32_t ivsize);

}  // namespace vak
