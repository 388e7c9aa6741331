#include "tools/merge_rows.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <iterator>

#include "frame/paths.h"

namespace vak {

namespace {

// With the row's size known to the compiler a copy is a few moves.
template <size_t bytes>
void scatter_fixed(const std::vector<int32_t>& place, const char* from, char* to)
{
    for (size_t i = 0; i < place.size(); ++i)
        std::memcpy(to + static_cast<size_t>(place[i]) * bytes, from + i * bytes, bytes);
}

void scatter_single(const std::vector<int32_t>& place, Rows<const char> from, Rows<char> to)
{
    switch (to.bytes) {
        case 4: return scatter_fixed<4>(place, from.first, to.first);
        case 8: return scatter_fixed<8>(place, from.first, to.first);
        case 12: return scatter_fixed<12>(place, from.first, to.first);
        case 16: return scatter_fixed<16>(place, from.first, to.first);
        case 24: return scatter_fixed<24>(place, from.first, to.first);
        case 32: return scatter_fixed<32>(place, from.first, to.first);
        default: break;
    }
    for (size_t i = 0; i < place.size(); ++i)
        std::memcpy(to.at(static_cast<size_t>(place[i])), from.at(i), to.bytes);
}

void scatter_runs(const std::vector<Run>& runs, Rows<const char> from, Rows<char> to)
{
    for (const Run& run : runs)
        std::memcpy(to.at(static_cast<size_t>(run.place)), from.at(static_cast<size_t>(run.row)),
                    static_cast<size_t>(run.n) * to.bytes);
}

void scatter_narrower(const std::vector<int32_t>& place, Rows<const char> from, Rows<char> to)
{
    for (size_t i = 0; i < place.size(); ++i) {
        char* const row = to.at(static_cast<size_t>(place[i]));
        std::memset(row, 0, to.bytes);
        std::memcpy(row, from.at(i), std::min(from.bytes, to.bytes));
    }
}

}  // namespace

void scatter_rows(const Order& order, size_t source, Rows<const char> from, Rows<char> to)
{
    const std::vector<int32_t>& place = order.place[source];
    if (from.bytes != to.bytes) return scatter_narrower(place, from, to);
    if (place.empty() || to.bytes == 0) return;
    if (order.runs[source].empty()) return scatter_single(place, from, to);
    scatter_runs(order.runs[source], from, to);
}

Operator operator_of(const char* field)
{
    std::string word;
    std::ranges::transform(counted(field), std::back_inserter(word),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (word == "SUM") return Operator::sum;
    if (word == "AVERAGE") return Operator::average;
    if (word == "MIN") return Operator::min;
    if (word == "MAX") return Operator::max;
    return Operator::lowest;
}

void Weights::add(size_t source, std::vector<double> weights)
{
    const std::vector<int32_t>& place = order_.place[source];
    for (const int32_t row : order_.superseded[source]) weights[static_cast<size_t>(row)] = 0;
    for (size_t i = 0; i < place.size(); ++i) sums_[static_cast<size_t>(place[i])] += weights[i];
    by_source_.resize(std::max(by_source_.size(), source + 1));
    by_source_[source] = std::move(weights);
}

SharedValues::SharedValues(const Order& order, std::vector<Operator> operators)
    : order_(order), operators_(std::move(operators)), sums_(order.shared.size() * operators_.size())
{
}

template <class T>
void SharedValues::add(size_t source, const T* values, const Weights& weights)
{
    const size_t width = operators_.size();
    for (const SharedRow& shared : order_.shared_rows[source]) {
        const auto row = static_cast<size_t>(shared.row);
        const double weight = weights.of(source, row);
        for (size_t k = 0; k < width; ++k) {
            const double value = values[row * width + k];
            Sums& s = sums_[static_cast<size_t>(shared.slot) * width + k];
            s.sum += value;
            s.weighted += weight * value;
            s.weight += weight;
            s.min = s.n == 0 ? value : std::fmin(s.min, value);
            s.max = s.n == 0 ? value : std::fmax(s.max, value);
            ++s.n;
        }
    }
}

double SharedValues::result(const Sums& s, Operator op) const
{
    switch (op) {
        case Operator::sum: return s.sum;
        case Operator::min: return s.min;
        case Operator::max: return s.max;
        default: break;
    }
    // Equal values keep their bits; rounding in the mean must not touch them.
    if (s.min == s.max && !std::isnan(s.sum)) return s.min;
    return s.weight == 0 ? s.sum / s.n : s.weighted / s.weight;
}

template <class T>
void SharedValues::store(T* merged) const
{
    const size_t width = operators_.size();
    for (size_t i = 0; i < order_.shared.size(); ++i) {
        T* const row = merged + static_cast<size_t>(order_.shared[i]) * width;
        for (size_t k = 0; k < width; ++k)
            if (operators_[k] != Operator::lowest)
                row[k] = static_cast<T>(result(sums_[i * width + k], operators_[k]));
    }
}

template void SharedValues::add(size_t, const float*, const Weights&);
template void SharedValues::add(size_t, const double*, const Weights&);
template void SharedValues::store(float*) const;
template void SharedValues::store(double*) const;

}  // namespace vak
