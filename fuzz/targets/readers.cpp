// Every block of a damaged file is read by the reader of its key: first the counts, then the arrays, each of
// exactly the size that the counts tell.
#include <hdf5.h>

#include <string>

#include "problem.h"
#include "show/view.h"
#include "store/file.h"
#include "support/input.h"

namespace vak::fuzz {

static void read(const store::File& file, store::Layout layout)
{
    const show::Request request{.layout = layout, .values = true, .most_values = 1 << 20};
    for (const store::BlockEntry& entry : store::catalogue(file, layout).blocks) try {
            show::view(file, entry, request);
        } catch (const cli::Problem&) {
        }
}

void try_input(Bytes input)
{
    take_tail<uint64_t>(input);
    const Folder folder;
    const std::string path = put(folder, "file.h5", input);
    try {
        const store::File file = store::File::open(path);
        for (const store::Layout layout : {store::Layout::current, store::Layout::legacy}) read(file, layout);
    } catch (const cli::Problem&) {
        close_everything();
    }
}

}  // namespace vak::fuzz
