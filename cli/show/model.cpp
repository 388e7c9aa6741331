// The model blocks.
#include <vak_sp.h>

#include "show/kinds.h"
#include "show/read.h"

namespace vak::show {

void show_attributes(Reading& reading)
{
    Pass mode{1, 11}, pass{1, 2};
    Text etyp("etyp");
    Integer nent("nent"), nuid("nuid"), length("length");
    Index index;
    Integers entid("entid", {nent}), uid("uid", {nent, nuid});
    uid.when([&] { return nuid.value > 0; });
    uid.along("ec", &entid);
    Texts title("title", {nent}, length), legacy_title("title", {nent});
    title.when([&] { return length.value > 0; });
    Found found;
    if (reading.legacy())
        return read_block(reading, VAK1_READ_ATTRIBUTES, pass, pass, etyp, nent, nuid, index.nindex,
                          index.indexident, index.indexval, entid, legacy_title, uid, found.flags,
                          found.params);
    read_block(reading, reading.view.entry.key == 250 ? VAK_READ_IDENTIFIERS : VAK_READ_ATTRIBUTES, mode,
               mode, etyp, nent, nuid, length, index.nindex, index.indexic, index.indexident, index.indexval,
               entid, title, uid, found.flags, found.params);
}

void show_connectivities(Reading& reading)
{
    Pass mode{1, 15}, pass{1, 2};
    Text etyp("etyp"), etypelem("etypelem"), etyppart("etyppart"), etypnode("etypnode");
    Integer nele("nele"), npele("npele"), ndim("ndim"), nbint("nbint"), nbfloat("nbfloat");
    Text etypvar("etypvar", [&] { return nbfloat.value > 0; });
    Index index;
    Integers idele("idele", {nele}), pid("pid", {nele}), ic("ic", {nele, npele}),
        iparam("iparam", {nele, nbint});
    Reals fparam("fparam", {nele, nbfloat});
    iparam.when([&] { return nbint.value > 0; });
    iparam.along("ec", &idele);
    fparam.when([&] { return nbfloat.value > 0; });
    fparam.along("ec", &idele);
    Units units(nbfloat);
    Found found;
    if (reading.legacy())
        return read_block(reading, VAK1_READ_CONNECTIVITIES, pass, pass, etypelem, etyppart, etypnode, nele,
                          npele, ndim, nbint, nbfloat, index.nindex, index.indexident, index.indexval, idele,
                          pid, ic, units.mbunit, units.mdunit, units.ubid, units.ubexp, units.udid,
                          units.udexp, iparam, fparam, found.flags, found.params);
    read_block(reading, VAK_READ_CONNECTIVITIES, mode, mode, etyp, etypelem, etyppart, etypnode, etypvar,
               nele, npele, ndim, nbint, nbfloat, index.nindex, index.indexic, index.indexident,
               index.indexval, idele, pid, ic, iparam, fparam, found.flags, found.params);
}

void show_collector(Reading& reading)
{
    Pass pass{1, 2};
    Integer nenttot("nenttot"), ncoll("ncoll"), ntyp("ntyp");
    Text etypcoll("etypcoll");
    Index index;
    Integers idcoll("idcoll", {ncoll}), nent("nent", {ncoll, ntyp}), entid("entid", {nenttot});
    Texts etyp("etyp", {ntyp});
    Found found;
    if (reading.legacy())
        return read_block(reading, VAK1_READ_COLLECTOR, pass, pass, nenttot, etypcoll, ncoll, ntyp,
                          index.nindex, index.indexident, index.indexval, idcoll, etyp, nent, entid,
                          found.flags, found.params);
    read_block(reading, VAK_READ_COLLECTOR, pass, pass, nenttot, etypcoll, ncoll, ntyp, index.nindex,
               index.indexic, index.indexident, index.indexval, idcoll, etyp, nent, entid, found.flags,
               found.params);
}

void show_properties(Reading& reading)
{
    Pass mode{1, 15};
    Text etyp("etyp"), etypprop("etypprop"), etypzone("etypzone");
    Integer zoneid("zoneid"), nent("nent"), nbid("nbid"), nbint("nbint"), nbfloat("nbfloat"),
        nbstring("nbstring"), length("length");
    Index index;
    Integers entid("entid", {nent}), idparam("idparam", {nent, nbid}), iparam("iparam", {nent, nbint});
    Reals fparam("fparam", {nent, nbfloat});
    Texts cparam("cparam", {nent, nbstring}, length);
    idparam.when([&] { return nbid.value > 0; });
    iparam.when([&] { return nbint.value > 0; });
    iparam.along("ec", &entid);
    fparam.when([&] { return nbfloat.value > 0; });
    fparam.along("ec", &entid);
    cparam.when([&] { return length.value > 0 && nbstring.value > 0; });
    Given<int32_t> whole_rows{0};
    Given<int64_t> row{0};
    Found found;
    read_block(reading, VAK_READ_PROPERTIES, mode, mode, etyp, etypprop, etypzone, zoneid, nent, nbid, nbint,
               nbfloat, nbstring, length, index.nindex, index.indexic, index.indexident, index.indexval,
               entid, idparam, iparam, fparam, cparam, found.flags, found.params, whole_rows, row, row);
}

}  // namespace vak::show
