// What the result blocks have in common.
#pragma once

#include "blocks/fields.h"

namespace vak {

// What a lower entry writes or reads.
namespace what {
constexpr int32_t attributes = 1;
constexpr int32_t index = 2;
constexpr int32_t tables = 4;
constexpr int32_t values = 8;
constexpr int32_t everything = 15;
constexpr int32_t share = 16;  // writers: the tables stand once in a shared group
}  // namespace what

// The part of the model that the values belong to, and which frames and operators come with them.
struct Zone {
    Arg<char> etypzone;
    Arg<int32_t> zoneid;
    Arg<char> etypframe;
    Arg<int32_t> fswitch, dmpswitch;
};

void zone_fields(Block&, const Zone&);

// The tables that say where the values of a block belong, and how domains are joined.
struct ResultTables {
    Arg<int32_t> ids;  // "entid" or "idele"
    Arg<int32_t> fidglob, fid;
    Arg<char> op;
    Arg<float> weight;
};

// The scalar "fidglob" with fswitch 0, "fid" of the given shape with the others; readers also take
// "fidglob" from an attribute. A fswitch above `last_fswitch` or below 0 stops the block without a message.
void frame_fields(Block&, const ResultTables&, const Zone&, int32_t last_fswitch, Shape fid_shape);

// "operator" and "weight", with dmpswitch 1.
void merge_fields(Block&, const ResultTables&, const Zone&, int64_t ncoo, int64_t n);

// Takes key and stored size of the values from a value-size code.
void choose_variant(Block&, int32_t ivsize);

inline bool is_complex(const Block& io) { return io.key == io.kind.complex_key; }

// What a reader by passes reads: 1 the attributes, 0 the index too, 2 everything. Another pass stops the
// block.
int32_t parts_of_pass(Block&, int32_t ipass);

// A group that is none: says so and gives it as the status.
int32_t refuse_group(const BlockKind&, hid_t group);

// Writes a block that goes on where one exists already. A failed close gives -1 without a message.
template <class Fields>
int32_t write_results(const BlockKind& kind, Family family, hid_t file, const BlockPath& path,
                      const StorageOptions& storage, Fields fields)
{
    return exported([&] {
        OpenedGroup opened = open_or_create_group(file, path_text(family, path));
        if (opened.status < 0) return opened.status;
        Block io(kind, family, Direction::write, opened.group.get());
        io.is_new = opened.status > 0;
        io.storage = storage;
        io.key = kind.key;
        fields(io);
        const bool closed = io.section.close() && opened.group.close();
        return io.status == 0 && !closed ? -1 : io.status;
    });
}

// The same for a group that the caller has opened and keeps open.
template <class Fields>
int32_t write_into(const BlockKind& kind, Family family, hid_t group, const StorageOptions& storage,
                   Fields fields)
{
    return exported([&] {
        if (group < 0) return refuse_group(kind, group);
        Block io(kind, family, Direction::write, group);
        io.storage = storage;
        io.key = kind.key;
        fields(io);
        return end_writing(io, Group());
    });
}

}  // namespace vak
