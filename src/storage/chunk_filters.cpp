// The pipeline of filters over one chunk, in the two directions.
#include "storage/chunk_filters.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "storage/shuffle.h"

namespace vak {
namespace {

constexpr size_t most_parameters = 20;

std::optional<unsigned> step_parameter(H5Z_filter_t id, const unsigned* values, size_t count)
{
    const unsigned value = count > 0 ? values[0] : 0;
    if (id == H5Z_FILTER_SHUFFLE && count == 1 && value > 0) return {value};
    if (id == H5Z_FILTER_DEFLATE && count == 1 && value <= 9) return {value};
    return {};
}

// Scale-offset packs numbers, so it must be the first to see them.
bool add_step(hid_t creation_list, unsigned index, size_t elements, size_t element_size,
              ChunkFilters& filters)
{
    unsigned flags = 0;
    unsigned values[most_parameters] = {};
    size_t count = most_parameters;
    const H5Z_filter_t id = H5Pget_filter2(creation_list, index, &flags, &count, values, 0, nullptr, nullptr);
    if (id == H5Z_FILTER_SCALEOFFSET) {
        const auto form = scale_offset_form(values, count);
        if (index > 0 || !form || form->count != elements || form->size != element_size) return false;
        filters.scale_offset = *form;
        filters.steps.push_back({.id = id});
        return true;
    }
    const auto parameter = step_parameter(id, values, count);
    if (!parameter) return false;
    filters.steps.push_back({.id = id, .parameter = *parameter});
    return true;
}

}  // namespace

std::optional<ChunkFilters> chunk_filters(hid_t creation_list, size_t elements_in_chunk, size_t element_size)
{
    const int count = H5Pget_nfilters(creation_list);
    if (count < 0 || count > 32) return {};
    ChunkFilters filters;
    for (int i = 0; i < count; ++i) {
        const auto index = static_cast<unsigned>(i);
        if (!add_step(creation_list, index, elements_in_chunk, element_size, filters)) return {};
    }
    return filters;
}

bool ChunkCodec::encode_step(const FilterStep& step, bool exact, StoredChunk& chunk, Buffer& buffer)
{
    if (step.id == H5Z_FILTER_SHUFFLE) {
        unsigned char* to = buffer.room(chunk.size);
        shuffle(chunk.bytes, chunk.size, step.parameter, to);
        chunk.bytes = to;
        return true;
    }
    if (step.id == H5Z_FILTER_DEFLATE) {
        if (!deflater_) deflater_.emplace(step.parameter);
        const size_t room = deflater_->limit(chunk.size);
        unsigned char* to = buffer.room(room);
        chunk.size = deflater_->deflate(chunk.bytes, chunk.size, to, room);
        chunk.bytes = to;
        return chunk.size > 0;
    }
    const ScaleOffset& form = filters_.scale_offset;
    unsigned char* to = buffer.room(scale_offset_limit(form));
    const size_t size = exact && form.real ? 0 : pack_scale_offset(form, chunk.bytes, to);
    if (size == 0) {
        chunk.mask |= 1;
        return true;
    }
    chunk.size = size;
    chunk.bytes = to;
    return true;
}

std::optional<StoredChunk> ChunkCodec::encode(const unsigned char* values, bool exact)
{
    StoredChunk chunk{.bytes = values, .size = chunk_size_};
    for (const FilterStep& step : filters_.steps) {
        Buffer& to = buffers_[0].holds(chunk.bytes) ? buffers_[1] : buffers_[0];
        if (!encode_step(step, exact, chunk, to)) return {};
    }
    return chunk;
}

size_t ChunkCodec::decode_step(const FilterStep& step, const StoredChunk& chunk, unsigned char* to,
                               size_t room)
{
    if (step.id == H5Z_FILTER_DEFLATE) {
        if (!inflater_) inflater_.emplace();
        return inflater_->inflate(chunk.bytes, chunk.size, to, room);
    }
    if (step.id == H5Z_FILTER_SHUFFLE) {
        if (chunk.size > room) return 0;
        unshuffle(chunk.bytes, chunk.size, step.parameter, to);
        return chunk.size;
    }
    return unpack_scale_offset(filters_.scale_offset, chunk.bytes, chunk.size, to) ? chunk_size_ : 0;
}

std::vector<FilterStep> ChunkCodec::steps_of(uint32_t mask) const
{
    std::vector<FilterStep> steps;
    for (size_t i = 0; i < filters_.steps.size(); ++i) {
        if ((mask >> i & 1) == 0) steps.push_back(filters_.steps[i]);
    }
    return steps;
}

// Undoes all but the filter that was applied first.
bool ChunkCodec::decode_to_first(const std::vector<FilterStep>& steps, StoredChunk& chunk)
{
    const bool packed = !steps.empty() && steps[0].id == H5Z_FILTER_SCALEOFFSET;
    // What another program deflated once more may have become longer by the first time.
    const size_t first = packed ? scale_offset_limit(filters_.scale_offset) : chunk_size_;
    const size_t between = first + first / 8 + 64;
    for (size_t i = steps.size(); i-- > 1;) {
        const size_t room = std::min(between, largest_inflated(chunk.size));
        unsigned char* to = buffers_[i % 2].room(room);
        chunk.size = decode_step(steps[i], chunk, to, room);
        if (chunk.size == 0) return false;
        chunk.bytes = to;
    }
    return true;
}

bool ChunkCodec::can_fill(const std::vector<FilterStep>& steps, const StoredChunk& chunk) const
{
    if (steps.empty() || steps[0].id == H5Z_FILTER_SHUFFLE) return chunk.size == chunk_size_;
    if (steps[0].id == H5Z_FILTER_DEFLATE) return chunk_size_ <= largest_inflated(chunk.size);
    return can_unpack_scale_offset(filters_.scale_offset, chunk.bytes, chunk.size);
}

bool ChunkCodec::decode_first(const std::vector<FilterStep>& steps, const StoredChunk& chunk,
                              unsigned char* values)
{
    if (!steps.empty()) return decode_step(steps[0], chunk, values, chunk_size_) == chunk_size_;
    std::memcpy(values, chunk.bytes, chunk_size_);
    return true;
}

bool ChunkCodec::decode(const StoredChunk& stored, unsigned char* values)
{
    StoredChunk chunk = stored;
    const std::vector<FilterStep> steps = steps_of(stored.mask);
    return decode_to_first(steps, chunk) && can_fill(steps, chunk) && decode_first(steps, chunk, values);
}

std::optional<ChunkValues> ChunkCodec::decode(const StoredChunk& stored)
{
    StoredChunk chunk = stored;
    const std::vector<FilterStep> steps = steps_of(stored.mask);
    if (!decode_to_first(steps, chunk) || !can_fill(steps, chunk)) return {};
    const ScaleOffset& form = filters_.scale_offset;
    if (!steps.empty() && steps[0].id == H5Z_FILTER_SCALEOFFSET && is_one_value(form, chunk.bytes)) {
        ScaleOffset one = form;
        one.count = 1;
        unsigned char* value = values_.room(form.size);
        unpack_scale_offset(one, chunk.bytes, chunk.size, value);
        return ChunkValues{value, true};
    }
    unsigned char* values = values_.room(chunk_size_);
    if (!decode_first(steps, chunk, values)) return {};
    return ChunkValues{values, false};
}

}  // namespace vak
