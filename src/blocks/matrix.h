// What the three matrix kinds share: place, index values, value forms, and the parts of "val" that a call
// transfers.
#pragma once

#include "blocks/fields.h"

namespace vak {

// Which part of "val" a call transfers, one count and start per extent (mode 2: number of points,
// coordinates).
struct MatrixPart {
    int32_t mode;
    const int64_t* counts;
    const int64_t* starts;
};

// Reading: what the mode asks for.
struct MatrixMode {
    bool fields, index, whole;
    int32_t part;  // access mode of "val", or no_values
};
constexpr int32_t no_values = -1;

MatrixMode matrix_mode(int32_t mode);

struct MatrixWrite {
    Family family;
    hid_t file;
    const char* etyp;
    const int32_t* entid;
    const char* etypvar;
    Index index;
    int32_t state;
    StorageOptions storage;
    int32_t ivsize;
    MatrixPart part;
};

// The block opened or made; stopped when it cannot be had.
struct OpenedMatrix {
    OpenedGroup opened;
    Block io;
};
OpenedMatrix open_matrix(const BlockKind&, const MatrixWrite&);

// "val" with the extents of the matrix, and a trailing 2 for complex values.
void matrix_values(Block&, Arg<float> val, Shape, const MatrixPart&);

// Fields and index values are written with a new block only: a matrix is completed piece by piece.
template <class Fields>
int32_t write_matrix(const BlockKind& kind, const MatrixWrite& w, Arg<float> val, const Shape& shape,
                     Fields fields)
{
    return exported([&] {
        OpenedMatrix m = open_matrix(kind, w);
        if (m.opened.status < 0) return m.opened.status;
        if (m.io.is_new) {
            enter(m.io, "header");
            identify(m.io);
            fields(m.io);
        }
        enter(m.io, "data");
        matrix_values(m.io, val, shape, w.part);
        return end_writing(m.io, std::move(m.opened.group));
    });
}

struct MatrixRead {
    Family family;
    hid_t group;
    int32_t mode;
    const int64_t* counts;
    const int64_t* starts;
    int32_t* flags;
    int32_t* params;
};

// `header` reads the attributes, `tables` the index values and what else goes with the whole matrix,
// `shape` gives the extents from the caller's counts.
template <class Header, class Tables, class Extents>
int32_t read_matrix(const BlockKind& kind, const MatrixRead& r, Arg<float> val, Header header, Tables tables,
                    Extents shape)
{
    return read_block(kind, r.family, r.group, [&](Block& io) {
        check_pass(io, r.mode, {0, 1, 2, 3, 4});
        const MatrixMode mode = matrix_mode(r.mode);
        if (mode.fields) header(io);
        if (mode.index) tables(io, mode.whole);
        if (mode.part == no_values) return;
        enter(io, "data");
        if (!io.stopped) matrix_values(io, val, shape(), {mode.part, r.counts, r.starts});
        report_storage(io, r.flags, r.params);
    });
}

}  // namespace vak
