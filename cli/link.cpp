// vak link: one file that shows the blocks of several, by links.
#include <cstdio>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "import/part_file.h"
#include "problem.h"
#include "store/call.h"
#include "store/file.h"
#include "store/quiet_output.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

namespace fs = std::filesystem;

struct Options {
    std::vector<std::string> files;
    std::string target;
    std::string group;
};

// Links lead from the folder of the new file, so that the files may be moved together.
std::vector<std::string> seen_from(const fs::path& folder, const std::vector<std::string>& files)
{
    std::vector<std::string> names;
    names.reserve(files.size());
    for (const std::string& file : files) names.push_back(fs::relative(file, folder).string());
    return names;
}

void check_names(const Options& options)
{
    for (const std::string& file : options.files) {
        std::error_code error;
        if (fs::equivalent(file, options.target, error))
            throw Problem(options.target + ": is one of the files to link; name another file with -o");
        if (!fs::exists(file, error)) throw Problem(file + ": no such file");
    }
    if (options.group.size() > 256) throw Problem("the name of the group is longer than 256 characters");
}

void link_all(const std::deque<store::File>& sources, const store::File& target, const std::string& group)
{
    std::vector<vak_id> ids;
    ids.reserve(sources.size());
    for (const store::File& source : sources) ids.push_back(*source.root());
    std::string field = group;
    field.resize(256, ' ');
    const store::QuietOutput no_banner;
    int32_t status = 0;
    store::LibraryMessages messages;
    VAK_CREATE_EXTLINKS(ids.data(), target.root(), store::Int{static_cast<int32_t>(ids.size())}, field.data(),
                        store::Int{group.empty() ? 0 : 1}, store::Int{0}, &status);
    const std::string said = messages.text(status);
    if (status < 0 || said.find("VAK ERROR") != std::string::npos)
        throw Problem("not everything could be linked; do two files have a group of the same name? (" + said +
                      ")");
}

void run(const Options& options)
{
    check_names(options);
    const fs::path target = fs::absolute(options.target);
    const std::vector<std::string> names = seen_from(target.parent_path(), options.files);
    std::error_code error;
    fs::current_path(target.parent_path(), error);
    if (error) throw Problem(options.target + ": cannot be created: " + error.message());
    import::PartFile part(target.filename().string());
    std::deque<store::File> sources;
    for (const std::string& name : names) sources.push_back(store::File::open(name));
    store::File made = store::File::create(part.path(), store::model_name(options.target));
    link_all(sources, made, options.group);
    made.close();
    part.complete();
}

}  // namespace

void add_link(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    Subcommand link(app, "link", "Makes a file that shows the blocks of others, without copying them");
    link.takes("FILE", options->files, "The files whose blocks are to be seen").required();
    link.takes("-o,--output", options->target, "The file to write; one that has this name is replaced")
        .required();
    link.takes("--group", options->group, "Put the links into a group of this name");
    link.runs([options] { run(*options); });
}

}  // namespace vak::cli
