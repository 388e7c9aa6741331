// vak merge as a user calls it: what it makes, what it tells, what it leaves when it fails.
#include <gmock/gmock.h>
#include <hdf5.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <thread>

#include "cli/domain_set.h"
#include "cli/solid.h"
#include "merge/progress.h"
#include "store/file.h"

using namespace vak::test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string numbers = "constant/entityresults/ELEMENT/DMPComputeDomainNumber/vakblock";

class Merge : public testing::Test {
protected:
    Merge()
    {
        write_text(folder.file("run.frd"), Solid{.nx = 4, .ny = 3, .nz = 2}.text());
        set.import(3);
    }

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry :
             std::filesystem::directory_iterator(std::filesystem::path(set.file("whole.h5")).parent_path()))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
    void damage(const std::string& file)
    {
        std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
    }

    TempFolder folder;
    DomainSet set{folder.file("run.frd")};
    const std::vector<std::string> sources{"domain-0.h5", "domain-1.h5", "domain-2.h5", "whole.h5"};
};

}  // namespace

TEST_F(Merge, the_domain_of_each_element_is_told_unless_it_is_not_wanted)
{
    ASSERT_EQ(set.merge(3).status, 0);
    const auto merged = DomainSet::shown(set.file("merged.h5"), numbers);
    ASSERT_EQ(merged.size(), 1U);
    std::map<int, float> number;
    const auto elements = values_in<int>(merged[0], "entid");
    const auto domains = values_in<float>(merged[0], "res");
    for (size_t i = 0; i < elements.size(); ++i) number[elements[i]] = domains[i];
    for (int d = 0; d < 3; ++d)
        for (const auto& block :
             DomainSet::shown(set.domains(3)[static_cast<size_t>(d)], "constant/connectivities/*"))
            for (const int element : values_in<int>(block, "idele"))
                EXPECT_EQ(number.at(element), static_cast<float>(d)) << element;

    ASSERT_EQ(set.merge(3, {"--no-domain-number"}).status, 0);
    EXPECT_EQ(vak_says({"compare", set.file("whole.h5"), set.file("merged.h5")}),
              (Said{.status = 0, .out = "", .err = ""}));
}

TEST_F(Merge, away_from_a_terminal_the_end_is_a_line_and_standard_output_is_empty)
{
    const Said said = set.merge(3);
    EXPECT_EQ(said.out, "");
    EXPECT_THAT(said.err,
                testing::ContainsRegex("vak merge: 100 %  [0-9.]+ of about [0-9.]+ [kM]?B  [^\n]*/s\n$"));
    for (size_t at = 0; at < said.err.size(); at = said.err.find('\n', at) + 1)
        EXPECT_THAT(said.err.substr(at), testing::StartsWith("vak merge: ")) << "nothing but progress";
}

TEST_F(Merge, the_report_is_the_library_s_on_standard_output)
{
    const Said said = set.merge(3, {"-v"});
    EXPECT_THAT(said.out, AllOf(HasSubstr("DMP domain file merger"),
                                EndsWith("\n VAK DMP domain file merge successfully completed.\n\n")));
}

TEST_F(Merge, a_parameter_file_compresses_the_variables_that_it_names)
{
    write_text(set.file("params"), "DISP 2 # places\n$ nothing\n");
    const Said said = set.merge(3, {"--params", set.file("params"), "-vv"});
    ASSERT_EQ(said.status, 0) << said.err;
    EXPECT_THAT(said.out, HasSubstr(" >-< float scaleoffset"));
    ASSERT_EQ(set.merge(3, {"--params", set.file("not there")}, "other.h5").status, 2);
}

TEST_F(Merge, a_domain_that_cannot_be_read_leaves_an_older_target_as_it_was)
{
    write_text(set.file("merged.h5"), "older");
    damage(set.domains(3)[1]);
    const Said said = set.merge(3);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err,
                AllOf(HasSubstr("domain-1.h5: cannot be opened: it is damaged"), Not(HasSubstr("100 %"))));
    EXPECT_EQ(contents(set.file("merged.h5")), "older");
    EXPECT_EQ(files().size(), sources.size() + 1);
}

TEST_F(Merge, a_file_without_blocks_is_no_domain)
{
    ASSERT_EQ(set.merge(3).status, 0);
    {
        auto empty = vak::store::File::create(set.domains(3)[2], "run");
        empty.close();
    }
    const Said said = set.merge(3);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, HasSubstr("domain-2.h5: has no blocks; is it the file of a domain?\n"));
}

TEST_F(Merge, names_that_cannot_be_are_refused_before_anything_is_written)
{
    const Said own = vak_says({"merge", set.domains(3)[0], set.domains(3)[1], "-o", set.domains(3)[1]});
    EXPECT_EQ(own.status, 2);
    EXPECT_THAT(own.err, HasSubstr("domain-1.h5: is one of the domain files; name another file with -o\n"));
    const Said missing = vak_says({"merge", set.domains(3)[0], set.file("no.h5"), "-o", set.file("m.h5")});
    EXPECT_EQ(missing,
              (Said{.status = 2, .out = "", .err = "vak merge: " + set.file("no.h5") + ": no such file\n"}));
    EXPECT_EQ(files(), sources);
}

TEST_F(Merge, a_domain_that_is_named_twice_is_refused)
{
    const std::string again = set.file("again.h5");
    std::filesystem::create_symlink(set.domains(3)[0], again);
    for (const std::string& second : {set.domains(3)[0], again}) {
        const Said said =
            vak_says({"merge", set.domains(3)[0], set.domains(3)[1], second, "-o", set.file("m.h5")});
        EXPECT_EQ(said, (Said{.status = 2,
                              .out = "",
                              .err = "vak merge: " + second + ": is the same file as the domain " +
                                     set.domains(3)[0] + "\n"}));
    }
    EXPECT_FALSE(std::filesystem::exists(set.file("m.h5")));
}

TEST_F(Merge, a_block_that_cannot_be_read_is_named_with_its_file)
{
    {
        auto domain = vak::store::File::update(set.domains(3)[1]);
        const std::string block = "constant/identifiers/NODE/vakblock";
        ASSERT_GE(H5Ldelete(*domain.root(), (block + "/entid").c_str(), H5P_DEFAULT), 0);
        domain.close();
    }
    const Said said = set.merge(3);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err,
                AllOf(HasSubstr("\nVAK ERROR reading \"identifiers\" block pass 2 - error code = -6002 \n"),
                      HasSubstr("\nvak merge: " + set.domains(3)[1] +
                                ": reading constant/identifiers/NODE/vakblock failed: "),
                      EndsWith("the merge stopped with status -6002 and nothing was written. Mend or leave "
                               "out that domain and merge again\n")));
    EXPECT_EQ(files(), sources);
}

TEST_F(Merge, a_group_that_cannot_be_listed_is_told_with_the_file)
{
    std::string bytes = contents(set.domains(3)[2]);
    // Each group's list of links is looked for by this sign.
    for (size_t at = bytes.size() / 2; (at = bytes.find("SNOD", at)) != std::string::npos; ++at)
        bytes.replace(at, 4, "XXXX");
    write_text(set.domains(3)[2], bytes);
    const Said said = set.merge(3);
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, HasSubstr("domain-2.h5: the blocks could not all be listed; the file is damaged"));
    EXPECT_EQ(files(), sources);
}

TEST_F(Merge, an_interrupt_leaves_no_temporary_file)
{
    // The fifo is opened only when the merge reads it, and holds it there.
    const std::string fifo = set.file("waiting");
    const TempFolder out;
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    std::vector<std::string> arguments{"merge", "-o", set.file("merged.h5"), "--params", fifo};
    for (const auto& domain : set.domains(3)) arguments.push_back(domain);
    const pid_t child = start(arguments, out);
    const int hold = ::open(fifo.c_str(), O_WRONLY);  // waits for the program
    kill(child, SIGINT);
    ::close(hold);
    EXPECT_EQ(finish(child, out).status, -SIGINT);
    std::filesystem::remove(fifo);
    EXPECT_EQ(files(), sources);
}

TEST(MergeProgress, a_line_tells_share_amount_rate_and_time_left)
{
    using vak::merge::progress_text;
    EXPECT_EQ(progress_text(1200000000, 2700000000, 4), " 44 %  1.2 of about 2.7 GB  300.0 MB/s  5 s left");
    EXPECT_EQ(progress_text(0, 5000, 0), "  0 %  0.0 of about 5.0 kB");
    EXPECT_EQ(progress_text(900, 900, 1), "100 %  900.0 of about 900.0 B  900.0 B/s");
    EXPECT_EQ(progress_text(0, 0, 1), "  0 %  0.0 of about 0.0 B");
}
