// The descriptive blocks.
#include <vak_sp.h>

#include <algorithm>

#include "show/kinds.h"
#include "show/read.h"

namespace vak::show {

void show_header(Reading& reading)
{
    Pass none{0, 0};
    Text version("version", 32);
    Found found;
    read_block(reading, reading.legacy() ? VAK1_READ_FILEHEADER : VAK_READ_FILEHEADER, none, version,
               found.flags, found.params);
}

void show_system(Reading& reading)
{
    Pass pass{1, 2};
    Text title("title"), sys("sys"), solver_name("solver_name"), solver_vers("solver_vers");
    Text cdate("cdate", 8), ctime("ctime", 8), mdate("mdate", 8), mtime("mtime", 8);
    Integer nbunit("nbunit"), ndunit("ndunit");
    Integers ubid("ubid", {nbunit}), udid("udid", {ndunit}), ndbunit("ndbunit", {ndunit});
    Texts ubtyp("ubtyp", {nbunit}), ubnam("ubnam", {nbunit}), udnam("udnam", {ndunit});
    Reals ubshift("ubshift", {nbunit}), ubcon("ubcon", {nbunit}), udscal("udscal", {ndunit});
    const Extent parts([&] { return ndbunit.sum(); });
    Integers udbid("udbid", {parts});
    Reals udbexp("udbexp", {parts});
    Found found;
    read_block(reading, reading.legacy() ? VAK1_READ_SYSTEM : VAK_READ_SYSTEM, pass, pass, title, sys,
               solver_name, solver_vers, cdate, ctime, mdate, mtime, nbunit, ndunit, ubid, ubtyp, ubnam,
               ubshift, ubcon, udid, udnam, udscal, ndbunit, udbid, udbexp, found.flags, found.params);
}

void show_index(Reading& reading)
{
    Pass pass{1, 2};
    Integer nindex("nindex");
    Text etypvar("etypvar");
    Texts etypindex("etypindex", {nindex});
    Units units(nindex);
    Ignored ignored;
    Found found;
    if (!reading.legacy())
        return read_block(reading, VAK_READ_INDEX, pass, ignored, nindex, etypvar, ignored, ignored);
    read_block(reading, VAK1_READ_INDEX, pass, pass, nindex, etypindex, units.mbunit, units.mdunit,
               units.ubid, units.ubexp, units.udid, units.udexp, found.flags, found.params);
}

static void show_legacy_variables(Reading& reading)
{
    Pass pass{1, 2};
    Text etypvar("etypvar");
    Integer idtrans("idtrans"), rank("rank"), ndim("ndim"), ncoo("ncoo");
    Units units(ncoo);
    Texts cname("cname", {ncoo});
    Integers cid("cid", {ncoo}), comp("comp", {ncoo});
    Found found;
    read_block(reading, VAK1_READ_VARIABLES, pass, pass, etypvar, idtrans, rank, ndim, ncoo, units.mbunit,
               units.mdunit, units.ubid, units.ubexp, units.udid, units.udexp, cname, cid, comp, found.flags,
               found.params);
}

// The map of components onto tensor entries: component, then an extent for each rank.
static std::vector<int64_t> map_extents(const Integer& ncoo, const Integer& rank, const Integer& ndim)
{
    std::vector<int64_t> extents(1 + static_cast<size_t>(std::clamp(rank.value, 0, 31)), ndim.value);
    extents[0] = ncoo.value;
    return extents;
}

void show_variable(Reading& reading)
{
    if (reading.legacy()) return show_legacy_variables(reading);
    Pass pass{1, 3};
    Text varkey("varkey"), varclass("varclass"), varnam("varnam"), type("type");
    Integer ncoo("ncoo"), rank("rank"), ndim("ndim"), tensor("tensor"), lenb("lenb"), lend("lend"),
        lvmap("lvmap"), subslen("subslen");
    Integers mbunit("mbunit", {ncoo}), mdunit("mdunit", {ncoo}), ubid("ubid", {lenb}), udid("udid", {lend});
    Reals ubexp("ubexp", {lenb}), udexp("udexp", {lend}),
        vmap("vmap", [&] { return map_extents(ncoo, rank, ndim); });
    vmap.when([&] { return lvmap.value > 0 && rank.value > 0; });
    const auto named = [&] { return subslen.value > 0; };
    Texts subscr("subscr", {1}, subslen);
    Integers subscnt("subscnt", {ncoo}), subsoffs("subsoffs", {ncoo});
    subscr.when(named);
    subscnt.when(named);
    subsoffs.when(named);
    Ignored ignored;
    Found found;
    read_block(reading, VAK_READ_VARIABLE, pass, pass, ignored, varkey, varclass, varnam, ncoo, rank, ndim,
               tensor, type, lenb, lend, lvmap, subslen, mbunit, mdunit, ubid, ubexp, udid, udexp, subscr,
               subscnt, subsoffs, vmap, found.flags, found.params);
}

void show_variablegroup(Reading& reading)
{
    Pass pass{1, 3};
    Text etypvar("etypvar");
    Integer nvar("nvar"), ncoo("ncoo");
    Integers cnt("cnt", {nvar}), offs("offs", {nvar});
    Texts varkey("varkey", {nvar});
    Ignored ignored;
    Found found;
    read_block(reading, VAK_READ_VARIABLEGROUP, pass, pass, ignored, etypvar, nvar, ncoo, cnt, offs, varkey,
               found.flags, found.params);
}

void show_text(Reading& reading)
{
    Text etyptext("etyptext");
    Integer nlines("nlines"), length("length");
    Index index;
    Texts line("line", {nlines}, length);
    Ignored ignored;
    Found found;
    Pass mode{1, 3}, pass{1, 2};
    if (reading.legacy())
        return read_block(reading, VAK1_READ_TEXT, pass, pass, etyptext, nlines, length, line, found.flags,
                          found.params);
    read_block(reading, VAK_READ_TEXT, mode, mode, ignored, nlines, length, index.nindex, index.indexic,
               index.indexident, index.indexval, line, found.flags, found.params);
}

void show_parts(Reading& reading)
{
    Pass pass{1, 3};
    Text etyppart("etyppart");
    Integer npart("npart"), off("off"), length("length");
    Index index;
    Integers pid("pid", {npart}), mid("mid", {npart}), mtyp("mtyp", {npart}), pcol("pcol", {npart});
    Texts title("title", {npart}, length);
    title.when([&] { return length.value > 0; });
    mid.when([&] { return !(off.value & 1); });
    mtyp.when([&] { return !(off.value & 2); });
    pcol.when([&] { return !(off.value & 4); });
    Found found;
    read_block(reading, reading.legacy() ? VAK1_READ_PARTS : VAK_READ_PARTS, pass, pass, etyppart, npart, off,
               length, index.nindex, index.indexic, index.indexident, index.indexval, pid, title, mid, mtyp,
               pcol, found.flags, found.params);
}

}  // namespace vak::show
