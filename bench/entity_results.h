#pragma once

#include "block_head.h"
#include "ours.h"

namespace bench {

// A block of entity results, both ways.
class EntityResults {
public:
    EntityResults(int32_t entities, int32_t components, int32_t flag_word = 0, plain::Filters filters = {});
    EntityResults(const EntityResults&) = delete;  // the fields point to the members

    void go_to(int32_t number);
    void write(const File& file);
    void read(const File& file, int32_t pass);
    void write_plainly(hid_t file) { plain::write_block(file, path(), fields_, care); }
    void read_plainly(hid_t file) { plain::read_block(file, path(), fields_, care); }
    void read_attributes_plainly(hid_t file) { plain::read_attributes(file, path(), fields_, care); }

    std::vector<float> res;
    plain::Care care = plain::Care::knows;

private:
    std::string path() const { return state_path(state_, "entityresults/NODE/DISPLACEMENT"); }

    Head head_{1000, "entityresults"};
    std::string etyp_ = field("NODE"), etypvar_ = field("DISPLACEMENT"), blank_ = field(""),
                frame_ = field("");
    int32_t nent_, ncoo_, none_ = -1, fswitch_ = 0, dmpswitch_ = 0, fidglob_ = 0, state_ = 1;
    Index index_;
    std::vector<int32_t> ids_;
    int32_t flags_, params_[2] = {0, 6};
    std::vector<plain::Field> fields_;
};

}  // namespace bench
