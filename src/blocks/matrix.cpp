#include "blocks/matrix.h"

namespace vak {

MatrixMode matrix_mode(int32_t mode)
{
    switch (mode) {
        case 0: return {true, true, false, no_values};
        case 1: return {true, false, false, no_values};
        case 2: return {true, true, true, whole_dataset};
        case 3: return {false, false, false, hyperslab};
        case 4: return {false, false, false, point_list};
        default: return {false, false, false, no_values};
    }
}

OpenedMatrix open_matrix(const BlockKind& kind, const MatrixWrite& w)
{
    const BlockPath path{.nstate = *w.index.nindex,
                         .states = w.index.indexident.at,
                         .state = w.state,
                         .names = {kind.type, w.etyp, w.etypvar},
                         .index = *w.entid};
    OpenedGroup opened = open_or_create_group(w.file, path_text(w.family, path));
    Block io(kind, w.family, Direction::write, opened.group.get());
    const ValueForm form = value_form(w.ivsize);
    io.is_new = opened.status > 0;
    io.key = form.is_complex ? kind.complex_key : kind.key;
    io.storage = w.storage;
    io.storage.real_size = form.size;
    return {std::move(opened), std::move(io)};
}

void matrix_values(Block& io, Arg<float> val, Shape shape, const MatrixPart& part)
{
    if (io.stopped) return;
    if (io.key == io.kind.complex_key) shape.add(2);
    const auto rank = static_cast<size_t>(shape.rank());
    Transfer transfer = whole();
    if (part.mode == hyperslab) transfer = slab(part.counts, part.starts, rank);
    if (part.mode == point_list) transfer = points(*part.counts, part.starts, rank);
    real_part(io, {.name = "val", .values = val.at, .lossy = true}, shape, std::move(transfer));
}

}  // namespace vak
