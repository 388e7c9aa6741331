// Typed attributes and datasets: the only way in which values reach the file.
// Each routine prints its own one line of diagnosis and returns 0 or its negative code.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "storage/hdf5_id.h"

namespace vak {

// Element type codes.
constexpr int32_t text_type = 1;
constexpr int32_t integer_type = 2;
constexpr int32_t real_type = 3;

// Compression flag word.
constexpr uint32_t deflate_integers = 1;
constexpr uint32_t deflate_reals = 2;
constexpr uint32_t deflate_texts = 4;
constexpr uint32_t shuffle_integers = 8;
constexpr uint32_t shuffle_reals = 16;
constexpr uint32_t shuffle_texts = 32;
constexpr uint32_t scale_offset_integers = 64;
constexpr uint32_t scale_offset_reals = 128;

// Dataset access modes; any other value means the whole dataset.
constexpr int32_t whole_dataset = 0;
constexpr int32_t hyperslab = 1;
constexpr int32_t point_list = 2;

// HDF5 types, spaces and property lists that the fields of one exported call have in common: made on
// first use, closed with the call. Nothing of it outlives a call, since the library keeps no state.
class SharedIds {
public:
    hid_t scalar();           // the scalar data space
    hid_t text(size_t size);  // blank-padded characters of that length; the last two lengths are kept
    hid_t compact();          // creation list of datasets kept in their object header
    hid_t uncached();         // access list of datasets without a chunk cache

    // Set where the next datasets are chunked as a rule: these are then read without opening them twice.
    bool expects_chunks = false;

private:
    struct Text {
        Type type;
        size_t size = 0;
    };
    Space scalar_;
    std::array<Text, 2> texts_;
    size_t newest_ = 0;
    Properties compact_;
    Properties uncached_;
};

// The object that a field belongs to (in practice a block's group), and what the call knows of it.
struct Location {
    Location(hid_t object) : id(object) {}
    Location(hid_t object, bool fresh, SharedIds* ids) : id(object), is_new(fresh), shared(ids) {}

    hid_t id;
    bool is_new = false;          // made empty by this call: a field cannot exist, no need to ask
    SharedIds* shared = nullptr;  // absent: the routine makes its own
};

int32_t VAK_H5gettype(int32_t type, size_t size, int32_t* class_out, hid_t* type_out);
int32_t VAK_H5getfillvalue(int32_t type, size_t data_size, void* value_out);

int32_t VAK_H5Awrite(const char* name, const void* data, int32_t type, size_t data_size, size_t vak_size,
                     const hsize_t* dims, int32_t rank, const Location& location);

// A reader whose data is null checks the field and delivers nothing.
int32_t VAK_H5Aread(const char* name, void* data, int32_t type, size_t data_size, const hsize_t* dims,
                    int32_t rank, const Location& location, size_t* stored_size);

// dims: entries of H5S_UNLIMITED are replaced by the new extent; start and, in a point list, the coordinates
// along unlimited dimensions are shifted behind the present end.
int32_t VAK_H5Dwrite(const char* name, const void* data, int32_t type, size_t data_size, size_t vak_size,
                     hsize_t* dims, int32_t rank, const hsize_t* count, hsize_t* start, int32_t mode,
                     const Location& location, uint32_t flags, const uint32_t* params);

// flags: the filter bits found are added; params: raised to what was found.
int32_t VAK_H5Dread(const char* name, void* data, int32_t type, size_t data_size, const hsize_t* dims,
                    int32_t rank, const hsize_t* count, const hsize_t* start, int32_t mode,
                    const Location& location, uint32_t* flags, int32_t* params);

// A dataset that a caller of VAK_H5Dread cannot take: its line (999) and code.
int32_t refuse_reading(const char* name, int32_t type, size_t data_size);

// The process-wide chunk extent along unlimited dimensions, as last set; values below 1 count as 1.
int32_t chunk_size();
void set_chunk_size(int32_t size);

}  // namespace vak
