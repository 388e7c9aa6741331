#pragma once

#include "block_head.h"
#include "ours.h"

namespace bench {

// A series of entity results that grows by a state with each call, both ways.
class SeriesBlock {
public:
    SeriesBlock(int32_t entities, int32_t flag_word, plain::Filters filters);
    SeriesBlock(const SeriesBlock&) = delete;  // the fields point to the members

    void append(const File& file);
    void append_plainly(hid_t file);

    // All of it, with room for the states in res.
    void read(const File& file, int32_t states);
    void read_plainly(hid_t file, int32_t states);

    // A slab of the values.
    void read_slab(const BlockGroup& block, const plain::Extents& count, const plain::Extents& start);
    void read_slab_plainly(hid_t group, const plain::Extents& count, const plain::Extents& start);

    static constexpr int32_t components = 3;
    const std::string path = "multistate/SERIES/multientityresults/NODE/DISPLACEMENT/vakblock";
    std::vector<float> res;

private:
    plain::Field values(hsize_t states);
    void create_plainly(hid_t group);

    Head head_{1050, "multientityresults"};
    std::string series_ = field("SERIES"), etyp_ = field("NODE"), etypvar_ = field("DISPLACEMENT"),
                blank_ = field("");
    int32_t nent_, ncoo_ = components, none_ = -1, fswitch_ = 0, dmpswitch_ = 0, fidglob_ = 0, stored_ = 0;
    Index index_;
    std::vector<int32_t> ids_, idents_;
    std::vector<float> times_;
    int32_t flags_, params_[2] = {3, 6};
    plain::Filters filters_;
    std::vector<plain::Field> once_;
};

}  // namespace bench
