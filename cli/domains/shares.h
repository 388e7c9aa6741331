// What each domain has of a result file: its elements, their nodes, and the values at these.
#pragma once

#include <cstdint>
#include <vector>

#include "frd/records.h"

namespace vak::domains {

class Shares {
public:
    // The domain of each element, the elements in the order of the mesh. A node is in every domain that has
    // an element of it; a node without elements is in domain 0, as are the values of an unknown one.
    Shares(const frd::Mesh& mesh, const std::vector<int32_t>& domain_of, int32_t domains);

    // The domains' meshes.
    const std::vector<frd::Mesh>& meshes() const { return meshes_; }

    // The values at each domain's nodes.
    std::vector<frd::Values> split(const frd::Values& values) const;

private:
    struct Place {
        int32_t node, domain;
        auto operator<=>(const Place&) const = default;
    };

    void share_elements(const frd::Mesh& mesh, const std::vector<int32_t>& domain_of);
    void share_nodes(const frd::Mesh& mesh);
    // Calls for each domain that has the node.
    template <class Visit>
    void for_each_domain(int32_t node, Visit visit) const;

    std::vector<frd::Mesh> meshes_;
    std::vector<Place> places_;  // ascending
};

}  // namespace vak::domains
