#include "prove/jobs.h"

#include "prove/inside.h"
#include "samples/entityresults.h"
#include "support/block_test.h"
#include "support/faults.h"

namespace vak::test {

vak_id Calls::open(const std::string& file, int32_t option)
{
    const auto length = static_cast<int32_t>(file.size());
    const int32_t none = 0;
    vak_id root = H5I_INVALID_HID;
    int32_t ierr = untouched;
    (legacy_ ? VAK1_OPEN : VAK_OPEN)(file.data(), &length, "", &none, "", &none, &root, &none, &option,
                                     &ierr);
    take(ierr);
    return ierr == 0 ? root : H5I_INVALID_HID;
}

void Calls::write_header(vak_id root)
{
    int32_t ierr = untouched;
    (legacy_ ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&root, nullptr, nullptr, &ierr);
    take(ierr);
}

void Calls::flush(vak_id root)
{
    const int32_t scope = 0;
    int32_t ierr = untouched;
    (legacy_ ? VAK1_FLUSH : VAK_FLUSH)(&root, &scope, &ierr);
    take(ierr);
}

void Calls::close(vak_id root)
{
    int32_t ierr = untouched;
    (legacy_ ? VAK1_CLOSE : VAK_CLOSE)(&root, &ierr);
    take(ierr);
}

void Calls::in_group(vak_id root, const std::string& path, const std::function<int32_t(vak_id)>& routine)
{
    const int32_t length = -1, make = 0;
    vak_id group = H5I_INVALID_HID;
    int32_t ierr = untouched;
    (legacy_ ? VAK1_H5GOPEN : VAK_H5GOPEN)(&root, path.c_str(), &length, &make, &group, &ierr);
    take_negative(ierr);
    if (ierr < 0) return;
    take(routine(group));
    (legacy_ ? VAK1_H5GCLOSE : VAK_H5GCLOSE)(&group, &ierr);
    take(ierr);
}

namespace {

EntityResults first_block(Family family)
{
    auto first = enlarged(sample_of<EntityResults>(family));
    first.set = 77;
    return first;
}

// The header, by its own reader; there is one version of it.
Verdict judged_header(Family family, vak_id root)
{
    const hid_t id = quietly([&] { return H5Gopen2(root, "vakheader", H5P_DEFAULT); });
    if (id < 0) return Verdict::error;
    const ObjectId closes(id, "vakheader");
    std::string version(32, '?');
    int32_t flags = 0, params[2] = {}, ierr = untouched;
    (family == Family::legacy ? VAK1_READ_FILEHEADER : VAK_READ_FILEHEADER)(&id, version.data(), &flags,
                                                                            params, &ierr);
    return ierr == 0 ? Verdict::new_values : Verdict::error;
}

}  // namespace

void end_of_beginning()
{
    disk().flushed = !disk().hit && !library.has_failed();
    library.hdf5_calls_before = library.hdf5_calls.seen;
    library.allocations_before = library.allocations.seen;
}

Job writing_job(const std::string& name, Family family, std::vector<Step> first, std::vector<Step> then,
                std::vector<Item> items)
{
    const auto base = first_block(family);
    items.push_back(item<EntityResults>({base}, true));
    items.push_back(
        {"vakheader", [=](vak_id root, std::string&) { return judged_header(family, root); }, true});
    const auto run = [=](const std::string& file) {
        Calls calls(family);
        const vak_id root = calls.open(file, 8);
        calls.write_header(root);
        calls.take(base.write(root));
        for (const Step& step : first) calls.take_step(step, root);
        calls.flush(root);
        end_of_beginning();
        for (const Step& step : then) calls.take_step(step, root);
        calls.close(root);
        return calls.status();
    };
    return {name + (family == Family::legacy ? " legacy" : ""), run, std::move(items)};
}

std::vector<Job> jobs()
{
    std::vector<Job> all;
    for (const Family family : {Family::current, Family::legacy})
        for (const auto& part : {block_jobs(family), series_jobs(family), tool_jobs(family)})
            all.insert(all.end(), part.begin(), part.end());
    for (size_t i = 0; i < all.size(); ++i) all[i].number = i;
    return all;
}

}  // namespace vak::test
