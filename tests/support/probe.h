// The stored form of a block, seen through plain HDF5 alone.
//
// layout(file, "constant/system") gives one line per object below that group, each as it is stored and in the
// order in which it was written (attributes first):
//
//   A block int32                         an attribute: element type, extents if it has any
//   A blocktype char[256]                 blank-padded ASCII text; any other text says so: char[256]:nullterm
//   D ubid int32 [2] compact              a dataset: extents, layout, then what differs from HDF5's defaults
//   D res float64 [unlimited(5),3] chunked(1,3) scaleoffset(float,2) shuffle deflate(6) fill=10000
//   G header                              a group, followed by what it holds: "A header/block int32"
//   L entid -> /shared/entid              a soft link
//   X state1 -> other.h5:/state1          an external link
//
// A big-endian number is "int32be"; objects that several hard links lead to end with " links=2"; attributes
// of a dataset read "A res@unit char[4]".
#pragma once

#include <hdf5.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vak::test {

// Each line ends with a line break and the text starts with one, so that it compares with a raw literal.
std::string layout(hid_t location, const std::string& group);
std::string layout(const std::string& file_name, const std::string& group);

// Whole stored values, whatever their shape; T is int32_t, int64_t, uint32_t, float or double.
// Throw std::runtime_error when there is no such object.
template <class T>
std::vector<T> attribute_values(hid_t location, const std::string& object, const std::string& name);
template <class T>
std::vector<T> dataset_values(hid_t location, const std::string& path);

// Every fixed-length text as it is stored, blanks at its end included.
std::vector<std::string> attribute_texts(hid_t location, const std::string& object, const std::string& name);
std::vector<std::string> dataset_texts(hid_t location, const std::string& path);

// The first one: the value of a scalar.
template <class T>
T attribute_value(hid_t location, const std::string& object, const std::string& name)
{
    return attribute_values<T>(location, object, name).at(0);
}
std::string attribute_text(hid_t location, const std::string& object, const std::string& name);

std::vector<int64_t> dataset_extents(hid_t location, const std::string& path);
bool exists(hid_t location, const std::string& path);

// A text filled with blanks up to `length`: the argument of a fixed field, or what is stored of it.
std::string padded(std::string_view text, size_t length = 256);
// Several fields one after the other.
std::string fields(const std::vector<std::string_view>& texts, size_t length = 256);

}  // namespace vak::test
