// Whatever stands in the file in place of a field, a reader gives values or one line with its status, and
// touches nothing of the caller's that is not its own. (The sanitizers watch the arrays.)
#include <limits>

#include "contracts/kinds.h"
#include "contracts/stored_fields.h"

namespace vak::test {

namespace {

// What stands in place of a field, of other shapes than the field's. (What has its shape:
// test_hostile_objects.)
struct Odd {
    std::string name;
    std::function<TypeId()> type;
    std::function<SpaceId()> space;
};

const std::vector<Odd>& odd_things()
{
    const auto integer = [] { return TypeId(H5Tcopy(H5T_STD_I32LE), "type"); };
    const auto real = [] { return TypeId(H5Tcopy(H5T_IEEE_F64BE), "type"); };
    const auto long_text = [] { return text_type_of(300); };
    const auto short_text = [] { return text_type_of(3); };
    const auto one = [] { return SpaceId(H5Screate(H5S_SCALAR), "space"); };
    const auto four = [] { return array_space({4}); };
    const auto many = [] { return array_space({3000}); };
    const auto table = [] { return array_space({4, 4}); };
    static const std::vector<Odd> all{
        {"one integer", integer, one},    {"many integers", integer, many},
        {"four integers", integer, four}, {"a table of integers", integer, table},
        {"many reals", real, many},       {"four reals", real, four},
        {"long texts", long_text, four},  {"short texts", short_text, four},
    };
    return all;
}

// The lower entries read the same blocks by the same lists.
std::vector<Kind> kinds_of_blocks()
{
    std::vector<Kind> all;
    for (const Kind& kind : kinds()) {
        const std::string& name = kind.read.name;
        if (!name.ends_with("FILEHEADER") && !name.ends_with("2") && !name.ends_with("RESULTC"))
            all.push_back(kind);
    }
    return all;
}

class HostileFields : public KindTest {
protected:
    // Everything, by passes and by bits.
    void read_everything(hid_t block, const std::string& what)
    {
        for (const int32_t value : {2, 15}) {
            const Result result = call_at(GetParam().read, block, value);
            SCOPED_TRACE(what);
            // Two failures are required to be silent: a frame switch and a transfer mode that nobody knows.
            const bool silent = result.ierr >= 0 || result.ierr == -123 || result.ierr == -999;
            EXPECT_EQ(result.output.out, "");
            EXPECT_TRUE(is_line_of_ours(result.output.err) || (silent && result.output.err.empty()))
                << result;
        }
    }

    static bool is_line_of_ours(const std::string& text)
    {
        return text.starts_with("VAK ") && text.ends_with('\n') && text.find('\n') == text.size() - 1;
    }

    static void put(hid_t block, const Field& f, const Odd& odd)
    {
        const ObjectId holder = open_object(block, f.group);
        const TypeId type = odd.type();
        const SpaceId space = odd.space();
        if (f.is_attribute)
            AttributeId(H5Acreate2(holder, f.name.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT), f.name);
        else
            ObjectId(H5Dcreate2(holder, f.name.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                     f.name);
    }
};

TEST_P(HostileFields, missing_field_is_read_around_or_reported)
{
    const std::vector<Field> fields = fields_of(written(GetParam()).group());
    EXPECT_FALSE(fields.empty());
    for (const Field& field : fields) {
        const StoredBlock block = written(GetParam());
        remove_field(block.group(), field);
        read_everything(block.group(), "without " + field.name);
    }
}

TEST_P(HostileFields, odd_thing_in_place_of_a_field_is_read_or_reported)
{
    const std::vector<Field> fields = fields_of(written(GetParam()).group());
    for (const Field& field : fields) {
        const StoredBlock block = written(GetParam());
        remove_field(block.group(), field);
        for (const Odd& odd : odd_things()) {
            put(block.group(), field, odd);
            read_everything(block.group(), odd.name + " as " + field.name);
            remove_field(block.group(), field);
        }
        if (field.is_attribute) continue;
        const ObjectId holder = open_object(block.group(), field.group);
        H5Lcreate_soft("/nowhere", holder, field.name.c_str(), H5P_DEFAULT, H5P_DEFAULT);
        read_everything(block.group(), "a dangling link as " + field.name);
        remove_field(block.group(), field);
        group(holder, field.name);
        read_everything(block.group(), "a group as " + field.name);
    }
}

const std::vector<int64_t>& counts()
{
    static const std::vector<int64_t> all{-2147483648, -1, 0, 3, 5, 46341, 65536, 2147483647};
    return all;
}

const std::vector<int64_t>& wide_counts()
{
    static const std::vector<int64_t> all{
        std::numeric_limits<int64_t>::min(), -1, 0, 3, 2147483647, 2147483648, 4294967296,
        std::numeric_limits<int64_t>::max()};
    return all;
}

TEST_P(HostileFields, stored_counts_are_not_trusted)
{
    const std::vector<Field> fields = fields_of(written(GetParam()).group());
    for (const Field& field : fields) {
        const StoredBlock block = written(GetParam());
        const ObjectId holder = open_object(block.group(), field.group);
        // The fields of texts are as long as the caller says; he sizes them by what he has read before.
        if (!field.is_attribute || field.name == "block" || field.name == "length") continue;
        const AttributeId attribute(H5Aopen(holder, field.name.c_str(), H5P_DEFAULT), field.name);
        const TypeId type(H5Aget_type(attribute), "type");
        if (H5Tget_class(type) != H5T_INTEGER) continue;
        for (const int64_t count : H5Tget_size(type) == 8 ? wide_counts() : counts()) {
            EXPECT_GE(H5Awrite(attribute, H5T_NATIVE_INT64, &count), 0);
            read_everything(block.group(), field.name + " is " + std::to_string(count));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Contracts, HostileFields, testing::ValuesIn(kinds_of_blocks()), kind_name);

}  // namespace

}  // namespace vak::test
