// What the chunk size setting costs and gains: a series of states appended one by one, then read as histories
// of single entities and as fields of single states. Prints a table in Markdown.
#include "ours.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace {

using bench::BlockGroup, bench::field, bench::File, bench::must;

constexpr int32_t states = 64, components = 3;
constexpr int32_t shuffle_and_deflate = 2 + 16;  // of reals
constexpr int histories = 40;

// What is measured: a size of the model, and how its values are stored.
struct Task {
    const char* storage;
    int32_t entities, flags;
    int rounds;
};

double seconds(const std::function<void()>& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// The fields that are the same in each call.
struct Series {
    std::string name = field("SERIES"), etyp = field("NODE"), etypvar = field("DISPLACEMENT"),
                empty = field("");
    int32_t nent, ncoo = components, none = -1, zero = 0, nindex = 1, ident = 1, real = 4;
    std::vector<int32_t> ids;
    int32_t flags, params[2] = {0, 1};
    std::vector<float> res;

    explicit Series(const Task& task) : nent(task.entities), ids(size_t(nent), 1), flags(task.flags)
    {
        res.resize(size_t(nent) * components);
        go_to(0);
    }
    // A smooth field that moves.
    void go_to(int32_t state)
    {
        for (size_t i = 0; i < res.size(); ++i)
            res[i] = std::sin(0.001F * static_cast<float>(i) + 0.1F * static_cast<float>(state));
    }
};

void append(const File& file, const Series& s, int32_t state)
{
    const int32_t place = 1;
    const float time = 0.1F * static_cast<float>(state);
    int32_t ierr = 0;
    VAK_WRITE_MULTIENTITYRESULTS(
        file.id(), s.name.data(), s.etyp.data(), &s.nent, s.etypvar.data(), &s.ncoo, s.empty.data(), &s.none,
        s.empty.data(), &s.zero, &s.zero, &s.nindex, &s.ident, &time, s.ids.data(), &s.zero, s.ids.data(),
        s.empty.data(), s.res.data(), s.res.data(), &s.none, &place, &s.flags, s.params, &s.real, &ierr);
    must(ierr, "appending");
}

// Seconds for one state, the closing of the file included.
double append_all(const std::string& name, const Task& task)
{
    Series s(task);
    double spent = 0;
    std::optional<File> file(std::in_place, name, bench::create);
    for (int32_t state = 0; state < states; ++state) {
        s.go_to(state);
        spent += seconds([&] { append(*file, s, state); });
    }
    spent += seconds([&] { file.reset(); });
    return spent / states;
}

// Reads a slab of the values alone.
void read_slab(const BlockGroup& block, Series& s, std::vector<float>& values, const int64_t* count,
               const int64_t* start)
{
    const int32_t values_alone = 8, slab = 1;
    int32_t nstate = states, ierr = 0;
    VAK_READ_MULTIENTITYRESULTS2(block.id(), &values_alone, nullptr, s.name.data(), s.etyp.data(), &s.nent,
                                 s.etypvar.data(), &s.ncoo, s.empty.data(), &s.none, s.empty.data(), &s.zero,
                                 &s.zero, &s.nindex, &nstate, nullptr, nullptr, nullptr, &s.zero, nullptr,
                                 nullptr, nullptr, values.data(), &s.real, &s.flags, s.params, &slab, count,
                                 start, &ierr);
    must(ierr, "reading");
}

struct Reading {
    double history, state_field;  // seconds for one
};

Reading read_parts(const std::string& name, const Task& task)
{
    Series s(task);
    const File file(name, bench::read_only);
    const BlockGroup block(file, "multistate/SERIES/multientityresults/NODE/DISPLACEMENT/vakblock");
    std::vector<float> values(s.res.size());
    const double history = seconds([&] {
        const int64_t count[3] = {states, 1, components};
        for (int64_t i = 0; i < histories; ++i) {
            const int64_t start[3] = {0, i * (task.entities / histories), 0};
            read_slab(block, s, values, count, start);
        }
    });
    const double state_field = seconds([&] {
        const int64_t count[3] = {1, task.entities, components};
        for (int64_t state = 0; state < states; ++state) {
            const int64_t start[3] = {state, 0, 0};
            read_slab(block, s, values, count, start);
        }
    });
    return {history / histories, state_field / states};
}

struct Row {
    int32_t chunk;
    double append = 1e9, history = 1e9, state_field = 1e9;  // the shortest times
    double megabytes = 0;
};

void measure(Row& row, const Task& task, const std::string& name)
{
    VAK_SET_CHUNK_SIZE(&row.chunk);
    row.append = std::min(row.append, append_all(name, task));
    const Reading reading = read_parts(name, task);
    row.history = std::min(row.history, reading.history);
    row.state_field = std::min(row.state_field, reading.state_field);
    row.megabytes = static_cast<double>(std::filesystem::file_size(name)) / 1e6;
    std::filesystem::remove(name);
}

void print_table(const Task& task, const std::string& name)
{
    std::vector<Row> rows{{.chunk = 1}, {.chunk = 8}, {.chunk = 64}};
    // One after the other in each round, so that a disturbance meets them all.
    for (int round = 0; round < task.rounds; ++round)
        for (Row& row : rows) measure(row, task, name);
    std::printf("\n%d states of %d entities x %d values, %s:\n\n", states, task.entities, components,
                task.storage);
    std::printf(
        "| Chunk size | Append a state | History of an entity | Field of a state | File |\n|---|---|---|---|---|\n");
    for (const Row& row : rows)
        std::printf("| %d | %.2f ms | %.3f ms | %.2f ms | %.1f MB |\n", row.chunk, 1e3 * row.append,
                    1e3 * row.history, 1e3 * row.state_field, row.megabytes);
}

}  // namespace

int main()
{
    const std::string name = bench::file_name("series.h5");
    print_table({.storage = "unfiltered", .entities = 50000, .flags = 0, .rounds = 9}, name);
    print_table(
        {.storage = "shuffle and deflate 1", .entities = 10000, .flags = shuffle_and_deflate, .rounds = 3},
        name);
    bench::remove_files();
    return 0;
}
