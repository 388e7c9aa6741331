// Large matrices: dense, whole and in slabs of rows, and sparse.
#include "block_head.h"
#include "cases.h"
#include "duel.h"
#include "ours.h"

#include <memory>

namespace bench {

namespace {

constexpr int32_t order = 8000, slabs = 100, sparse_rows = 1000000;
constexpr int64_t row_entries = 20, entries = sparse_rows * row_entries;
constexpr int32_t new_state = 0, real = 4, no_flags = 0, no_params[2] = {0, 0};
constexpr hsize_t rows_of_a_slab = order / slabs;

// What the matrices have in common.
struct Matrix {
    Head head;
    std::string path, etyp = field("NODE"), etypvar = field("STIFFNESS");
    int32_t entid = -1;
    Index index{.n = 0};
    int32_t flags = 0, params[2] = {0, 0};
    std::vector<plain::Field> fields;

    Matrix(int32_t key, const char* type)
        : head(key, type), path("constant/" + std::string(type) + "/NODE/STIFFNESS/vakblock")
    {
    }
    Matrix(const Matrix&) = delete;  // the fields point to the members
};

struct Dense : Matrix {
    int32_t n = order;
    std::vector<float> val = std::vector<float>(size_t(order) * order);

    Dense() : Matrix(10000, "densematrix")
    {
        using namespace plain;
        fields = {attribute("block", head.key),     attribute("blocktype", head.type),
                  attribute("etyp", etyp),          attribute("entid", entid),
                  attribute("etypvar", etypvar),    attribute("nrow", n),
                  attribute("ncolumn", n),          attribute("nindex", index.n),
                  attribute("indexic", index.code), reals("val", {order, order}, val.data())};
        fill_smoothly(val, 0);
    }
    void write(const File& file, int32_t mode, const float* values, const int64_t* count,
               const int64_t* start)
    {
        int32_t ierr = 0;
        VAK_WRITE_DENSEMATRIX(file.id(), etyp.data(), &entid, etypvar.data(), &n, &n, &index.n, &index.code,
                              nullptr, nullptr, values, &new_state, &no_flags, no_params, &real, &mode, count,
                              start, &ierr);
        must(ierr, "writing a dense matrix");
    }
    void read(const BlockGroup& block, int32_t mode, float* values, const int64_t* count,
              const int64_t* start)
    {
        int32_t columns = order, ierr = 0;
        VAK_READ_DENSEMATRIX(block.id(), &mode, etyp.data(), &entid, etypvar.data(), &n, &columns, &index.n,
                             &index.code, nullptr, nullptr, values, &flags, params, count, start, &ierr);
        must(ierr, "reading a dense matrix");
    }
};

// Calls once for each slab of rows, with its first row.
template <class Work>
void for_each_slab(const Work& work)
{
    for (hsize_t row = 0; row < order; row += rows_of_a_slab) work(row);
}

void write_dense(Dense& d, const std::string& name)
{
    const File file(name, create);
    d.write(file, 0, d.val.data(), nullptr, nullptr);
}

void write_slabs(Dense& d, const std::string& name)
{
    const File file(name, create);
    for_each_slab([&](hsize_t row) {
        const int64_t count[] = {rows_of_a_slab, order}, start[] = {int64_t(row), 0};
        d.write(file, 1, &d.val[row * order], count, start);
    });
}

plain::Field rows_from(Dense& d, hsize_t row)
{
    return plain::reals("val", {order, order}, &d.val[row * order]);
}

// Like ours, each slab finds its block and dataset anew.
void write_slabs_plainly(Dense& d, const std::string& name)
{
    const hid_t file = plain::create_file(name);
    for_each_slab([&](hsize_t row) {
        const hid_t group = plain::make_groups(file, d.path);
        if (row == 0) plain::write_all_but_values(group, d.fields);
        plain::write_slab(group, rows_from(d, row), {rows_of_a_slab, order}, {row, 0});
        H5Gclose(group);
    });
    plain::close_file(file);
}

void read_slabs(Dense& d, const std::string& name)
{
    const File file(name, read_only);
    const BlockGroup block(file, d.path);
    for_each_slab([&](hsize_t row) {
        const int64_t count[] = {rows_of_a_slab, order}, start[] = {int64_t(row), 0};
        d.read(block, 3, &d.val[row * order], count, start);
    });
}

void read_slabs_plainly(Dense& d, const std::string& name)
{
    const hid_t file = plain::open_file(name), group = H5Gopen2(file, d.path.c_str(), H5P_DEFAULT);
    for_each_slab([&](hsize_t row) {
        plain::read_slab(group, rows_from(d, row), {rows_of_a_slab, order}, {row, 0});
    });
    H5Gclose(group);
    plain::close_file(file);
}

struct Sparse : Matrix {
    int32_t n = sparse_rows;
    int64_t nnz = entries;
    std::vector<int32_t> colind = std::vector<int32_t>(entries);
    std::vector<int64_t> rowptr = std::vector<int64_t>(sparse_rows + 1);
    std::vector<float> val = std::vector<float>(entries);

    Sparse() : Matrix(10200, "sparsematrix")
    {
        using namespace plain;
        fields = {attribute("block", head.key),
                  attribute("blocktype", head.type),
                  attribute("etypvar", etypvar),
                  attribute("nrow", n),
                  attribute("nnz", nnz),
                  attribute("nindex", index.n),
                  attribute("indexic", index.code),
                  integers("colind", {entries}, colind.data()),
                  long_integers("rowptr", {sparse_rows + 1}, rowptr.data()),
                  reals("val", {entries}, val.data())};
        for (size_t i = 0; i < colind.size(); ++i)
            colind[i] = static_cast<int32_t>(i / row_entries + i % row_entries);
        for (size_t i = 0; i < rowptr.size(); ++i) rowptr[i] = static_cast<int64_t>(i) * row_entries;
        fill_smoothly(val, 0);
    }
    void write(const File& file)
    {
        const int32_t whole = 0;
        int32_t ierr = 0;
        VAK_WRITE_SPARSEMATRIX(file.id(), etyp.data(), &entid, etypvar.data(), &n, &nnz, &index.n,
                               &index.code, nullptr, nullptr, colind.data(), rowptr.data(), val.data(),
                               &new_state, &no_flags, no_params, &real, &whole, nullptr, nullptr, &ierr);
        must(ierr, "writing a sparse matrix");
    }
    void read(const BlockGroup& block)
    {
        const int32_t everything = 2;
        int32_t ierr = 0;
        VAK_READ_SPARSEMATRIX(block.id(), &everything, etyp.data(), &entid, etypvar.data(), &n, &nnz,
                              &index.n, &index.code, nullptr, nullptr, colind.data(), rowptr.data(),
                              val.data(), &flags, params, nullptr, nullptr, &ierr);
        must(ierr, "reading a sparse matrix");
    }
};

void write_sparse(Sparse& s, const std::string& name)
{
    const File file(name, create);
    s.write(file);
}

void write_plainly(const Matrix& m, const std::string& name)
{
    const hid_t file = plain::create_file(name);
    plain::write_block(file, m.path, m.fields);
    plain::close_file(file);
}

void read_plainly(const Matrix& m, const std::string& name)
{
    const hid_t file = plain::open_file(name);
    plain::read_block(file, m.path, m.fields);
    plain::close_file(file);
}

Contest writing_dense()
{
    const auto d = std::make_shared<Dense>();
    return writing([=](const std::string& name) { write_dense(*d, name); },
                   [=](const std::string& name) { write_plainly(*d, name); });
}

Contest writing_slabs()
{
    const auto d = std::make_shared<Dense>();
    return writing([=](const std::string& name) { write_slabs(*d, name); },
                   [=](const std::string& name) { write_slabs_plainly(*d, name); });
}

Contest reading_dense()
{
    const auto d = std::make_shared<Dense>();
    const std::string name = file_name("dense.h5");
    write_dense(*d, name);
    const auto ours = [=] {
        const File file(name, read_only);
        d->read(BlockGroup(file, d->path), 2, d->val.data(), nullptr, nullptr);
    };
    return reading(
        ours, [=] { read_plainly(*d, name); }, d->val);
}

Contest reading_slabs()
{
    const auto d = std::make_shared<Dense>();
    const std::string name = file_name("dense.h5");
    write_dense(*d, name);
    return reading([=] { read_slabs(*d, name); }, [=] { read_slabs_plainly(*d, name); }, d->val);
}

Contest writing_sparse()
{
    const auto s = std::make_shared<Sparse>();
    return writing([=](const std::string& name) { write_sparse(*s, name); },
                   [=](const std::string& name) { write_plainly(*s, name); });
}

Contest reading_sparse()
{
    const auto s = std::make_shared<Sparse>();
    const std::string name = file_name("sparse.h5");
    write_sparse(*s, name);
    const auto ours = [=] {
        const File file(name, read_only);
        s->read(BlockGroup(file, s->path));
    };
    return reading(
        ours, [=] { read_plainly(*s, name); }, s->val);
}

}  // namespace

void add_matrices()
{
    add_duel({"Dense 8,000 x 8,000, written", 1.0, 7}, writing_dense);
    add_duel({"Dense 8,000 x 8,000 in 100 slabs of rows, written", 1.0, 7}, writing_slabs);
    add_duel({"Dense 8,000 x 8,000, read", 1.0, 9}, reading_dense);
    add_duel({"Dense 8,000 x 8,000 in 100 slabs of rows, read", 1.0, 9}, reading_slabs);
    add_duel({"Sparse, 20,000,000 entries, written", 1.0, 7}, writing_sparse);
    add_duel({"Sparse, 20,000,000 entries, read", 1.0, 9}, reading_sparse);
}

}  // namespace bench
