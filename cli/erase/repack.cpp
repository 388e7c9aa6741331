#include "erase/repack.h"

#include <hdf5.h>

#include <filesystem>
#include <utility>
#include <vector>

#include "import/part_file.h"
#include "problem.h"
#include "store/file_lock.h"

namespace vak::erase {

namespace {

namespace fs = std::filesystem;

template <herr_t (*close_id)(hid_t)>
class Id {
public:
    explicit Id(hid_t id) : id_(id) {}
    Id(const Id&) = delete;
    Id& operator=(const Id&) = delete;
    ~Id()
    {
        if (id_ >= 0) close_id(id_);
    }
    operator hid_t() const { return id_; }
    bool close() { return close_id(std::exchange(id_, H5I_INVALID_HID)) >= 0; }

private:
    hid_t id_;
};

constexpr const char* whole = "the whole file";

// The name of the first link of a group; empty when it has none.
std::string first_name(hid_t group)
{
    const ssize_t length =
        H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, 0, nullptr, 0, H5P_DEFAULT);
    if (length <= 0) return {};
    std::string name(static_cast<size_t>(length), '\0');
    H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, 0, name.data(), name.size() + 1, H5P_DEFAULT);
    return name;
}

herr_t copy_attribute(hid_t source, const char* name, const H5A_info_t*, void* to)
{
    const Id<H5Aclose> from(H5Aopen(source, name, H5P_DEFAULT));
    const Id<H5Tclose> type(H5Aget_type(from));
    const Id<H5Sclose> space(H5Aget_space(from));
    const Id<H5Aclose> copy(
        H5Acreate2(*static_cast<hid_t*>(to), name, type, space, H5P_DEFAULT, H5P_DEFAULT));
    const hssize_t n = H5Sget_simple_extent_npoints(space);
    if (copy < 0 || n < 0) return -1;
    std::vector<char> values(static_cast<size_t>(n) * H5Tget_size(type));
    if (values.empty()) return 0;
    const bool copied = H5Aread(from, type, values.data()) >= 0 && H5Awrite(copy, type, values.data()) >= 0;
    H5Treclaim(type, space, H5P_DEFAULT, values.data());  // texts of variable length
    return copied ? 0 : -1;
}

// Those of the root itself; all others come with their objects.
bool copy_attributes(hid_t source, hid_t target)
{
    return H5Aiterate2(source, H5_INDEX_NAME, H5_ITER_INC, nullptr, copy_attribute, &target) >= 0;
}

// In one piece, so that objects that several links lead to stay one; soft and external links stay links.
bool copy_root(hid_t source, hid_t target)
{
    if (H5Ocopy(source, "/", target, whole, H5P_DEFAULT, H5P_DEFAULT) < 0) return false;
    {
        const Id<H5Gclose> copy(H5Gopen2(target, whole, H5P_DEFAULT));
        for (std::string name = first_name(copy); !name.empty(); name = first_name(copy))
            if (H5Lmove(copy, name.c_str(), target, name.c_str(), H5P_DEFAULT, H5P_DEFAULT) < 0) return false;
        H5G_info_t info{};
        if (H5Gget_info(copy, &info) < 0 || info.nlinks > 0) return false;
    }
    return H5Ldelete(target, whole, H5P_DEFAULT) >= 0;
}

// Such a link would lead to the copy of the root that is taken apart.
bool has_link_to_root(const std::string& file)
{
    H5O_info2_t root{};
    H5E_BEGIN_TRY
    {
        const Id<H5Fclose> source(H5Fopen(file.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
        H5Oget_info3(source, &root, H5O_INFO_BASIC);
    }
    H5E_END_TRY
    return root.rc > 1;
}

bool copy_everything(const std::string& from, const std::string& to)
{
    bool copied = false;
    H5E_BEGIN_TRY
    {
        const Id<H5Fclose> source(H5Fopen(from.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
        Id<H5Fclose> target(H5Fcreate(to.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
        copied = source >= 0 && target >= 0 && copy_root(source, target) && copy_attributes(source, target) &&
                 H5Fflush(target, H5F_SCOPE_GLOBAL) >= 0;
        copied = target >= 0 && target.close() && copied;
    }
    H5E_END_TRY
    return copied;
}

}  // namespace

int64_t repack(const std::string& file)
{
    // Also while the one takes the other's place: nobody's changes are to be lost with the old file.
    const store::ReadLock lock(file);
    if (!lock.held())
        throw cli::Problem(file +
                           ": another program has opened it meanwhile; its states are erased, the space "
                           "is not freed");
    if (has_link_to_root(file))
        throw cli::Problem(
            file + ": a link leads back to its root, which cannot be written anew; the space is not freed");
    const auto before = static_cast<int64_t>(fs::file_size(file));
    import::PartFile part(fs::canonical(file).string());
    if (!copy_everything(file, part.path()))
        throw cli::Problem(file +
                           ": the new file could not be written; the old one stays, with its states erased");
    if (static_cast<int64_t>(fs::file_size(part.path())) >= before) return 0;
    fs::permissions(part.path(), fs::status(file).permissions());
    part.complete();
    return before - static_cast<int64_t>(fs::file_size(file));
}

}  // namespace vak::erase
