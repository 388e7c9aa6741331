// A solver's result file is imported, as states and as a series.
#include "import/results.h"
#include "problem.h"
#include "support/input.h"

namespace vak::fuzz {

void try_input(Bytes input)
{
    const Folder folder;
    const std::string path = put(folder, "run.frd", input);
    for (const std::string series : {"", "SERIES"}) try {
            import::import_results(path, "run", series, folder.file("run.h5"));
        } catch (const cli::Problem&) {
        }
}

}  // namespace vak::fuzz
