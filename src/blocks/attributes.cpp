// The attributes block (key 200) and the identifiers block (key 250): for each entity of one type an
// identifier, a title and further identifiers. The two are one description under two keys; the legacy family
// has only attributes.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind attributes{.key = 200,
                               .type = "attributes",
                               .wrong_key = WrongKeyText::error_lower,
                               .empty_read = EmptyRead::gives_key};
constexpr BlockKind identifiers{.key = 250,
                                .type = "identifiers",
                                .wrong_key = WrongKeyText::error_lower,
                                .empty_read = EmptyRead::gives_key};
constexpr BlockKind legacy_attributes{.key = 200, .type = "attributes"};

struct Attributes {
    Arg<char> etyp;
    Arg<int32_t> nent, nuid;
    Arg<int32_t> length;  // legacy: always 256, and not stored
    Index index;
    Arg<int32_t> entid;
    Arg<char> title;
    Arg<int32_t> uid;
};

constexpr int32_t legacy_length = 256;

void header(Block& io, const Attributes& a)
{
    text(io, "etyp", a.etyp);
    integer(io, "nent", a.nent);
    integer(io, "nuid", a.nuid);
    if (current(io)) integer(io, "length", a.length);
    index_counts(io, a.index);
}

void entities(Block& io, const Attributes& a)
{
    enter(io, "data");
    if (io.stopped) return;
    integers(io, "entid", a.entid, {*a.nent});
    if (*a.length > 0) texts(io, "title", a.title, static_cast<size_t>(*a.length), {*a.nent});
    integers(io, "uid", a.uid, {*a.nent, *a.nuid});
}

int32_t write_attributes(const BlockKind& kind, Family family, hid_t file, int32_t state, const Attributes& a,
                         const StorageOptions& storage)
{
    const BlockPath path = state_path(a.index, state, kind.type, a.etyp.at);
    return write_block(kind, family, file, path, storage, [&](Block& io) {
        header(io, a);
        index_values(io, a.index);
        entities(io, a);
    });
}

int32_t read_attributes(const BlockKind& kind, hid_t group, int32_t mode, const Attributes& a, int32_t* flags,
                        int32_t* params)
{
    return read_block(kind, Family::current, group, [&](Block& io) {
        if (mode & 1) header(io, a);
        if (mode & 2) index_values(io, a.index);
        if (mode & 8) {
            entities(io, a);
            report_storage(io, flags, params);
        }
    });
}

int32_t read_legacy_attributes(hid_t group, int32_t ipass, const Attributes& a, int32_t* flags,
                               int32_t* params)
{
    return read_block(legacy_attributes, Family::legacy, group, [&](Block& io) {
        header(io, a);
        check_pass(io, ipass, {0, 1, 2});
        if (ipass == 2) entities(io, a);
        if (ipass != 1) index_values(io, a.index);
        if (ipass == 2) report_storage(io, flags, params);
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_ATTRIBUTES(
    const vak_id* file, const char* etyp,
    const int32_t* nent, const int32_t* nuid, const int32_t* length,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const char* title, const int32_t* uid,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* real_size, int32_t* ierr)
{
    const Attributes a{
        .etyp = etyp, .nent = nent, .nuid = nuid, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .title = title, .uid = uid};
    *ierr = write_attributes(attributes, Family::current, *file, *state, a, storage_of(flags, params, real_size));
}

void VAK_WRITE_IDENTIFIERS(
    const vak_id* file, const char* etyp,
    const int32_t* nent, const int32_t* nuid, const int32_t* length,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const char* title, const int32_t* uid,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* real_size, int32_t* ierr)
{
    const Attributes a{
        .etyp = etyp, .nent = nent, .nuid = nuid, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .title = title, .uid = uid};
    *ierr = write_attributes(identifiers, Family::current, *file, *state, a, storage_of(flags, params, real_size));
}

void VAK1_WRITE_ATTRIBUTES(
    const vak_id* file, const char* etyp,
    const int32_t* nent, const int32_t* nuid,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const char* title, const int32_t* uid,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* real_size, int32_t* ierr)
{
    const Attributes a{
        .etyp = etyp, .nent = nent, .nuid = nuid, .length = &legacy_length,
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .entid = entid, .title = title, .uid = uid};
    *ierr = write_attributes(legacy_attributes, Family::legacy, *file, *state, a, storage_of(flags, params, real_size));
}

void VAK_READ_ATTRIBUTES(
    const vak_id* group, const int32_t* mode,
    char* etyp, int32_t* nent, int32_t* nuid, int32_t* length,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* entid, char* title, int32_t* uid,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Attributes a{
        .etyp = etyp, .nent = nent, .nuid = nuid, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .title = title, .uid = uid};
    *ierr = read_attributes(attributes, *group, *mode, a, flags, params);
}

void VAK_READ_IDENTIFIERS(
    const vak_id* group, const int32_t* mode,
    char* etyp, int32_t* nent, int32_t* nuid, int32_t* length,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* entid, char* title, int32_t* uid,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Attributes a{
        .etyp = etyp, .nent = nent, .nuid = nuid, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .title = title, .uid = uid};
    *ierr = read_attributes(identifiers, *group, *mode, a, flags, params);
}

void VAK1_READ_ATTRIBUTES(
    const vak_id* group, const int32_t* ipass,
    char* etyp, int32_t* nent, int32_t* nuid,
    int32_t* nindex, int32_t* indexident, float* indexval,
    int32_t* entid, char* title, int32_t* uid,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Attributes a{
        .etyp = etyp, .nent = nent, .nuid = nuid, .length = &legacy_length,
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .entid = entid, .title = title, .uid = uid};
    *ierr = read_legacy_attributes(*group, *ipass, a, flags, params);
}
