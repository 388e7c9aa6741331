// The pipeline of filters over one chunk, in both directions, against HDF5's.
#include "storage/chunk_filters.h"

#include <cstring>
#include <limits>
#include <random>

#include "chunk_judge.h"
#include "storage/chunk_length.h"
#include "storage/shuffle.h"
#include "support/library.h"

namespace vak::test {
namespace {

constexpr size_t count = 1500;

template <class T>
std::vector<T> wave()
{
    std::vector<T> values(count);
    for (size_t i = 0; i < count; ++i) values[i] = static_cast<T>(static_cast<double>(i % 97) * 3.25 - 100);
    return values;
}

const std::vector<Recipe> recipes = {
    {.scale_offset = false, .shuffle = true},
    {.scale_offset = false, .deflate = 6},
    {.scale_offset = false, .shuffle = true, .deflate = 9},
    {.scale_offset = false, .deflate = 0},
    {.scale_offset = true, .shuffle = true},
    {.scale_offset = true, .deflate = 1},
    {.scale_offset = true, .shuffle = true, .deflate = 6},
    {.scale_offset = true},
};

template <class T>
const unsigned char* bytes_of(const std::vector<T>& values)
{
    return reinterpret_cast<const unsigned char*>(values.data());
}

template <class T>
unsigned char* bytes_of(std::vector<T>& values)
{
    return reinterpret_cast<unsigned char*>(values.data());
}

template <class T>
class Pipeline : public LibraryTest {
protected:
    ChunkFilters filters_of(const Recipe& recipe)
    {
        make_dataset<T>(file, "filters", recipe, count);
        const auto dataset = open_dataset(file, "filters");
        const PropertiesId list(H5Dget_create_plist(dataset), "creation list");
        const auto filters = chunk_filters(list, count, sizeof(T));
        EXPECT_TRUE(filters);
        H5Ldelete(file, "filters", H5P_DEFAULT);
        return *filters;
    }

    bool known(const PropertiesId& list) const { return chunk_filters(list, count, sizeof(T)).has_value(); }

    ChunkBytes encoded(const Recipe& recipe, const std::vector<T>& values, bool exact = false)
    {
        const auto filters = filters_of(recipe);
        ChunkCodec codec(filters, count * sizeof(T));
        const auto chunk = codec.encode(bytes_of(values), exact);
        EXPECT_TRUE(chunk);
        return {{chunk->bytes, chunk->bytes + chunk->size}, chunk->mask};
    }

    std::vector<T> decoded(const Recipe& recipe, const ChunkBytes& chunk)
    {
        const auto filters = filters_of(recipe);
        ChunkCodec codec(filters, count * sizeof(T));
        std::vector<T> values(count);
        const StoredChunk stored{.bytes = chunk.bytes.data(), .size = chunk.bytes.size(), .mask = chunk.mask};
        return codec.decode(stored, bytes_of(values)) ? values : std::vector<T>();
    }

    std::vector<T> read_by_hdf5_from(const Recipe& recipe, const ChunkBytes& chunk)
    {
        make_dataset<T>(file, "ours", recipe, count);
        EXPECT_TRUE(store_chunk(file, "ours", chunk));
        const auto values = read_by_hdf5<T>(file, "ours", count);
        H5Ldelete(file, "ours", H5P_DEFAULT);
        return values;
    }

    ChunkBytes stored_by_hdf5(const Recipe& recipe, const std::vector<T>& values)
    {
        make_dataset<T>(file, "by_hdf5", recipe, count);
        EXPECT_TRUE(write_by_hdf5(file, "by_hdf5", values));
        const auto chunk = stored_chunk(file, "by_hdf5");
        H5Ldelete(file, "by_hdf5", H5P_DEFAULT);
        return chunk;
    }
};

using Types = testing::Types<int32_t, int64_t, float, double>;
TYPED_TEST_SUITE(Pipeline, Types);

using DoublePipeline = Pipeline<double>;
using FloatPipeline = Pipeline<float>;

TYPED_TEST(Pipeline, what_we_encode_hdf5_reads)
{
    using T = TypeParam;
    for (const Recipe& recipe : recipes) {
        EXPECT_EQ(this->read_by_hdf5_from(recipe, this->encoded(recipe, wave<T>())).size(), count);
        EXPECT_EQ(this->read_by_hdf5_from(recipe, this->encoded(recipe, wave<T>())),
                  this->read_by_hdf5_from(recipe, this->stored_by_hdf5(recipe, wave<T>())));
    }
}

TYPED_TEST(Pipeline, what_hdf5_encodes_we_read)
{
    using T = TypeParam;
    for (const Recipe& recipe : recipes) {
        const auto stored = this->stored_by_hdf5(recipe, wave<T>());
        const auto read = this->read_by_hdf5_from(recipe, stored);
        ASSERT_EQ(read.size(), count);
        EXPECT_EQ(this->decoded(recipe, stored), read);
    }
}

TYPED_TEST(Pipeline, without_deflate_the_bytes_are_those_of_hdf5)
{
    using T = TypeParam;
    for (const Recipe& recipe : recipes) {
        if (recipe.deflate >= 0) continue;
        EXPECT_EQ(this->encoded(recipe, wave<T>()), this->stored_by_hdf5(recipe, wave<T>()));
    }
}

TYPED_TEST(Pipeline, chunks_that_scale_offset_cannot_hold_leave_it_out)
{
    using T = TypeParam;
    auto values = wave<T>();
    values[7] = std::numeric_limits<T>::max();
    values[8] = std::numeric_limits<T>::lowest();
    for (const Recipe& recipe : recipes) {
        const auto chunk = this->encoded(recipe, values);
        EXPECT_EQ(chunk.mask, recipe.scale_offset ? 1U : 0U);
        EXPECT_EQ(this->read_by_hdf5_from(recipe, chunk), values);
        EXPECT_EQ(this->decoded(recipe, chunk), values);
    }
}

TYPED_TEST(Pipeline, an_exact_chunk_is_not_rounded)
{
    using T = TypeParam;
    auto values = wave<T>();
    for (const Recipe& recipe : recipes) {
        const auto chunk = this->encoded(recipe, values, true);
        EXPECT_EQ(chunk.mask, recipe.scale_offset && std::is_floating_point_v<T> ? 1U : 0U);
        EXPECT_EQ(this->decoded(recipe, chunk), values);
    }
}

TYPED_TEST(Pipeline, every_mask_is_obeyed)
{
    using T = TypeParam;
    const Recipe recipe{.scale_offset = true, .shuffle = true, .deflate = 4};
    const auto packed = this->encoded({.scale_offset = true}, wave<T>());
    const auto read = this->read_by_hdf5_from(recipe, {packed.bytes, 6});
    ASSERT_EQ(read.size(), count);
    EXPECT_EQ(this->decoded(recipe, {packed.bytes, 6}), read);
    const auto values = wave<T>();
    const std::vector<unsigned char> raw(bytes_of(values), bytes_of(values) + count * sizeof(T));
    EXPECT_EQ(this->decoded(recipe, {raw, 7}), values);
    std::vector<unsigned char> shuffled(raw.size());
    shuffle(raw.data(), raw.size(), sizeof(T), shuffled.data());
    EXPECT_EQ(this->decoded(recipe, {shuffled, 5}), values);
}

TEST_F(DoublePipeline, damaged_chunks_are_refused)
{
    for (const Recipe& recipe : recipes) {
        const auto good = encoded(recipe, wave<double>());
        auto cut = good;
        cut.bytes.resize(good.bytes.size() / 2);
        EXPECT_TRUE(decoded(recipe, cut).empty());
        auto none = good;
        none.bytes.assign(1, 0);
        EXPECT_TRUE(decoded(recipe, none).empty());
    }
}

TEST_F(DoublePipeline, chunks_that_inflate_to_another_size_are_refused)
{
    const Recipe recipe{.scale_offset = false, .shuffle = true, .deflate = 6};
    Deflater deflater(6);
    for (const size_t size : {count * 8 - 1, count * 8 + 1, count * 80}) {
        const std::vector<unsigned char> zeros(size);
        ChunkBytes chunk{std::vector<unsigned char>(deflater.limit(size)), 0};
        chunk.bytes.resize(deflater.deflate(zeros.data(), size, chunk.bytes.data(), chunk.bytes.size()));
        EXPECT_TRUE(decoded(recipe, chunk).empty()) << size;
    }
}

TEST_F(FloatPipeline, bytes_behind_a_stream_do_not_matter)
{
    const Recipe recipe{.scale_offset = false, .deflate = 6};
    auto chunk = encoded(recipe, wave<float>());
    chunk.bytes.push_back(0);
    EXPECT_EQ(decoded(recipe, chunk), wave<float>());
}

TEST_F(FloatPipeline, other_filters_and_orders_are_not_ours)
{
    const hsize_t chunk = count;
    const auto list = [&] {
        PropertiesId made(H5Pcreate(H5P_DATASET_CREATE), "creation list");
        H5Pset_chunk(made, 1, &chunk);
        return made;
    };
    const auto checked = list();
    H5Pset_fletcher32(checked);
    EXPECT_FALSE(known(checked));
    const auto own = list();
    const unsigned parameter = 1;
    H5Pset_filter(own, H5Z_FILTER_RESERVED + 3, H5Z_FLAG_OPTIONAL, 1, &parameter);
    EXPECT_FALSE(known(own));
    EXPECT_TRUE(known(list()));
}

TEST_F(DoublePipeline, scale_offset_of_another_size_is_not_ours)
{
    make_dataset<double>(file, "doubles", {.factor = 3}, count);
    const auto dataset = open_dataset(file, "doubles");
    const PropertiesId list(H5Dget_create_plist(dataset), "creation list");
    EXPECT_TRUE(chunk_filters(list, count, 8));
    EXPECT_FALSE(chunk_filters(list, count, 4));
    EXPECT_FALSE(chunk_filters(list, count + 1, 8));
}

TEST(Shuffle, elements_of_every_size_come_back)
{
    std::mt19937_64 random(5);
    for (size_t element = 1; element <= 17; ++element) {
        for (const size_t size : {size_t{1}, element, 3 * element + 1, 5000 * element + element / 2}) {
            std::vector<unsigned char> bytes(size);
            for (auto& b : bytes) b = static_cast<unsigned char>(random());
            std::vector<unsigned char> shuffled(size);
            std::vector<unsigned char> back(size);
            shuffle(bytes.data(), size, element, shuffled.data());
            unshuffle(shuffled.data(), size, element, back.data());
            EXPECT_EQ(back, bytes) << element << ' ' << size;
            if (size < 3 * element + 1 || element == 1) continue;
            EXPECT_EQ(shuffled[1], bytes[element]);
            EXPECT_EQ(shuffled[size / element], bytes[1]);
        }
    }
}

TEST(ChunkLength, of_filters_that_cannot_be_followed_is_not_known)
{
    const PropertiesId list(H5Pcreate(H5P_DATASET_CREATE), "list");
    const hsize_t chunk = 8;
    H5Pset_chunk(list, 1, &chunk);
    H5Pset_deflate(list, 6);
    EXPECT_TRUE(ChunkLength(list, 32).is_known());
    H5Pset_nbit(list);
    EXPECT_FALSE(ChunkLength(list, 32).is_known());
}

}  // namespace
}  // namespace vak::test
