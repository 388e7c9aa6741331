// The merger's records. It reads as the list of its steps in merge_dmp.cpp; each step has a file of its own.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "blocks/block.h"
#include "tools/bytes.h"
#include "tools/file_blocks.h"
#include "tools/merge_order.h"

namespace vak {

// One file of the distributed run.
struct Domain {
    hid_t file;
    FileBlocks list;
};

// Per-variable compression exponents, as the parameter file gives them.
struct Exponents {
    const char* names = nullptr;  // fields of 256 characters
    const int32_t* values = nullptr;
    std::vector<int32_t> sorted;  // permutation of the names
};

// The elements that each file holds, by entity type.
using ElementsOfFiles = std::map<std::string, std::vector<Ids>>;

// Large buffers, kept from block to block: memory that is taken and given back costs more than its bytes.
struct Scratch {
    Bytes read, merged;
};

struct Merge {
    Family family;
    std::vector<Domain> domains;
    hid_t target;
    StorageOptions storage;  // for what brings no filters of its own; its real size is the least one
    Exponents exponents;
    int32_t level;  // of the report
    bool adds_domain_number;
    OrderCache orders;
    Scratch scratch;
    ElementsOfFiles elements;
};

constexpr int32_t max_index = 5;  // index values of a block that can be merged

// A block of one of the files, and the blocks that become one in the target.
struct DomainBlock {
    int32_t file;
    int32_t key;
    std::string path;  // of the block's own group
};
struct TargetBlock {
    std::string path;
    std::vector<DomainBlock> sources;  // ascending files
};

// Gathers the blocks of both keys (the second may be 0) from all files and groups those of the same place.
std::vector<TargetBlock> target_blocks(const Merge&, int32_t key, int32_t second_key);

Group open_source(const Merge&, const DomainBlock&);

// A legacy block is listed as its "header"; its own group is the one above.
std::string block_path(Family, const std::string& listed);

bool exists_in_target(const Merge&, const std::string& path);

// The steps. 0, or the status that ends the merge.
int32_t check_versions(const Merge&);
int32_t copy_shared_blocks(const Merge&);
int32_t check_index_limit(const Merge&);
int32_t write_domain_variable(const Merge&);
int32_t merge_kinds(Merge&);
int32_t write_domain_numbers(const Merge&);
void warn_of_other_kinds(const Merge&);

// Parts of merging the kinds.
struct MergedKind;
int32_t merge_collector(const Merge&, const MergedKind&, const TargetBlock&);
int32_t copy_lowest(const Merge&, const char* type, const TargetBlock&);

// Copies a block's group; legacy: its subgroups. 0, or the status that ends the merge.
int32_t copy_block(const Merge&, const char* type, const DomainBlock&);

// Bounds the index values of a block that is copied, where it counts them.
int32_t check_nindex(const Merge&, const char* type, const DomainBlock&);

// The lines that several steps print.
int32_t read_failed(const char* type, int32_t pass, int32_t status);
int32_t write_failed(const char* type, int32_t status);
int32_t refuse_index(const Merge&, int32_t nindex);
void warn_left_out(const DomainBlock&, const char* what, const DomainBlock& ruling);

// How a merged block is stored: with the filters that were found, else the call's, and the exponent of its
// variable.
StorageOptions merged_storage(const Merge&, const char* type, const FoundStorage&, const char* etypvar);

}  // namespace vak
