// What the result blocks have in common.
#pragma once

#include "blocks/fields.h"

namespace vak {

// What a lower entry writes or reads.
namespace what {
constexpr int32_t attributes = 1;
constexpr int32_t index = 2;
constexpr int32_t tables = 4;
constexpr int32_t values = 8;
constexpr int32_t share = 16;  // writers: the tables stand once in a shared group
}  // namespace what

// The tables that say where the values of a block belong, and how domains are joined.
struct ResultTables {
    Arg<int32_t> ids;  // "entid" or "idele"
    Arg<int32_t> fidglob, fid;
    Arg<char> op;
    Arg<float> weight;
};

// The scalar "fidglob" with fswitch 0, "fid" of the given shape with the others; readers also take
// "fidglob" from an attribute. The caller has checked fswitch.
void frame_fields(Block&, const ResultTables&, int32_t fswitch, Shape fid_shape);

// "operator" and "weight", with dmpswitch 1.
void merge_fields(Block&, const ResultTables&, int32_t dmpswitch, int64_t ncoo, int64_t n);

}  // namespace vak
