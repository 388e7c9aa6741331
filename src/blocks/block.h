// One block while it is written or read.
//
// A block kind is a list of verbs, one for each field, in the order of the format's tables; the same list
// writes and reads. The first step that fails stops the block: every verb after it does nothing, so that a
// list needs no status tests. After a failed read the counts in the caller's variables may be anything; hand
// them to verbs, which are then idle, and compute with them only through `total`.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string_view>
#include <vector>

#include "frame/exported.h"
#include "frame/paths.h"
#include "storage/storage.h"

namespace vak {

enum class Direction { write, read };

// Three wordings of the wrong-key line are required as they stand.
enum class WrongKeyText { error_upper, error_lower, wrong_first };

// What an `ierr` of a reader that reads no field is: model blocks leave the key there.
enum class EmptyRead { gives_zero, gives_key };

struct BlockKind {
    int32_t key;
    const char* type;         // the attribute "blocktype" and the type word of the path
    int32_t complex_key = 0;  // kinds with a real and a complex variant
    WrongKeyText wrong_key = WrongKeyText::error_upper;
    EmptyRead empty_read = EmptyRead::gives_zero;
};

// A caller's argument: what a writer takes or a reader fills. A writer's arguments are const;
// only the read branch of the verbs stores through one. Arrays may be null on reading.
template <class T>
struct Arg {
    Arg(T* p = nullptr) : at(p) {}
    Arg(const T* p) : at(const_cast<T*>(p)) {}
    T& operator*() const { return *at; }
    T* at;
};

// How arrays are stored; a real size of 0 and below means 4.
struct StorageOptions {
    uint32_t flags = 0;
    std::array<uint32_t, 2> params{};
    size_t real_size = 4;
};

StorageOptions storage_of(const int32_t* flags, const int32_t* params, const int32_t* real_size = nullptr);

// The filters that the datasets read so far were stored with.
struct FoundStorage {
    uint32_t flags = 0;
    std::array<int32_t, 2> params{};
    bool any = false;
};

// An extent of a dataset. A negative count is a length of 0; an axis grows only when it says so.
constexpr int64_t growing = std::numeric_limits<int64_t>::min();

class Shape {
public:
    Shape(std::initializer_list<int64_t> extents)
    {
        for (const int64_t extent : extents) add(extent);
    }
    // Extents beyond what HDF5 can hold only raise the rank, which the storage layer then refuses.
    void add(int64_t extent)
    {
        if (rank_ < max_rank) extents_[static_cast<size_t>(rank_)] = as_extent(extent);
        if (rank_ <= max_rank) ++rank_;
    }
    int32_t rank() const { return rank_; }
    hsize_t* extents() { return extents_.data(); }
    bool empty() const;

private:
    static constexpr int32_t max_rank = H5S_MAX_RANK;
    static hsize_t as_extent(int64_t extent)
    {
        if (extent == growing) return H5S_UNLIMITED;
        return extent > 0 ? static_cast<hsize_t>(extent) : 0;
    }
    std::array<hsize_t, max_rank> extents_{};
    int32_t rank_ = 0;
};

// Which part of a dataset is transferred: one count and start per extent, or one coordinate row per point.
struct Transfer {
    int32_t mode = whole_dataset;
    std::vector<hsize_t> count, start;

    bool empty() const { return std::find(count.begin(), count.end(), hsize_t{0}) != count.end(); }
};

Transfer whole();
// A slab of `rank` extents; a negative count is 0.
Transfer slab(const int64_t* count, const int64_t* start, size_t rank);
Transfer points(int64_t number, const int64_t* coordinates, size_t rank);

struct Block {
    Block(const BlockKind& k, Family f, Direction d, hid_t g) : kind(k), family(f), direction(d), group(g) {}

    const BlockKind& kind;
    Family family;
    Direction direction;
    hid_t group;             // the block's own group
    bool is_new = false;     // its group was made by this call
    StorageOptions storage;  // on writing
    FoundStorage found;      // on reading
    int32_t key = 0;         // written: the variant's; read: as found
    Group section{};         // legacy: the subgroup in use
    std::string_view section_name;
    bool section_is_new = false;
    SharedIds shared;
    int32_t status = 0;    // of the last step taken
    bool stopped = false;  // a step failed
};

inline bool reading(const Block& io) { return io.direction == Direction::read; }
inline bool current(const Block& io) { return io.family == Family::current; }
inline bool legacy(const Block& io) { return io.family == Family::legacy; }
inline hid_t current_group(const Block& io) { return io.section.valid() ? io.section.get() : io.group; }

// Attributes, one value each.
void text(Block&, const char* name, Arg<char>, size_t length = 256);
void integer(Block&, const char* name, Arg<int32_t>);
void integer64(Block&, const char* name, Arg<int64_t>);

// Datasets, whole.
void texts(Block&, const char* name, Arg<char>, size_t length, Shape);
void integers(Block&, const char* name, Arg<int32_t>, Shape);
void integers64(Block&, const char* name, Arg<int64_t>, Shape);
void reals(Block&, const char* name, Arg<float>, Shape);        // never lossy: bit 128 cleared
void lossy_reals(Block&, const char* name, Arg<float>, Shape);  // the caller's flags as they are

// Counts that later lengths are summed from: delivered like `integers`, and returned even where the caller
// wants none.
class Counts {
public:
    Counts(const int32_t* at, int64_t n) : at_(at), n_(n) {}
    Counts(std::vector<int32_t> own)
        : own_(std::move(own)), at_(own_.data()), n_(static_cast<int64_t>(own_.size()))
    {
    }
    Counts(Counts&&) = default;  // a moved vector keeps its elements where they are
    const int32_t* begin() const { return at_; }
    const int32_t* end() const { return at_ + n_; }

private:
    std::vector<int32_t> own_;
    const int32_t* at_;
    int64_t n_;
};
Counts counts(Block&, const char* name, Arg<int32_t>, Shape);

// Sum of counts. A negative entry gives a length that no dataset can have, so that the next verb fails; 0
// once stopped.
constexpr int64_t impossible_length = std::numeric_limits<int64_t>::max();
int64_t total(const Block&, const Counts&);
int64_t total(const int32_t* counts, int64_t n);

// A part of a dataset; `values` has elements of `memory_size` bytes. Writing along a growing axis gives
// the extents as they are afterwards; the return value is the first of them.
struct RealArray {
    const char* name;
    void* values;
    size_t memory_size = 4;
    bool lossy = false;
};
int64_t real_part(Block&, const RealArray&, Shape, Transfer);
int64_t integer_part(Block&, const char* name, Arg<int32_t>, Shape, Transfer);
int64_t text_part(Block&, const char* name, Arg<char>, size_t length, Shape, Transfer);

// Legacy: the subgroup that the next fields are in ("header", "index", "data"); current: stays where it is.
void enter(Block&, const char* section);

// Writes "block" and "blocktype"; or reads "block" and checks it.
void identify(Block&);

void check_pass(Block&, int32_t pass, std::initializer_list<int32_t> known);

// A failure of the block's own: gives `status` and stops.
void stop(Block&, int32_t status);

// The same where a block cannot be written: prints the line. The status may be an invalid identifier.
void fail_writing(Block&, hid_t status);
int32_t writing_failed(int32_t key, hid_t status);  // without a block

// Which part of an array a caller may ask for: modes 0, 1 and 2; another one is -999, with its line.
bool known_mode(int32_t mode);
void refuse_mode(Block&);

// Delivers the filters found, when every step went well and a dataset was read.
void report_storage(const Block&, Arg<int32_t> flags, Arg<int32_t> params);

inline void finish_with_key(Block& io)
{
    if (!io.stopped) io.status = io.key;
}

// The steps around the fields. The openers print what goes wrong and leave the block stopped.
void refuse_existing(Block&);                // "... already exists", -1
void begin_reading(Block&);                  // no group: "header not found"; the key
int32_t end_writing(Block&, Group&& group);  // closes; a failed close is a failed write

// Writes a block that may exist only once.
template <class Fields>
int32_t write_block(const BlockKind& kind, Family family, hid_t file, const BlockPath& path,
                    const StorageOptions& storage, Fields fields)
{
    return exported([&] {
        OpenedGroup opened = open_or_create_group(file, path_text(family, path));
        if (opened.status < 0) return opened.status;
        Block io(kind, family, Direction::write, opened.group.get());
        io.is_new = opened.status > 0;
        io.storage = storage;
        io.key = kind.key;
        refuse_existing(io);
        enter(io, "header");
        identify(io);
        fields(io);
        return end_writing(io, std::move(opened.group));
    });
}

template <class Fields>
int32_t read_block(const BlockKind& kind, Family family, hid_t group, Fields fields)
{
    return exported([&] {
        Block io(kind, family, Direction::read, group);
        begin_reading(io);
        if (!io.stopped) fields(io);
        return io.status;
    });
}

}  // namespace vak
