// The fixture of the merger's tests: domain files and a target, all made and opened by plain HDF5.
#pragma once

#include <string>
#include <vector>

#include "samples/sample.h"
#include "support/library.h"
#include "support/matches.h"
#include "vak_sp.h"

namespace vak::test {

class MergeTest : public LibraryTest {
protected:
    explicit MergeTest(Family family) : family_(family) {}

    Family family() const { return family_; }
    bool legacy() const { return family_ == Family::legacy; }
    std::string data() const { return legacy() ? "/data/" : "/"; }  // behind a block's path
    std::string header() const { return legacy() ? "/header" : ""; }

    // A new domain file, open for writing until the end of the test.
    hid_t add_domain()
    {
        adopt(create_domain());
        return domains_.back();
    }
    hid_t create_domain() { return create("domain" + std::to_string(made_++) + ".h5"); }
    void forget_last() { domains_.pop_back(); }
    void adopt(hid_t domain) { domains_.push_back(domain); }

    hid_t target() const { return file; }

    void put_header(hid_t domain) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&domain, nullptr, nullptr, &ierr);
        EXPECT_EQ(ierr, 0);
    }

    // Forgets what has been merged.
    void restart()
    {
        for (const hid_t domain : domains_) H5Fclose(domain);
        domains_.clear();
        for (const char* group : {"constant", "singlestate", "multistate", "properties", "vakheader"})
            if (H5Lexists(file, group, H5P_DEFAULT) > 0) H5Ldelete(file, group, H5P_DEFAULT);
    }

    int32_t merge(int32_t options = 4)
    {
        std::vector<int64_t> files(domains_.begin(), domains_.end());
        const auto n = static_cast<int32_t>(files.size());
        int32_t ierr = untouched;
        printed_ = call([&] {
            if (family_ == Family::current)
                VAK_MERGE_DMP(files.data(), &file, &n, &flags, params, &nvar, names.data(), exponents.data(),
                              &options, &real_size, &ierr);
            else
                VAK1_MERGE_DMP(files.data(), &file, &n, &flags, params, &nvar, names.data(), exponents.data(),
                               &options, &real_size, &ierr);
        });
        return ierr;
    }
    const Output& printed() const { return printed_; }

    // What was printed on standard output, without the time at which the library was built.
    std::string told() const
    {
        return replaced(printed_.out, "(Compiled    : )\\w{3} [ \\d]\\d \\d{4} [:\\d]{8}", "$1DATE TIME");
    }

    void TearDown() override
    {
        for (const hid_t domain : domains_) H5Fclose(domain);
        LibraryTest::TearDown();
    }

    int32_t flags = 0, params[2] = {0, 0}, nvar = 0, real_size = 4;
    std::string names;
    std::vector<int32_t> exponents;

private:
    hid_t create(const std::string& name)
    {
        return H5Fcreate(path(name).c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    }

    Family family_;
    std::vector<hid_t> domains_;
    int made_ = 0;
    Output printed_;
};

}  // namespace vak::test
