// The mesh: elements with their nodes, and titled entities.
#include "block_head.h"
#include "cases.h"
#include "duel.h"
#include "ours.h"

#include <memory>

namespace bench {

namespace {

constexpr int32_t count = 1000000, title_length = 24;
constexpr int32_t deflate = 1 + 4;  // of integers and texts

// What a kind of block has in common here: its fields for the plain side, the flags for ours.
struct ModelBlock {
    Head head;
    std::string path;
    int32_t flags, zero = 0, state = -1, params[2] = {0, 6}, real = 4, n = count;
    Index index{.n = 0};
    std::vector<plain::Field> fields;
    std::vector<int32_t> ids = numbers_from_1(count);

    ModelBlock(int32_t key, const char* type, const char* name, int32_t flag_word)
        : head(key, type), path("constant/" + std::string(type) + "/" + name + "/vakblock"), flags(flag_word)
    {
        fields = {plain::attribute("block", head.key), plain::attribute("blocktype", head.type)};
    }
    ModelBlock(const ModelBlock&) = delete;
    plain::Filters filters() const { return {.deflate = flags == 0 ? -1 : params[1]}; }
    void add(const std::vector<plain::Field>& more) { fields.insert(fields.end(), more.begin(), more.end()); }
};

// Eight-node elements of a cube of 100 along each edge.
std::vector<int32_t> cube()
{
    constexpr int32_t edge = 100, line = edge + 1, plane = line * line;
    std::vector<int32_t> ic;
    for (int32_t e = 0; e < count; ++e) {
        const int32_t first = 1 + e % edge + e / edge % edge * line + e / (edge * edge) * plane;
        const int32_t bottom[] = {first, first + 1, first + line + 1, first + line};
        for (const int32_t node : bottom) ic.push_back(node);
        for (const int32_t node : bottom) ic.push_back(node + plane);
    }
    return ic;
}

struct Elements : ModelBlock {
    std::string etyp = field("ELEMENT"), etypelem = field("HEX8"), etyppart = field("PART"),
                etypnode = field("NODE");
    int32_t npele = 8, ndim = 3;
    std::vector<int32_t> pid = std::vector<int32_t>(count, 1), values = cube();

    explicit Elements(int32_t flag_word) : ModelBlock(300, "connectivities", "HEX8", flag_word)
    {
        using namespace plain;
        add({attribute("etyp", etyp), attribute("etypelem", etypelem), attribute("etyppart", etyppart),
             attribute("etypnode", etypnode), attribute("nele", n), attribute("npele", npele),
             attribute("ndim", ndim), attribute("nbint", zero), attribute("nbfloat", zero),
             attribute("nindex", index.n), attribute("indexic", index.code),
             integers("idele", {count}, ids.data(), filters()),
             integers("pid", {count}, pid.data(), filters()),
             integers("ic", {count, 8}, values.data(), filters())});
    }
    void write(const File& file)
    {
        int32_t ierr = 0;
        VAK_WRITE_CONNECTIVITIES(file.id(), etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(),
                                 nullptr, &n, &npele, &ndim, &zero, &zero, &index.n, &index.code, nullptr,
                                 nullptr, ids.data(), pid.data(), values.data(), nullptr, nullptr, &state,
                                 &flags, params, &real, &ierr);
        must(ierr, "writing connectivities");
    }
    void read(const BlockGroup& block)
    {
        const int32_t everything = 15;
        int32_t found = 0, digits_level[2] = {0, 0}, ierr = 0;
        VAK_READ_CONNECTIVITIES(block.id(), &everything, etyp.data(), etypelem.data(), etyppart.data(),
                                etypnode.data(), nullptr, &n, &npele, &ndim, &zero, &zero, &index.n,
                                &index.code, nullptr, nullptr, ids.data(), pid.data(), values.data(), nullptr,
                                nullptr, &found, digits_level, &ierr);
        must(ierr, "reading connectivities");
    }
};

std::string titles()
{
    std::string all(size_t(count) * title_length + 1, ' ');
    for (size_t i = 0; i < count; ++i)
        std::snprintf(&all[i * title_length], title_length + 1, "Node %011zu of cube", i + 1);
    all.pop_back();
    for (char& c : all)
        if (c == '\0') c = ' ';
    return all;
}

struct Titles : ModelBlock {
    std::string etyp = field("NODE"), values = titles();
    int32_t length = title_length;

    explicit Titles(int32_t flag_word) : ModelBlock(200, "attributes", "NODE", flag_word)
    {
        using namespace plain;
        add({attribute("etyp", etyp), attribute("nent", n), attribute("nuid", zero),
             attribute("length", length), attribute("nindex", index.n), attribute("indexic", index.code),
             integers("entid", {count}, ids.data(), filters()),
             texts("title", title_length, count, values.data(), filters())});
    }
    void write(const File& file)
    {
        int32_t ierr = 0;
        VAK_WRITE_ATTRIBUTES(file.id(), etyp.data(), &n, &zero, &length, &index.n, &index.code, nullptr,
                             nullptr, ids.data(), values.data(), nullptr, &state, &flags, params, &real,
                             &ierr);
        must(ierr, "writing attributes");
    }
    void read(const BlockGroup& block)
    {
        const int32_t everything = 15;
        int32_t found = 0, digits_level[2] = {0, 0}, ierr = 0;
        VAK_READ_ATTRIBUTES(block.id(), &everything, etyp.data(), &n, &zero, &length, &index.n, &index.code,
                            nullptr, nullptr, ids.data(), values.data(), nullptr, &found, digits_level,
                            &ierr);
        must(ierr, "reading attributes");
    }
};

template <class Block>
void write_ours(Block& b, const std::string& name)
{
    const File file(name, create);
    b.write(file);
}

template <class Block>
Contest writing_model(int32_t flags)
{
    const auto b = std::make_shared<Block>(flags);
    return writing([=](const std::string& name) { write_ours(*b, name); },
                   [=](const std::string& name) {
                       const hid_t file = plain::create_file(name);
                       plain::write_block(file, b->path, b->fields);
                       plain::close_file(file);
                   });
}

template <class Block>
Contest reading_model(int32_t flags)
{
    const auto b = std::make_shared<Block>(flags);
    const std::string name = file_name("model.h5");
    write_ours(*b, name);
    return reading(
        [=] {
            const File file(name, read_only);
            b->read(BlockGroup(file, b->path));
        },
        [=] {
            const hid_t file = plain::open_file(name);
            plain::read_block(file, b->path, b->fields);
            plain::close_file(file);
        },
        b->values);
}

}  // namespace

void add_model()
{
    add_duel({"1,000,000 eight-node elements, written", 1.0, 11}, [] { return writing_model<Elements>(0); });
    add_duel({"1,000,000 eight-node elements, read", 1.0, 15}, [] { return reading_model<Elements>(0); });
    add_duel({"1,000,000 eight-node elements, deflate 6, written", 0.6, 3},
             [] { return writing_model<Elements>(deflate); });
    add_duel({"1,000,000 eight-node elements, deflate 6, read", 0.6, 7},
             [] { return reading_model<Elements>(deflate); });
    add_duel({"1,000,000 titles of 24 characters, written", 1.0, 11},
             [] { return writing_model<Titles>(0); });
    add_duel({"1,000,000 titles of 24 characters, read", 1.0, 15}, [] { return reading_model<Titles>(0); });
    add_duel({"1,000,000 titles, deflate 6, written", 0.6, 3}, [] { return writing_model<Titles>(deflate); });
    add_duel({"1,000,000 titles, deflate 6, read", 0.6, 7}, [] { return reading_model<Titles>(deflate); });
}

}  // namespace bench
