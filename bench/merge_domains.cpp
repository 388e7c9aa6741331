// What merging costs: the files of a distributed run, merged by the library and, in turn, the same bytes read
// and written by plain HDF5 calls. Prints a table in Markdown; takes less than a minute.
//
// bench_merge_domains [rounds]     in the temporary folder (TMPDIR), which needs 3 GB
#include "domain_files.h"
#include "duel.h"
#include "ours.h"
#include "plain.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

using bench::Cube;
using bench::must;

struct Run {
    Cube cube;
    std::string name;
    std::vector<std::string> files;
    std::string target;
    long peak = 0;  // MB of the process while it merged

    explicit Run(const Cube& c) : cube(c)
    {
        char text[128];
        std::snprintf(text, sizeof text, "Merge %d domains of %lld nodes: %.0f MB", cube.domains(),
                      static_cast<long long>(cube.nodes_of_domain()), cube.megabytes());
        name = text;
    }
};

void merge(const Run& run)
{
    std::vector<std::unique_ptr<bench::File>> files;
    std::vector<vak_id> ids;
    for (const std::string& name : run.files) {
        files.push_back(std::make_unique<bench::File>(name, bench::read_only));
        ids.push_back(*files.back()->id());
    }
    const bench::File target(run.target, bench::create);
    const auto n = static_cast<int32_t>(ids.size());
    const int32_t zero = 0, no_numbers = 4, four = 4, params[2] = {0, 0};
    int32_t ierr = 0;
    VAK_MERGE_DMP(ids.data(), target.id(), &n, &zero, params, &zero, nullptr, nullptr, &no_numbers, &four,
                  &ierr);
    must(ierr, "merging");
}

// The same datasets, one after the other, with nothing asked that is known.
void read_dataset(hid_t group, const char* name, hid_t type, void* values)
{
    const hid_t dataset = H5Dopen2(group, name, H5P_DEFAULT);
    must(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "reading");
    H5Dclose(dataset);
}

void write_dataset(hid_t group, const char* name, hid_t type, const std::vector<hsize_t>& dims,
                   const void* values)
{
    const hid_t space = H5Screate_simple(static_cast<int>(dims.size()), dims.data(), nullptr);
    const hid_t dataset = H5Dcreate2(group, name, type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    must(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "writing");
    H5Dclose(dataset);
    H5Sclose(space);
}

struct Arrays {
    std::vector<int32_t> ids;
    std::vector<float> res;

    explicit Arrays(size_t n) : ids(n), res(n * bench::components) {}
};

void read_block(hid_t file, const std::string& path, Arrays& values, size_t at)
{
    const hid_t group = H5Gopen2(file, path.c_str(), H5P_DEFAULT);
    read_dataset(group, "entid", H5T_NATIVE_INT, &values.ids[at]);
    read_dataset(group, "res", H5T_NATIVE_FLOAT, &values.res[at * bench::components]);
    H5Gclose(group);
}

void write_block(hid_t file, hid_t with_parents, const std::string& path, const Arrays& values, hsize_t n)
{
    const hid_t group = H5Gcreate2(file, path.c_str(), with_parents, H5P_DEFAULT, H5P_DEFAULT);
    write_dataset(group, "entid", H5T_NATIVE_INT, {n}, values.ids.data());
    write_dataset(group, "res", H5T_NATIVE_FLOAT, {n, bench::components}, values.res.data());
    H5Gclose(group);
}

void copy_plainly(const Run& run)
{
    std::vector<hid_t> files;
    for (const std::string& name : run.files) files.push_back(plain::open_file(name));
    const hid_t target = plain::create_file(run.target);
    const hid_t with_parents = H5Pcreate(H5P_LINK_CREATE);
    H5Pset_create_intermediate_group(with_parents, 1);
    const auto domain = static_cast<size_t>(run.cube.nodes_of_domain());
    Arrays values(static_cast<size_t>(run.cube.nodes_of_all()));
    for (int32_t state = 1; state <= bench::states; ++state)
        for (int32_t v = 0; v < bench::variables; ++v) {
            const std::string path = bench::block_path(v, state);
            for (size_t i = 0; i < files.size(); ++i) read_block(files[i], path, values, i * domain);
            write_block(target, with_parents, path, values, static_cast<hsize_t>(run.cube.nodes()));
        }
    H5Pclose(with_parents);
    plain::close_file(target);
    for (const hid_t file : files) plain::close_file(file);
}

long memory_in_use(const char* what)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(what)) return std::atol(line.c_str() + line.find(':') + 1) / 1024;
    return 0;
}

void measure_peak(Run& run)
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";  // the highest use so far is forgotten
    merge(run);
    run.peak = memory_in_use("VmHWM");
}

// Every value in its place.
void check_merged(const Run& run)
{
    const hid_t file = plain::open_file(run.target);
    const auto n = static_cast<size_t>(run.cube.nodes());
    Arrays found(n);
    for (int32_t v = 0; v < bench::variables; ++v) {
        read_block(file, bench::block_path(v, bench::states), found, 0);
        for (size_t i = 0; i < n; ++i) {
            const float value = bench::value_of(found.ids[i], v, bench::states);
            const float* const at = &found.res[i * bench::components];
            const bool is_right =
                found.ids[i] == static_cast<int32_t>(i) + 1 &&
                std::all_of(at, at + bench::components, [&](float x) { return x == value; });
            must(is_right ? 0 : -1, "checking a merged value");
        }
    }
    plain::close_file(file);
}

bench::Contest contest(Run& run)
{
    for (int32_t d = 0; d < run.cube.domains(); ++d) {
        run.files.push_back(bench::file_name("domain" + std::to_string(d) + ".h5"));
        bench::write_domain(run.cube, d, run.files.back());
    }
    run.target = bench::file_name("target.h5");
    measure_peak(run);
    return {.ours = [&run] { merge(run); },
            .plain = [&run] { copy_plainly(run); },
            .before = [&run] { std::remove(run.target.c_str()); },
            .check =
                [&run] {
                    merge(run);
                    check_merged(run);
                    bench::remove_files();
                },
            .remark = [&run] { return ", at most " + std::to_string(run.peak) + " MB of memory"; }};
}

}  // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 5;
    std::deque<Run> runs;
    for (const Cube& cube : {Cube{{2, 2, 2}, 63}, Cube{{2, 2, 2}, 31}, Cube{{4, 2, 2}, 31},
                             Cube{{4, 4, 2}, 31}, Cube{{4, 4, 4}, 31}}) {
        Run& run = runs.emplace_back(cube);
        bench::add_duel({run.name.c_str(), 1.5, rounds}, [&run] { return contest(run); });
    }
    int none = 1;
    benchmark::Initialize(&none, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    bench::print_table();
    bench::remove_files();
}
