#include "blocks/results.h"

namespace vak {

static void read_global_frame(Block& io, Arg<int32_t> fidglob)
{
    if (io.stopped) return;
    if (H5Aexists(current_group(io), "fidglob") > 0)
        integer(io, "fidglob", fidglob);
    else if (H5Lexists(current_group(io), "fidglob", H5P_DEFAULT) > 0)
        integers(io, "fidglob", fidglob, {});
}

void frame_fields(Block& io, const ResultTables& t, int32_t fswitch, Shape fid_shape)
{
    if (fswitch != 0)
        integers(io, "fid", t.fid, fid_shape);
    else if (reading(io))
        read_global_frame(io, t.fidglob);
    else
        integers(io, "fidglob", t.fidglob, {});
}

void merge_fields(Block& io, const ResultTables& t, int32_t dmpswitch, int64_t ncoo, int64_t n)
{
    if (io.stopped || dmpswitch != 1) return;
    texts(io, "operator", t.op, 256, {ncoo});
    reals(io, "weight", t.weight, {n});
}

}  // namespace vak
