#include "domains/shares.h"

#include <algorithm>

namespace vak::domains {

namespace {

// Appends the rows of one of several arrays to those of another.
template <class T>
void append_row(std::vector<T>& to, const std::vector<T>& from, size_t row, size_t width)
{
    const auto begin = from.begin() + static_cast<std::ptrdiff_t>(row * width);
    to.insert(to.end(), begin, begin + static_cast<std::ptrdiff_t>(width));
}

}  // namespace

Shares::Shares(const frd::Mesh& mesh, const std::vector<int32_t>& domain_of, int32_t domains)
    : meshes_(static_cast<size_t>(domains))
{
    share_elements(mesh, domain_of);
    std::sort(places_.begin(), places_.end());
    places_.erase(std::unique(places_.begin(), places_.end()), places_.end());
    share_nodes(mesh);
}

void Shares::share_elements(const frd::Mesh& mesh, const std::vector<int32_t>& domain_of)
{
    size_t next = 0;
    for (const auto& [type, elements] : mesh.elements) {
        const auto each = static_cast<size_t>(frd::nodes_per_element(type));
        for (size_t i = 0; i < elements.ids.size(); ++i) {
            const int32_t domain = domain_of[next++];
            frd::ElementGroup& share = meshes_[static_cast<size_t>(domain)].elements[type];
            share.ids.push_back(elements.ids[i]);
            share.groups.push_back(elements.groups[i]);
            share.materials.push_back(elements.materials[i]);
            append_row(share.nodes, elements.nodes, i, each);
            for (size_t k = i * each; k < (i + 1) * each; ++k) places_.push_back({elements.nodes[k], domain});
        }
    }
}

void Shares::share_nodes(const frd::Mesh& mesh)
{
    for (size_t i = 0; i < mesh.nodes.size(); ++i)
        for_each_domain(mesh.nodes[i], [&](size_t domain) {
            meshes_[domain].nodes.push_back(mesh.nodes[i]);
            append_row(meshes_[domain].coordinates, mesh.coordinates, i, 3);
        });
}

template <class Visit>
void Shares::for_each_domain(int32_t node, Visit visit) const
{
    auto place = std::lower_bound(places_.begin(), places_.end(), Place{node, 0});
    if (place == places_.end() || place->node != node) return visit(0);
    for (; place != places_.end() && place->node == node; ++place) visit(static_cast<size_t>(place->domain));
}

std::vector<frd::Values> Shares::split(const frd::Values& values) const
{
    std::vector<frd::Values> shares(meshes_.size());
    const size_t width = values.nodes.empty() ? 0 : values.values.size() / values.nodes.size();
    for (size_t i = 0; i < values.nodes.size(); ++i)
        for_each_domain(values.nodes[i], [&](size_t domain) {
            shares[domain].nodes.push_back(values.nodes[i]);
            append_row(shares[domain].values, values.values, i, width);
        });
    return shares;
}

}  // namespace vak::domains
