// The extremes of an array, component by component.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vak::show {

// Where an extreme was found: "entity" 17, "location" 2, "state" 3. Entities are told by their identifiers,
// states by their index identifiers, the others count from 1.
struct Place {
    std::string axis;
    int64_t number = 0;
};

struct Extreme {
    double value = 0;
    std::vector<Place> places;
};

struct ComponentExtremes {
    std::string name;  // of the component; empty for an array without components
    bool any = false;  // there is a value that is a number
    Extreme minimum, maximum;
    int64_t nan = 0;  // how many values are not a number
};

// The extents of an array by what they count, one letter each, the first outermost: e entities, l locations
// in an element, i rows, j columns, k entries; c components and p the two parts of complex values come last.
struct Axes {
    std::string letters;
    std::vector<int64_t> shape;
};

class Statistics {
public:
    explicit Statistics(Axes axes);

    // Takes all values of an array, or of one state of a series.
    template <class T>
    void add(const std::vector<T>& values, int64_t state);

    // `entities` are the identifiers along the extent e; `states` tells whether the array is a series.
    std::vector<ComponentExtremes> extremes(const std::vector<int32_t>& entities, bool states) const;

private:
    struct Found {
        double value = 0;
        int64_t row = 0, state = 0;
    };
    struct Component {
        bool any = false;
        Found minimum, maximum;
        int64_t nan = 0;
    };

    Extreme placed(const Found& found, const std::vector<int32_t>& entities, bool states) const;

    Axes rows_;                          // the extents without components and parts
    bool named_ = false;                 // there is an extent of components
    size_t parts_ = 1;                   // 2 for complex values
    std::vector<Component> components_;  // one for each component and part
};

}  // namespace vak::show
