#include "contracts/kinds.h"

#include <set>

#include "contracts/sample_arguments.h"
#include "vak_sp.h"

namespace vak::test {

#define ROUTINE(name)                                                                     \
    Routine                                                                               \
    {                                                                                     \
#name, [](hid_t at, int32_t value) { return call_with_samples(name, at, value); } \
    }
#define KIND(family, noun) \
    Kind { ROUTINE(family##_WRITE_##noun), ROUTINE(family##_READ_##noun) }

const std::vector<Kind>& kinds()
{
    static const std::vector<Kind> all{
        KIND(VAK, FILEHEADER),
        KIND(VAK1, FILEHEADER),  //
        KIND(VAK, SYSTEM),
        KIND(VAK1, SYSTEM),  //
        KIND(VAK, INDEX),
        KIND(VAK1, INDEX),  //
        KIND(VAK, VARIABLE),
        KIND(VAK1, VARIABLES),     //
        KIND(VAK, VARIABLEGROUP),  //
        KIND(VAK, TEXT),
        KIND(VAK1, TEXT),  //
        KIND(VAK, PARTS),
        KIND(VAK1, PARTS),  //
        KIND(VAK, ATTRIBUTES),
        KIND(VAK1, ATTRIBUTES),  //
        KIND(VAK, IDENTIFIERS),  //
        KIND(VAK, CONNECTIVITIES),
        KIND(VAK1, CONNECTIVITIES),  //
        KIND(VAK, COLLECTOR),
        KIND(VAK1, COLLECTOR),  //
        KIND(VAK, PROPERTIES),  //
        KIND(VAK, DENSEMATRIX),
        KIND(VAK1, DENSEMATRIX),  //
        KIND(VAK, TRIANGULARMATRIX),
        KIND(VAK1, TRIANGULARMATRIX),  //
        KIND(VAK, SPARSEMATRIX),
        KIND(VAK1, SPARSEMATRIX),  //
        KIND(VAK, ENTITYRESULTS),
        KIND(VAK1, ENTITYRESULTS),  //
        KIND(VAK, ENTITYRESULTS2),
        KIND(VAK1, ENTITYRESULTS2),  //
        KIND(VAK, MULTIENTITYRESULTS),
        KIND(VAK1, MULTIENTITYRESULTS),  //
        KIND(VAK, MULTIENTITYRESULTC),
        KIND(VAK1, MULTIENTITYRESULTC),  //
        KIND(VAK, MULTIENTITYRESULTS2),
        KIND(VAK1, MULTIENTITYRESULTS2),  //
        KIND(VAK, ELEMENTRESULTS),
        KIND(VAK1, ELEMENTRESULTS),  //
        KIND(VAK, MULTIELEMENTRESULTS),
        KIND(VAK1, MULTIELEMENTRESULTS),  //
        KIND(VAK, ACTIVFLAGS),
        KIND(VAK1, ACTIVFLAGS),  //
        KIND(VAK, MULTIACTIVFLAGS),
        KIND(VAK1, MULTIACTIVFLAGS),  //
    };
    return all;
}

std::vector<std::string> stamped_groups(hid_t place)
{
    std::vector<std::string> found;
    H5Ovisit3(
        place, H5_INDEX_NAME, H5_ITER_NATIVE,
        [](hid_t from, const char* name, const H5O_info2_t*, void* data) -> herr_t {
            if (H5Aexists_by_name(from, name, "block", H5P_DEFAULT) > 0)
                static_cast<std::vector<std::string>*>(data)->emplace_back(name);
            return 0;
        },
        &found, H5O_INFO_BASIC);
    return found;
}

ObjectId StoredBlock::group() const
{
    const std::string path = "./" + stamped;
    return open_object(place, path.ends_with("/header") ? path.substr(0, path.size() - 7) : path);
}

// Of the integers, 4 is a count, a size of reals and a state. Where it is what to write as well, 1 is the
// stamp.
StoredBlock ContractTest::written(const Kind& kind)
{
    for (const int32_t value : {4, 1}) {
        ObjectId location = place();
        call_at(kind.write, location, value);
        const std::vector<std::string> stamped = stamped_groups(location);
        if (stamped.size() == 1) return {std::move(location), stamped[0]};
    }
    throw std::runtime_error(kind.write.name + " wrote no block");
}

ObjectId ContractTest::place() { return group(file, std::to_string(++places_)); }

ObjectId ContractTest::group(hid_t location, const std::string& name)
{
    return {H5Gcreate2(location, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
}

// The one writer whose callers expect the block's group open after it.
static bool leaves_group_open(const Routine& routine)
{
    return routine.name.ends_with("_WRITE_ELEMENTRESULTS");
}

static std::set<hid_t> open_groups(hid_t file)
{
    std::array<hid_t, 16> ids{};
    const ssize_t count = H5Fget_obj_ids(file, H5F_OBJ_GROUP, ids.size(), ids.data());
    return {ids.begin(), ids.begin() + count};
}

Result ContractTest::call_at(const Routine& routine, hid_t place, int32_t value)
{
    const std::set<hid_t> before = open_groups(file);
    return run([&] {
        const int32_t status = routine.call(place, value);
        if (status != 0 || !leaves_group_open(routine)) return status;
        const std::set<hid_t> after = open_groups(file);
        EXPECT_EQ(after.size(), before.size() + 1) << "the block's group";
        for (const hid_t id : after)
            if (!before.contains(id)) H5Gclose(id);
        return status;
    });
}

}  // namespace vak::test
