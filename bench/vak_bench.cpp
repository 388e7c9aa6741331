// The library beside plain HDF5 calls that make and read the identical layout, interleaved in one run. Prints
// what Google Benchmark prints, and a table in Markdown.
//
// vak_bench [--benchmark_filter=REGEX] ...     in the temporary folder (TMPDIR), which needs 1 GB
#include "cases.h"
#include "duel.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    bench::add_entity_results();
    bench::add_many_blocks();
    bench::add_model();
    bench::add_series();
    bench::add_scale_offset();
    bench::add_matrices();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    bench::print_table();
    bench::remove_files();
    return 0;
}
