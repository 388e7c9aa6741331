// Writes result files as the CalculiX solver does, for the tests.
#pragma once

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace vak::test {

// printf into a string.
template <class... Values>
std::string formatted(const char* format, Values... values)
{
    char text[512];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

using NodeValues = std::vector<std::pair<int, std::vector<double>>>;

struct FrdComponent {
    std::string name;
    int type, row, column;
    bool calculated = false;
};

inline const std::vector<FrdComponent> displacement{
    {"D1", 2, 1, 0}, {"D2", 2, 2, 0}, {"D3", 2, 3, 0}, {"ALL", 2, 0, 0, true}};
inline const std::vector<FrdComponent> stress{{"SXX", 4, 1, 1}, {"SYY", 4, 2, 2}, {"SZZ", 4, 3, 3},
                                              {"SXY", 4, 1, 2}, {"SYZ", 4, 2, 3}, {"SZX", 4, 3, 1}};
inline const std::vector<FrdComponent> temperature{{"T", 1, 1, 0}};

struct FrdState {
    double value = 1;
    int step = 1;
    int analysis = 0;
};

class FrdText {
public:
    enum Format { ascii_short = 0, ascii_long = 1 };

    explicit FrdText(Format format = ascii_long) : format_(format), id_width_(format == ascii_short ? 5 : 10)
    {
    }

    FrdText& head()
    {
        line("    1C");
        line("    1UModel: two nodes");
        line("    1UUSER                                                              ");
        line("    1UDATE              31.july.2016                                    ");
        line("    1UTIME              13:46:59                                        ");
        line("    1UHOST              mill                                            ");
        line("    1UPGM               CalculiX                                        ");
        line("    1UVERSION           Version 2.11                             ");
        return line("    1UMAT    1STEEL");
    }

    FrdText& nodes(const NodeValues& nodes)
    {
        line(formatted("    2C%18s%12zu%37s%d", "", nodes.size(), "", format_));
        for (const auto& [node, xyz] : nodes) values_line(node, xyz);
        return line(" -3");
    }

    FrdText& begin_elements(size_t count)
    {
        return line(formatted("    3C%18s%12zu%37s%d", "", count, "", format_));
    }
    FrdText& element(int id, int type, int group, int material, const std::vector<int>& nodes)
    {
        line(formatted(" -1%*d%5d%5d%5d", id_width_, id, type, group, material));
        const size_t per_line = format_ == ascii_short ? 15 : 10;
        for (size_t from = 0; from < nodes.size(); from += per_line) {
            std::string text = " -2";
            for (size_t i = from; i < std::min(from + per_line, nodes.size()); ++i)
                text += formatted("%*d", id_width_, nodes[i]);
            line(text);
        }
        return *this;
    }
    FrdText& end_block() { return line(" -3"); }

    FrdText& result_head(const std::string& name, const std::vector<FrdComponent>& components, size_t nodes,
                         FrdState state)
    {
        line(formatted("    1PSTEP%26d%12d%12d", state.step, state.step, 1));
        line(formatted("  100CL  101%12.5E%12zu%20s%2d%5d%10s%2d", state.value, nodes, "", state.analysis,
                       state.step, "", format_));
        line(formatted(" -4  %-8s%5zu    1", name.c_str(), components.size()));
        for (const FrdComponent& c : components)
            line(formatted(" -5  %-8s%5d%5d%5d%5d%5s%s", c.name.c_str(), 1, c.type, c.row, c.column,
                           c.calculated ? "1" : "", c.calculated ? "ALL" : ""));
        return *this;
    }

    FrdText& result(const std::string& name, const std::vector<FrdComponent>& components,
                    const NodeValues& values, FrdState state = {})
    {
        result_head(name, components, values.size(), state);
        for (const auto& [node, numbers] : values) values_line(node, numbers);
        return line(" -3");
    }

    FrdText& end() { return line(" 9999"); }

    // At most six values stand on a line, the others on lines of their own.
    FrdText& values_line(int node, const std::vector<double>& values)
    {
        for (size_t from = 0; from == 0 || from < values.size(); from += 6) {
            std::string text =
                from == 0 ? formatted(" -1%*d", id_width_, node) : formatted(" -2%*s", id_width_, "");
            for (size_t i = from; i < std::min(from + 6, values.size()); ++i)
                text += formatted("%12.5E", values[i]);
            line(text);
        }
        return *this;
    }

    FrdText& line(const std::string& text)
    {
        text_ += text + "\n";
        return *this;
    }

    const std::string& text() const { return text_; }

private:
    Format format_;
    int id_width_;
    std::string text_;
};

inline void write_text(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

}  // namespace vak::test
