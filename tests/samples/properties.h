#pragma once

#include <optional>

#include "samples/sample.h"
#include "support/ids.h"
#include "vak_sp.h"

namespace vak::test {

struct PropertyTables : Sample {
    static constexpr int32_t key = 500, everything_mode = 1 + 2 + 4 + 8;
    static constexpr const char* type = "properties";

    std::string etyp = padded("SHELL"), etypprop = padded("LAYER"), etypzone = padded("ZONE");
    int32_t zoneid = 3, nent = 4, nbid = 1, nbint = 2, nbfloat = 3, nbstring = 2, length = 5;
    SampleIndex index;
    std::vector<int32_t> entid{8, 6, 7, 5};
    std::vector<int32_t> idparam{10, 20, 30, 40}, iparam{1, 2, 3, 4, 5, 6, 7, 8};
    std::vector<float> fparam{0.5F, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11.25F};
    std::string cparam = fields({"a0", "b0", "a1", "b1", "a2", "b2", "a3", "b3"}, 5);

    hid_t shared = H5I_INVALID_HID;
    int32_t mode = everything_mode;  // of writing
    int32_t row_mode = 0;
    std::vector<int64_t> rows;
    std::optional<int64_t> claimed_rows;  // when not as many as are listed
    int64_t row_count() const { return claimed_rows.value_or(static_cast<int64_t>(rows.size())); }

    static std::string path() { return "properties"; }  // the caller's choice

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etyp", s.etyp);
        f("etypprop", s.etypprop);
        f("etypzone", s.etypzone);
        f("zoneid", s.zoneid);
        f("nent", s.nent);
        f("nbid", s.nbid);
        f("nbint", s.nbint);
        f("nbfloat", s.nbfloat);
        f("nbstring", s.nbstring);
        f("length", s.length);
        each_index(s.index, f, true);
        f("entid", s.entid);
        f("idparam", s.idparam);
        f("iparam", s.iparam);
        f("fparam", s.fparam);
        f("cparam", s.cparam);
    }

    int32_t write_into(hid_t group) const
    {
        int32_t ierr = untouched;
        const hid_t groups[2] = {group, shared};
        const int64_t count = row_count();
        VAK_WRITE_PROPERTIES(groups, &mode, etyp.data(), etypprop.data(), etypzone.data(), &zoneid, &nent,
                             &nbid, &nbint, &nbfloat, &nbstring, &length, &index.nindex, &index.indexic,
                             index.indexident.data(), index.indexval.data(), entid.data(), idparam.data(),
                             iparam.data(), fparam.data(), cparam.data(), &flags, params, &real_size,
                             &row_mode, &count, rows.data(), &ierr);
        return ierr;
    }

    // Into the group at path(), made when missing.
    int32_t write(hid_t file) const
    {
        const ObjectId group(exists(file, path())
                                 ? H5Gopen2(file, path().c_str(), H5P_DEFAULT)
                                 : H5Gcreate2(file, path().c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                             path());
        return write_into(group);
    }

    int32_t read(hid_t group, int32_t read_mode)
    {
        int32_t ierr = untouched;
        const int64_t count = row_count();
        VAK_READ_PROPERTIES(&group, &read_mode, etyp.data(), etypprop.data(), etypzone.data(), &zoneid, &nent,
                            &nbid, &nbint, &nbfloat, &nbstring, &length, &index.nindex, &index.indexic,
                            out(index.indexident), out(index.indexval), out(entid), out(idparam), out(iparam),
                            out(fparam), out(cparam), &found_flags, found_params, &row_mode, &count,
                            rows.data(), &ierr);
        return ierr;
    }
};

}  // namespace vak::test
