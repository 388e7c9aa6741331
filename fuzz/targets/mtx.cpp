// A Matrix Market file is read and stored as each kind of block.
#include "matrix/matrix.h"
#include "problem.h"
#include "support/input.h"

namespace vak::fuzz {

void try_input(Bytes input)
{
    const Folder folder;
    const std::string path = put(folder, "matrix.mtx", input);
    try {
        const matrix::Matrix matrix = matrix::read_market(path);
        if (int64_t{matrix.rows} * matrix.columns > 1 << 20) return;  // dense ones are that large, rightly
        for (const std::string kind : {"sparse", "triangular", "dense"}) try {
                store::File file = store::File::create(folder.file(kind + ".h5"), "model");
                matrix::write_block(matrix, kind, "A", file);
                file.close();
            } catch (const cli::Problem&) {
            }
    } catch (const cli::Problem&) {
    }
}

}  // namespace vak::fuzz
