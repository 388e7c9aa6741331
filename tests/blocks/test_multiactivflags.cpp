#include "samples/multiactivflags.h"

#include "blocks/one_state_series.h"

namespace vak::test {

namespace {

template <Family of>
struct FlagSeries {
    using Sample = MultiActivFlags;
    static constexpr Family family = of;
    static constexpr int32_t read_status = 0;
    static constexpr const char* ids = "entid";
    static constexpr const char* values_name = "status";
    static constexpr const char* values_message = "status 2";
    static constexpr const char* pass_message = "VAK INTERNAL ERROR reading block with key 2150 \n";
    static constexpr const char* key_message = "VAK ERROR - wrong block key 1100, 2150 expected\n";
    static constexpr const char* writing_message = "VAK ERROR writing block key 2150\n";
    static constexpr const char* chunks_of_8 = "status int32 [unlimited(3),4] chunked(8,4)\n";
    static constexpr const char* filtered_values =
        "status int32 [unlimited(2),8] chunked(1,8) scaleoffset(int,0) shuffle deflate(6) fill=10000\n";
    static constexpr int32_t filters = 1 + 2 + 8 + 16 + 64;

    static const std::vector<int32_t>& values(const Sample& s) { return s.status; }
    static Sample without_values()
    {
        auto s = sample_of<Sample>(of);
        s.index.nindex = 0;
        s.nent = 0;
        return s;
    }
    static Sample too_large(Sample s)
    {
        s.nent = 5;
        s.status = {1, 2, 3, 4, 5};
        return s;
    }
    static Sample fails_halfway(Sample s)
    {
        s.ivsize = 16;
        return s;
    }
    static Sample large()
    {
        auto s = sample_of<Sample>(of);
        s.nent = s.index.nindex = 8;
        s.entid = s.status = s.index.indexident = {1, 2, 3, 4, 5, 6, 7, 8};
        s.index.indexval = some_values(8);
        return s;
    }
};

using BothSeries = testing::Types<FlagSeries<Family::current>, FlagSeries<Family::legacy>>;
INSTANTIATE_TYPED_TEST_SUITE_P(MultiActivFlags, OneStateSeries, BothSeries);

class MultiActivFlagsBlock : public BlockTest {};

TEST_F(MultiActivFlagsBlock, is_stored_as_described)
{
    const MultiActivFlags block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(write(block.next()), success);
    EXPECT_EQ(layout(file, "multistate/EROSION/multiactivflags/ELEMENT/vakblock"), R"(
A block int32
A blocktype char[256]
A series char[256]
A etyp char[256]
A nent int32
A nindex int32
A nstate int32
D entid int32 [4] compact
D indexident int32 [unlimited(2),2] chunked(1,2)
D indexval float32 [unlimited(2),2] chunked(1,2)
D status int32 [unlimited(2),4] chunked(1,4)
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 2150);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"), "multiactivflags" + std::string(241, '\0'));
    EXPECT_EQ(dataset_values<int32_t>(file, block.path() + "/status"),
              (std::vector{1, 0, 1, -1, 101, 100, 101, 99}));
}

TEST_F(MultiActivFlagsBlock, legacy_block_is_stored_as_described)
{
    const auto block = sample_of<MultiActivFlags>(Family::legacy);
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(write(block.next()), success);
    EXPECT_EQ(layout(file, "multistate/EROSION/multiactivflags/ELEMENT"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/series char[256]
A header/etyp char[256]
A header/nent int32
A header/nindex int32
A header/nstate int32
G data
D data/entid int32 [4] compact
D data/status int32 [unlimited(2),4] chunked(1,4)
G index
D index/indexident int32 [unlimited(2),2] chunked(1,2)
D index/indexval float32 [unlimited(2),2] chunked(1,2)
)");
}

}  // namespace

}  // namespace vak::test
