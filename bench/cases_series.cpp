// A series: states appended one by one, the history of an entity, the field of a state.
#include "cases.h"
#include "duel.h"
#include "series_block.h"

#include <memory>

namespace bench {

namespace {

constexpr int32_t states = 50, entities = 200000;
constexpr hsize_t histories = 40;

using Series = std::shared_ptr<SeriesBlock>;

void append_all(SeriesBlock& s, const std::string& name)
{
    const File file(name, create);
    for (int32_t i = 0; i < states; ++i) s.append(file);
}

void append_all_plainly(SeriesBlock& s, const std::string& name)
{
    const hid_t file = plain::create_file(name);
    for (int32_t i = 0; i < states; ++i) s.append_plainly(file);
    plain::close_file(file);
}

struct Slab {
    plain::Extents count, start;
};

std::vector<Slab> slabs_of_histories()
{
    std::vector<Slab> slabs;
    for (hsize_t i = 0; i < histories; ++i)
        slabs.push_back({{states, 1, SeriesBlock::components}, {0, i * (entities / histories), 0}});
    return slabs;
}

std::vector<Slab> slabs_of_states()
{
    std::vector<Slab> slabs;
    for (hsize_t i = 0; i < states; ++i) slabs.push_back({{1, entities, SeriesBlock::components}, {i, 0, 0}});
    return slabs;
}

void read_slabs(SeriesBlock& s, const std::vector<Slab>& slabs, const std::string& name)
{
    const File file(name, read_only);
    const BlockGroup block(file, s.path);
    for (const Slab& slab : slabs) s.read_slab(block, slab.count, slab.start);
}

void read_slabs_plainly(SeriesBlock& s, const std::vector<Slab>& slabs, const std::string& name)
{
    const hid_t file = plain::open_file(name), group = H5Gopen2(file, s.path.c_str(), H5P_DEFAULT);
    for (const Slab& slab : slabs) s.read_slab_plainly(group, slab.count, slab.start);
    H5Gclose(group);
    plain::close_file(file);
}

Series series() { return std::make_shared<SeriesBlock>(entities, 0, plain::Filters{}); }

Contest appending()
{
    const Series s = series();
    return writing([=](const std::string& name) { append_all(*s, name); },
                   [=](const std::string& name) { append_all_plainly(*s, name); });
}

Contest reading_slabs(const std::vector<Slab>& slabs)
{
    const Series s = series();
    const std::string name = file_name("series.h5");
    append_all(*s, name);
    return reading([=] { read_slabs(*s, slabs, name); }, [=] { read_slabs_plainly(*s, slabs, name); },
                   s->res);
}

}  // namespace

void add_series()
{
    add_duel({"Series: 50 states of 200,000 x 3, appended", 0.85, 11}, appending);
    add_duel({"Series: history of an entity, 40 times", 0.65, 15},
             [] { return reading_slabs(slabs_of_histories()); });
    add_duel({"Series: field of a state, 50 times", 0.9, 15},
             [] { return reading_slabs(slabs_of_states()); });
}

}  // namespace bench
