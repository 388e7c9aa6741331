// Calls a reader with its arguments: once for the attributes, and where the arrays are wanted again for them.
#pragma once

#include <algorithm>

#include "show/fields.h"
#include "store/call.h"

namespace vak::show {

template <class Field>
constexpr bool is_array = requires(Field& field)
{
    field.fits();
};

template <class... Fields>
bool all_fit(const Request& request, const Fields&... fields)
{
    const auto fits = [&](const auto& field) {
        if constexpr (is_array<std::remove_cvref_t<decltype(field)>>)
            return field.fits() || !request.wants(field.name());
        return true;
    };
    return (fits(fields) && ...);
}

template <class Field>
void allocate(Field& field, const Request& request)
{
    if constexpr (is_array<Field>)
        if (!field.fits() && request.wants(field.name())) field.allocate(request.most_values);
}

template <class Field>
void take(Field& field, const Request& request, int64_t state)
{
    if constexpr (is_array<Field>)
        if (request.wants(field.name())) field.take(request, state);
}

// Reads until every array has the size that the values of others tell (three rounds are the most that a
// block needs). The first round without arrays only checks, so that nothing is allocated for a damaged block.
template <class Read, class... Fields>
void read_arrays(Read read, const Request& request, Fields&... fields)
{
    read();
    for (int round = 0; !all_fit(request, fields...); ++round) {
        if (round == 3) throw cli::Problem("the block changes while it is read; try again");
        (allocate(fields, request), ...);
        read();
    }
}

// The fields are the reader's arguments behind the group and before the status, in their order.
template <class Routine, class... Fields>
void read_block(Reading& reading, Routine routine, Pass& pass, Fields&... fields)
{
    const auto read = [&](int32_t part) {
        pass.value = part;
        store::call("reading " + reading.view.entry.path, routine, reading.group, fields.pointer()...);
    };
    read(pass.attributes);
    if (reading.request.values) {
        read_arrays([&] { read(pass.everything); }, reading.request, fields...);
        (take(fields, reading.request, 0), ...);
    }
    (fields.show(reading), ...);
}

// The same for a series, state by state: `go_to` sets the arguments that tell the state, from 0. States are
// known by the first of their index identifiers, if they have any.
template <class Routine, class GoTo, class... Fields>
void read_series(Reading& reading, Routine routine, Pass& pass, GoTo go_to, const Integer& states,
                 const Integers& indexident, Fields&... fields)
{
    const auto read = [&](int32_t part) {
        pass.value = part;
        store::call("reading " + reading.view.entry.path, routine, reading.group, fields.pointer()...);
    };
    read(pass.attributes);
    const int32_t end = reading.request.only ? std::min(states.value, 1) : states.value;
    for (int32_t state = 0; reading.request.values && state < end; ++state) {
        go_to(state);
        if (state == 0)
            read_arrays([&] { read(pass.everything); }, reading.request, fields...);
        else
            read(pass.everything);
        const auto& known_as = indexident.values();
        (take(fields, reading.request, known_as.empty() ? state + 1 : known_as.front()), ...);
    }
    (fields.show(reading), ...);
}

}  // namespace vak::show
