#include "erase/states.h"

#include <hdf5.h>

#include <algorithm>
#include <cstdlib>

#include "problem.h"

namespace vak::erase {

namespace {

// All values of a dataset of a block, or none. The library's walk has opened the block before.
template <class T>
std::vector<T> values_of(hid_t root, const std::string& path, const char* name, hid_t type)
{
    std::vector<T> values;
    for (const char* section : {"/", "/index/", "/data/"}) {
        hid_t set = H5I_INVALID_HID;
        H5E_BEGIN_TRY { set = H5Dopen2(root, (path + section + name).c_str(), H5P_DEFAULT); }
        H5E_END_TRY
        if (set < 0) continue;
        const hid_t space = H5Dget_space(set);
        const hssize_t n = H5Sget_simple_extent_npoints(space);
        constexpr hssize_t most = 1 << 26;  // rows beyond this are no states of a solver
        if (n > 0 && n < most) values.resize(static_cast<size_t>(n));
        if (!values.empty() && H5Dread(set, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()) < 0)
            values.clear();
        H5Sclose(space);
        H5Dclose(set);
        break;
    }
    return values;
}

size_t index_count(hid_t root, const std::string& path)
{
    int32_t n = 0;
    for (const std::string& holder : {path, path + "/header"}) {
        hid_t attribute = H5I_INVALID_HID;
        H5E_BEGIN_TRY
        {
            attribute = H5Aopen_by_name(root, holder.c_str(), "nindex", H5P_DEFAULT, H5P_DEFAULT);
        }
        H5E_END_TRY
        if (attribute < 0) continue;
        if (H5Aread(attribute, H5T_NATIVE_INT32, &n) < 0) n = 0;
        H5Aclose(attribute);
        break;
    }
    return n > 0 ? static_cast<size_t>(n) : 0;
}

std::vector<State> states_in(hid_t root, const std::string& path)
{
    std::vector<State> states;
    const size_t width = index_count(root, path);
    if (width == 0) return states;
    const auto idents = values_of<int32_t>(root, path, "indexident", H5T_NATIVE_INT32);
    auto values = values_of<double>(root, path, "indexval", H5T_NATIVE_DOUBLE);
    values.resize(idents.size());
    for (size_t at = 0; at + width <= idents.size(); at += width)
        states.push_back(
            {.index = {&idents[at], &idents[at] + width}, .values = {&values[at], &values[at] + width}});
    return states;
}

// The blocks that an external link brings in are another file's; the library does not touch them.
bool is_of_this_file(hid_t root, const std::string& path)
{
    H5O_info2_t own{}, block{};
    return H5Oget_info3(root, &own, H5O_INFO_BASIC) >= 0 &&
           H5Oget_info_by_name3(root, path.c_str(), &block, H5O_INFO_BASIC, H5P_DEFAULT) >= 0 &&
           own.fileno == block.fileno;
}

bool is_named_by_value(const State& state, double value)
{
    // Stored with four bytes in most files.
    return std::ranges::any_of(state.values, [&](double v) {
        return v == value || static_cast<float>(v) == static_cast<float>(value);
    });
}

}  // namespace

std::vector<BlockStates> states_of(const store::File& file, const store::Catalogue& catalogue)
{
    std::vector<BlockStates> found;
    for (const store::BlockEntry& block : catalogue.blocks)
        if (is_of_this_file(*file.root(), block.path))
            found.push_back({.block = block, .states = states_in(*file.root(), block.path)});
    return found;
}

std::vector<int32_t> index_of(const std::vector<BlockStates>& blocks, const std::string& state)
{
    char* end = nullptr;
    const double value = std::strtod(state.c_str(), &end);
    if (state.empty() || *end != '\0')
        throw cli::Problem("\"" + state + "\" is no state: give its number or a value");
    for (const BlockStates& b : blocks) {
        const bool numbered = b.block.states.size() == 1 && static_cast<double>(b.block.states[0]) == value;
        if (numbered && b.states.size() == 1) return b.states[0].index;
    }
    for (const BlockStates& b : blocks)
        for (const State& s : b.states)
            if (is_named_by_value(s, value)) return s.index;
    throw cli::Problem("no state has the number or the index value " + state);
}

bool lies_after(const State& state, const std::vector<int32_t>& index)
{
    for (size_t i = 0; i < std::min(state.index.size(), index.size()); ++i)
        if (state.index[i] != index[i]) return state.index[i] > index[i];
    return false;
}

}  // namespace vak::erase
