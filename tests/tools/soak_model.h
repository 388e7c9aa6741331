// What a file is to hold after any number of calls, kept in memory beside it.
#pragma once

#include <map>
#include <set>

#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"

namespace vak::test {

// Rows of further entities behind those that are there, in each of the states.
template <class T>
void add_rows(std::vector<T>& to, const std::vector<T>& from, size_t states)
{
    std::vector<T> joined;
    const size_t a = to.size() / states, b = from.size() / states;
    for (size_t k = 0; k < states; ++k) {
        joined.insert(joined.end(), to.begin() + static_cast<std::ptrdiff_t>(k * a),
                      to.begin() + static_cast<std::ptrdiff_t>((k + 1) * a));
        joined.insert(joined.end(), from.begin() + static_cast<std::ptrdiff_t>(k * b),
                      from.begin() + static_cast<std::ptrdiff_t>((k + 1) * b));
    }
    to = std::move(joined);
}

template <class T>
void append(std::vector<T>& to, const std::vector<T>& from)
{
    to.insert(to.end(), from.begin(), from.end());
}

struct SoakModel {
    std::map<int32_t, EntityResults> states;       // by state number
    std::map<int32_t, MultiEntityResults> series;  // by set
    std::vector<MultiElementResults> elements;     // the states of one series
    std::vector<MultiActivFlags> flags;            // the same

    // The states of an appended series as they read when `all` of them are there.
    template <class S>
    static std::vector<S> placed(std::vector<S> all)
    {
        for (size_t i = 0; i < all.size(); ++i) {
            all[i].ipos = static_cast<int32_t>(i);
            all[i].nstate = static_cast<int32_t>(all.size());
        }
        return all;
    }

    void extend(const MultiEntityResults& more)
    {
        const auto [found, is_new] = series.try_emplace(more.set, more);
        if (is_new) return;
        MultiEntityResults& s = found->second;
        append(s.index.indexident, more.index.indexident);
        append(s.index.indexval, more.index.indexval);
        append(s.res, more.res);
        s.nstate += more.nstate;
    }

    void erase_after(int32_t last)
    {
        const auto goes = [&](const auto& s) { return s.index.indexident[0] > last; };
        std::erase_if(states, [&](const auto& entry) { return goes(entry.second); });
        std::erase_if(elements, goes);
        std::erase_if(flags, goes);
        for (auto& [set, s] : series) cut(s, last);
        std::erase_if(series, [](const auto& entry) { return entry.second.nstate == 0; });
    }

    // The same blocks on other entities, as another process has them.
    SoakModel of_other_domain() const
    {
        SoakModel other = *this;
        other.each([](auto& s) {
            if constexpr (requires { s.tables; }) {
                for (int32_t& id : s.tables.ids) id += 100;
                for (float& value : s.res) value += 0.5F;
            } else {
                for (int32_t& id : s.entid) id += 100;
                for (int32_t& flag : s.status) ++flag;
            }
        });
        return other;
    }

    SoakModel merged_with(const SoakModel& other) const
    {
        SoakModel all = *this;
        for (auto& [number, s] : all.states) join(s, other.states.at(number), s.nent, 1);
        for (auto& [set, s] : all.series)
            join(s, other.series.at(set), s.nent, static_cast<size_t>(s.nstate));
        for (size_t i = 0; i < elements.size(); ++i)
            join(all.elements[i], other.elements[i], all.elements[i].nele, 1);
        for (size_t i = 0; i < flags.size(); ++i) {
            append(all.flags[i].entid, other.flags[i].entid);
            append(all.flags[i].status, other.flags[i].status);
            all.flags[i].nent *= 2;
        }
        return all;
    }

    // Each record of states; of an appended series each of its states.
    template <class F>
    void each(F f)
    {
        for (auto& [number, s] : states) f(s);
        for (auto& [set, s] : series) f(s);
        for (auto& s : elements) f(s);
        for (auto& s : flags) f(s);
    }

    std::set<std::string> paths() const
    {
        std::set<std::string> found;
        for (const auto& [number, s] : states) found.insert(s.path());
        for (const auto& [set, s] : series) found.insert(s.path());
        for (const auto& s : elements) found.insert(s.path());
        for (const auto& s : flags) found.insert(s.path());
        return found;
    }

private:
    static void cut(MultiEntityResults& s, int32_t last)
    {
        MultiEntityResults kept = s.states(0, 0);
        for (int32_t k = 0; k < s.nstate; ++k) {
            const MultiEntityResults one = s.states(k, 1);
            if (one.index.indexident[0] > last) continue;
            append(kept.index.indexident, one.index.indexident);
            append(kept.index.indexval, one.index.indexval);
            append(kept.res, one.res);
            ++kept.nstate;
        }
        s = kept;
    }

    template <class S>
    static void join(S& s, const S& other, int32_t& n, size_t nstate)
    {
        append(s.tables.ids, other.tables.ids);
        append(s.tables.fid, other.tables.fid);
        append(s.tables.weight, other.tables.weight);
        add_rows(s.res, other.res, nstate);
        n *= 2;
    }
};

}  // namespace vak::test
