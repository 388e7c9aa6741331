// A block that goes into a merged one, opened.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/bytes.h"
#include "tools/merge.h"
#include "tools/merge_kinds.h"

namespace vak {

constexpr int32_t lost_column = -6002;  // status, as of a dataset that cannot be opened

// How a column is stored in one block.
struct Stored {
    bool is_there = false;
    bool is_lost = false;   // its name is there, but leads to nothing that can be read
    bool is_plain = false;  // neither filters nor anything else that a reader would have to look into
    size_t element = 0;     // bytes
    std::vector<hsize_t> dims;
    Dataset open{};  // opening it again by name is quick then; not kept where that holds a chunk cache
};

class SourceBlock {
public:
    SourceBlock(const Merge&, const MergedKind&, const DomainBlock&);

    // Reads the counts that decide whether and how the block can be merged. 0, or the code of its reader.
    int32_t read_counts();

    // Attributes that the block may lack; what is there and cannot be read is told by attribute_status().
    std::optional<int32_t> integer_attribute(const char* name);
    std::string text_attribute(const char* name);
    int32_t attribute_status() const { return attribute_status_; }
    int32_t check_needed();  // 0, or the code of reading one that the block has to have and has not
    const Stored& stored(const Column&);  // found once
    bool has(const Column&);              // by its counts and switches

    // Reads a column, whole or a slab of states; the extents are those that the file must have. The buffer is
    // sized for it.
    int32_t read(const Column&, size_t element, const std::vector<hsize_t>& dims, Bytes& values);
    int32_t read_states(const Column&, size_t element, const std::vector<hsize_t>& dims, hsize_t first,
                        hsize_t n, Bytes& values);

    // 0 when the column can be read with these extents; nothing is read.
    int32_t check(const Column&, size_t element, const std::vector<hsize_t>& dims);

    // The filters of its columns, found without reading values; those of the index and of what is common to
    // the block only where that block's fields are the ones that are kept.
    FoundStorage filters(bool is_ruling = true);

    // The group that holds them.
    hid_t attributes() const { return is_legacy_ ? header_.get() : group_.get(); }

    // Legacy: the other groups of the block, as far as they are there.
    std::vector<std::pair<const char*, hid_t>> sections() const;

    DomainBlock source;
    int32_t count = 0;  // entities
    int32_t nindex = 0;
    int64_t nstate = 1;             // series: extent of the state axis
    std::vector<int32_t> agreeing;  // as the kind lists them

private:
    hid_t group_of(const Column&) const;
    Stored find(const Column&) const;
    bool has_extents(const Column&, const std::vector<hsize_t>& dims);
    int32_t read_part(const Column&, size_t element, std::vector<hsize_t> dims, const Transfer&,
                      Bytes& values);
    void find_states();
    bool has_lost_column();
    int32_t check_fswitch();
    bool may_have(const char* attribute) const;
    void note(int32_t attribute_status);

    const MergedKind& kind_;
    bool is_legacy_;
    Group group_, header_, index_, data_;
    std::deque<std::pair<std::string_view, Stored>> found_columns_;  // stay where they are
    std::map<std::string, std::optional<int32_t>> integers_;         // attributes are read once
    int32_t attribute_status_ = 0;
    FoundStorage found_;
};

}  // namespace vak
