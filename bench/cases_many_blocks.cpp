// Small blocks: thousands of them written and listed, one variable over many states.
#include "cases.h"
#include "duel.h"
#include "entity_results.h"

#include <cstdlib>
#include <memory>

namespace bench {

namespace {

constexpr int32_t entities = 500, components = 6, blocks = 4000, history = 200;

using Results = std::shared_ptr<EntityResults>;

void write_blocks(EntityResults& r, int32_t n, const std::string& name)
{
    const File file(name, create);
    for (int32_t s = 1; s <= n; ++s) {
        r.go_to(s);
        r.write(file);
    }
}

void write_blocks_plainly(EntityResults& r, int32_t n, const std::string& name)
{
    const hid_t file = plain::create_file(name);
    for (int32_t s = 1; s <= n; ++s) {
        r.go_to(s);
        r.write_plainly(file);
    }
    plain::close_file(file);
}

// Numbers of the keys found, which both sides must agree on.
void list(const std::string& name, std::vector<int32_t>& found)
{
    const File file(name, read_only);
    const int32_t collect = 1, silent = 0;
    int32_t capacity = 0, n = 0, ierr = 0, *keys = nullptr;
    int64_t pool_size = 0, total = 0, *offsets = nullptr;
    char* paths = nullptr;
    vak_lookup(file.id(), &collect, &silent, &capacity, &pool_size, &n, &total, &keys, &offsets, &paths,
               &ierr);
    must(ierr, "listing");
    found = {n, keys[0], static_cast<int32_t>(total)};
    std::free(keys);
    std::free(offsets);
    std::free(paths);
}

struct Listing {
    std::string path;
    std::vector<int32_t> keys;
    std::vector<std::string> paths;
};

herr_t list_member(hid_t group, const char* name, const H5L_info2_t* link, void* data);

void list_group(hid_t group, const char* name, Listing& listing)
{
    const hid_t member = H5Gopen2(group, name, H5P_DEFAULT);
    const size_t length = listing.path.size();
    listing.path.append("/").append(name);
    if (std::string_view(name) == "vakblock") {
        const hid_t attribute = H5Aopen(member, "block", H5P_DEFAULT);
        int32_t key = 0;
        must(H5Aread(attribute, H5T_NATIVE_INT32, &key), "reading a key");
        H5Aclose(attribute);
        listing.keys.push_back(key);
        listing.paths.push_back(listing.path.substr(1));
    } else {
        must(H5Literate2(member, H5_INDEX_NAME, H5_ITER_INC, nullptr, list_member, &listing),
             "listing plainly");
    }
    listing.path.resize(length);
    H5Gclose(member);
}

herr_t list_member(hid_t group, const char* name, const H5L_info2_t*, void* data)
{
    H5O_info2_t info;
    if (H5Oget_info_by_name3(group, name, &info, H5O_INFO_BASIC, H5P_DEFAULT) < 0) return 0;
    if (info.type == H5O_TYPE_GROUP) list_group(group, name, *static_cast<Listing*>(data));
    return 0;
}

void list_plainly(const std::string& name, std::vector<int32_t>& found)
{
    const hid_t file = plain::open_file(name);
    Listing listing;
    must(H5Literate2(file, H5_INDEX_NAME, H5_ITER_INC, nullptr, list_member, &listing), "listing plainly");
    plain::close_file(file);
    size_t total = 0;
    for (const std::string& path : listing.paths) total += path.size() + 1;
    found = {static_cast<int32_t>(listing.keys.size()), listing.keys.front(), static_cast<int32_t>(total)};
}

Contest listing()
{
    const std::string name = file_name("list.h5");
    EntityResults results(entities, components);
    write_blocks(results, blocks, name);
    const auto found = std::make_shared<std::vector<int32_t>>(3);
    return reading([=] { list(name, *found); }, [=] { list_plainly(name, *found); }, *found);
}

// First the attributes, then everything.
void read_history(EntityResults& r, const std::string& name)
{
    const File file(name, read_only);
    for (int32_t s = 1; s <= history; ++s) {
        r.go_to(s);
        r.read(file, 1);
        r.read(file, 2);
    }
}

void read_history_plainly(EntityResults& r, const std::string& name)
{
    const hid_t file = plain::open_file(name);
    for (int32_t s = 1; s <= history; ++s) {
        r.go_to(s);
        r.read_attributes_plainly(file);
        r.read_plainly(file);
    }
    plain::close_file(file);
}

Results results(plain::Care care)
{
    const auto r = std::make_shared<EntityResults>(entities, components);
    r->care = care;
    return r;
}

Contest reading_history(plain::Care care)
{
    const Results r = results(care);
    const std::string name = file_name("history.h5");
    write_blocks(*r, history, name);
    return reading([=] { read_history(*r, name); }, [=] { read_history_plainly(*r, name); }, r->res);
}

Contest writing_blocks(plain::Care care)
{
    const Results r = results(care);
    return writing([=](const std::string& name) { write_blocks(*r, blocks, name); },
                   [=](const std::string& name) { write_blocks_plainly(*r, blocks, name); });
}

}  // namespace

void add_many_blocks()
{
    using plain::Care;
    add_duel({"4,000 blocks of 500 x 6, written", 0.65, 9}, [] { return writing_blocks(Care::asks); });
    add_duel({"4,000 blocks of 500 x 6, written; plain asks nothing", 0.65, 9},
             [] { return writing_blocks(Care::knows); });
    add_duel({"4,000 blocks, listed", 0.5, 15}, listing);
    add_duel({"One variable over 200 states, both passes", 0.65, 25},
             [] { return reading_history(Care::asks); });
    add_duel({"One variable over 200 states; plain asks nothing", 0.65, 25},
             [] { return reading_history(Care::knows); });
}

}  // namespace bench
