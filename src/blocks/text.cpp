// The text block (key 40): a named text of lines of fixed length.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 40, .type = "text"};

struct Text {
    Arg<char> name;  // in the path; legacy: stored as "etyptext" as well
    Arg<int32_t> nlines, length;
    Index index;  // current family
    Arg<char> line;
};

void header(Block& io, const Text& t)
{
    if (legacy(io)) text(io, "etyptext", t.name);
    integer(io, "nlines", t.nlines);
    integer(io, "length", t.length);
    if (current(io)) index_counts(io, t.index);
}

void lines(Block& io, const Text& t)
{
    enter(io, "data");
    if (io.stopped || *t.length <= 0) return;
    texts(io, "line", t.line, static_cast<size_t>(*t.length), {*t.nlines});
}

int32_t write_text(hid_t file, int32_t state, const Text& t, const StorageOptions& storage)
{
    const BlockPath path = state_path(t.index, state, kind.type, t.name.at);
    return write_block(kind, Family::current, file, path, storage, [&](Block& io) {
        header(io, t);
        index_values(io, t.index);
        lines(io, t);
    });
}

int32_t write_legacy_text(hid_t file, const Text& t, const StorageOptions& storage)
{
    return write_block(kind, Family::legacy, file, {.names = {kind.type, t.name.at}}, storage,
                       [&](Block& io) {
                           header(io, t);
                           lines(io, t);
                       });
}

int32_t read_text(hid_t group, int32_t mode, const Text& t, int32_t* flags, int32_t* params)
{
    return read_block(kind, Family::current, group, [&](Block& io) {
        if (mode & 1) header(io, t);
        if (mode & 2) {
            index_values(io, t.index);
            lines(io, t);
            report_storage(io, flags, params);
        }
    });
}

int32_t read_legacy_text(hid_t group, int32_t ipass, const Text& t, int32_t* flags, int32_t* params)
{
    return read_block(kind, Family::legacy, group, [&](Block& io) {
        header(io, t);
        check_pass(io, ipass, {1, 2});
        if (ipass == 2) {
            lines(io, t);
            report_storage(io, flags, params);
        }
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_TEXT(
    const vak_id* file, const char* name,
    const int32_t* nlines, const int32_t* length,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const char* line,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* float_size, int32_t* ierr)
{
    const Text t{
        .name = name, .nlines = nlines, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .line = line};
    *ierr = write_text(*file, *state, t, storage_of(flags, params, float_size));
}

void VAK_READ_TEXT(
    const vak_id* group, const int32_t* mode, const void*,
    int32_t* nlines, int32_t* length,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    char* line,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Text t{
        .name = {}, .nlines = nlines, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .line = line};
    *ierr = read_text(*group, *mode, t, flags, params);
}

void VAK1_WRITE_TEXT(
    const vak_id* file, const char* etyptext,
    const int32_t* nlines, const int32_t* length,
    const char* line,
    const int32_t* flags, const int32_t* params, int32_t* ierr)
{
    const Text t{.name = etyptext, .nlines = nlines, .length = length, .index = {}, .line = line};
    *ierr = write_legacy_text(*file, t, storage_of(flags, params));
}

void VAK1_READ_TEXT(
    const vak_id* group, const int32_t* ipass,
    char* etyptext, int32_t* nlines, int32_t* length,
    char* line,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Text t{.name = etyptext, .nlines = nlines, .length = length, .index = {}, .line = line};
    *ierr = read_legacy_text(*group, *ipass, t, flags, params);
}
