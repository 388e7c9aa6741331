// vak merge where something is short or someone waits: legacy files, terminals, full disks, interrupts,
// memory.
#include <gmock/gmock.h>
#include <hdf5.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/resource.h>
#include <vak_sp.h>

#include <algorithm>
#include <filesystem>

#include "cli/domain_set.h"
#include "cli/solid.h"
#include "merge/progress.h"
#include "store/call.h"
#include "store/file.h"

using namespace vak::test;
using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using vak::store::call;
using vak::store::Int;

namespace {

constexpr int32_t no_parameters[2] = {0, 0};

class MergeLimits : public testing::Test {
protected:
    std::string file(const std::string& name) const { return folder.file(name); }

    // Of both families: nodes of which neighbours have one in common, in so many states.
    std::string write_domain(int domain, int nodes, int states, bool legacy)
    {
        const std::string name = file("domain-" + std::to_string(domain) + ".h5");
        std::vector<int32_t> ids;
        for (int i = 0; i < nodes; ++i) ids.push_back(domain * (nodes - 1) + i + 1);
        auto target = vak::store::File::create(name, "run");
        const int32_t frame = 0;
        const float time = 0;
        if (legacy)
            call("writing", VAK1_WRITE_FILEHEADER, target.root(), nullptr, nullptr);
        else
            call("writing", VAK_WRITE_FILEHEADER, target.root(), nullptr, nullptr);
        for (int32_t state = 1; state <= states; ++state) {
            std::vector<float> values;
            for (const int32_t id : ids) values.push_back(static_cast<float>(id + 1000 * state));
            if (legacy)
                call("writing", VAK1_WRITE_ENTITYRESULTS, target.root(), "NODE", Int{nodes}, "T", Int{1}, "",
                     Int{-1}, "", Int{0}, Int{0}, Int{1}, &state, &time, ids.data(), &frame, nullptr, nullptr,
                     nullptr, values.data(), Int{-1}, &state, Int{0}, no_parameters, Int{4});
            else
                call("writing", VAK_WRITE_ENTITYRESULTS, target.root(), "NODE", Int{nodes}, "T", Int{1}, "",
                     Int{-1}, "", Int{0}, Int{0}, Int{1}, Int{0}, &state, &time, ids.data(), &frame, nullptr,
                     nullptr, nullptr, values.data(), Int{-1}, &state, Int{0}, no_parameters, Int{4});
        }
        target.close();
        return name;
    }
    std::vector<std::string> write_domains(int n, int nodes, int states = 1, bool legacy = false)
    {
        std::vector<std::string> names;
        for (int d = 0; d < n; ++d) names.push_back(write_domain(d, nodes, states, legacy));
        return names;
    }
    std::vector<std::string> arguments(const std::vector<std::string>& domains,
                                       const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> all{"merge", "-o", file("merged.h5")};
        all.insert(all.end(), more.begin(), more.end());
        all.insert(all.end(), domains.begin(), domains.end());
        return all;
    }
    std::vector<std::string> others_than(const std::vector<std::string>& domains) const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (std::ranges::find(domains, entry.path().string()) == domains.end())
                names.push_back(entry.path().filename());
        return names;
    }
    // A merge whose report fills a pipe that nobody reads, so that it waits in the midst of its work.
    struct Waiting {
        pid_t process;
        int report;
    };
    Waiting start_waiting(const std::vector<std::string>& domains, bool ignores_hangup = false) const
    {
        int report[2];
        EXPECT_EQ(pipe(report), 0);
        fcntl(report[1], F_SETPIPE_SZ, 4096);
        const pid_t child = fork();
        if (child == 0) {
            const rlimit no_core{0, 0};
            setrlimit(RLIMIT_CORE, &no_core);
            if (ignores_hangup) signal(SIGHUP, SIG_IGN);
            dup2(report[1], 1);
            ::close(report[0]);
            ::close(report[1]);
            std::vector<std::string> all = arguments(domains, {"-v"});
            std::vector<char*> argv{const_cast<char*>(VAK_PROGRAM)};
            for (std::string& argument : all) argv.push_back(argument.data());
            argv.push_back(nullptr);
            execv(argv[0], argv.data());
            _exit(127);
        }
        ::close(report[1]);
        pollfd waiting{report[0], POLLIN, 0};
        EXPECT_EQ(poll(&waiting, 1, -1), 1);
        return {child, report[0]};
    }

    // Every node once, with the value that all its domains give it.
    void expect_merged(int nodes, int state) const
    {
        const auto blocks = DomainSet::shown(file("merged.h5"), "*/T*");
        ASSERT_GE(blocks.size(), static_cast<size_t>(state));
        const auto& block = blocks[static_cast<size_t>(state) - 1];
        const auto ids = values_in<int>(block, "entid");
        const auto values = values_in<float>(block, "res");
        ASSERT_EQ(ids.size(), static_cast<size_t>(nodes));
        for (int i = 0; i < nodes; ++i) {
            EXPECT_EQ(ids[static_cast<size_t>(i)], i + 1);
            EXPECT_EQ(values[static_cast<size_t>(i)], static_cast<float>(i + 1 + 1000 * state));
        }
    }

    const TempFolder folder;
};

}  // namespace

TEST_F(MergeLimits, legacy_files_are_merged_into_a_legacy_file)
{
    const auto domains = write_domains(3, 5, 2, true);
    const Said said = vak_says(arguments(domains, {"-v"}));
    ASSERT_EQ(said.status, 0) << said.err;
    EXPECT_THAT(said.out, AllOf(HasSubstr("      VAK Version : 1.2.0\n"),
                                EndsWith("\n VAK DMP domain file merge successfully completed.\n\n")));
    expect_merged(13, 1);
    expect_merged(13, 2);
    EXPECT_EQ(nlohmann::json::parse(vak_says({"list", "--json", file("merged.h5")}).out)["layout"], "legacy");
}

TEST_F(MergeLimits, legacy_files_are_merged_in_rounds_as_well)
{
    const auto domains = write_domains(9, 5, 1, true);
    ASSERT_EQ(vak_says(arguments(domains, {"--at-once", "4"})).status, 0);
    expect_merged(37, 1);
}

TEST_F(MergeLimits, files_of_both_layouts_are_not_merged)
{
    const std::vector<std::string> domains{write_domain(0, 5, 1, false), write_domain(1, 5, 1, true)};
    const Said said = vak_says(arguments(domains));
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, HasSubstr("merge files of one layout\n"));
    EXPECT_THAT(others_than(domains), ElementsAre());
}

TEST_F(MergeLimits, a_terminal_shows_one_line_that_is_written_over)
{
    const auto domains = write_domains(9, 5);
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::vector<std::string> all = arguments(domains, {"--at-once", "4"});
        std::vector<char*> argv{const_cast<char*>(VAK_PROGRAM)};
        for (std::string& argument : all) argv.push_back(argument.data());
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    std::string shown;
    char some[4096];
    for (ssize_t n = 0; (n = read(terminal, some, sizeof some)) > 0;)
        shown.append(some, static_cast<size_t>(n));
    ::close(terminal);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_THAT(shown, AllOf(HasSubstr("\033[K"), ContainsRegex("100 %  [0-9.]+ of about [0-9.]+ [kM]?B")));
    // The last line alone ends; what was told before it was written over.
    const size_t end = shown.rfind("100 %");
    EXPECT_THAT(shown.substr(end), EndsWith("\r\r\n"));
    EXPECT_EQ(shown.find("%  ", end + 6), std::string::npos);
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '%'), std::count(shown.begin(), shown.end(), '\033'));
    EXPECT_THAT(shown, testing::Not(HasSubstr("vak merge:")));
}

TEST(MergeProgressLines, away_from_a_terminal_each_ten_percent_is_one_line)
{
    testing::internal::CaptureStderr();
    {
        vak::merge::Progress progress(2000);
        for (int i = 0; i < 40; ++i) const vak::merge::Progress::Watch watch(progress, "/nothing/there", 50);
        progress.finish();
    }
    const std::string said = testing::internal::GetCapturedStderr();
    std::string shares;
    size_t at = 0;
    for (size_t end = 0; (end = said.find('\n', at)) != std::string::npos; at = end + 1) {
        EXPECT_THAT(said.substr(at, end - at), StartsWith("vak merge: "));
        shares += said.substr(at + 11, 5) + ",";
    }
    EXPECT_EQ(shares, " 10 %, 20 %, 30 %, 40 %, 50 %, 60 %, 70 %, 80 %, 90 %,100 %,");
}

TEST(MergeProgressLines, of_a_file_that_fails_nothing_is_told)
{
    testing::internal::CaptureStderr();
    try {
        vak::merge::Progress progress(2000);
        const vak::merge::Progress::Watch watch(progress, "/nothing/there", 500);
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(MergeLimits, a_full_disk_is_told_and_leaves_neither_target_nor_temporary_file)
{
    const auto domains = write_domains(5, 20000);
    for (const char* const at_once : {"5", "4"}) {  // in one round, in two
        const auto all = arguments(domains, {"--at-once", at_once});
        for (const rlim_t size : {rlim_t{2000}, rlim_t{100000}, rlim_t{400000}, rlim_t{500000}}) {
            const TempFolder said_folder;
            rlimit before{};
            getrlimit(RLIMIT_FSIZE, &before);
            const rlimit small{size, before.rlim_max};
            setrlimit(RLIMIT_FSIZE, &small);
            const auto handler = signal(SIGXFSZ, SIG_IGN);
            const pid_t child = start(all, said_folder);
            setrlimit(RLIMIT_FSIZE, &before);
            const Said said = finish(child, said_folder);
            signal(SIGXFSZ, handler);
            EXPECT_EQ(said.status, 2) << size;
            EXPECT_THAT(said.err, ContainsRegex("\nvak merge: [^\n]*(disk|written)[^\n]*\n$")) << size;
            EXPECT_THAT(said.err, testing::Not(HasSubstr("HDF5:"))) << size;
            EXPECT_THAT(others_than(domains), ElementsAre()) << size;
        }
        EXPECT_EQ(vak_says(all).status, 0) << "with room it works";
        std::filesystem::remove(file("merged.h5"));
    }
}

TEST_F(MergeLimits, a_signal_in_the_midst_of_a_merge_leaves_no_temporary_file)
{
    const auto domains = write_domains(2, 5, 100);
    for (const int ending : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU}) {
        const Waiting merge = start_waiting(domains);
        EXPECT_EQ(others_than(domains).size(), 1U) << "the temporary file is there";
        kill(merge.process, ending);
        int status = 0;
        waitpid(merge.process, &status, 0);
        ::close(merge.report);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == ending) << status;
        EXPECT_THAT(others_than(domains), ElementsAre());
    }
}

// As under nohup.
TEST_F(MergeLimits, a_signal_that_is_to_be_ignored_ends_nothing)
{
    const auto domains = write_domains(2, 5, 100);
    const Waiting merge = start_waiting(domains, true);
    kill(merge.process, SIGHUP);
    char some[4096];
    while (read(merge.report, some, sizeof some) > 0) continue;
    ::close(merge.report);
    int status = -1;
    waitpid(merge.process, &status, 0);
    EXPECT_EQ(status, 0);
    expect_merged(9, 100);
}

TEST_F(MergeLimits, little_memory_means_fewer_files_at_once)
{
    const auto domains = write_domains(40, 50);
    const auto merges = [](const std::string& report) {
        size_t n = 0;
        for (size_t at = 0; (at = report.find("successfully completed", at)) != std::string::npos; ++at) ++n;
        return n;
    };
    EXPECT_EQ(merges(vak_says(arguments(domains, {"-v"})).out), 1U);
    const Said little = vak_says(arguments(domains, {"-v", "--memory", "532M"}));
    EXPECT_EQ(little.status, 0) << little.err;
    EXPECT_GT(merges(little.out), 4U);
    expect_merged(40 * 49 + 1, 1);
    // Below what merging needs the smallest groups are taken.
    EXPECT_EQ(merges(vak_says(arguments(domains, {"-v", "--memory", "1M"})).out), 10U + 3U + 1U);
    expect_merged(40 * 49 + 1, 1);
}

// A block that says it has 200 million nodes, and a dataset of that extent in which nothing was ever written.
TEST_F(MergeLimits, without_memory_for_a_block_the_merge_ends_with_a_line_and_leaves_nothing)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the address sanitizer reserves terabytes; run in the release build";
#endif
    const auto domains = write_domains(2, 5);
    const hsize_t many = 200'000'000;
    const int32_t count = static_cast<int32_t>(many);
    const hid_t in = H5Fopen(domains[1].c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    const hid_t block =
        H5Gopen2(in, "post/singlestate/state000000000001/entityresults/NODE/T/vakblock", H5P_DEFAULT);
    ASSERT_GE(block, 0);
    H5Ldelete(block, "entid", H5P_DEFAULT);
    const hid_t space = H5Screate_simple(1, &many, nullptr);
    H5Dclose(H5Dcreate2(block, "entid", H5T_NATIVE_INT32, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    const hid_t nent = H5Aopen(block, "nent", H5P_DEFAULT);
    H5Awrite(nent, H5T_NATIVE_INT32, &count);
    H5Aclose(nent);
    H5Sclose(space);
    H5Gclose(block);
    H5Fclose(in);
    const TempFolder said_folder;
    rlimit before{};
    getrlimit(RLIMIT_AS, &before);
    const rlimit small{rlim_t{500} << 20, before.rlim_max};
    setrlimit(RLIMIT_AS, &small);
    const pid_t child = start(arguments(domains), said_folder);
    setrlimit(RLIMIT_AS, &before);
    const Said said = finish(child, said_folder);
    EXPECT_EQ(said.status, 1) << said.err;
    EXPECT_THAT(said.err, HasSubstr("\n     *** ERROR *** MEMORY ALLOCATION IN vak_merge_dmp LINE "));
    EXPECT_THAT(others_than(domains), ElementsAre());
}
