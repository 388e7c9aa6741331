#include "import/survey.h"

#include <algorithm>

#include "frd/reader.h"

namespace vak::import {

namespace {

constexpr size_t name_width = 8;  // of a result's name in the file

std::string imaginary_name(const std::string& name) { return name.substr(0, name_width - 1) + "I"; }

// Names become levels of a path in the file.
std::string path_name(std::string name)
{
    for (char& c : name)
        if (c == '/' || c < ' ' || c > '~') c = '_';
    return name == "." || name == ".." ? std::string(name.size(), '_') : name;
}

// Collects the results of one state after the other.
class Collector {
public:
    explicit Collector(Survey& into) : survey_(into) {}

    void add(const frd::ResultHead& head)
    {
        if (begins_state(head)) {
            finish_state();
            begin_state(head);
        }
        state_results_.push_back(head);
    }

    // Tells pairs from single results and gives each its variable.
    void finish_state()
    {
        for (size_t i = 0; i < state_results_.size(); ++i) survey_.results.push_back(planned(i));
        state_results_.clear();
    }

private:
    bool begins_state(const frd::ResultHead& head) const
    {
        if (survey_.states.empty()) return true;
        const State& now = survey_.states.back();
        return head.step != now.step || head.value != now.value || find(head.name) != nullptr;
    }

    void begin_state(const frd::ResultHead& head)
    {
        const int32_t last = survey_.states.empty() ? 0 : survey_.states.back().number;
        survey_.states.push_back({.number = head.step > last ? head.step : last + 1,
                                  .value = head.value,
                                  .analysis = head.analysis,
                                  .step = head.step,
                                  .complex = false});
    }

    const frd::ResultHead* find(const std::string& name) const
    {
        const auto at = std::find_if(state_results_.begin(), state_results_.end(),
                                     [&](const frd::ResultHead& head) { return head.name == name; });
        return at == state_results_.end() ? nullptr : &*at;
    }

    // The other half of a pair: alike in everything but the name, the imaginary part behind the real one.
    static bool are_pair(const frd::ResultHead& real, const frd::ResultHead* imaginary)
    {
        return imaginary && imaginary->line > real.line && imaginary->announced == real.announced &&
               imaginary->name != real.name && imaginary->components == real.components;
    }

    const frd::ResultHead* real_part_of(const frd::ResultHead& head) const
    {
        for (const frd::ResultHead& other : state_results_)
            if (imaginary_name(other.name) == head.name && are_pair(other, &head)) return &other;
        return nullptr;
    }

    PlannedResult planned(size_t i)
    {
        const frd::ResultHead& head = state_results_[i];
        PlannedResult result{
            .line = head.line, .state = survey_.states.size() - 1, .variable = 0, .part = Part::whole};
        const frd::ResultHead* real = real_part_of(head);
        if (real) {
            result.part = Part::imaginary;
        } else if (are_pair(head, find(imaginary_name(head.name)))) {
            result.part = Part::real;
            survey_.states.back().complex = true;
        }
        result.variable = variable(real ? *real : head);
        return result;
    }

    // A name that comes again with other components is another variable, NAME_2 and so on.
    size_t variable(const frd::ResultHead& head)
    {
        auto& variables = survey_.variables;
        std::string key = path_name(head.name);
        for (int number = 2;; ++number) {
            const auto at = std::find_if(variables.begin(), variables.end(),
                                         [&](const Variable& v) { return v.key == key; });
            const auto place = static_cast<size_t>(at - variables.begin());
            if (at == variables.end()) variables.push_back({key, head.components});
            if (variables[place].components == head.components) return place;
            key = path_name(head.name) + "_" + std::to_string(number);
        }
    }

    Survey& survey_;
    std::vector<frd::ResultHead> state_results_;  // heads of the present state
};

}  // namespace

Survey survey(const std::string& path)
{
    Survey found;
    Collector collector(found);
    frd::Reader reader(path);
    for (auto kind = reader.next(); kind != frd::BlockKind::end; kind = reader.next()) {
        if (kind == frd::BlockKind::nodes) reader.read_nodes(found.mesh);
        if (kind == frd::BlockKind::elements) reader.read_elements(found.mesh);
        if (kind == frd::BlockKind::result) collector.add(reader.result());
    }
    collector.finish_state();
    found.description = reader.description();
    return found;
}

const char* index_variable(const std::vector<State>& states)
{
    const auto all = [&](auto fits) {
        return !states.empty() && std::all_of(states.begin(), states.end(), fits);
    };
    // Steady state dynamics is written as time steps, but its results are complex and its value a frequency.
    if (all([](const State& s) { return s.analysis == 2 || s.complex; })) return "FREQUENCY";
    if (all([](const State& s) { return s.analysis <= 1 && !s.complex; })) return "TIME";
    if (all([](const State& s) { return s.analysis == 3; })) return "LOADSTEP";
    return "VALUE";
}

}  // namespace vak::import
