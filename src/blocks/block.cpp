#include "blocks/block.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace vak {

namespace {

void take(Block& io, int32_t status)
{
    io.status = status;
    io.stopped = status != 0;
}

Location place(Block& io)
{
    return {current_group(io), io.section.valid() ? io.section_is_new : io.is_new, &io.shared};
}

void attribute(Block& io, const char* name, void* value, int32_t type, size_t size)
{
    if (io.stopped) return;
    size_t stored = 0;
    take(io, reading(io) ? VAK_H5Aread(name, value, type, size, nullptr, 0, place(io), &stored)
                         : VAK_H5Awrite(name, value, type, size, size, nullptr, 0, place(io)));
}

struct Field {
    const char* name;
    void* values;
    int32_t type;
    size_t memory_size;
    size_t stored_size;
    uint32_t flags;
};

int64_t dataset(Block& io, const Field& f, Shape shape, Transfer part)
{
    if (io.stopped) return 0;
    hsize_t* const dims = shape.extents();
    const bool empty = shape.empty() || part.empty();
    if (!reading(io)) {
        take(io, VAK_H5Dwrite(f.name, f.values, f.type, f.memory_size, f.stored_size, dims, shape.rank(),
                              part.count.data(), part.start.data(), part.mode, place(io), f.flags,
                              io.storage.params.data()));
    } else {
        take(io,
             VAK_H5Dread(f.name, f.values, f.type, f.memory_size, dims, shape.rank(), part.count.data(),
                         part.start.data(), part.mode, place(io), &io.found.flags, io.found.params.data()));
        io.found.any = io.found.any || (!io.stopped && !empty);
    }
    return static_cast<int64_t>(dims[0]);
}

size_t stored_real_size(const Block& io) { return io.storage.real_size; }

// 64 MiB, as for attributes.
constexpr int64_t most_counts_of_our_own = int64_t{16} << 20;

uint32_t exact(uint32_t flags) { return flags & ~scale_offset_reals; }

std::vector<hsize_t> extents_of(const int64_t* values, size_t n)
{
    if (values == nullptr) return std::vector<hsize_t>(n, 0);
    return {values, values + n};
}

}  // namespace

StorageOptions storage_of(const int32_t* flags, const int32_t* params, const int32_t* real_size)
{
    StorageOptions storage;
    storage.flags = static_cast<uint32_t>(*flags);
    storage.params = {static_cast<uint32_t>(params[0]), static_cast<uint32_t>(params[1])};
    if (real_size != nullptr && *real_size > 0) storage.real_size = static_cast<size_t>(*real_size);
    return storage;
}

bool Shape::empty() const
{
    const auto end = extents_.begin() + std::min(rank_, max_rank);
    return std::find(extents_.begin(), end, hsize_t{0}) != end;
}

Transfer whole() { return {}; }

Transfer slab(const int64_t* count, const int64_t* start, size_t rank)
{
    Transfer part{hyperslab, extents_of(count, rank), extents_of(start, rank)};
    for (hsize_t& n : part.count)
        if (static_cast<int64_t>(n) < 0) n = 0;
    return part;
}

Transfer points(int64_t number, const int64_t* coordinates, size_t rank)
{
    if (number <= 0) return {point_list, {0}, {0}};
    constexpr size_t most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(hsize_t);
    const auto n = static_cast<size_t>(number);
    if (n > most / rank) throw std::bad_alloc();
    return {point_list, {n}, extents_of(coordinates, n * rank)};
}

void text(Block& io, const char* name, Arg<char> value, size_t length)
{
    if (io.stopped) return;
    if (reading(io)) return attribute(io, name, value.at, text_type, length);
    // What stands behind a zero byte is not the caller's text.
    char field[256] = {};
    std::memcpy(field, value.at, strnlen(value.at, std::min(length, sizeof field)));
    attribute(io, name, field, text_type, length);
}

void integer(Block& io, const char* name, Arg<int32_t> value)
{
    attribute(io, name, value.at, integer_type, sizeof(int32_t));
}

void integer64(Block& io, const char* name, Arg<int64_t> value)
{
    attribute(io, name, value.at, integer_type, sizeof(int64_t));
}

void texts(Block& io, const char* name, Arg<char> values, size_t length, Shape shape)
{
    text_part(io, name, values, length, shape, whole());
}

void integers(Block& io, const char* name, Arg<int32_t> values, Shape shape)
{
    integer_part(io, name, values, shape, whole());
}

void integers64(Block& io, const char* name, Arg<int64_t> values, Shape shape)
{
    const Field field{name, values.at, integer_type, sizeof(int64_t), sizeof(int64_t), io.storage.flags};
    dataset(io, field, shape, whole());
}

void reals(Block& io, const char* name, Arg<float> values, Shape shape)
{
    real_part(io, {.name = name, .values = values.at}, shape, whole());
}

void lossy_reals(Block& io, const char* name, Arg<float> values, Shape shape)
{
    real_part(io, {.name = name, .values = values.at, .lossy = true}, shape, whole());
}

int64_t real_part(Block& io, const RealArray& a, Shape shape, Transfer part)
{
    const uint32_t flags = a.lossy ? io.storage.flags : exact(io.storage.flags);
    return dataset(io, {a.name, a.values, real_type, a.memory_size, stored_real_size(io), flags}, shape,
                   std::move(part));
}

int64_t integer_part(Block& io, const char* name, Arg<int32_t> values, Shape shape, Transfer part)
{
    const Field field{name, values.at, integer_type, sizeof(int32_t), sizeof(int32_t), io.storage.flags};
    return dataset(io, field, shape, std::move(part));
}

int64_t text_part(Block& io, const char* name, Arg<char> values, size_t length, Shape shape, Transfer part)
{
    return dataset(io, {name, values.at, text_type, length, length, io.storage.flags}, shape,
                   std::move(part));
}

Counts counts(Block& io, const char* name, Arg<int32_t> values, Shape shape)
{
    integers(io, name, values, shape);
    if (io.stopped || shape.empty()) return {nullptr, 0};
    int64_t n = 1;
    for (int32_t i = 0; i < shape.rank(); ++i) n *= static_cast<int64_t>(shape.extents()[i]);
    if (values.at != nullptr) return {values.at, n};
    // The stored extents have just been found equal to n, but a file may claim any extent and store nothing.
    if (n > most_counts_of_our_own) {
        stop(io, refuse_reading(name, integer_type, sizeof(int32_t)));
        return {nullptr, 0};
    }
    std::vector<int32_t> own(static_cast<size_t>(n));
    integers(io, name, own.data(), shape);
    return own;
}

int64_t total(const int32_t* values, int64_t n)
{
    int64_t sum = 0;
    for (int64_t i = 0; values != nullptr && i < n; ++i) {
        if (values[i] < 0) return impossible_length;
        sum += values[i];
    }
    return sum;
}

int64_t total(const Block& io, const Counts& values)
{
    return io.stopped ? 0 : total(values.begin(), values.end() - values.begin());
}

void stop(Block& io, int32_t status)
{
    io.status = status;
    io.stopped = true;
}

int32_t writing_failed(int32_t key, hid_t status)
{
    std::fprintf(stderr, "VAK ERROR writing block key %d\n", key);
    return static_cast<int32_t>(std::max<hid_t>(status, std::numeric_limits<int32_t>::min()));
}

void fail_writing(Block& io, hid_t status) { stop(io, writing_failed(io.key, status)); }

bool known_mode(int32_t mode) { return mode >= whole_dataset && mode <= point_list; }

void refuse_mode(Block& io)
{
    if (reading(io))
        std::fprintf(stderr, "VAK ERROR reading block key %d - invalid mode\n", io.key);
    else
        std::fprintf(stderr, "VAK ERROR writing block key %d - invalid mode\n", io.key);
    stop(io, -999);
}

void enter(Block& io, const char* section)
{
    if (io.stopped || current(io) || io.section_name == section) return;
    const auto make = [&] {
        Group made(H5Gcreate2(io.group, section, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
        io.section_is_new = made.valid();
        return made;
    };
    Group opened;
    io.section_is_new = false;
    // In a new block the subgroup is most likely missing; but a block may come back to one.
    if (!reading(io) && io.is_new) opened = make();
    if (!opened.valid()) opened = Group(H5Gopen2(io.group, section, H5P_DEFAULT));
    if (!opened.valid() && !reading(io)) opened = make();
    if (opened.valid()) {
        io.section = std::move(opened);
        io.section_name = section;
    } else if (reading(io)) {
        std::fprintf(stderr, "VAK ERROR - %s not found\n", section);
        stop(io, -1);
    } else {
        fail_writing(io, opened.get());
    }
}

static bool known_key(const BlockKind& kind, int32_t key)
{
    return key == kind.key || (kind.complex_key != 0 && key == kind.complex_key);
}

static void print_wrong_key(const BlockKind& kind, int32_t key)
{
    if (kind.complex_key != 0) {
        std::fprintf(stderr, "VAK ERROR - wrong block key %d, %d or %d expected\n", key, kind.key,
                     kind.complex_key);
        return;
    }
    switch (kind.wrong_key) {
        case WrongKeyText::error_upper:
            std::fprintf(stderr, "VAK ERROR - wrong block key %d, %d expected\n", key, kind.key);
            break;
        case WrongKeyText::error_lower:
            std::fprintf(stderr, "VAK error - wrong block key %d, %d expected\n", key, kind.key);
            break;
        case WrongKeyText::wrong_first:
            // The word order is required as it stands.
            std::fprintf(stderr, "VAK ERROR wrong - block key %d, %d expected\n", key, kind.key);
            break;
    }
}

static void check_key(Block& io)
{
    integer(io, "block", &io.key);
    if (io.stopped) return;
    if (known_key(io.kind, io.key)) {
        io.status = io.kind.empty_read == EmptyRead::gives_key ? io.key : 0;
        return;
    }
    print_wrong_key(io.kind, io.key);
    stop(io, -1);
}

void identify(Block& io)
{
    if (reading(io)) return check_key(io);
    integer(io, "block", &io.key);
    text(io, "blocktype", io.kind.type);
}

void check_pass(Block& io, int32_t pass, std::initializer_list<int32_t> known)
{
    if (io.stopped || std::find(known.begin(), known.end(), pass) != known.end()) return;
    if (io.kind.complex_key != 0)
        std::fprintf(stderr, "VAK INTERNAL ERROR reading block with key %d or %d\n", io.kind.key,
                     io.kind.complex_key);
    else
        std::fprintf(stderr, "VAK INTERNAL ERROR reading block with key %d \n", io.kind.key);
    stop(io, -3);
}

void report_storage(const Block& io, Arg<int32_t> flags, Arg<int32_t> params)
{
    if (io.stopped || !io.found.any) return;
    *flags = static_cast<int32_t>(io.found.flags);
    if (params.at != nullptr) std::copy(io.found.params.begin(), io.found.params.end(), params.at);
}

void refuse_existing(Block& io)
{
    if (io.is_new) return;
    std::fprintf(stderr, "VAK INTERNAL ERROR writing block key %d - \"%s\" already exists.\n", io.kind.key,
                 io.kind.type);
    stop(io, -1);
}

void begin_reading(Block& io)
{
    if (io.group < 0) {
        std::fprintf(stderr, "VAK ERROR - header not found\n");
        return stop(io, -1);
    }
    enter(io, "header");
    identify(io);
}

int32_t end_writing(Block& io, Group&& group)
{
    const bool closed = io.section.close() && group.close();
    if (closed || io.status != 0) return io.status;
    return writing_failed(io.key, -1);
}

}  // namespace vak
