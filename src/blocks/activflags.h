// The fields of activation flags, which blocks of one state and of many have in common.
#pragma once

#include "blocks/fields.h"

namespace vak {

struct ActivFlags {
    Arg<char> etyp;
    Arg<int32_t> nent;
    Index index;
    Arg<int32_t> entid, status;
};

// The attributes, from "etyp" on.
void activ_header(Block&, const ActivFlags&);

}  // namespace vak
