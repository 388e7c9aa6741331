#include "cli/read_back.h"

#include <gtest/gtest.h>
#include <vak_sp.h>

#include "store/call.h"
#include "store/file.h"

namespace vak::test {

namespace {

std::string text_of(const char* field) { return {field, static_cast<size_t>(VAK_strlen(field, 256))}; }

}  // namespace

ReadBack read_back(const std::string& file_name, const std::string& path)
{
    const store::File file = store::File::open(file_name);
    const store::Group group(file.root(), path);
    char etyp[256], variable[256], zone[256], frame[256];
    int32_t nent = 0, zoneid = 0, fswitch = 0, dmpswitch = 0, nindex = 0, fidglob = 0, iopt = 0, ipar[2];
    ReadBack read;
    const auto pass = [&](int32_t number) {
        VAK_READ_ENTITYRESULTS(group.id(), &number, etyp, &nent, variable, &read.ncoo, zone, &zoneid, frame,
                               &fswitch, &dmpswitch, &nindex, &read.analysis, &read.state, &read.value,
                               read.nodes.data(), &fidglob, nullptr, nullptr, nullptr, read.values.data(),
                               &iopt, ipar, &read.key);
    };
    pass(1);
    read.nodes.resize(static_cast<size_t>(nent));
    read.values.resize(static_cast<size_t>(nent * read.ncoo) * (read.key == 1001 ? 2 : 1));
    pass(2);
    read.etyp = text_of(etyp);
    read.variable = text_of(variable);
    read.frame = text_of(frame);
    EXPECT_EQ(zoneid, -1);
    EXPECT_EQ(dmpswitch, 0);
    return read;
}

bool has_block(const std::string& file_name, const std::string& path)
{
    const store::File file = store::File::open(file_name);
    return store::has_group(file.root(), path);
}

}  // namespace vak::test
