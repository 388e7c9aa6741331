// The fields of results on entities, which blocks of one state and of many have in common.
#pragma once

#include "blocks/results.h"

namespace vak {

struct EntityResults {
    Arg<char> etyp;
    Arg<int32_t> nent;
    Arg<char> etypvar;
    Arg<int32_t> ncoo;
    Zone zone;
    Index index;
    ResultTables tables;
    Arg<float> res;
};

// The attributes, from "etyp" on.
void entity_header(Block&, const EntityResults&);

// "entid" and what goes with it.
void entity_tables(Block&, const EntityResults&);

// The extents of one state's "res".
Shape entity_values(const Block&, const EntityResults&);

}  // namespace vak
