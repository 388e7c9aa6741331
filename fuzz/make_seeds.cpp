// Writes what the fuzz targets start from: one file per kind of block, family, real and complex, with each
// filter; files of two domains; small texts. usage: make_seeds FOLDER
#include <vak_sp.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cli/solid.h"
#include "samples/activflags.h"
#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/indices.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "samples/parts.h"
#include "samples/properties.h"
#include "samples/sparsematrix.h"
#include "samples/system.h"
#include "samples/text.h"
#include "samples/triangularmatrix.h"
#include "samples/variable.h"
#include "samples/variablegroup.h"
#include "samples/variables1.h"

namespace vak::test {

namespace {

namespace fs = std::filesystem;

constexpr int32_t deflate_and_shuffle = 63, scale_offset = 192, every_filter = 255;

// A new file, at its root; closed with everything that writers leave open.
class NewFile {
public:
    explicit NewFile(const std::string& path)
    {
        const auto length = static_cast<int32_t>(path.size());
        const int32_t none = 0, create = 8;
        int32_t status = 0;
        VAK_OPEN(path.c_str(), &length, "", &none, "", &none, &root_, &none, &create, &status);
        if (status != 0) throw std::runtime_error("cannot create " + path);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile()
    {
        int32_t status = 0;
        VAK_CLOSE(&root_, &status);
    }
    hid_t root() const { return root_; }
    const vak_id& root_id() const { return root_; }

private:
    vak_id root_ = 0;
};

template <class T>
void append(std::string& bytes, const T& value)
{
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string contents(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void save(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// Behind the file: states to erase, index by index; how many of them; the family.
void add_tail(const fs::path& path, bool legacy)
{
    std::string bytes = contents(path);
    append(bytes, int16_t{4});
    append(bytes, int16_t{5});
    append(bytes, std::array<uint8_t, 4>{2, legacy, 2, 0});
    save(path, bytes);
}

// Behind two files: where the second one begins, the family, options.
void save_pair(const fs::path& path, const std::string& first, const std::string& second, bool legacy)
{
    std::string bytes = first + second;
    append(bytes, static_cast<uint32_t>(first.size()));
    append(bytes, std::array<uint8_t, 4>{legacy, 1, 0, 0});
    save(path, bytes);
}

// Tables that are long enough for the filters.
template <class S>
S longer(S sample)
{
    sample.nent = 20;
    sample.tables.ids.resize(20);
    for (int32_t i = 0; i < 20; ++i) sample.tables.ids[static_cast<size_t>(i)] = 3 * i + 1;
    sample.tables.fid = sample.tables.ids;
    sample.tables.weight = some_values(20);
    return sample;
}

EntityResults long_results(Family family, int32_t ivsize)
{
    auto sample = longer(EntityResults());
    sample.family = family;
    sample.ivsize = ivsize;
    sample.res = some_values(ivsize >= 16 ? 80 : 40);
    return sample;
}

MultiEntityResults long_series(Family family, int32_t ivsize)
{
    auto sample = longer(MultiEntityResults::of_states(family, 4, ivsize));
    sample.res = some_values(ivsize >= 16 ? 320 : 160);
    return sample;
}

class Seeds {
public:
    explicit Seeds(fs::path folder) : folder_(std::move(folder))
    {
        for (const char* name : {"hdf5", "merge", "open", "params", "frd", "mtx", "sorting"})
            fs::create_directories(folder_ / name);
    }

    void blocks()
    {
        for (const Family family : {Family::current, Family::legacy}) {
            all_kinds(family);
            results(family);
            domains(family);
        }
        for (const auto& [path, legacy] : files_) add_tail(path, legacy);
    }
    void texts() const;

private:
    fs::path next(const char* kind, bool legacy)
    {
        fs::path path = folder_ / "hdf5" / (std::string(kind) + "-" + std::to_string(files_.size()) + ".h5");
        files_.emplace_back(path, legacy);
        return path;
    }

    template <class S>
    void write(const S& sample)
    {
        const fs::path path = next(S::type, sample.legacy());
        {
            const NewFile file(path);
            sample.write(file.root());
        }
        const std::string bytes = contents(path);
        save_pair(folder_ / "merge" / path.filename(), bytes, bytes, sample.legacy());
    }

    // Without filters and with all of them.
    template <class S>
    void plain(Family family)
    {
        S sample = sample_of<S>(family);
        write(sample);
        sample.flags = deflate_and_shuffle;
        sample.params[1] = 6;
        write(sample);
    }
    template <class S>
    void filtered(S sample)
    {
        sample.params[0] = 3;
        sample.params[1] = 6;
        for (const int32_t flags : {0, deflate_and_shuffle, scale_offset, every_filter}) {
            sample.flags = flags;
            write(sample);
        }
    }

    void all_kinds(Family family)
    {
        plain<System>(family);
        plain<Indices>(family);
        plain<Text>(family);
        plain<Parts>(family);
        plain<Attributes>(family);
        plain<Connectivities>(family);
        plain<Collector>(family);
        plain<ElementResults>(family);
        plain<MultiElementResults>(family);
        plain<ActivFlags>(family);
        plain<MultiActivFlags>(family);
        plain<DenseMatrix>(family);
        plain<TriangularMatrix>(family);
        plain<SparseMatrix>(family);
        if (family == Family::legacy) return plain<Variables1>(family);
        plain<Variable>(family);
        plain<VariableGroup>(family);
        plain<Identifiers>(family);
        plain<PropertyTables>(family);
    }

    void results(Family family)
    {
        for (const int32_t ivsize : {4, 8, 16}) {
            filtered(long_results(family, ivsize));
            filtered(long_series(family, ivsize));
        }
        write(ElementResults::complex_of(family));
        write(MultiElementResults::complex_of(family));
        write(DenseMatrix::complex_of(family));
        write(TriangularMatrix::complex_of(family));
        write(SparseMatrix::complex_of(family));
    }

    // A run as one file of a domain has it.
    std::string domain(Family family, int32_t first_entity)
    {
        const fs::path path = next("domain", family == Family::legacy);
        auto results = long_results(family, 4);
        auto series = long_series(family, 4);
        for (auto* ids : {&results.tables.ids, &series.tables.ids})
            for (int32_t& id : *ids) id += first_entity;
        {
            const NewFile file(path);
            int32_t status = 0;
            (family == Family::legacy ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(
                &file.root_id(), nullptr, nullptr, &status);
            write_all(file.root(), sample_of<System>(family), sample_of<Indices>(family),
                      sample_of<Parts>(family), sample_of<Attributes>(family),
                      sample_of<Connectivities>(family), sample_of<ElementResults>(family),
                      sample_of<ActivFlags>(family), results, series);
        }
        return contents(path);
    }
    template <class... S>
    static void write_all(hid_t file, const S&... samples)
    {
        (samples.write(file), ...);
    }

    void domains(Family family)
    {
        const bool legacy = family == Family::legacy;
        const std::string first = domain(family, 0), second = domain(family, 30);
        save_pair(folder_ / "merge" / (legacy ? "domains1" : "domains"), first, second, legacy);
    }

    fs::path folder_;
    std::vector<std::pair<fs::path, bool>> files_;
};

void Seeds::texts() const
{
    int count = 0;
    for (const char* name : {"run.h5", "run.h5/post", "run.h5/post/sub", "run.h5//post/./sub/", "run.h5/none",
                             "new.h5", "new/er.h5", "", "/", "run.h5/post/sub/third/fourth"})
        for (const char mode : {'\0', '\1', '\2', '\3', '\4', '\5', '\6'})
            save(folder_ / "open" / std::to_string(count++), name + std::string(1, mode) +
                                                                 std::string(3, '\0') + std::string(1, '\0') +
                                                                 std::string(7, '\3'));
    save(folder_ / "params" / "two",
         "$ comment\n# comment\nDISPLACEMENT -6\nSTRESS 3 rest\nONE\n\n  SPACED   +4\n");
    save(folder_ / "params" / "odd",
         "A 99999999999999999999\n" + std::string(600, 'B') + " 1\nC -0x1\n\tD\t7");
    Solid solid;
    save(folder_ / "frd" / "solid", solid.text());
    save(folder_ / "mtx" / "real",
         "%%MatrixMarket matrix coordinate real symmetric\n3 3 4\n1 1 1.5\n2 1 -2\n2 2 1e-3\n3 3 4\n");
    save(folder_ / "mtx" / "complex",
         "%%MatrixMarket matrix coordinate complex hermitian\n% text\n2 2 2\n1 1 1 0\n2 1 2 -1\n");
    save(folder_ / "mtx" / "array", "%%MatrixMarket matrix array integer general\n2 2\n1\n2\n3\n4\n");
    save(folder_ / "mtx" / "pattern",
         "%%MatrixMarket matrix coordinate pattern skew-symmetric\n3 3 1\n3 1\n");
    save(folder_ / "sorting" / "words", std::string("b\0a \0c\0\0a\0zz\0a b  \0", 19));
    save(folder_ / "sorting" / "fields", "ABEL    BETA    ABEL    CAIN    \7");
}

}  // namespace

}  // namespace vak::test

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    vak::test::Seeds seeds(argv[1]);
    seeds.blocks();
    seeds.texts();
    return 0;
}
