// The properties block (key 500, current family): tables of parameters of the entities of one type, written
// and read whole or by rows. Blocks of the same entities may share one list of identifiers.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 500,
                         .type = "properties",
                         .wrong_key = WrongKeyText::error_lower,
                         .empty_read = EmptyRead::gives_key};

// Which rows of the tables are meant.
struct Rows {
    int32_t mode;  // all, a run, a list: the access modes of datasets
    int64_t count;
    const int64_t* at;
};

struct EntityProperties {
    Arg<char> etyp, etypprop, etypzone;
    Arg<int32_t> zoneid, nent, nbid, nbint, nbfloat, nbstring, length;
    Index index;
    Arg<int32_t> entid, idparam, iparam;
    Arg<float> fparam;
    Arg<char> cparam;
    Rows rows;
};

void header(Block& io, const EntityProperties& p)
{
    text(io, "etyp", p.etyp);
    text(io, "etypprop", p.etypprop);
    text(io, "etypzone", p.etypzone);
    integer(io, "zoneid", p.zoneid);
    integer(io, "nent", p.nent);
    integer(io, "nbid", p.nbid);
    integer(io, "nbint", p.nbint);
    integer(io, "nbfloat", p.nbfloat);
    integer(io, "nbstring", p.nbstring);
    integer(io, "length", p.length);
    index_counts(io, p.index);
}

void entities(Block& io, const EntityProperties& p) { integers(io, "entid", p.entid, {*p.nent}); }

bool has(hid_t group, const char* name) { return H5Lexists(group, name, H5P_DEFAULT) > 0; }

// The identifiers stand once in the shared group; the block has a second hard link to them.
void shared_entities(Block& io, const EntityProperties& p, hid_t shared)
{
    if (io.stopped) return;
    if (shared < 0) return fail_writing(io, shared);
    if (!has(shared, "entid")) {
        Block there(kind, io.family, Direction::write, shared);
        there.storage = io.storage;
        entities(there, p);
        if (there.stopped) return stop(io, there.status);
    }
    if (!has(shared, "entid") || has(io.group, "entid")) return;
    if (H5Lcreate_hard(shared, "entid", io.group, "entid", H5P_DEFAULT, H5P_DEFAULT) < 0)
        fail_writing(io, -3);
}

// A list of rows is every element of each of them.
Transfer listed_rows(const Rows& rows, int64_t columns)
{
    constexpr int64_t most_points =
        std::numeric_limits<ptrdiff_t>::max() / static_cast<int64_t>(2 * sizeof(hsize_t));
    if (rows.count > most_points / columns) throw std::bad_alloc();
    const auto points = static_cast<size_t>(rows.count * columns);
    Transfer part{point_list, {points}, {}};
    part.start.reserve(2 * points);
    for (int64_t i = 0; i < rows.count; ++i)
        for (int64_t column = 0; column < columns; ++column)
            part.start.insert(part.start.end(),
                              {static_cast<hsize_t>(rows.at[i]), static_cast<hsize_t>(column)});
    return part;
}

Transfer part_of(const Rows& rows, int64_t columns)
{
    if (rows.mode == whole_dataset) return whole();
    if (rows.mode == point_list && rows.count > 0) return listed_rows(rows, columns);
    const int64_t count[]{rows.count, columns};
    const int64_t start[]{rows.count > 0 ? rows.at[0] : 0, 0};
    return slab(count, start, 2);
}

// The row mode counts only where there is a table.
bool has_table(Block& io, const EntityProperties& p, int32_t columns)
{
    if (io.stopped || columns < 1) return false;
    if (!known_mode(p.rows.mode)) refuse_mode(io);
    return !io.stopped;
}

void tables(Block& io, const EntityProperties& p)
{
    if (has_table(io, p, *p.nbid))
        integer_part(io, "idparam", p.idparam, {*p.nent, *p.nbid}, part_of(p.rows, *p.nbid));
    if (has_table(io, p, *p.nbint))
        integer_part(io, "iparam", p.iparam, {*p.nent, *p.nbint}, part_of(p.rows, *p.nbint));
    if (has_table(io, p, *p.nbfloat))
        real_part(io, {.name = "fparam", .values = p.fparam.at}, {*p.nent, *p.nbfloat},
                  part_of(p.rows, *p.nbfloat));
    if (*p.length < 1 || !has_table(io, p, *p.nbstring)) return;
    text_part(io, "cparam", p.cparam, static_cast<size_t>(*p.length), {*p.nent, *p.nbstring},
              part_of(p.rows, *p.nbstring));
}

int32_t write_properties(const hid_t* groups, int32_t mode, const EntityProperties& p,
                         const StorageOptions& storage)
{
    return exported([&] {
        Block io(kind, Family::current, Direction::write, groups[0]);
        io.storage = storage;
        io.key = kind.key;
        if (io.group < 0) fail_writing(io, io.group);
        if (mode & 1) {
            identify(io);
            header(io, p);
        }
        if (mode & 2) index_values(io, p.index);
        if ((mode & 4) && (mode & 16)) shared_entities(io, p, groups[1]);
        if ((mode & 4) && !(mode & 16)) entities(io, p);
        if (mode & 8) tables(io, p);
        return io.status;
    });
}

int32_t read_properties(hid_t group, int32_t mode, const EntityProperties& p, int32_t* flags, int32_t* params)
{
    return read_block(kind, Family::current, group, [&](Block& io) {
        if (mode & 1) header(io, p);
        if (mode & 2) index_values(io, p.index);
        if (mode & 4) entities(io, p);
        if (mode & 8) {
            tables(io, p);
            report_storage(io, flags, params);
        }
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_PROPERTIES(
    const vak_id* groups, const int32_t* mode,
    const char* etyp, const char* etypprop, const char* etypzone, const int32_t* zoneid,
    const int32_t* nent, const int32_t* nbid, const int32_t* nbint, const int32_t* nbfloat, const int32_t* nbstring,
    const int32_t* length,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* idparam, const int32_t* iparam, const float* fparam, const char* cparam,
    const int32_t* flags, const int32_t* params, const int32_t* real_size,
    const int32_t* row_mode, const int64_t* row_count, const int64_t* row_list, int32_t* ierr)
{
    const EntityProperties p{
        .etyp = etyp, .etypprop = etypprop, .etypzone = etypzone, .zoneid = zoneid,
        .nent = nent, .nbid = nbid, .nbint = nbint, .nbfloat = nbfloat, .nbstring = nbstring, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .idparam = idparam, .iparam = iparam, .fparam = fparam, .cparam = cparam,
        .rows = {.mode = *row_mode, .count = *row_count, .at = row_list}};
    *ierr = write_properties(groups, *mode, p, storage_of(flags, params, real_size));
}

void VAK_READ_PROPERTIES(
    const vak_id* group, const int32_t* mode,
    char* etyp, char* etypprop, char* etypzone, int32_t* zoneid,
    int32_t* nent, int32_t* nbid, int32_t* nbint, int32_t* nbfloat, int32_t* nbstring, int32_t* length,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* idparam, int32_t* iparam, float* fparam, char* cparam,
    int32_t* flags, int32_t* params,
    const int32_t* row_mode, const int64_t* row_count, const int64_t* row_list, int32_t* ierr)
{
    const EntityProperties p{
        .etyp = etyp, .etypprop = etypprop, .etypzone = etypzone, .zoneid = zoneid,
        .nent = nent, .nbid = nbid, .nbint = nbint, .nbfloat = nbfloat, .nbstring = nbstring, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .idparam = idparam, .iparam = iparam, .fparam = fparam, .cparam = cparam,
        .rows = {.mode = *row_mode, .count = *row_count, .at = row_list}};
    *ierr = read_properties(*group, *mode, p, flags, params);
}
