// What a program does that writes and reads the blocks by plain HDF5 calls: one step after the other, with
// default properties, nothing kept from one step to the next.
#pragma once

#include <hdf5.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace plain {

struct Filters {
    int digits = -1;  // of scale-offset
    bool shuffle = false;
    int deflate = -1;  // the level

    bool any() const { return digits >= 0 || shuffle || deflate >= 0; }
};

enum class Kind { text, integer, long_integer, real };

// An attribute or a dataset, and the caller's array that is written or read.
struct Field {
    const char* name;
    bool attribute;
    Kind kind;
    size_t length;  // of a text
    std::vector<hsize_t> dims;
    void* data;
    Filters filters = {};
};

Field attribute(const char* name, std::string& text);
Field attribute(const char* name, int32_t& value);
Field attribute(const char* name, int64_t& value);
Field integers(const char* name, std::vector<hsize_t> dims, int32_t* data, Filters filters = {});
Field long_integers(const char* name, std::vector<hsize_t> dims, int64_t* data);
Field reals(const char* name, std::vector<hsize_t> dims, float* data, Filters filters = {});
Field texts(const char* name, size_t length, hsize_t n, char* data, Filters filters = {});

// A program that knows what a file holds can leave out what one asks that does not: whether a field is there
// before it is written or read, and of what class and size it is before it is read.
enum class Care { knows, asks };

hid_t create_file(const std::string& name);
hid_t open_file(const std::string& name);
void close_file(hid_t file);

// Level by level, making those that are missing.
hid_t make_groups(hid_t file, const std::string& path);

void write(hid_t group, const Field& field);
// An attribute that may be there.
void rewrite(hid_t group, const Field& field);
// Reads after a check of the extents, and asks for the filters.
void read(hid_t group, const Field& field);

void write_block(hid_t file, const std::string& path, const std::vector<Field>& fields,
                 Care care = Care::knows);
void read_block(hid_t file, const std::string& path, const std::vector<Field>& fields,
                Care care = Care::knows);
void read_attributes(hid_t file, const std::string& path, const std::vector<Field>& fields, Care care);

using Extents = std::array<hsize_t, 3>;

// Datasets that grow along their first extent, by a row of `field` with each call.
void create_growing(hid_t group, const Field& field, const std::vector<hsize_t>& chunk);
void append(hid_t group, const Field& field);

// All fields, the last one without its values: a dataset that slabs will fill.
void write_all_but_values(hid_t group, const std::vector<Field>& fields);

// One slab of a dataset.
void write_slab(hid_t group, const Field& field, const Extents& count, const Extents& start);
void read_slab(hid_t group, const Field& field, const Extents& count, const Extents& start);

}  // namespace plain
