#include "import/description.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "text/numbers.h"

namespace vak::import {

namespace {

constexpr std::array<std::string_view, 10> keywords{"USER",    "DATE",        "TIME", "HOST", "PGM",
                                                    "VERSION", "COMPILETIME", "DIR",  "DBN",  "MAT"};
constexpr const char* no_date = "        ";

// The text behind a keyword: "PGM               CalculiX".
std::string value_of(const frd::Description& description, std::string_view keyword)
{
    for (const std::string& line : description.user_lines) {
        const std::string_view text = line;
        if (text.starts_with(keyword) && (text.size() == keyword.size() || text[keyword.size()] == ' '))
            return std::string(text::trimmed(text.substr(keyword.size())));
    }
    return {};
}

// The solver writes the heading of its input as user lines without a keyword.
std::string heading(const frd::Description& description)
{
    for (const std::string& line : description.user_lines) {
        const bool has_keyword = std::any_of(keywords.begin(), keywords.end(), [&](std::string_view keyword) {
            return line.starts_with(keyword) &&
                   (line.size() == keyword.size() || line[keyword.size()] == ' ');
        });
        if (!has_keyword && !text::trimmed(line).empty()) return std::string(text::trimmed(line));
    }
    return {};
}

int month_number(std::string_view name)
{
    constexpr std::array<std::string_view, 12> months{"jan", "feb", "mar", "apr", "may", "jun",
                                                      "jul", "aug", "sep", "oct", "nov", "dec"};
    const auto at = std::find(months.begin(), months.end(), name.substr(0, 3));
    return at == months.end() ? 0 : static_cast<int>(at - months.begin()) + 1;
}

// "31.july.2016" or "31.07.2016" as 20160731.
std::string date_digits(const std::string& text)
{
    int day = 0, month = 0, year = 0;
    char name[16] = {};
    if (std::sscanf(text.c_str(), "%2d.%2d.%4d", &day, &month, &year) != 3) {
        if (std::sscanf(text.c_str(), "%2d.%15[a-z].%4d", &day, name, &year) != 3) return no_date;
        month = month_number(name);
    }
    if (day < 1 || day > 31 || month < 1 || month > 12 || year < 1000) return no_date;
    char digits[16];
    std::snprintf(digits, sizeof digits, "%04d%02d%02d", year % 10000, month % 100, day % 100);
    return digits;
}

// "13:46:59" as 134659.
std::string time_digits(const std::string& text)
{
    int hour = 0, minute = 0, second = 0;
    if (std::sscanf(text.c_str(), "%2d:%2d:%2d", &hour, &minute, &second) != 3) return no_date;
    if (hour < 0 || hour > 24 || minute < 0 || minute > 59 || second < 0 || second > 60) return no_date;
    char digits[16];
    std::snprintf(digits, sizeof digits, "%02d%02d%02d  ", hour % 100, minute % 100, second % 100);
    return digits;
}

}  // namespace

RunDescription describe(const frd::Description& description, const std::string& model)
{
    RunDescription run{.title = description.title,
                       .solver = value_of(description, "PGM"),
                       .version = value_of(description, "VERSION"),
                       .host = value_of(description, "HOST"),
                       .date = date_digits(value_of(description, "DATE")),
                       .time = time_digits(value_of(description, "TIME"))};
    if (run.title.empty()) run.title = heading(description);
    if (run.title.empty()) run.title = model;
    if (run.version.starts_with("Version "))
        run.version = text::trimmed(std::string_view(run.version).substr(8));
    return run;
}

}  // namespace vak::import
