// Copying with conversion.
#include "storage/element_copy.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "storage/storage.h"

namespace vak {
namespace {

// What a float cannot hold becomes infinite, also what would just round to the largest float.
float narrow(double value)
{
    constexpr double largest = std::numeric_limits<float>::max();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double fitting = value > largest ? infinity : value < -largest ? -infinity : value;
    return static_cast<float>(fitting);
}

template <class From, class To, class Convert>
void convert(const unsigned char* from, unsigned char* to, size_t count, Convert convert_one)
{
    for (size_t i = 0; i < count; ++i) {
        From value;
        std::memcpy(&value, from + i * sizeof(From), sizeof(From));
        const To converted = convert_one(value);
        std::memcpy(to + i * sizeof(To), &converted, sizeof(To));
    }
}

}  // namespace

bool can_copy(const ElementForm& form)
{
    const bool widens = form.from == 4 && form.to == 8;
    const bool narrows = form.from == 8 && form.to == 4;
    if (form.type == real_type) return widens || narrows || form.from == form.to;
    return form.from == form.to || (form.type == integer_type && widens);
}

void copy_elements(const ElementForm& form, const unsigned char* from, unsigned char* to, size_t count)
{
    if (form.from == form.to) {
        std::memcpy(to, from, count * form.to);
    } else if (form.type == integer_type) {
        convert<int32_t, int64_t>(from, to, count, [](int32_t value) { return int64_t{value}; });
    } else if (form.from == 4) {
        convert<float, double>(from, to, count, [](float value) { return double{value}; });
    } else {
        convert<double, float>(from, to, count, narrow);
    }
}

void repeat_element(const unsigned char* element, size_t size, unsigned char* to, size_t count)
{
    if (count == 0) return;
    std::memcpy(to, element, size);
    const size_t all = size * count;
    for (size_t filled = size; filled < all;) {
        const size_t more = std::min(filled, all - filled);
        std::memcpy(to + filled, to, more);
        filled += more;
    }
}

}  // namespace vak
