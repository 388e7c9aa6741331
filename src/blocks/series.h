// What multi-state blocks have in common: per-state arrays whose first extent, the state axis, grows.
//
// A call appends its index rows first and its values last, so that the values say how many states are
// complete. Index rows beyond them are what a failed call left: they are not read, and give way to the next
// state.
#pragma once

#include "blocks/results.h"

namespace vak {

struct Series {
    Arg<char> name;  // "series"
    Arg<int32_t> nstate;
};

// A run of states, counted from the present end of the series on writing, from its first state on reading.
struct States {
    int64_t start;
    int64_t count;
};

// Whether no call has completed yet: attributes and tables, which are written once, are still to come.
bool is_empty_series(const Block&);

// The states that a call is about to append, and the number of complete ones before them.
struct Growth {
    int64_t end;
    States added;
    int64_t after() const { return added.count > 0 ? end + added.start + added.count : end; }
};

// Stops the block when the states could not be counted any more.
Growth grow(Block&, const char* values, Shape extents, States added);

// The rows of these states; "nstate" comes last.
void append_index(Block&, const Index&, const Growth&);
void append_reals(Block&, const RealArray&, Shape extents, const Growth&);
void append_integers(Block&, const char* name, Arg<int32_t>, Shape extents, const Growth&);
void append_state_count(Block&, const Growth&);

// How many states a block has: the extent of the stored values, else of the stored index rows, whatever
// "nstate" says; the attribute where nothing is stored. The reader's form reports an attribute that is no
// number.
int32_t state_count(const Block&, const char* values);
void read_state_count(Block&, const char* values, Arg<int32_t> nstate);

// The index rows of all states, or of some.
void read_index(Block&, const Index&, int32_t nstate, const char* values);
void read_index(Block&, const Index&, States);

// Parts of "indexident" and "indexval", which have a row for each state.
void index_parts(Block&, const Index&, int64_t states, Transfer idents, Transfer vals);

// Shape and place of states in an array that has `extents` for each.
Shape with_states(int64_t states, Shape extents);
Transfer rows(States, Shape extents);

}  // namespace vak
