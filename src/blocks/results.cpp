#include "blocks/results.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace vak {

void zone_fields(Block& io, const Zone& z)
{
    text(io, "etypzone", z.etypzone);
    integer(io, "zoneid", z.zoneid);
    text(io, "etypframe", z.etypframe);
    integer(io, "fswitch", z.fswitch);
    integer(io, "dmpswitch", z.dmpswitch);
}

static void read_global_frame(Block& io, Arg<int32_t> fidglob)
{
    if (io.stopped) return;
    if (H5Aexists(current_group(io), "fidglob") > 0)
        integer(io, "fidglob", fidglob);
    else if (H5Lexists(current_group(io), "fidglob", H5P_DEFAULT) > 0)
        integers(io, "fidglob", fidglob, {});
}

void frame_fields(Block& io, const ResultTables& t, const Zone& z, int32_t last_fswitch, Shape fid_shape)
{
    if (io.stopped) return;
    const int32_t fswitch = *z.fswitch;
    if (fswitch < 0 || fswitch > last_fswitch) return stop(io, -123);
    if (fswitch != 0)
        integers(io, "fid", t.fid, fid_shape);
    else if (reading(io))
        read_global_frame(io, t.fidglob);
    else
        integers(io, "fidglob", t.fidglob, {});
}

void merge_fields(Block& io, const ResultTables& t, const Zone& z, int64_t ncoo, int64_t n)
{
    if (io.stopped || *z.dmpswitch != 1) return;
    texts(io, "operator", t.op, 256, {ncoo});
    reals(io, "weight", t.weight, {n});
}

void choose_variant(Block& io, int32_t ivsize)
{
    const ValueForm form = value_form(ivsize);
    io.key = form.is_complex ? io.kind.complex_key : io.kind.key;
    io.storage.real_size = form.size;
}

int32_t parts_of_pass(Block& io, int32_t ipass)
{
    switch (ipass) {
        case 0: return what::attributes | what::index;
        case 1: return what::attributes;
        case 2: return what::everything;
        default:
            std::fprintf(stderr, "VAK INTERNAL ERROR reading \"%s\" block - ipass = %d\n", io.kind.type,
                         ipass);
            stop(io, -3);
            return 0;
    }
}

int32_t refuse_group(const BlockKind& kind, hid_t group)
{
    std::fprintf(stderr, "VAK ERROR writing block %s\n", kind.type);
    return static_cast<int32_t>(std::max<hid_t>(group, std::numeric_limits<int32_t>::min()));
}

}  // namespace vak
