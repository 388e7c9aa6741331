#include "show/print.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace vak::show {

namespace {

std::string number_text(int64_t value) { return std::to_string(value); }

// The shortest text that reads back as the same number.
template <class T>
std::string number_text(T value)
{
    char text[64];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::general);
    return {text, end};
}

std::string value_text(const std::string& value) { return std::string("\"") + value + "\""; }
std::string value_text(int32_t value) { return number_text(int64_t{value}); }
std::string value_text(int64_t value) { return number_text(value); }
std::string value_text(float value) { return number_text(value); }
std::string value_text(const std::vector<int64_t>& values)
{
    std::string text;
    for (const int64_t value : values) {
        if (!text.empty()) text += " ";
        text += number_text(value);
    }
    return text;
}

// Extremes are those of integers or of single precision numbers.
std::string extreme_text(double value, bool integer)
{
    return integer ? number_text(static_cast<int64_t>(value)) : number_text(static_cast<float>(value));
}

std::string shape_text(const std::vector<int64_t>& shape)
{
    std::string text;
    for (const int64_t extent : shape) {
        text += "[";
        text += extent == unknown_length ? "?" : number_text(extent);
        text += "]";
    }
    return text;
}

// All values of an array stand in lines of one row each.
size_t row_length(const ArrayView& array)
{
    size_t length = 1;
    for (size_t i = 1; i < array.shape.size(); ++i)
        length *= static_cast<size_t>(std::max<int64_t>(array.shape[i], 1));
    return length;
}

void print_values(const ArrayView& array)
{
    std::visit(
        [&](const auto& values) {
            const size_t row = row_length(array), rows = values.size() / row;
            const bool in_lines = array.complete && rows > 1 && (row > 1 || array.type.starts_with("char"));
            for (size_t i = 0; i < values.size(); ++i)
                std::printf("%s%s",
                            in_lines && i % row == 0 ? "\n    "
                            : i == 0                 ? "  "
                                                     : " ",
                            value_text(values[i]).c_str());
            if (!array.complete && !values.empty()) std::printf(" ...");
        },
        array.values);
    std::printf("\n");
}

// Entities are told by the type that the block gives them: "NODE 17".
std::string places_text(const Extreme& extreme, const std::string& entity_type)
{
    std::string text;
    for (const Place& place : extreme.places) {
        text += " ";
        text += place.axis == "entity" && !entity_type.empty() ? entity_type : place.axis;
        text += " ";
        text += number_text(place.number);
    }
    return text;
}

void print_extremes(const ComponentExtremes& component, bool integer, const std::string& entity_type)
{
    std::printf("    %-8s", component.name.c_str());
    for (const auto& [word, extreme] : {std::pair{"min", component.minimum}, {"max", component.maximum}})
        if (component.any)
            std::printf(" %s %s at%s%s", word, extreme_text(extreme.value, integer).c_str(),
                        places_text(extreme, entity_type).c_str(), word[1] == 'i' ? "," : "");
    if (!component.any) std::printf(" no number");
    if (component.nan > 0) std::printf(", %lld NaN", static_cast<long long>(component.nan));
    std::printf("\n");
}

// What the block calls its entities.
std::string entity_type(const BlockView& block)
{
    for (const auto& [name, value] : block.attributes)
        if ((name == "etyp" || name == "etypelem") && std::holds_alternative<std::string>(value))
            return std::get<std::string>(value);
    return {};
}

using Json = nlohmann::ordered_json;

// A single precision number is written with as many digits as it needs. What is not finite becomes a text,
// since JSON has no such numbers.
Json json_value(float value)
{
    const std::string text = number_text(value);
    double number = 0;
    if (!std::isfinite(value)) return text;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}
Json json_value(int32_t value) { return value; }
Json json_value(int64_t value) { return value; }
Json json_value(const std::string& value) { return value; }

Json json_of(const Extreme& extreme, bool integer)
{
    Json json{{"value", integer ? Json(static_cast<int64_t>(extreme.value))
                                : json_value(static_cast<float>(extreme.value))}};
    for (const Place& place : extreme.places) json[place.axis] = place.number;
    return json;
}

Json json_of(const ComponentExtremes& component, bool integer)
{
    Json json{{"name", component.name}, {"minimum", nullptr}, {"maximum", nullptr}, {"nan", component.nan}};
    if (component.any) {
        json["minimum"] = json_of(component.minimum, integer);
        json["maximum"] = json_of(component.maximum, integer);
    }
    return json;
}

Json json_of(const ArrayView& array)
{
    Json shape = Json::array();
    for (const int64_t extent : array.shape)
        shape.push_back(extent == unknown_length ? Json(nullptr) : Json(extent));
    Json json{{"type", array.type}, {"shape", shape}};
    Json values = Json::array();
    std::visit(
        [&](const auto& all) {
            for (const auto& value : all) values.push_back(json_value(value));
        },
        array.values);
    if (array.complete || !values.empty()) json[array.complete ? "values" : "first"] = std::move(values);
    for (const ComponentExtremes& component : array.components)
        json["components"].push_back(json_of(component, array.type.starts_with("int")));
    return json;
}

}  // namespace

void print(const BlockView& block)
{
    const std::string entities = entity_type(block);
    for (const auto& [name, value] : block.attributes)
        std::printf("  %-12s %s\n", name.c_str(),
                    std::visit([](const auto& v) { return value_text(v); }, value).c_str());
    for (const ArrayView& array : block.arrays) {
        std::printf("  %-12s %s%s", array.name.c_str(), array.type.c_str(), shape_text(array.shape).c_str());
        print_values(array);
        for (const ComponentExtremes& component : array.components)
            print_extremes(component, array.type.starts_with("int"), entities);
    }
}

Json as_json(const BlockView& block)
{
    Json attributes = Json::object(), arrays = Json::object();
    for (const auto& [name, value] : block.attributes)
        attributes[name] = std::visit([](const auto& v) { return Json(v); }, value);
    for (const ArrayView& array : block.arrays) arrays[array.name] = json_of(array);
    return {{"attributes", std::move(attributes)}, {"arrays", std::move(arrays)}};
}

}  // namespace vak::show
