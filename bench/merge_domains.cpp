// What merging costs: the files of a cube cut into smaller cubes, merged by the library and, in turn, the
// same bytes read and written by plain HDF5 calls. Prints a table in Markdown.
//
// bench_merge_domains [rounds]
#include <hdf5.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vak_sp.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int32_t components = 3, variables = 3, states = 10;

// `cut` domains along each edge, of `edge` nodes along each of theirs; neighbours share the nodes of a face.
struct Task {
    int32_t cut, edge;

    int32_t domains() const { return cut * cut * cut; }
    int32_t nodes_per_edge() const { return cut * (edge - 1) + 1; }
    int64_t nodes() const { return int64_t{1} * nodes_per_edge() * nodes_per_edge() * nodes_per_edge(); }
    int64_t nodes_of_all() const { return int64_t{domains()} * edge * edge * edge; }
    // Identifiers and values, read once and written once.
    double megabytes() const
    {
        return double(nodes() + nodes_of_all()) * variables * states * (components + 1) * 4 / 1e6;
    }
};

std::string field(std::string name) { return name.append(256 - name.size(), ' '); }

void must(int64_t status, const char* what)
{
    if (status >= 0) return;
    std::fprintf(stderr, "merge_domains: %s failed with %lld\n", what, static_cast<long long>(status));
    std::exit(1);
}

double processor_seconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// Of the clock on the wall, and of the processor, which holds on a machine that others use as well.
struct Cost {
    std::vector<double> wall, processor;

    void add(const std::function<void()>& work)
    {
        const auto begin = std::chrono::steady_clock::now();
        const double processor_begin = processor_seconds();
        work();
        processor.push_back(processor_seconds() - processor_begin);
        wall.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
};

std::vector<int32_t> nodes_of(const Task& task, int32_t domain)
{
    const int32_t n = task.nodes_per_edge(), step = task.edge - 1;
    const int32_t x0 = domain % task.cut * step, y0 = domain / task.cut % task.cut * step,
                  z0 = domain / task.cut / task.cut * step;
    std::vector<int32_t> ids;
    for (int32_t z = z0; z <= z0 + step; ++z)
        for (int32_t y = y0; y <= y0 + step; ++y)
            for (int32_t x = x0; x <= x0 + step; ++x) ids.push_back(1 + x + n * (y + n * z));
    return ids;
}

vak_id open_file(const std::string& name, int32_t mode)
{
    const auto length = static_cast<int32_t>(name.size());
    const int32_t zero = 0, three = 3;
    vak_id group = -1;
    int32_t ierr = 0;
    VAK_OPEN(name.data(), &length, "run", &three, "", &zero, &group, &zero, &mode, &ierr);
    must(ierr, "opening");
    return group;
}

void close_file(vak_id group)
{
    int32_t ierr = 0;
    VAK_CLOSE(&group, &ierr);
    must(ierr, "closing");
}

std::string variable(int32_t v) { return "VARIABLE" + std::to_string(v); }

void write_state(vak_id file, const std::vector<int32_t>& ids, int32_t v, int32_t state,
                 const std::vector<float>& res)
{
    const std::string etyp = field("NODE"), etypvar = field(variable(v)), blank = field("");
    const auto nent = static_cast<int32_t>(ids.size());
    const int32_t none = -1, zero = 0, one = 1, four = 4, params[2] = {0, 0};
    const auto time = static_cast<float>(state);
    int32_t ierr = 0;
    VAK_WRITE_ENTITYRESULTS(&file, etyp.data(), &nent, etypvar.data(), &components, blank.data(), &none,
                            blank.data(), &zero, &zero, &one, &one, &state, &time, ids.data(), &zero, nullptr,
                            nullptr, nullptr, res.data(), &none, &state, &zero, params, &four, &ierr);
    must(ierr, "writing a state");
}

void write_domain(const Task& task, int32_t domain, const std::string& name)
{
    const std::vector<int32_t> ids = nodes_of(task, domain);
    std::vector<float> res(ids.size() * components);
    const vak_id file = open_file(name, 0);
    for (int32_t state = 1; state <= states; ++state)
        for (int32_t v = 0; v < variables; ++v) {
            for (size_t i = 0; i < res.size(); ++i)
                res[i] =
                    static_cast<float>(ids[i / components] % 1000 + state) * 0.001F + static_cast<float>(v);
            write_state(file, ids, v, state, res);
        }
    close_file(file);
}

void merge(const std::vector<std::string>& names, const std::string& target_name)
{
    std::vector<vak_id> files;
    for (const std::string& name : names) files.push_back(open_file(name, 2));
    const vak_id target = open_file(target_name, 0);
    const auto n = static_cast<int32_t>(files.size());
    const int32_t zero = 0, no_numbers = 4, four = 4, params[2] = {0, 0};
    int32_t ierr = 0;
    VAK_MERGE_DMP(files.data(), &target, &n, &zero, params, &zero, nullptr, nullptr, &no_numbers, &four,
                  &ierr);
    must(ierr, "merging");
    close_file(target);
    for (const vak_id file : files) close_file(file);
}

// The same datasets, one after the other, by plain HDF5.
void read_dataset(hid_t group, const char* name, hid_t type, void* values)
{
    const hid_t dataset = H5Dopen2(group, name, H5P_DEFAULT);
    must(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "reading");
    H5Dclose(dataset);
}

void write_dataset(hid_t group, const char* name, hid_t type, int rank, const hsize_t* dims,
                   const void* values)
{
    const hid_t space = H5Screate_simple(rank, dims, nullptr);
    const hid_t dataset = H5Dcreate2(group, name, type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    must(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "writing");
    H5Dclose(dataset);
    H5Sclose(space);
}

void copy_plainly(const Task& task, const std::vector<std::string>& names, const std::string& target_name)
{
    std::vector<hid_t> files;
    for (const std::string& name : names) files.push_back(H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
    const hid_t target = H5Fcreate(target_name.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    const hid_t with_parents = H5Pcreate(H5P_LINK_CREATE);
    H5Pset_create_intermediate_group(with_parents, 1);
    const auto all = static_cast<size_t>(std::max(task.nodes(), task.nodes_of_all()));
    std::vector<int32_t> ids(all);
    std::vector<float> res(all * components);
    for (int32_t state = 1; state <= states; ++state)
        for (int32_t v = 0; v < variables; ++v) {
            char path[256];
            std::snprintf(path, sizeof path, "post/singlestate/state%012d/entityresults/NODE/%s/vakblock",
                          state, variable(v).c_str());
            size_t at = 0;
            for (const hid_t file : files) {
                const hid_t group = H5Gopen2(file, path, H5P_DEFAULT);
                read_dataset(group, "entid", H5T_NATIVE_INT, &ids[at]);
                read_dataset(group, "res", H5T_NATIVE_FLOAT, &res[at * components]);
                H5Gclose(group);
                at += static_cast<size_t>(task.edge) * static_cast<size_t>(task.edge) *
                      static_cast<size_t>(task.edge);
            }
            const hid_t group = H5Gcreate2(target, path, with_parents, H5P_DEFAULT, H5P_DEFAULT);
            const hsize_t dims[2] = {static_cast<hsize_t>(task.nodes()), components};
            write_dataset(group, "entid", H5T_NATIVE_INT, 1, dims, ids.data());
            write_dataset(group, "res", H5T_NATIVE_FLOAT, 2, dims, res.data());
            H5Gclose(group);
        }
    H5Pclose(with_parents);
    H5Fclose(target);
    for (const hid_t file : files) H5Fclose(file);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double median_ratio(const std::vector<double>& a, const std::vector<double>& b)
{
    std::vector<double> ratios;
    for (size_t i = 0; i < a.size(); ++i) ratios.push_back(a[i] / b[i]);
    return median(ratios);
}

long peak_megabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

void run(const Task& task, int rounds, const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (int32_t d = 0; d < task.domains(); ++d) {
        names.push_back(folder / ("domain" + std::to_string(d) + ".h5"));
        write_domain(task, d, names.back());
    }
    const std::string target = folder / "target.h5";
    Cost ours, plain;
    merge(names, target);
    const long peak = peak_megabytes();  // before plain HDF5 takes its whole arrays
    for (int i = 0; i < rounds; ++i) {
        ours.add([&] { merge(names, target); });
        plain.add([&] { copy_plainly(task, names, target); });
    }
    std::printf("| %d | %d | %.0f | %.3f | %.3f | %.2f | %.2f | %ld |\n", task.domains(),
                task.edge * task.edge * task.edge, task.megabytes(), median(ours.wall), median(plain.wall),
                median_ratio(ours.wall, plain.wall), median_ratio(ours.processor, plain.processor), peak);
    std::fflush(stdout);
    for (const std::string& name : names) std::filesystem::remove(name);
    std::filesystem::remove(target);
}

}  // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 5;
    const auto folder =
        std::filesystem::temp_directory_path() / ("merge_domains." + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    std::printf(
        "| domains | nodes each | MB read and written | merge s | plain HDF5 s | ratio | of processor time | peak MB |\n");
    std::printf("|---|---|---|---|---|---|---|---|\n");
    for (const Task& task : {Task{2, 63}, Task{2, 31}, Task{3, 31}, Task{4, 31}}) run(task, rounds, folder);
    std::filesystem::remove_all(folder);
}
