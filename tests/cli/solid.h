// The result of a solver on a solid of bricks with a skin of shells, made for the tests: as large as wanted,
// with everything that makes cutting it into domains worth a check.
#pragma once

#include <string>
#include <vector>

#include "cli/frd_text.h"

namespace vak::test {

struct Solid {
    int nx = 3, ny = 2, nz = 2;  // bricks along each side
    int states = 2;

    int node(int i, int k, int l) const { return 1 + i + (nx + 1) * (k + (ny + 1) * l); }
    int node_count() const { return (nx + 1) * (ny + 1) * (nz + 1); }
    int brick_count() const { return nx * ny * nz; }
    int shell_count() const { return nx * ny; }

    // Identifiers leave gaps, two groups and two materials, a node without elements.
    std::string text() const
    {
        FrdText frd;
        frd.head().line("    1UMAT    2COPPER").nodes(places());
        frd.begin_elements(static_cast<size_t>(brick_count() + shell_count()));
        bricks(frd);
        skin(frd);
        frd.end_block();
        for (int state = 1; state <= states; ++state) results(frd, state);
        return frd.end().text();
    }

private:
    NodeValues places() const
    {
        NodeValues all;
        for (int l = 0; l <= nz; ++l)
            for (int k = 0; k <= ny; ++k)
                for (int i = 0; i <= nx; ++i) all.push_back({node(i, k, l), {1.0 * i, 0.5 * k, 0.25 * l}});
        all.push_back({loose(), {9, 9, 9}});
        return all;
    }
    int loose() const { return node_count() + 100; }

    void bricks(FrdText& frd) const
    {
        int id = 0;
        for (int l = 0; l < nz; ++l)
            for (int k = 0; k < ny; ++k)
                for (int i = 0; i < nx; ++i)
                    frd.element(id += 2, 1, i < nx / 2 ? 1 : 0, 1 + l % 2,
                                {node(i, k, l), node(i + 1, k, l), node(i + 1, k + 1, l), node(i, k + 1, l),
                                 node(i, k, l + 1), node(i + 1, k, l + 1), node(i + 1, k + 1, l + 1),
                                 node(i, k + 1, l + 1)});
    }
    void skin(FrdText& frd) const
    {
        int id = 2 * brick_count() + 1;
        for (int k = 0; k < ny; ++k)
            for (int i = 0; i < nx; ++i)
                frd.element(id++, 9, k == 0 ? 2 : 0, 2,
                            {node(i, k, nz), node(i + 1, k, nz), node(i + 1, k + 1, nz), node(i, k + 1, nz)});
    }

    // Values that no two nodes share.
    NodeValues values(int state, size_t components, int step) const
    {
        NodeValues all;
        for (int n = 1; n <= node_count(); n += step) {
            std::vector<double> v;
            for (size_t c = 0; c < components; ++c)
                v.push_back(state + 0.125 * n + 1000.0 * static_cast<double>(c));
            all.push_back({n, v});
        }
        return all;
    }
    // Displacements, complex stresses, and temperatures at every third node only.
    void results(FrdText& frd, int state) const
    {
        const FrdState at{.value = 0.5 * state, .step = state, .analysis = 1};
        frd.result("DISP", displacement, values(state, 3, 1), at);
        frd.result("STRESS", stress, values(10 * state, 6, 1), at);
        frd.result("STRESSI", stress, values(-10 * state, 6, 1), at);
        frd.result("NDTEMP", temperature, values(100 * state, 1, state == 1 ? 3 : 2), at);
    }
};

}  // namespace vak::test
