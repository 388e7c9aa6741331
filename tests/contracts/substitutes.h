// What may stand where a field was, and what a reader then has to say.
#pragma once

#include <optional>
#include <span>

#include "contracts/stored_fields.h"

namespace vak::test {

// The name that the field itself has in the meantime.
inline constexpr const char* kept = "kept by the test";

// The storage layer's error: its number, and the value shown last.
struct Refusal {
    int32_t number;
    int64_t error;
};
using Answer = std::optional<Refusal>;  // none: the field reads as before
constexpr Refusal not_found{2, -1};
constexpr Refusal unusable{999, -1};

// Where a substitute is put.
struct Stage {
    hid_t holder;  // the group with the field
    const Field& field;
    const std::string& folder;  // for files beside the block's

    const char* name() const { return field.name.c_str(); }
    // The field's own type and its values in another one.
    TypeId stored_type() const;
    std::vector<char> values(hid_t memory_type) const;

    void put(hid_t type, hid_t space, hid_t list = H5P_DEFAULT, const void* values = nullptr,
             hid_t memory_type = H5I_INVALID_HID) const;
};

struct Substitute {
    const char* name;
    bool (*fits)(const Field&);
    Answer (*expected)(const Field&);
    void (*put)(const Stage&);
};

std::span<const Substitute> substitutes();

// For arrays of which the whole is read, not a part.
const Substitute& longer_array();
// Refused, or of no effect: a chunk that inflates to far more than its values.
const Substitute& inflating_chunk();

}  // namespace vak::test
