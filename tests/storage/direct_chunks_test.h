// The fixture of tests that look at chunks moved by our own hand: plain HDF5 reads them, and makes twins of
// them.
#pragma once

#include <random>

#include "chunk_judge.h"
#include "storage_test.h"

namespace vak::test {

constexpr uint32_t deflated = 1 | 2 | 4;
constexpr uint32_t shuffled = 8 | 16 | 32;
constexpr uint32_t scaled = 64 | 128;

class DirectChunks : public StorageTest {
protected:
    // As plain HDF5 reads it from the closed and reopened file; empty when it cannot.
    template <class T>
    std::vector<T> plainly_read(size_t count, const std::string& name = "values")
    {
        reopen();
        return read_by_hdf5<T>(file, name, count);
    }

    template <class T>
    std::vector<T> read_again(const Access& a, size_t count)
    {
        std::vector<T> values(count);
        EXPECT_EQ(read(values, a), done);
        return values;
    }

    uint32_t mask_at(const Dims& corner, const std::string& name = "values") const
    {
        return chunk_at(corner, name).mask;
    }

    ChunkBytes chunk_at(const Dims& corner, const std::string& name = "values") const
    {
        const auto dataset = open_dataset(file, name);
        hsize_t size = 0;
        EXPECT_GE(H5Dget_chunk_storage_size(dataset, corner.data(), &size), 0);
        ChunkBytes chunk;
        chunk.bytes.resize(size);
        EXPECT_GE(H5Dread_chunk(dataset, H5P_DEFAULT, corner.data(), &chunk.mask, chunk.bytes.data()), 0);
        return chunk;
    }

    // A copy of a dataset's description, filled by plain HDF5.
    template <class T>
    void make_plain_twin(const std::string& name, const std::vector<T>& values, const Dims& extents)
    {
        const auto original = open_dataset(file, "values");
        const PropertiesId list(H5Dget_create_plist(original), "creation list");
        const TypeId type(H5Dget_type(original), "type");
        const SpaceId space(H5Screate_simple(rank(extents), extents.data(), nullptr), "space");
        const ObjectId twin(H5Dcreate2(file, name.c_str(), type, space, H5P_DEFAULT, list, H5P_DEFAULT),
                            name);
        ASSERT_GE(H5Dwrite(twin, native_type<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    }

    std::vector<double> random_reals(size_t count, double span)
    {
        std::vector<double> values(count);
        std::uniform_real_distribution<double> draw(-span, span);
        for (auto& v : values) v = draw(random);
        return values;
    }

    std::mt19937_64 random{7};
};

template <class T>
std::vector<T> spread(size_t count, double factor = 0.25)
{
    std::vector<T> values(count);
    for (size_t i = 0; i < count; ++i)
        values[i] = static_cast<T>(static_cast<double>(i * 7919 % 2003) * factor - 40);
    return values;
}

}  // namespace vak::test
