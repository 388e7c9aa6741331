#include "show/fields.h"

#include <algorithm>
#include <numeric>

#include "problem.h"

namespace vak::show {

namespace {

constexpr size_t first_values = 6;

size_t shown(size_t size, const Request& request)
{
    return request.all_values ? size : std::min(size, first_values);
}

template <class T>
const char* type_name()
{
    if constexpr (std::is_same_v<T, float>) return "float32";
    return sizeof(T) == 8 ? "int64" : "int32";
}

}  // namespace

std::string Text::value() const
{
    return {field_.data(),
            static_cast<size_t>(VAK_strlen(field_.data(), static_cast<int32_t>(field_.size())))};
}

void Text::show(Reading& reading) const
{
    if (!present_ || present_()) reading.view.attributes.emplace_back(name_, value());
}

void Flags::show(Reading& reading) const
{
    if (value != 0) reading.view.attributes.emplace_back("flags", int64_t{value});
}

void Parameters::show(Reading& reading) const
{
    if (values[0] != 0 || values[1] != 0)
        reading.view.attributes.emplace_back("params", std::vector<int64_t>(values.begin(), values.end()));
}

int64_t volume(const std::vector<int64_t>& extents)
{
    int64_t product = 1;
    for (const int64_t extent : extents) {
        constexpr int64_t most = int64_t{1} << 40;
        if (extent <= 0) return 0;
        if (extent > most / product)
            throw cli::Problem("the block announces more values than can be; the file is damaged");
        product *= extent;
    }
    return product;
}

size_t up_to(int64_t most, int64_t values)
{
    if (values > most) throw cli::Problem("an array of " + std::to_string(values) + " values is too large");
    return static_cast<size_t>(values);
}

std::vector<int64_t> ArrayField::extents() const
{
    if (told_) return told_();
    std::vector<int64_t> found;
    for (const Extent& extent : shape_) found.push_back(extent.length());
    return found;
}

ArrayView ArrayField::view_of_type(std::string type) const
{
    ArrayView view{
        .name = name_, .type = std::move(type), .shape = extents(), .values = {}, .components = {}};
    if (states_) view.shape.insert(view.shape.begin(), states_->value);
    for (int64_t& extent : view.shape)
        if (extent < 0 && extent != unknown_length) extent = 0;
    return view;
}

template <class T>
int64_t Numbers<T>::sum() const
{
    if (!fits()) return unknown_length;
    return std::accumulate(values_.begin(), values_.end(), int64_t{0},
                           [](int64_t sum, T value) { return sum + static_cast<int64_t>(value); });
}

template <class T>
void Numbers<T>::take(const Request& request, int64_t state)
{
    if (taken_ && !states_) return;
    taken_ = true;
    read_ += values_.size();
    if (states_ && (request.all_values || kept_.size() < first_values))
        kept_.insert(kept_.end(), values_.begin(),
                     values_.begin() + static_cast<int64_t>(shown(values_.size(), request)));
    if constexpr (sizeof(T) == 4) {
        if (letters_.empty()) return;
        if (!statistics_) statistics_.emplace(Axes{letters_, extents()});
        statistics_->add(values_, state);
    }
}

template <class T>
void Numbers<T>::show(Reading& reading) const
{
    if (!present()) return;
    ArrayView view = view_of_type(type_name<T>());
    if (taken_) {
        const std::vector<T>& all = states_ ? kept_ : values_;
        const auto end = all.begin() + static_cast<int64_t>(shown(all.size(), reading.request));
        view.values = std::vector<T>(all.begin(), end);
        view.complete = end == all.end() && all.size() == read_;
        if (statistics_)
            view.components =
                statistics_->extremes(entities_ ? entities_->values() : std::vector<int32_t>{}, states_);
    }
    reading.view.arrays.push_back(std::move(view));
}

template class Numbers<int32_t>;
template class Numbers<int64_t>;
template class Numbers<float>;

int64_t Texts::wanted() const
{
    auto all = extents();
    all.push_back(length_.length());
    return present() ? volume(all) : 0;
}

void Texts::show(Reading& reading) const
{
    if (!present()) return;
    const int64_t length = std::max<int64_t>(length_.length(), 0);
    ArrayView view = view_of_type("char[" + std::to_string(length) + "]");
    if (taken_) {
        const size_t each = static_cast<size_t>(length), count = each == 0 ? 0 : characters_.size() / each;
        std::vector<std::string> texts;
        for (size_t i = 0; i < shown(count, reading.request); ++i) {
            const char* field = characters_.data() + i * each;
            texts.emplace_back(field, static_cast<size_t>(VAK_strlen(field, static_cast<int32_t>(each))));
        }
        view.complete = texts.size() == count;
        view.values = std::move(texts);
    }
    reading.view.arrays.push_back(std::move(view));
}

}  // namespace vak::show
