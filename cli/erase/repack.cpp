#include "erase/repack.h"

#include <hdf5.h>

#include <filesystem>
#include <utility>

#include "import/part_file.h"
#include "problem.h"

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

bool copy_everything(const std::string& from, const std::string& to)
{
    bool copied = false;
    H5E_BEGIN_TRY
    {
        const Id<H5Fclose> source(H5Fopen(from.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
        Id<H5Fclose> target(H5Fcreate(to.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
        copied = source >= 0 && target >= 0 && copy_root(source, target) &&
                 H5Fflush(target, H5F_SCOPE_GLOBAL) >= 0;
        copied = target >= 0 && target.close() && copied;
    }
    H5E_END_TRY
    return copied;
}

}  // namespace

int64_t repack(const std::string& file)
{
    const auto before = static_cast<int64_t>(fs::file_size(file));
    import::PartFile part(fs::canonical(file).string());
    if (!copy_everything(file, part.path()))
        throw cli::Problem(file +
                           ": the new file could not be written; the old one stays, with its states erased");
    fs::permissions(part.path(), fs::status(file).permissions());
    part.complete();
    return before - static_cast<int64_t>(fs::file_size(file));
}

}  // namespace vak::erase
