// Rows of entities put in their places, and the values of one entity from several domains made one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/merge_order.h"

namespace vak {

// Rows of equal size, one after the other.
template <class Byte>
struct Rows {
    Byte* first;
    size_t bytes;  // of a row

    Byte* at(size_t row) const { return first + row * bytes; }
};

// Copies the rows of a source to their places. They may be narrower than the merged ones; the rest becomes 0.
void scatter_rows(const Order&, size_t source, Rows<const char> from, Rows<char> to);

// What becomes of the values of an entity that several domains have.
enum class Operator { lowest, sum, average, min, max };
Operator operator_of(const char* field);  // of 256 characters, upper or lower case

// Sums weights per merged row and keeps those of the shared rows for averages.
class Weights {
public:
    explicit Weights(const Order& order) : order_(order), sums_(order.size(), 0.0) {}

    // The weights of a source, one for each of its rows.
    void add(size_t source, std::vector<double> weights);
    double of(size_t source, size_t row) const { return by_source_[source][row]; }
    const std::vector<double>& sums() const { return sums_; }

private:
    const Order& order_;
    std::vector<double> sums_;
    std::vector<std::vector<double>> by_source_;
};

// The values of the shared rows of one state. Domains are added from the highest to the lowest.
class SharedValues {
public:
    // `operators` has one entry for each value of a row.
    SharedValues(const Order& order, std::vector<Operator> operators);

    template <class T>
    void add(size_t source, const T* values, const Weights& weights);

    // Puts the results in their places in the merged rows.
    template <class T>
    void store(T* merged) const;

private:
    struct Sums {
        double sum = 0, weighted = 0, weight = 0, min = 0, max = 0;
        int32_t n = 0;
    };
    double result(const Sums&, Operator) const;

    const Order& order_;
    std::vector<Operator> operators_;
    std::vector<Sums> sums_;
};

}  // namespace vak
