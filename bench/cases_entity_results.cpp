// Large blocks: a million nodes, many states; one filtered.
#include "cases.h"
#include "duel.h"
#include "entity_results.h"

#include <memory>

namespace bench {

namespace {

constexpr int32_t nodes = 1000000;
constexpr int32_t shuffle_and_deflate = 2 + 16;  // of reals
const plain::Filters like_it{.shuffle = true, .deflate = 6};

using Results = std::shared_ptr<EntityResults>;

void write_states(EntityResults& r, int32_t states, const std::string& name)
{
    const File file(name, create);
    for (int32_t s = 1; s <= states; ++s) {
        r.go_to(s);
        r.write(file);
    }
}

void write_states_plainly(EntityResults& r, int32_t states, const std::string& name)
{
    const hid_t file = plain::create_file(name);
    for (int32_t s = 1; s <= states; ++s) {
        r.go_to(s);
        r.write_plainly(file);
    }
    plain::close_file(file);
}

void read_states(EntityResults& r, int32_t states, const std::string& name)
{
    const File file(name, read_only);
    for (int32_t s = 1; s <= states; ++s) {
        r.go_to(s);
        r.read(file, 2);
    }
}

void read_states_plainly(EntityResults& r, int32_t states, const std::string& name)
{
    const hid_t file = plain::open_file(name);
    for (int32_t s = 1; s <= states; ++s) {
        r.go_to(s);
        r.read_plainly(file);
    }
    plain::close_file(file);
}

Contest writing_states(const Results& r, int32_t states)
{
    return writing([=](const std::string& name) { write_states(*r, states, name); },
                   [=](const std::string& name) { write_states_plainly(*r, states, name); });
}

Contest reading_states(const Results& r, int32_t states)
{
    const std::string name = file_name("read.h5");
    write_states(*r, states, name);
    return reading([=] { read_states(*r, states, name); }, [=] { read_states_plainly(*r, states, name); },
                   r->res);
}

Results plain_results() { return std::make_shared<EntityResults>(nodes, 3); }
Results filtered_results() { return std::make_shared<EntityResults>(nodes, 3, shuffle_and_deflate, like_it); }

}  // namespace

void add_entity_results()
{
    add_duel({"1,000,000 nodes x 3 x 20 states, written", 1.0, 7},
             [] { return writing_states(plain_results(), 20); });
    add_duel({"1,000,000 nodes x 3 x 20 states, read", 1.0, 7},
             [] { return reading_states(plain_results(), 20); });
    add_duel({"1,000,000 x 3, shuffle and deflate 6, written", 0.6, 5},
             [] { return writing_states(filtered_results(), 1); });
    add_duel({"1,000,000 x 3, shuffle and deflate 6, read", 0.65, 9},
             [] { return reading_states(filtered_results(), 1); });
}

}  // namespace bench
