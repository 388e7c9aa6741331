// Each field of each block, in turn, is replaced by every other kind of HDF5 object. What means the same
// reads as before; everything else is refused by the storage layer's line, exact in status, name and numbers.
#include <sys/stat.h>

#include <set>

#include "contracts/substitutes.h"
#include "samples/activflags.h"
#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/indices.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "samples/parts.h"
#include "samples/properties.h"
#include "samples/sparsematrix.h"
#include "samples/system.h"
#include "samples/text.h"
#include "samples/triangularmatrix.h"
#include "samples/variable.h"
#include "samples/variablegroup.h"
#include "samples/variables1.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

// A block of any kind: written, and read into arrays of exactly its size.
struct AnySample {
    std::string name, path;
    std::function<int32_t(hid_t file)> write;
    std::function<int32_t(hid_t block)> read;
    bool is_series = false;
    std::string next_line = {};  // that follows the storage layer's
};

std::ostream& operator<<(std::ostream& stream, const AnySample& sample) { return stream << sample.name; }

template <class S>
AnySample any(const S& sample, const std::string& variant = "")
{
    const auto read = [sample](hid_t block) {
        S found = emptied(sample);
        return found.read(block, everything<S>(sample.legacy()));
    };
    const std::string name = std::string(S::type) + variant + (sample.legacy() ? "_legacy" : "");
    return {name, sample.path(), [sample](hid_t file) { return sample.write(file); }, read,
            sample.path().starts_with("multistate")};
}

template <class S>
void add_both(std::vector<AnySample>& all)
{
    for (const Family family : {Family::current, Family::legacy}) all.push_back(any(sample_of<S>(family)));
}

AnySample file_header(Family family)
{
    const bool legacy = family == Family::legacy;
    const auto write = [legacy](hid_t file) {
        int32_t ierr = untouched;
        (legacy ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&file, nullptr, nullptr, &ierr);
        return ierr;
    };
    const auto read = [legacy](hid_t group) {
        int32_t ierr = untouched, flags = 0, params[2] = {};
        char version[32];
        (legacy ? VAK1_READ_FILEHEADER : VAK_READ_FILEHEADER)(&group, version, &flags, params, &ierr);
        return ierr;
    };
    return {std::string("fileheader") + (legacy ? "_legacy" : ""),
            "vakheader",
            write,
            read,
            false,
            "VAK ERROR reading header\n"};
}

std::vector<AnySample> all_samples()
{
    std::vector<AnySample> all{file_header(Family::current), file_header(Family::legacy)};
    add_both<System>(all);
    add_both<Indices>(all);
    all.push_back(any(Variable()));
    all.push_back(any(sample_of<Variables1>(Family::legacy)));
    all.push_back(any(VariableGroup()));
    add_both<Text>(all);
    add_both<Parts>(all);
    add_both<Attributes>(all);
    all.push_back(any(Identifiers()));
    add_both<Connectivities>(all);
    add_both<Collector>(all);
    all.push_back(any(PropertyTables()));
    add_both<DenseMatrix>(all);
    add_both<TriangularMatrix>(all);
    add_both<SparseMatrix>(all);
    add_both<EntityResults>(all);
    all.push_back(any(EntityResults::complex_of(Family::current), "_complex"));
    add_both<ElementResults>(all);
    add_both<MultiEntityResults>(all);
    add_both<MultiElementResults>(all);
    add_both<ActivFlags>(all);
    add_both<MultiActivFlags>(all);
    return all;
}

bool is_text(const Field& f) { return f.type_class == H5T_STRING; }
bool is_real(const Field& f) { return f.type_class == H5T_FLOAT; }

// What the storage layer says of a field.
Result line(const Field& f, const Refusal& refusal)
{
    const int32_t type = is_text(f) ? 1 : is_real(f) ? 3 : 2;
    const size_t size = is_real(f) ? 4 : f.size;
    const std::string text =
        "VAK INTERNAL ERROR (" + std::to_string(refusal.number) + ") in VAK_H5" +
        (f.is_attribute ? "A" : "D") + "read - name, vak_type, data_size, error: " + f.name + " " +
        std::to_string(type) + " " + std::to_string(size) + " " + std::to_string(refusal.error) + "\n";
    return failure((f.is_attribute ? -4000 : -6000) - refusal.number, text);
}

void rename(hid_t holder, const Field& f, const char* from, const char* to)
{
    const herr_t status = f.is_attribute ? H5Arename(holder, from, to)
                                         : H5Lmove(holder, from, holder, to, H5P_DEFAULT, H5P_DEFAULT);
    ASSERT_GE(status, 0) << f.name;
}

void close_left_group(hid_t file)
{
    hid_t left = H5I_INVALID_HID;
    if (H5Fget_obj_ids(file, H5F_OBJ_GROUP, 1, &left) > 0) H5Gclose(left);
}

class HostileObjects : public BlockTest, public testing::WithParamInterface<AnySample> {
protected:
    Result read(hid_t block)
    {
        return run([&] { return GetParam().read(block); });
    }

    // What the storage layer says of a field, and what the reader adds.
    static Result told(const Field& f, const Refusal& refusal)
    {
        Result result = line(f, refusal);
        result.output.err += GetParam().next_line;
        return result;
    }

    // The writer of element results leaves the block's group open.
    ObjectId written_block()
    {
        EXPECT_EQ(GetParam().write(file), 0);
        close_left_group(file);
        return open_object(file, GetParam().path);
    }

    Result read_without(hid_t block, const Field& f)
    {
        const ObjectId holder = open_object(block, f.group);
        rename(holder, f, f.name.c_str(), kept);
        const Result without = read(block);
        rename(holder, f, kept, f.name.c_str());
        return without;
    }

    Result read_with(hid_t block, const Field& f, const Substitute& substitute)
    {
        const ObjectId holder = open_object(block, f.group);
        rename(holder, f, f.name.c_str(), kept);
        substitute.put({holder, f, folder_.path()});
        const Result found = read(block);
        remove_field(block, f);
        rename(holder, f, kept, f.name.c_str());
        return found;
    }

    void try_all(hid_t block, const Field& f, const Result& sound)
    {
        const auto expected = [&](const Substitute& s) {
            const Answer answer = s.expected(f);
            return answer ? told(f, *answer) : sound;
        };
        for (const Substitute& s : substitutes()) {
            if (!s.fits(f)) continue;
            EXPECT_EQ(read_with(block, f, s), expected(s)) << s.name << " as " << f.name;
        }
        const Substitute &longer = longer_array(), &inflating = inflating_chunk();
        if (!longer.fits(f)) return;
        EXPECT_THAT(read_with(block, f, inflating), testing::AnyOf(expected(inflating), sound))
            << inflating.name << " as " << f.name;
        if (GetParam().is_series) return;
        EXPECT_EQ(read_with(block, f, longer), expected(longer)) << longer.name << " as " << f.name;
    }

    TempFolder folder_;
};

TEST_P(HostileObjects, in_place_of_a_field_read_as_before_or_are_refused_by_its_line)
{
    const ObjectId block = written_block();
    const Result sound = read(block);
    EXPECT_GE(sound.ierr, 0);
    std::set<std::string> not_needed;
    for (const Field& field : fields_of(block)) {
        if (read_without(block, field) == told(field, not_found))
            try_all(block, field, sound);
        else
            not_needed.insert(field.name);
    }
    // The number of states is that of the values.
    EXPECT_THAT(not_needed, testing::IsSubsetOf({"blocktype", "nstate"}));
}

// Legacy blocks keep their fields in subgroups.
std::vector<std::string> subgroups_of(hid_t block)
{
    std::vector<std::string> found;
    for (const char* name : {"header", "index", "data"})
        if (exists(block, name)) found.emplace_back(name);
    return found;
}

TEST_P(HostileObjects, in_place_of_a_subgroup_read_as_before_or_are_told_to_be_missing)
{
    const std::set<std::string> links{"a soft link", "a hard link", "an external link"};
    const std::set<std::string> others{"a link that leads nowhere", "a link to itself",
                                       "an external link to no file", "a type", "an enumeration"};
    const ObjectId block = written_block();
    const Result sound = read(block);
    for (const std::string& name : subgroups_of(block)) {
        const Field subgroup{".", name, false, H5T_NO_CLASS, 0, {}};
        const Result missing = failure(-1, "VAK ERROR - " + name + " not found\n");
        EXPECT_EQ(read_without(block, subgroup), missing);
        for (const Substitute& s : substitutes()) {
            if (!links.contains(s.name) && !others.contains(s.name)) continue;
            EXPECT_EQ(read_with(block, subgroup, s), links.contains(s.name) ? sound : missing)
                << s.name << " as " << name;
        }
    }
}

// HDF5 waits at a FIFO where a file is open to read: nothing behind such a link is asked for.
class LinksToAFifo : public HostileObjects {
protected:
    void SetUp() override
    {
        HostileObjects::SetUp();
        ASSERT_EQ(mkfifo(folder_.file("fifo").c_str(), 0600), 0);
    }

    void reopen(unsigned access)
    {
        const std::string name = file >= 0 ? close_file() : path("fresh.h5");
        file = H5Fopen(name.c_str(), access, H5P_DEFAULT);
        ASSERT_GE(file, 0);
    }

    // Calls with the file open to read, while such a link stands at that path.
    template <class Call>
    Result with_link_at(const std::string& place, Call one)
    {
        const std::string beside = place + kept;
        reopen(H5F_ACC_RDWR);
        EXPECT_GE(H5Lmove(file, place.c_str(), file, beside.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
        EXPECT_GE(H5Lcreate_external(folder_.file("fifo").c_str(), "/", file, place.c_str(), H5P_DEFAULT,
                                     H5P_DEFAULT),
                  0);
        reopen(H5F_ACC_RDONLY);
        const Result found = one();
        reopen(H5F_ACC_RDWR);
        EXPECT_GE(H5Ldelete(file, place.c_str(), H5P_DEFAULT), 0);
        EXPECT_GE(H5Lmove(file, beside.c_str(), file, place.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
        return found;
    }

    static std::string place_of(const Field& f) { return GetParam().path + "/" + f.group + "/" + f.name; }

    Result read_block() { return read(open_object(file, GetParam().path)); }

    // It fails, in whichever words, for nothing can be written.
    void expect_refused_writing(const std::string& place)
    {
        const Result found = with_link_at(place, [&] {
            Result result;
            result.output = captured([&] { result.ierr = GetParam().write(file); });
            close_left_group(file);
            return result;
        });
        EXPECT_LT(found.ierr, 0) << place;
    }

    std::vector<Field> written_datasets()
    {
        std::vector<Field> all = fields_of(written_block());
        std::erase_if(all, [](const Field& f) { return f.is_attribute; });
        return all;
    }
};

TEST_P(LinksToAFifo, in_place_of_a_field_do_not_hold_its_reader)
{
    for (const Field& f : written_datasets())
        EXPECT_EQ(with_link_at(place_of(f), [&] { return read_block(); }), told(f, not_found)) << f.name;
}

TEST_P(LinksToAFifo, in_place_of_a_subgroup_do_not_hold_its_reader)
{
    for (const std::string& name : subgroups_of(written_block()))
        EXPECT_EQ(with_link_at(GetParam().path + "/" + name, [&] { return read_block(); }),
                  failure(-1, "VAK ERROR - " + name + " not found\n"));
}

TEST_P(LinksToAFifo, in_place_of_a_field_or_subgroup_do_not_hold_its_writer)
{
    for (const Field& f : written_datasets()) expect_refused_writing(place_of(f));
    for (const std::string& name : subgroups_of(open_object(file, GetParam().path)))
        expect_refused_writing(GetParam().path + "/" + name);
}

TEST_P(LinksToAFifo, on_the_way_to_a_block_do_not_hold_its_writer)
{
    if (GetParam().name.starts_with("properties")) return;  // their writer is handed the group
    written_block();
    const std::string& block = GetParam().path;
    expect_refused_writing(block);
    expect_refused_writing(block.substr(0, block.find('/')));
}

INSTANTIATE_TEST_SUITE_P(Contracts, LinksToAFifo, testing::ValuesIn(all_samples()),
                         [](const auto& sample) { return sample.param.name; });

INSTANTIATE_TEST_SUITE_P(Contracts, HostileObjects, testing::ValuesIn(all_samples()),
                         [](const auto& sample) { return sample.param.name; });

}  // namespace

}  // namespace vak::test
