#include "compare/differences.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <set>
#include <string_view>

namespace vak::compare {

namespace {

using show::ArrayView;
using show::BlockView;
using Order = std::vector<size_t>;  // of the entities; empty when they stand in ascending order

const ArrayView* array_of(const BlockView& block, std::string_view name)
{
    const auto at = std::find_if(block.arrays.begin(), block.arrays.end(),
                                 [&](const ArrayView& array) { return array.name == name; });
    return at == block.arrays.end() ? nullptr : &*at;
}

// The array that identifies the entities of a block, if it has them.
const ArrayView* identifiers_of(const BlockView& block)
{
    if (array_of(block, "idcoll") != nullptr) return nullptr;
    for (const char* name : {"entid", "idele", "pid"})
        if (const ArrayView* array = array_of(block, name);
            array != nullptr && std::holds_alternative<std::vector<int32_t>>(array->values))
            return array;
    return nullptr;
}

Order order_of(const BlockView& block)
{
    const ArrayView* identifiers = identifiers_of(block);
    if (identifiers == nullptr) return {};
    const auto& ids = std::get<std::vector<int32_t>>(identifiers->values);
    if (std::is_sorted(ids.begin(), ids.end())) return {};
    Order order(ids.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](size_t i, size_t k) { return ids[i] < ids[k]; });
    return order;
}

bool is_by_entity(const ArrayView& array)
{
    static const std::set<std::string_view> names{"entid",   "idele",  "pid",    "ic",  "iparam", "fparam",
                                                  "idparam", "cparam", "title",  "uid", "mid",    "mtyp",
                                                  "pcol",    "fid",    "weight", "res", "status"};
    return names.contains(array.name);
}

// The values of a series have its states in front of the entities.
size_t states_of(const BlockView& block, const ArrayView& array)
{
    const int32_t kind = block.entry.key / 10 * 10;
    const bool series = kind == 1050 || kind == 1150 || kind == 2150;
    const bool by_state = array.name == "res" || array.name == "status";
    return series && by_state && !array.shape.empty() ? static_cast<size_t>(array.shape[0]) : 1;
}

template <class T>
std::vector<T> ordered(const ArrayView& array, const std::vector<T>& values, size_t states,
                       const Order& order)
{
    const size_t rows = states * order.size();
    if (rows == 0 || !is_by_entity(array) || values.size() % rows != 0) return values;
    const size_t width = values.size() / rows;
    std::vector<T> sorted;
    sorted.reserve(values.size());
    for (size_t state = 0; state < states; ++state)
        for (const size_t row : order) {
            const auto from =
                values.begin() + static_cast<std::ptrdiff_t>((state * order.size() + row) * width);
            sorted.insert(sorted.end(), from, from + static_cast<std::ptrdiff_t>(width));
        }
    return sorted;
}

std::string shape_text(const ArrayView& array)
{
    std::string text = "[";
    for (const int64_t extent : array.shape) text += (text.size() > 1 ? ", " : "") + std::to_string(extent);
    return text + "]";
}

template <class T>
bool differ(const T& a, const T& b, double)
{
    return a != b;
}
bool differ(float a, float b, double allowed)
{
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) != std::isnan(b);
    return a != b && !(std::fabs(static_cast<double>(a) - b) <= allowed);
}

template <class T>
double allowed_difference(const std::vector<T>& values, double tolerance)
{
    double largest = 0;
    if constexpr (std::is_same_v<T, float>)
        for (const float value : values)
            if (std::isfinite(value)) largest = std::max(largest, std::fabs(static_cast<double>(value)));
    return tolerance * largest;
}

template <class T>
std::string value_text(const T& value)
{
    if constexpr (std::is_same_v<T, std::string>) return "\"" + value + "\"";
    char text[32];
    if constexpr (std::is_same_v<T, float>)
        std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    else if constexpr (!std::is_same_v<T, std::string>)
        std::snprintf(text, sizeof text, "%lld", static_cast<long long>(value));
    return text;
}

// "res: 3 of 60 values differ, first value 7: 1.5 and 1.25"; empty when none does.
template <class T>
std::string value_difference(const std::string& name, const std::vector<T>& a, const std::vector<T>& b,
                             double tolerance)
{
    const double allowed = allowed_difference(a, tolerance);
    size_t count = 0, first = 0;
    for (size_t i = a.size(); i-- > 0;)
        if (differ(a[i], b[i], allowed)) {
            first = i;
            ++count;
        }
    if (count == 0) return {};
    return name + ": " + std::to_string(count) + " of " + std::to_string(a.size()) +
           " values differ, first value " + std::to_string(first + 1) + ": " + value_text(a[first]) +
           " and " + value_text(b[first]);
}

// A block with the order of its entities.
struct Side {
    explicit Side(const BlockView& view) : block(view), order(order_of(view)) {}
    const BlockView& block;
    Order order;
};

std::string array_difference(const Side& a, const ArrayView& of_a, const Side& b, const ArrayView& of_b,
                             double tolerance)
{
    if (of_a.shape != of_b.shape)
        return of_a.name + ": shapes " + shape_text(of_a) + " and " + shape_text(of_b);
    if (of_a.type != of_b.type || of_a.values.index() != of_b.values.index())
        return of_a.name + ": types " + of_a.type + " and " + of_b.type;
    return std::visit(
        [&](const auto& values) {
            using Values = std::remove_cvref_t<decltype(values)>;
            const Values own = ordered(of_a, values, states_of(a.block, of_a), a.order);
            const Values other =
                ordered(of_b, std::get<Values>(of_b.values), states_of(b.block, of_b), b.order);
            return own.size() == other.size() ? value_difference(of_a.name, own, other, tolerance)
                                              : of_a.name + ": not as many values";
        },
        of_a.values);
}

std::string attribute_text(const show::AttributeValue& value)
{
    if (const auto* text = std::get_if<std::string>(&value)) return "\"" + *text + "\"";
    if (const auto* number = std::get_if<int64_t>(&value)) return std::to_string(*number);
    std::string all;
    for (const int64_t number : std::get<std::vector<int64_t>>(value)) all += std::to_string(number) + " ";
    return all;
}

bool is_of_storage(const std::string& attribute) { return attribute == "flags" || attribute == "params"; }

std::string attribute_difference(const std::pair<std::string, show::AttributeValue>& attribute,
                                 const BlockView& other)
{
    const auto at = std::find_if(other.attributes.begin(), other.attributes.end(),
                                 [&](const auto& entry) { return entry.first == attribute.first; });
    if (at == other.attributes.end()) return attribute.first + ": only in one of them";
    if (at->second == attribute.second) return {};
    return attribute.first + ": " + attribute_text(attribute.second) + " and " + attribute_text(at->second);
}

// The names of what the second block has beyond the first.
void add_missing(const BlockView& a, const BlockView& b, std::vector<std::string>& found)
{
    for (const auto& own : b.attributes)
        if (!is_of_storage(own.first) &&
            std::none_of(a.attributes.begin(), a.attributes.end(),
                         [&](const auto& entry) { return entry.first == own.first; }))
            found.push_back(own.first + ": only in one of them");
    for (const ArrayView& array : b.arrays)
        if (array_of(a, array.name) == nullptr) found.push_back(array.name + ": only in one of them");
}

}  // namespace

std::vector<std::string> differences(const BlockView& a, const BlockView& b, double tolerance)
{
    if (a.entry.key != b.entry.key)
        return {"keys " + std::to_string(a.entry.key) + " and " + std::to_string(b.entry.key)};
    std::vector<std::string> found;
    const auto add = [&](std::string line) {
        if (!line.empty()) found.push_back(std::move(line));
    };
    for (const auto& attribute : a.attributes)
        if (!is_of_storage(attribute.first)) add(attribute_difference(attribute, b));
    const Side first(a), second(b);
    for (const ArrayView& array : a.arrays) {
        const ArrayView* other = array_of(b, array.name);
        add(other ? array_difference(first, array, second, *other, tolerance)
                  : array.name + ": only in one of them");
    }
    add_missing(a, b, found);
    return found;
}

}  // namespace vak::compare
