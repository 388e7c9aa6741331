#include "domains/partition.h"

#include <algorithm>
#include <limits>
#include <string>

#include "import/mesh.h"
#include "problem.h"

#ifdef VAK_HAVE_METIS
#include <metis.h>
#endif

namespace vak::domains {

namespace {

size_t element_count(const frd::Mesh& mesh)
{
    size_t n = 0;
    for (const auto& [type, elements] : mesh.elements) n += elements.ids.size();
    return n;
}

#ifdef VAK_HAVE_METIS

// The elements and their nodes, these counted from 0.
struct Graph {
    std::vector<idx_t> begin{0}, nodes;
    idx_t node_count = 0;
    idx_t common = 3;  // how many nodes neighbours share at least: a face, an edge of shells, an end of beams
};

Graph graph_of(const frd::Mesh& mesh)
{
    std::vector<int32_t> known;
    for (const auto& [type, elements] : mesh.elements)
        known.insert(known.end(), elements.nodes.begin(), elements.nodes.end());
    std::sort(known.begin(), known.end());
    known.erase(std::unique(known.begin(), known.end()), known.end());
    Graph graph;
    graph.node_count = static_cast<idx_t>(known.size());
    for (const auto& [type, elements] : mesh.elements) {
        graph.common = std::min<idx_t>(graph.common, import::element_dimension(type));
        const auto each = static_cast<size_t>(frd::nodes_per_element(type));
        for (size_t i = 0; i < elements.nodes.size(); ++i) {
            const auto at = std::lower_bound(known.begin(), known.end(), elements.nodes[i]);
            graph.nodes.push_back(static_cast<idx_t>(at - known.begin()));
            if ((i + 1) % each == 0) graph.begin.push_back(static_cast<idx_t>(graph.nodes.size()));
        }
    }
    return graph;
}

std::vector<int32_t> cut(Graph& graph, int32_t domains)
{
    auto elements = static_cast<idx_t>(graph.begin.size() - 1);
    idx_t parts = domains, edges_cut = 0;
    std::vector<idx_t> of_elements(graph.begin.size() - 1), of_nodes(static_cast<size_t>(graph.node_count));
    const int status = METIS_PartMeshDual(&elements, &graph.node_count, graph.begin.data(),
                                          graph.nodes.data(), nullptr, nullptr, &graph.common, &parts,
                                          nullptr, nullptr, &edges_cut, of_elements.data(), of_nodes.data());
    if (status != METIS_OK) throw cli::Problem("METIS could not cut the mesh; is there enough memory?");
    return {of_elements.begin(), of_elements.end()};
}

// A small mesh can be cut so that a domain has nothing: it gets an element of the largest one.
void fill_empty(std::vector<int32_t>& domain_of, int32_t domains)
{
    std::vector<size_t> sizes(static_cast<size_t>(domains));
    for (const int32_t domain : domain_of) ++sizes[static_cast<size_t>(domain)];
    for (auto empty = std::find(sizes.begin(), sizes.end(), 0U); empty != sizes.end();
         empty = std::find(sizes.begin(), sizes.end(), 0U)) {
        const auto largest = std::max_element(sizes.begin(), sizes.end());
        const auto giver = static_cast<int32_t>(largest - sizes.begin());
        *std::find(domain_of.begin(), domain_of.end(), giver) = static_cast<int32_t>(empty - sizes.begin());
        --*largest;
        ++*empty;
    }
}

#endif

}  // namespace

std::vector<int32_t> partition([[maybe_unused]] const frd::Mesh& mesh, int32_t domains)
{
    const size_t elements = element_count(mesh);
    if (elements < static_cast<size_t>(domains))
        throw cli::Problem("the mesh has " + std::to_string(elements) +
                           " elements, which cannot be cut into " + std::to_string(domains) + " domains");
    if (domains == 1) return std::vector<int32_t>(elements, 0);
#ifdef VAK_HAVE_METIS
    Graph graph = graph_of(mesh);
    if (graph.nodes.size() > static_cast<size_t>(std::numeric_limits<idx_t>::max()))
        throw cli::Problem("the mesh is too large to be cut by the METIS that vak was built with");
    auto domain_of = cut(graph, domains);
    fill_empty(domain_of, domains);
    return domain_of;
#else
    throw cli::Problem(
        "--domains needs METIS, which cuts the mesh; install libmetis-dev and build vak again");
#endif
}

}  // namespace vak::domains
