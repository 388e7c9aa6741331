#include "merge/expected.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <map>

namespace vak::merge {

namespace {

using Names = std::set<std::string, std::less<>>;

// Complex variants have the key behind that of the real ones.
int32_t real_key(int32_t key) { return key >= 1000 && key % 10 == 1 ? key - 1 : key; }

const Names& agreeing(int32_t key)
{
    static const Names entities{"ncoo", "fswitch", "dmpswitch", "nstate"},
        elements{"ncoo", "numl", "ndim", "fswitch", "dmpswitch", "nstate"};
    static const std::map<int32_t, Names> kinds{{300, {"npele", "ndim", "nbint", "nbfloat"}},
                                                {500, {"nbid", "nbint", "nbfloat", "nbstring", "length"}},
                                                {1000, entities},
                                                {1050, entities},
                                                {1100, elements},
                                                {1150, elements},
                                                {2150, {"nstate"}}};
    static const Names none;
    const auto kind = kinds.find(real_key(key));
    return kind == kinds.end() ? none : kind->second;
}

}  // namespace

Fate fate_of(int32_t key)
{
    static const std::set<int32_t> joined{100, 200, 250, 300, 400, 500, 1000, 1050, 1100, 1150, 2100, 2150},
        copied{10, 20, 30, 32, 40, 10000, 10100, 10200};
    if (key == 1) return Fate::present;
    if (joined.contains(real_key(key))) return Fate::joined;
    return copied.contains(real_key(key)) ? Fate::copied : Fate::unknown;
}

std::string identifiers_of(int32_t key)
{
    switch (real_key(key)) {
        case 100: return "pid";
        case 300:
        case 1100:
        case 1150: return "idele";
        case 400: return "idcoll";
        default: return "entid";
    }
}

Shape shape_of(const show::BlockView& block)
{
    Shape shape{{"key", block.entry.key}};
    for (const auto& [name, value] : block.attributes)
        if (const int64_t* number = std::get_if<int64_t>(&value);
            number != nullptr && agreeing(block.entry.key).contains(name))
            shape.emplace_back(name, *number);
    return shape;
}

int64_t entities_of(const show::BlockView& block)
{
    static const Names counts{"nent", "nele", "npart", "ncoll"};
    for (const auto& [name, value] : block.attributes)
        if (const int64_t* number = std::get_if<int64_t>(&value); number != nullptr && counts.contains(name))
            return std::max<int64_t>(*number, 0);
    return 0;
}

std::string text_of(const show::BlockView& block, const std::string& attribute)
{
    for (const auto& [name, value] : block.attributes)
        if (const auto* text = std::get_if<std::string>(&value); text != nullptr && name == attribute)
            return *text;
    return {};
}

Members members_of(const show::BlockView& block)
{
    constexpr int32_t none = std::numeric_limits<int32_t>::min();
    const auto collectors = values_of<int32_t>(block, "idcoll"), counts = values_of<int32_t>(block, "nent"),
               entities = values_of<int32_t>(block, "entid");
    const auto types = values_of<std::string>(block, "etyp");
    Members members;
    auto entity = entities.begin();
    for (const std::string& type : types) members.emplace(none, type, none);
    for (size_t i = 0; i < collectors.size(); ++i) {
        members.emplace(collectors[i], "", none);
        for (size_t t = 0; t < types.size(); ++t)
            for (int32_t n = counts.at(i * types.size() + t); n > 0 && entity != entities.end(); --n)
                members.emplace(collectors[i], types[t], *entity++);
    }
    return members;
}

}  // namespace vak::merge
