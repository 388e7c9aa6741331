// Blocks of several domains joined into one: the union of their entities, each column by its role.
#include <algorithm>
#include <cstdio>
#include <limits>

#include "tools/merge_block.h"
#include "tools/merge_rows.h"
#include "tools/merge_source.h"

namespace vak {

namespace {

using Bytes = std::vector<char>;
using Shapes = std::vector<hsize_t>;

// States are merged a few at a time. What is held stays far below the limit, and whole chunks are written.
constexpr size_t slice_bytes = size_t{64} << 20;
constexpr int64_t data_limit = 1073741824;

// A column of the merged block: element size in memory and the extents of one row.
struct MergedColumn {
    const Column* column;
    size_t element;
    Shapes row;

    size_t row_bytes() const
    {
        size_t bytes = element;
        for (const hsize_t extent : row)
            if (__builtin_mul_overflow(bytes, extent, &bytes)) throw std::bad_alloc();
        return bytes;
    }
    size_t width() const { return row_bytes() / element; }
};

size_t bytes_of(size_t rows, const MergedColumn& c)
{
    size_t bytes = 0;
    if (__builtin_mul_overflow(rows, c.row_bytes(), &bytes)) throw std::bad_alloc();
    return bytes;
}

class Join {
public:
    Join(Merge& merge, const MergedKind& kind, const TargetBlock& target)
        : merge_(merge), kind_(kind), target_(target)
    {
    }

    int32_t run()
    {
        for (const auto step : {&Join::open_sources, &Join::find_order, &Join::find_columns, &Join::write})
            if (const int32_t status = (this->*step)(); status != 0) return status;
        note_elements();
        return 0;
    }

private:
    // ---- reading the sizes

    int32_t open_sources()
    {
        for (const DomainBlock& source : target_.sources) {
            SourceBlock block(merge_, kind_, source);
            if (const int32_t status = block.read_counts(); status != 0)
                return read_failed(type(), 1, status);
            if (block.nindex > max_index) return refuse_index(merge_, block.nindex);
            if (agrees(block)) sources_.push_back(std::move(block));
        }
        return 0;
    }

    bool agrees(const SourceBlock& block) const
    {
        if (sources_.empty()) return true;
        const SourceBlock& ruling = sources_.front();
        for (size_t i = 0; i < kind_.agreeing.size(); ++i)
            if (block.agreeing[i] != ruling.agreeing[i])
                return warn_left_out(block.source, kind_.agreeing[i], ruling.source), false;
        if (block.nstate != ruling.nstate)
            return warn_left_out(block.source, "number of states", ruling.source), false;
        return true;
    }

    int32_t find_order()
    {
        std::vector<Ids> ids;
        for (SourceBlock& s : sources_) {
            Bytes values;
            const int32_t status = s.read(ids_column(), sizeof(int32_t), {extent(s.count)}, values);
            if (status != 0) return read_failed(type(), 2, status);
            const auto* const first = reinterpret_cast<const int32_t*>(values.data());
            ids.emplace_back(first, first + values.size() / sizeof(int32_t));
        }
        order_ = merge_.orders.find(std::move(ids));
        for (size_t i = 0; i < sources_.size(); ++i)
            if (order_->repeats[i]) warn_of_repeats(sources_[i].source);
        return 0;
    }

    void warn_of_repeats(const DomainBlock& s) const
    {
        std::fprintf(
            stderr,
            "VAK WARNING file [%d]: block key %d \"%s\" lists an entity more than once, merged into one\n",
            s.file, s.key, s.path.c_str());
    }

    const Column& ids_column() const { return *std::ranges::find(kind_.columns, Role::ids, &Column::role); }

    int32_t find_columns()
    {
        for (const Column& c : kind_.columns) {
            if (c.role == Role::ids) {
                columns_.push_back({&c, sizeof(int32_t), {}});
                continue;
            }
            if (const auto merged = merged_column(c)) columns_.push_back(*merged);
        }
        storage_ = merged_storage(merge_, type(), sources_.front().filters(), variable().c_str());
        storage_.real_size = std::max(storage_.real_size, widest_real_);
        return 0;
    }

    std::optional<MergedColumn> merged_column(const Column& c)
    {
        std::optional<MergedColumn> merged;
        for (size_t i = 0; i < sources_.size(); ++i) {
            if (i > 0 && !kind_.widens && !is_wide_real(c)) break;
            Stored s = sources_[i].stored(c);
            if (!s.is_there) continue;
            const size_t axes = std::min(s.dims.size(), leading_axes(c));
            MergedColumn found{
                &c, memory_size(c, s.element), {s.dims.begin() + static_cast<long>(axes), s.dims.end()}};
            if (merged)
                widen(*merged, found);
            else
                merged = std::move(found);
        }
        return merged;
    }

    // Only the values of results may differ in precision from file to file.
    static bool is_wide_real(const Column& c) { return c.type == real_type && c.role == Role::values; }

    size_t memory_size(const Column& c, size_t stored)
    {
        if (c.type == integer_type) return sizeof(int32_t);
        if (c.type == text_type) return stored;
        const size_t size = stored > sizeof(float) ? sizeof(double) : sizeof(float);
        widest_real_ = std::max(widest_real_, size);
        return size;
    }

    void widen(MergedColumn& merged, const MergedColumn& other) const
    {
        merged.element = std::max(merged.element, other.element);
        if (!kind_.widens || merged.row.size() != other.row.size()) return;
        for (size_t i = 0; i < merged.row.size(); ++i) merged.row[i] = std::max(merged.row[i], other.row[i]);
    }

    bool has_states(const Column& c) const
    {
        return kind_.is_series && (c.role == Role::values || c.role == Role::flag || c.role == Role::index);
    }

    static bool has_rows(const Column& c) { return c.role != Role::common && c.role != Role::index; }

    size_t leading_axes(const Column& c) const { return (has_states(c) ? 1U : 0U) + (has_rows(c) ? 1U : 0U); }

    std::string variable() const { return sources_.front().text_attribute("etypvar"); }

    // ---- writing

    int32_t write()
    {
        if (exists_in_target(merge_, target_.path)) {
            std::fprintf(stderr, "VAK INTERNAL ERROR writing block key %d - \"%s\" already exists.\n",
                         kind_.kind.key, type());
            return write_failed(type(), -1);
        }
        OpenedGroup opened = open_or_create_group(merge_.target, target_.path);
        if (opened.status < 0) return write_failed(type(), opened.status);
        Block io(kind_.kind, merge_.family, Direction::write, opened.group.get());
        io.is_new = opened.status > 0;
        io.storage = storage_;
        enter(io, "header");
        write_attributes(io);
        for (const MergedColumn& c : columns_) {
            if (io.stopped || reading_failed_ != 0) break;
            write_column(io, c);
        }
        if (reading_failed_ != 0) return reading_failed_;
        if (kind_.is_series) write_nstate(io);
        const int32_t status = end_writing(io, std::move(opened.group));
        return status == 0 ? 0 : write_failed(type(), status);
    }

    // The lowest file's attributes in their order, with the counts of the merged block.
    void write_attributes(Block& io)
    {
        struct Context {
            Join* join;
            Block* io;
        } context{this, &io};
        const auto copy = [](hid_t group, const char* name, const H5A_info_t*,
                             void* data) noexcept -> herr_t {
            auto* c = static_cast<Context*>(data);
            return c->join->write_attribute(*c->io, group, name);
        };
        hsize_t at = 0;
        H5Aiterate2(sources_.front().attributes(), H5_INDEX_NAME, H5_ITER_NATIVE, &at, copy, &context);
    }

    int write_attribute(Block& io, hid_t group, const char* name) noexcept
    {
        if (kind_.is_series && std::string_view(name) == "nstate") return 0;  // written last
        const Attribute attribute(H5Aopen(group, name, H5P_DEFAULT));
        const Type stored(H5Aget_type(attribute.get()));
        size_t size = 0;
        if (H5Tget_class(stored.get()) == H5T_STRING) {
            char value[256];
            if (!failed(VAK_H5Aread(name, value, text_type, sizeof value, nullptr, 0, group, &size)))
                text(io, name, value);
        } else {
            int32_t value = 0;
            if (!failed(VAK_H5Aread(name, &value, integer_type, sizeof value, nullptr, 0, group, &size))) {
                value = merged_count(name, value);
                integer(io, name, &value);
            }
        }
        return io.stopped || reading_failed_ != 0 ? -1 : 0;
    }

    int32_t merged_count(std::string_view name, int32_t value) const
    {
        if (name == kind_.count) return static_cast<int32_t>(order_->size());
        if (!kind_.widens) return value;
        for (const SourceBlock& s : sources_) {
            const int32_t other = s.integer_attribute(name.data()).value_or(value);
            if (name == "length" || name == "nuid") value = std::max(value, other);
            if (name == "off") value &= other;  // a column is left out when no file has it
        }
        return value;
    }

    void write_nstate(Block& io)
    {
        // Back to the attributes: the values have been written since.
        enter(io, "header");
        auto nstate = static_cast<int32_t>(sources_.front().nstate);
        integer(io, "nstate", &nstate);
    }

    void write_column(Block& io, const MergedColumn& c)
    {
        enter(io, c.column->role == Role::index && !kind_.index_in_data ? "index" : "data");
        switch (c.column->role) {
            case Role::ids: return write_ids(io);
            case Role::index:
            case Role::common: return write_common(io, c);
            case Role::row: return write_rows(io, c);
            case Role::weight: return write_weights(io, c);
            case Role::flag: return write_states(io, c, &Join::merge_flags);
            case Role::values:
                return write_states(
                    io, c,
                    c.element == sizeof(double) ? &Join::merge_values<double> : &Join::merge_values<float>);
        }
    }

    void write_ids(Block& io)
    {
        integers(io, ids_column().name, order_->ids.data(), {static_cast<int64_t>(order_->size())});
    }

    static hsize_t extent(int64_t count) { return count > 0 ? static_cast<hsize_t>(count) : 0; }

    static Shape shape_of(const Shapes& dims)
    {
        Shape shape{};
        for (const hsize_t d : dims) shape.add(static_cast<int64_t>(d));
        return shape;
    }

    void put(Block& io, const MergedColumn& c, void* values, const Shape& shape, Transfer part)
    {
        switch (c.column->type) {
            case integer_type:
                integer_part(io, c.column->name, static_cast<int32_t*>(values), shape, std::move(part));
                break;
            case text_type:
                text_part(io, c.column->name, static_cast<char*>(values), c.element, shape, std::move(part));
                break;
            default:
                real_part(io, {c.column->name, values, c.element, c.column->is_lossy}, shape,
                          std::move(part));
        }
    }

    bool failed(int32_t status)
    {
        if (status != 0) reading_failed_ = read_failed(type(), 2, status);
        return status != 0;
    }

    // The lowest file's, as a whole; of a series all states at once, since index rows are short.
    void write_common(Block& io, const MergedColumn& c)
    {
        SourceBlock& ruling = sources_.front();
        Shapes dims = c.row;
        if (has_states(*c.column)) dims.insert(dims.begin(), extent(ruling.nstate));
        Bytes values;
        if (failed(ruling.read(*c.column, c.element, dims, values))) return;
        if (!has_states(*c.column)) return put(io, c, values.data(), shape_of(dims), whole());
        put_states(io, c, dims, values.data());
    }

    // Appends states: `dims` begins with their number.
    void put_states(Block& io, const MergedColumn& c, const Shapes& dims, void* values)
    {
        Shape shape{growing};
        for (size_t i = 1; i < dims.size(); ++i) shape.add(static_cast<int64_t>(dims[i]));
        put(io, c, values, shape, {hyperslab, dims, Shapes(dims.size(), 0)});
    }

    Shapes source_dims(const SourceBlock& s, const MergedColumn& c, const Shapes& row) const
    {
        Shapes dims{extent(s.count)};
        if (has_states(*c.column)) dims.insert(dims.begin(), extent(s.nstate));
        dims.insert(dims.end(), row.begin(), row.end());
        return dims;
    }

    Shapes merged_dims(const MergedColumn& c) const
    {
        Shapes dims{order_->size()};
        dims.insert(dims.end(), c.row.begin(), c.row.end());
        return dims;
    }

    // From the highest file to the lowest, whose rows then stand.
    void write_rows(Block& io, const MergedColumn& c)
    {
        Bytes merged(bytes_of(order_->size(), c), c.column->type == text_type ? ' ' : '\0');
        for (size_t i = sources_.size(); i-- > 0;)
            if (!add_rows(c, i, merged)) return;
        put(io, c, merged.data(), shape_of(merged_dims(c)), whole());
    }

    bool add_rows(const MergedColumn& c, size_t i, Bytes& merged)
    {
        Shapes row = c.row;
        if (kind_.widens) {
            const Stored s = sources_[i].stored(*c.column);
            if (!s.is_there) return true;
            if (s.dims.size() == row.size() + 1) row.assign(s.dims.begin() + 1, s.dims.end());
        }
        Bytes values;
        if (failed(sources_[i].read(*c.column, c.element, source_dims(sources_[i], c, row), values)))
            return false;
        const MergedColumn own{c.column, c.element, row};
        scatter_rows(order_->place[i], values.data(), own.row_bytes(), merged.data(), c.row_bytes());
        return true;
    }

    template <class T>
    static std::vector<double> as_doubles(const Bytes& values)
    {
        const auto* const first = reinterpret_cast<const T*>(values.data());
        return {first, first + values.size() / sizeof(T)};
    }

    void write_weights(Block& io, const MergedColumn& c)
    {
        weights_.emplace(*order_);
        for (size_t i = 0; i < sources_.size(); ++i) {
            std::vector<double> weights(order_->place[i].size(), 1.0);
            if (sources_[i].stored(*c.column).is_there) {
                Bytes values;
                if (failed(
                        sources_[i].read(*c.column, c.element, source_dims(sources_[i], c, c.row), values)))
                    return;
                weights =
                    c.element == sizeof(double) ? as_doubles<double>(values) : as_doubles<float>(values);
            }
            weights_->add(i, std::move(weights));
        }
        MergedColumn sums = c;
        sums.element = sizeof(double);
        std::vector<double> values = weights_->sums();
        put(io, sums, values.data(), {static_cast<int64_t>(values.size())}, whole());
    }

    // ---- flags and values, a slice of states at a time

    using MergeSlice = bool (Join::*)(const MergedColumn&, hsize_t first, hsize_t n, Bytes& merged);

    void write_states(Block& io, const MergedColumn& c, MergeSlice merge_slice)
    {
        const auto states = has_states(*c.column) ? extent(sources_.front().nstate) : 1;
        const hsize_t step = slice(c, states);
        for (hsize_t at = 0; at < states && !io.stopped; at += step) {
            const hsize_t n = std::min(step, states - at);
            Bytes merged(bytes_of(order_->size() * n, c));
            if (!(this->*merge_slice)(c, at, n, merged)) return;
            Shapes dims = merged_dims(c);
            if (!has_states(*c.column)) return put(io, c, merged.data(), shape_of(dims), whole());
            dims.insert(dims.begin(), n);
            put_states(io, c, dims, merged.data());
        }
    }

    hsize_t slice(const MergedColumn& c, hsize_t states) const
    {
        const size_t state_bytes = std::max<size_t>(bytes_of(order_->size(), c), 1);
        const hsize_t allowed =
            std::clamp<hsize_t>(data_limit / state_bytes, 1, std::max<hsize_t>(states, 1));
        if (allowed < states && merge_.level > 0)
            std::printf(
                " VAK INFO - \"%s\" data size limit of %d Byte exceeded -> i/o + merge in blocks of %d states - block: \"%s\"\n",
                type(), static_cast<int>(data_limit), static_cast<int>(allowed), target_.path.c_str());
        const auto chunk = static_cast<hsize_t>(std::max(chunk_size(), 1));
        const hsize_t wanted = std::max<hsize_t>(slice_bytes / state_bytes / chunk, 1) * chunk;
        return std::min(allowed, wanted);
    }

    int32_t read_slice(size_t i, const MergedColumn& c, hsize_t first, hsize_t n, Bytes& values)
    {
        const Shapes dims = source_dims(sources_[i], c, c.row);
        if (!has_states(*c.column)) return sources_[i].read(*c.column, c.element, dims, values);
        return sources_[i].read_states(*c.column, c.element, dims, first, n, values);
    }

    bool merge_flags(const MergedColumn& c, hsize_t first, hsize_t n, Bytes& merged)
    {
        auto* const flags = reinterpret_cast<int32_t*>(merged.data());
        for (size_t i = 0; i < sources_.size(); ++i) {
            Bytes values;
            if (failed(read_slice(i, c, first, n, values))) return false;
            const auto* from = reinterpret_cast<const int32_t*>(values.data());
            for (hsize_t state = 0; state < n; ++state)
                for (const int32_t row : order_->place[i]) {
                    int32_t& flag = flags[state * order_->size() + static_cast<size_t>(row)];
                    if (flag == 0) flag = *from;
                    ++from;
                }
        }
        return true;
    }

    std::vector<Operator> operators(const MergedColumn& c)
    {
        const auto column =
            std::ranges::find(columns_, std::string_view("operator"),
                              [](const MergedColumn& m) { return std::string_view(m.column->name); });
        if (column == columns_.end() || !weights_) return {};
        Bytes fields;
        if (failed(sources_.front().read(*column->column, 256, column->row, fields))) return {};
        std::vector<Operator> ops(c.width(), Operator::lowest);
        const size_t parts = is_complex() ? 2 : 1;
        const size_t ncoo = fields.size() / 256;
        for (size_t k = 0; k < ops.size() && ncoo > 0; ++k)
            ops[k] = operator_of(&fields[k / parts % ncoo * 256]);
        return ops;
    }

    bool is_complex() const { return sources_.front().source.key == kind_.kind.complex_key; }

    template <class T>
    bool merge_values(const MergedColumn& c, hsize_t first, hsize_t n, Bytes& merged)
    {
        const size_t state_bytes = bytes_of(order_->size(), c);
        const std::vector<Operator> ops = operators(c);
        if (reading_failed_ != 0) return false;
        std::vector<SharedValues> shared;
        if (!ops.empty() && !order_->shared.empty())
            for (hsize_t state = 0; state < n; ++state) shared.emplace_back(*order_, ops);
        Bytes values;
        for (size_t i = sources_.size(); i-- > 0;) {
            if (failed(read_slice(i, c, first, n, values))) return false;
            const size_t source_bytes = bytes_of(order_->place[i].size(), c);
            for (hsize_t state = 0; state < n; ++state) {
                const char* const from = values.data() + state * source_bytes;
                scatter_rows(order_->place[i], from, c.row_bytes(), merged.data() + state * state_bytes,
                             c.row_bytes());
                if (!shared.empty()) shared[state].add(i, reinterpret_cast<const T*>(from), *weights_);
            }
        }
        for (size_t state = 0; state < shared.size(); ++state)
            shared[state].store(reinterpret_cast<T*>(merged.data() + state * state_bytes));
        return true;
    }

    // ---- for the domain numbers

    void note_elements()
    {
        if (kind_.kind.key != 300 || !merge_.adds_domain_number) return;
        std::vector<Ids>& elements = merge_.elements[sources_.front().text_attribute("etyp")];
        elements.resize(merge_.domains.size());
        for (size_t i = 0; i < sources_.size(); ++i)
            for (const int32_t row : order_->place[i])
                elements[static_cast<size_t>(sources_[i].source.file)].push_back(
                    order_->ids[static_cast<size_t>(row)]);
    }

    const char* type() const { return kind_.kind.type; }

    Merge& merge_;
    const MergedKind& kind_;
    const TargetBlock& target_;
    std::vector<SourceBlock> sources_;  // those that agree with the first
    std::shared_ptr<const Order> order_;
    std::vector<MergedColumn> columns_;
    StorageOptions storage_;
    size_t widest_real_ = 0;
    std::optional<Weights> weights_;
    int32_t reading_failed_ = 0;
};

}  // namespace

int32_t join_blocks(Merge& merge, const MergedKind& kind, const TargetBlock& target)
{
    return Join(merge, kind, target).run();
}

}  // namespace vak
