#include "run_folder.h"

#include <errno.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace bench {

namespace {

[[noreturn]] void give_up(const std::string& why)
{
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, why.c_str());
    std::_Exit(1);  // HDF5 may be in the middle of a visit
}

std::filesystem::path folder(std::error_code& error)
{
    const auto place = std::filesystem::temp_directory_path(error);
    return error ? place : place / ("vak_bench." + std::to_string(getpid()));
}

}  // namespace

std::string file_name(const std::string& name)
{
    std::error_code error;
    const auto place = folder(error);
    if (!error) std::filesystem::create_directories(place, error);
    if (error) give_up("no files can be made in the temporary folder (TMPDIR): " + error.message());
    return place / name;
}

void remove_files()
{
    std::error_code error;
    const auto place = folder(error);
    if (!error) std::filesystem::remove_all(place, error);
}

void must(int64_t status, const char* what)
{
    if (status >= 0) return;
    remove_files();
    give_up(what + (" failed with " + std::to_string(status)));
}

}  // namespace bench
