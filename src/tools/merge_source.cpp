#include "tools/merge_source.h"

#include <algorithm>
#include <new>

#include "storage/found_layout.h"
#include "storage/rows_in_file.h"

namespace vak {

namespace {

constexpr size_t small_column = size_t{1} << 20;

size_t bytes_of(const std::vector<hsize_t>& dims, size_t element)
{
    size_t bytes = element;
    for (const hsize_t extent : dims)
        if (__builtin_mul_overflow(bytes, extent, &bytes)) throw std::bad_alloc();
    return bytes;
}

Group open_section(const Group& block, const char* name)
{
    return Group(H5Gopen2(block.get(), name, H5P_DEFAULT));
}

}  // namespace

SourceBlock::SourceBlock(const Merge& merge, const MergedKind& kind, const DomainBlock& s)
    : source(s), kind_(kind), is_legacy_(merge.family == Family::legacy), group_(open_source(merge, s))
{
    if (!is_legacy_) return;
    header_ = open_section(group_, "header");
    index_ = open_section(group_, "index");
    data_ = open_section(group_, "data");
}

std::vector<std::pair<const char*, hid_t>> SourceBlock::sections() const
{
    std::vector<std::pair<const char*, hid_t>> all;
    if (index_.valid()) all.emplace_back("index", index_.get());
    if (data_.valid()) all.emplace_back("data", data_.get());
    return all;
}

hid_t SourceBlock::group_of(const Column& c) const
{
    if (c.role == Role::index && index_.valid()) return index_.get();
    return data_.valid() ? data_.get() : group_.get();
}

static int32_t read_integer(hid_t group, const char* name, int32_t* value)
{
    size_t stored = 0;
    return VAK_H5Aread(name, value, integer_type, sizeof *value, nullptr, 0, group, &stored);
}

// For the line and the code of one that is missing; names of entity types, variables and series are texts.
static int32_t read_any(hid_t group, const char* name)
{
    char value[256];
    size_t stored = 0;
    const bool is_text = std::string_view(name).starts_with("etyp") || std::string_view(name) == "series";
    return VAK_H5Aread(name, value, is_text ? text_type : integer_type,
                       is_text ? sizeof value : sizeof(int32_t), nullptr, 0, group, &stored);
}

// Where HDF5 cannot say, reading will tell.
bool SourceBlock::may_have(const char* attribute) const { return H5Aexists(attributes(), attribute) != 0; }

void SourceBlock::note(int32_t attribute_status)
{
    if (attribute_status_ == 0) attribute_status_ = attribute_status;
}

std::optional<int32_t> SourceBlock::integer_attribute(const char* name)
{
    const auto [known, is_new] = integers_.try_emplace(name);
    if (!is_new || !may_have(name)) return known->second;
    int32_t value = 0;
    note(read_integer(attributes(), name, &value));
    return known->second = value;
}

int32_t SourceBlock::check_needed()
{
    std::vector<const char*> names(kind_.needed.begin(), kind_.needed.end());
    if (!is_legacy_) names.insert(names.end(), kind_.needed_now.begin(), kind_.needed_now.end());
    const bool has_variable = !is_legacy_ && kind_.variable_with != nullptr;
    if (has_variable && integer_attribute(kind_.variable_with).value_or(0) > 0) names.push_back("etypvar");
    for (const char* const name : names)
        if (H5Aexists(attributes(), name) == 0) return read_any(attributes(), name);
    return 0;
}

std::string SourceBlock::text_attribute(const char* name)
{
    if (!may_have(name)) return {};
    std::string text(256, '\0');
    size_t stored = 0;
    note(VAK_H5Aread(name, text.data(), text_type, text.size(), nullptr, 0, attributes(), &stored));
    return text;
}

Stored SourceBlock::find(const Column& c) const
{
    Stored s;
    const hid_t group = group_of(c);
    const htri_t named = H5Lexists(group, c.name, H5P_DEFAULT);
    s.is_lost = named < 0;
    if (named <= 0) return s;
    Dataset dataset(H5Dopen2(group, c.name, H5P_DEFAULT));
    s.is_lost = !dataset.valid();
    if (s.is_lost) return s;
    const Type type(H5Dget_type(dataset.get()));
    const Space space(H5Dget_space(dataset.get()));
    Extents extents{}, maximum{};
    const int rank = extents_in_file(dataset.get(), space.get(), extents, maximum);
    s.is_there = rank >= 0;
    s.is_lost = !s.is_there;
    s.element = H5Tget_size(type.get());
    s.dims.assign(extents.begin(), extents.begin() + std::max(rank, 0));
    const FoundLayout layout(dataset.get());
    s.is_plain = layout.is_usable && layout.filters == 0;
    // Only what is contiguous has a place in the file.
    if (H5Dget_offset(dataset.get()) != HADDR_UNDEF) s.open = std::move(dataset);
    return s;
}

const Stored& SourceBlock::stored(const Column& c)
{
    const auto known =
        std::ranges::find(found_columns_, c.name, &decltype(found_columns_)::value_type::first);
    return known != found_columns_.end() ? known->second
                                         : found_columns_.emplace_back(c.name, find(c)).second;
}

bool SourceBlock::has(const Column& c)
{
    if (c.is_legacy && !is_legacy_) return false;
    if (c.when.attribute == nullptr) return true;
    const auto value = integer_attribute(c.when.attribute);
    return !value || c.when.holds(*value);
}

// The extent of the values' state axis; where no values are stored, that of the index values.
void SourceBlock::find_states()
{
    nstate = 0;
    for (const Column& c : kind_.columns) {
        if (c.role != Role::values && c.role != Role::flag && c.role != Role::index) continue;
        const Stored& s = stored(c);
        if (s.is_there && !s.dims.empty()) nstate = static_cast<int64_t>(s.dims[0]);
    }
}

int32_t SourceBlock::read_counts()
{
    int32_t status = read_integer(attributes(), kind_.count, &count);
    if (status == 0) status = read_integer(attributes(), "nindex", &nindex);
    for (const char* name : kind_.agreeing) {
        int32_t value = 0;
        if (status == 0) status = read_integer(attributes(), name, &value);
        agreeing.push_back(value);
        integers_[name] = value;
    }
    count = std::max(count, 0);
    if (status == 0 && kind_.last_fswitch > 0) status = check_fswitch();
    if (status == 0 && kind_.is_series) find_states();
    return status == 0 && has_lost_column() ? lost_column : status;
}

// As the readers of results do.
int32_t SourceBlock::check_fswitch()
{
    const int32_t fswitch = integer_attribute("fswitch").value_or(0);
    return fswitch < 0 || fswitch > kind_.last_fswitch ? -123 : 0;
}

// Left out it would be missed by nobody but the reader of the merged block.
bool SourceBlock::has_lost_column()
{
    return std::ranges::any_of(kind_.columns, [&](const Column& c) {
        const bool is_of_lowest =
            c.role == Role::index || c.role == Role::common;  // looked at when it is read
        return !is_of_lowest && has(c) && stored(c).is_lost;
    });
}

bool SourceBlock::has_extents(const Column& c, const std::vector<hsize_t>& dims)
{
    const Stored& s = stored(c);
    return s.is_plain && s.dims == dims;
}

int32_t SourceBlock::read_part(const Column& c, size_t element, std::vector<hsize_t> dims,
                               const Transfer& part, Bytes& values)
{
    const auto read_into = [&](void* at) {
        return VAK_H5Dread(c.name, at, c.type, element, dims.data(), static_cast<int32_t>(dims.size()),
                           part.count.data(), part.start.data(), part.mode, group_of(c), &found_.flags,
                           found_.params.data());
    };
    const size_t bytes = bytes_of(part.mode == hyperslab ? part.count : dims, element);
    // Much memory is taken only for what the file really has.
    if (bytes > small_column && !has_extents(c, dims))
        if (const int32_t status = read_into(nullptr); status != 0) return status;
    values.resize(bytes);
    return read_into(values.data());
}

int32_t SourceBlock::check(const Column& c, size_t element, const std::vector<hsize_t>& dims)
{
    return VAK_H5Dread(c.name, nullptr, c.type, element, dims.data(), static_cast<int32_t>(dims.size()),
                       nullptr, nullptr, whole_dataset, group_of(c), &found_.flags, found_.params.data());
}

int32_t SourceBlock::read(const Column& c, size_t element, const std::vector<hsize_t>& dims, Bytes& values)
{
    return read_part(c, element, dims, whole(), values);
}

int32_t SourceBlock::read_states(const Column& c, size_t element, const std::vector<hsize_t>& dims,
                                 hsize_t first, hsize_t n, Bytes& values)
{
    Transfer part{hyperslab, dims, std::vector<hsize_t>(dims.size(), 0)};
    part.count[0] = n;
    part.start[0] = first;
    return read_part(c, element, dims, part, values);
}

FoundStorage SourceBlock::filters(bool is_ruling)
{
    for (const Column& c : kind_.columns) {
        if (!has(c)) continue;
        if (!is_ruling && (c.role == Role::index || c.role == Role::common)) continue;
        const Stored& s = stored(c);
        if (!s.is_there || s.is_plain || s.dims.empty()) continue;
        const size_t element = c.type == real_type ? sizeof(float) : s.element;
        check(c, element, s.dims);
    }
    return found_;
}

}  // namespace vak
