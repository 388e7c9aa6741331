// The fixture of the eraser's tests: files with states to erase, the call, and what it says.
#pragma once

#include "samples/entityresults.h"
#include "samples/indices.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "samples/system.h"
#include "support/block_test.h"
#include "support/matches.h"
#include "vak_sp.h"

namespace vak::test {

class EraserTest : public BothFamilies {
protected:
    Result erase(const std::vector<int32_t>& index, int32_t verbose = 0)
    {
        return erase(file, index, verbose);
    }
    Result erase(hid_t group, const std::vector<int32_t>& index, int32_t verbose = 0)
    {
        return run([&] {
            const auto nindex = static_cast<int32_t>(index.size());
            int32_t ierr = untouched;
            (legacy() ? VAK1_ERASE_STATES : VAK_ERASE_STATES)(&group, &nindex, index.data(), &verbose, &ierr);
            return ierr;
        });
    }

    // What every file of a solver has.
    void write_frame()
    {
        int32_t ierr = 0;
        (legacy() ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&file, nullptr, nullptr, &ierr);
        EXPECT_EQ(ierr, 0);
        EXPECT_EQ(write(sample<Indices>()), success);
        EXPECT_EQ(write(sample<System>()), success);
    }

    // One state of results; its index values are the state number and 1.
    EntityResults state(int32_t number) const
    {
        auto results = sample<EntityResults>();
        results.state = number;
        results.index.indexident = {number, 1};
        for (float& value : results.res) value += static_cast<float>(number);
        return results;
    }
    void write_states(int32_t first, int32_t last)
    {
        for (int32_t k = first; k <= last; ++k) EXPECT_EQ(write(state(k)), success);
    }

    // A series whose states have the index values given, each with 1 behind it.
    MultiEntityResults series(const std::vector<int32_t>& idents, int32_t ivsize = 4) const
    {
        auto s = MultiEntityResults::of_states(family(), static_cast<int32_t>(idents.size()), ivsize);
        for (size_t i = 0; i < idents.size(); ++i) {
            s.index.indexident[2 * i] = idents[i];
            s.index.indexident[2 * i + 1] = 1;
        }
        return s;
    }
    // Of the states of a series those at the given places.
    static MultiEntityResults only(const MultiEntityResults& s, const std::vector<int32_t>& places)
    {
        auto kept = s.states(0, 0);
        for (const int32_t place : places) {
            const auto one = s.states(place, 1);
            const auto add = [](auto& to, const auto& from) {
                to.insert(to.end(), from.begin(), from.end());
            };
            add(kept.index.indexident, one.index.indexident);
            add(kept.index.indexval, one.index.indexval);
            add(kept.res, one.res);
        }
        kept.nstate = static_cast<int32_t>(places.size());
        return kept;
    }
    void expect_series(const MultiEntityResults& expected)
    {
        auto found = emptied(expected);
        const bool is_complex = expected.ivsize == 16 || expected.ivsize == 32;
        EXPECT_EQ(read(found, 2), status(is_complex ? 1051 : 1050));
        EXPECT_EQ(listing(found), listing(expected));
    }

    // Paths as the catalogue lists them, and the fields of a block.
    template <class S>
    std::string listed(const S& s) const
    {
        return s.path() + (legacy() ? "/header" : "");
    }
    template <class S>
    std::string index_of(const S& s, const std::string& name) const
    {
        return s.path() + (legacy() ? "/index/" : "/") + name;
    }
    template <class S>
    std::string data_of(const S& s, const std::string& name) const
    {
        return s.path() + (legacy() ? "/data/" : "/") + name;
    }
    bool has(const std::string& path) const { return exists(file, path); }

    static std::string no_set(int32_t key, const std::string& path)
    {
        return "warning - blockkey " + std::to_string(key) + ": could not identify set no in \"" + path +
               "\" - assume 0.\n";
    }
    std::string constant_path(const std::string& type) const
    {
        return "constant/" + type + (legacy() ? "/header" : "/vakblock");
    }
    // The lines on standard error for what write_frame() wrote.
    std::string frame_warnings() const
    {
        return no_set(20, constant_path("indices")) + no_set(10, constant_path("system")) +
               no_set(1, "vakheader");
    }
    Result erased() const { return {0, {"", frame_warnings()}}; }

    // The line that tells when the library was compiled, which no test can know.
    static Result without_compile_time(Result result)
    {
        const std::string line = "      Compiled    : [A-Z][a-z]{2} [ 0-9]\\d \\d{4} \\d\\d:\\d\\d:\\d\\d\n";
        const std::string timeless = replaced(result.output.out, line, "      Compiled\n");
        EXPECT_NE(timeless, result.output.out);
        result.output.out = timeless;
        return result;
    }
};

}  // namespace vak::test
