// The fields of results inside elements, which blocks of one state and of many have in common.
#pragma once

#include "blocks/results.h"

namespace vak {

struct ElementResults {
    Arg<char> etypelem;
    Arg<int32_t> nele;
    Arg<char> etypvar;
    Arg<int32_t> ncoo, numl, ndim;
    Zone zone;
    Index index;
    ResultTables tables;
    Arg<float> eloc, res;
};

// The attributes, from "etypelem" on.
void element_header(Block&, const ElementResults&);

// "idele" and what goes with it, and the locations inside an element.
void element_tables(Block&, const ElementResults&);

// The extents of one state's "res".
Shape element_values(const Block&, const ElementResults&);

}  // namespace vak
