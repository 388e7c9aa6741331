// Collectors: the union of the sets, and of the entities in each of them.
#include <algorithm>
#include <map>
#include <set>

#include "blocks/fields.h"
#include "tools/merge.h"
#include "tools/merge_source.h"

namespace vak {

namespace {

using EntityType = std::string;  // 256 characters, as stored

struct Collectors {
    std::vector<EntityType> types;  // in the order in which the files bring them
    std::map<int32_t, std::map<EntityType, std::set<int32_t>>> sets;
};

// What one file stores.
struct Lists {
    int32_t ncoll = 0, ntyp = 0, nenttot = 0;
    Bytes idcoll, etyp, nent, entid;
};

constexpr Column idcoll{"idcoll", integer_type, Role::row}, etyp{"etyp", text_type, Role::row},
    nent{"nent", integer_type, Role::row}, entid{"entid", integer_type, Role::row};

hsize_t extent(int32_t count) { return static_cast<hsize_t>(std::max(count, 0)); }

int32_t read_lists(SourceBlock& s, Lists& lists)
{
    lists.ncoll = s.integer_attribute("ncoll").value_or(0);
    lists.ntyp = s.integer_attribute("ntyp").value_or(0);
    lists.nenttot = s.integer_attribute("nenttot").value_or(0);
    if (s.attribute_status() != 0) return s.attribute_status();
    int32_t status = s.read(idcoll, 4, {extent(lists.ncoll)}, lists.idcoll);
    if (status == 0) status = s.read(etyp, 256, {extent(lists.ntyp)}, lists.etyp);
    if (status == 0) status = s.read(nent, 4, {extent(lists.ncoll), extent(lists.ntyp)}, lists.nent);
    if (status == 0) status = s.read(entid, 4, {extent(lists.nenttot)}, lists.entid);
    return status;
}

const int32_t* integers_of(const Bytes& bytes) { return reinterpret_cast<const int32_t*>(bytes.data()); }

// False when the counts do not add up to the identifiers that are there.
bool add_lists(const Lists& lists, Collectors& all)
{
    const size_t nlists = lists.nent.size() / 4, available = lists.entid.size() / 4;
    const size_t ntyp = lists.etyp.size() / 256;
    size_t at = 0;
    for (size_t i = 0; i < ntyp; ++i) {
        const EntityType type(&lists.etyp[i * 256], 256);
        if (std::ranges::find(all.types, type) == all.types.end()) all.types.push_back(type);
    }
    for (size_t i = 0; i < nlists; ++i) {
        const int32_t n = integers_of(lists.nent)[i];
        if (n < 0 || static_cast<size_t>(n) > available - at) return false;
        auto& set =
            all.sets[integers_of(lists.idcoll)[i / ntyp]][EntityType(&lists.etyp[i % ntyp * 256], 256)];
        set.insert(integers_of(lists.entid) + at, integers_of(lists.entid) + at + n);
        at += static_cast<size_t>(n);
    }
    // A collector may have no entity at all, or no type.
    for (size_t i = 0; i < lists.idcoll.size() / 4; ++i) all.sets[integers_of(lists.idcoll)[i]];
    return at == available;
}

// The merged block's datasets.
struct Merged {
    std::vector<int32_t> idcoll, nent, entid;
    Bytes etyp;
};

Merged flattened(const Collectors& all)
{
    Merged m;
    for (const EntityType& type : all.types) m.etyp.insert(m.etyp.end(), type.begin(), type.end());
    for (const auto& [id, lists] : all.sets) {
        m.idcoll.push_back(id);
        for (const EntityType& type : all.types) {
            const auto list = lists.find(type);
            m.nent.push_back(list == lists.end() ? 0 : static_cast<int32_t>(list->second.size()));
            if (list != lists.end()) m.entid.insert(m.entid.end(), list->second.begin(), list->second.end());
        }
    }
    return m;
}

// The fields that the lowest file's block rules: its name and its state.
struct Header {
    std::string etypcoll;
    int32_t nindex = 0, indexic = 0;
    size_t real_size = sizeof(float);
    Bytes indexident, indexval;
};

int32_t read_header(SourceBlock& lowest, Header& h)
{
    constexpr Column indexident{"indexident", integer_type, Role::index};
    constexpr Column indexval{"indexval", real_type, Role::index};
    h.etypcoll = lowest.text_attribute("etypcoll");
    h.etypcoll.resize(256);
    h.nindex = lowest.nindex;
    h.indexic = lowest.integer_attribute("indexic").value_or(0);
    if (lowest.attribute_status() != 0) return lowest.attribute_status();
    if (lowest.stored(indexval).element > sizeof(float)) h.real_size = sizeof(double);
    const int32_t status = lowest.read(indexident, sizeof(int32_t), {extent(h.nindex)}, h.indexident);
    return status != 0 ? status : lowest.read(indexval, h.real_size, {extent(h.nindex)}, h.indexval);
}

void write_index(Block& io, const Header& h)
{
    enter(io, "index");
    integers(io, "indexident", reinterpret_cast<const int32_t*>(h.indexident.data()), {h.nindex});
    real_part(io, {"indexval", const_cast<char*>(h.indexval.data()), h.real_size}, {h.nindex}, whole());
}

void write_fields(Block& io, const Header& h, const Merged& m)
{
    const auto ncoll = static_cast<int32_t>(m.idcoll.size()),
               ntyp = static_cast<int32_t>(m.etyp.size() / 256);
    const auto nenttot = static_cast<int32_t>(m.entid.size());
    enter(io, "header");
    identify(io);
    text(io, "etypcoll", h.etypcoll.data());
    integer(io, "ncoll", &ncoll);
    integer(io, "ntyp", &ntyp);
    integer(io, "nenttot", &nenttot);
    integer(io, "nindex", &h.nindex);
    if (current(io)) integer(io, "indexic", &h.indexic);
    write_index(io, h);
    enter(io, "data");
    integers(io, "idcoll", m.idcoll.data(), {ncoll});
    texts(io, "etyp", m.etyp.data(), 256, {ntyp});
    integers(io, "nent", m.nent.data(), {ncoll, ntyp});
    integers(io, "entid", m.entid.data(), {nenttot});
}

int32_t write_collector(const Merge& merge, const BlockKind& kind, const std::string& path,
                        StorageOptions storage, const Header& h, const Merged& m)
{
    if (!fits_count(static_cast<int64_t>(m.entid.size()))) return refuse_total(kind);
    OpenedGroup opened = open_or_create_group(merge.target, path);
    if (opened.status < 0) return opened.status;
    Block io(kind, merge.family, Direction::write, opened.group.get());
    io.is_new = opened.status > 0;
    io.key = kind.key;
    io.storage = storage;
    io.storage.real_size = std::max(storage.real_size, h.real_size);
    refuse_existing(io);
    write_fields(io, h, m);
    return end_writing(io, std::move(opened.group));
}

int32_t read_source(const Merge& merge, SourceBlock& s, Collectors& all)
{
    const char* const type = "collector";
    if (const int32_t status = s.read_counts(); status != 0) return read_failed(type, 1, status);
    if (const int32_t status = s.check_needed(); status != 0) return read_failed(type, 1, status);
    if (s.nindex > max_index) return refuse_index(merge, s.nindex);
    Lists lists;
    int32_t status = read_lists(s, lists);
    if (status == 0 && !add_lists(lists, all)) status = -6999;
    return status == 0 ? 0 : read_failed(type, 2, status);
}

}  // namespace

int32_t merge_collector(const Merge& merge, const MergedKind& kind, const TargetBlock& target)
{
    Collectors all;
    for (const DomainBlock& source : target.sources) {
        SourceBlock s(merge, kind, source);
        if (const int32_t status = read_source(merge, s, all); status != 0) return status;
    }
    SourceBlock lowest(merge, kind, target.sources.front());
    Header header;
    int32_t status = lowest.read_counts();
    if (status == 0) status = read_header(lowest, header);
    if (status != 0) return read_failed(kind.kind.type, 2, status);
    const StorageOptions storage = merged_storage(merge, kind.kind.type, lowest.filters(), "");
    const Merged merged = flattened(all);
    status = write_collector(merge, kind.kind, target.path, storage, header, merged);
    return status == 0 ? 0 : write_failed(kind.kind.type, status);
}

}  // namespace vak
