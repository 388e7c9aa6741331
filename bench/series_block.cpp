#include "series_block.h"

#include <algorithm>

namespace bench {

namespace {

constexpr hsize_t rows_of_a_chunk = 1000;  // of entities; those of these models are multiples of it

}  // namespace

SeriesBlock::SeriesBlock(int32_t entities, int32_t flag_word, plain::Filters filters)
    : res(size_t(entities) * components),
      nent_(entities),
      ids_(numbers_from_1(size_t(entities))),
      flags_(flag_word),
      filters_(filters)
{
    using namespace plain;
    once_ = {
        attribute("block", head_.key),     attribute("blocktype", head_.type),
        attribute("series", series_),      attribute("etyp", etyp_),
        attribute("nent", nent_),          attribute("etypvar", etypvar_),
        attribute("ncoo", ncoo_),          attribute("etypzone", blank_),
        attribute("zoneid", none_),        attribute("etypframe", blank_),
        attribute("fswitch", fswitch_),    attribute("dmpswitch", dmpswitch_),
        attribute("nindex", index_.n),     integers("entid", {static_cast<hsize_t>(entities)}, ids_.data()),
        integers("fidglob", {}, &fidglob_)};
    fill_smoothly(res, 0);
}

plain::Field SeriesBlock::values(hsize_t states)
{
    return plain::reals("res", {states, static_cast<hsize_t>(nent_), components}, res.data(), filters_);
}

void SeriesBlock::append(const File& file)
{
    const int32_t one_state = 1, real = 4;
    int32_t ierr = 0;
    VAK_WRITE_MULTIENTITYRESULTS(file.id(), series_.data(), etyp_.data(), &nent_, etypvar_.data(), &ncoo_,
                                 blank_.data(), &none_, blank_.data(), &fswitch_, &dmpswitch_, &index_.n,
                                 &index_.ident, &index_.value, ids_.data(), &fidglob_, nullptr, nullptr,
                                 nullptr, res.data(), &none_, &one_state, &flags_, params_, &real, &ierr);
    must(ierr, "appending");
}

void SeriesBlock::create_plainly(hid_t group)
{
    stored_ = 0;
    for (const plain::Field& f : once_) plain::write(group, f);
    plain::create_growing(group, plain::integers("indexident", {0, 1}, nullptr), {1, 1});
    plain::create_growing(group, plain::reals("indexval", {0, 1}, nullptr), {1, 1});
    plain::create_growing(group, values(0), {1, rows_of_a_chunk, components});
}

void SeriesBlock::append_plainly(hid_t file)
{
    const hid_t group = plain::make_groups(file, path);
    if (H5Lexists(group, "entid", H5P_DEFAULT) <= 0) create_plainly(group);
    plain::append(group, plain::integers("indexident", {1, 1}, &index_.ident));
    plain::append(group, plain::reals("indexval", {1, 1}, &index_.value));
    plain::append(group, values(1));
    ++stored_;
    plain::rewrite(group, plain::attribute("nstate", stored_));
    H5Gclose(group);
}

void SeriesBlock::read(const File& file, int32_t states)
{
    const BlockGroup block(file, path);
    const int32_t everything = 2;
    int32_t found = 0, params[2] = {0, 0}, nstate = states, ierr = 0;
    idents_.resize(size_t(states));
    times_.resize(size_t(states));
    VAK_READ_MULTIENTITYRESULTS(block.id(), &everything, series_.data(), etyp_.data(), &nent_,
                                etypvar_.data(), &ncoo_, blank_.data(), &none_, blank_.data(), &fswitch_,
                                &dmpswitch_, &index_.n, &nstate, idents_.data(), times_.data(), ids_.data(),
                                &fidglob_, nullptr, nullptr, nullptr, res.data(), &found, params, &ierr);
    must(ierr, "reading a series");
}

void SeriesBlock::read_plainly(hid_t file, int32_t states)
{
    const auto n = static_cast<hsize_t>(states);
    idents_.resize(n);
    times_.resize(n);
    const hid_t group = H5Gopen2(file, path.c_str(), H5P_DEFAULT);
    for (const plain::Field& f : once_) plain::read(group, f);
    plain::read(group, plain::integers("indexident", {n, 1}, idents_.data()));
    plain::read(group, plain::reals("indexval", {n, 1}, times_.data()));
    plain::read(group, values(n));
    H5Gclose(group);
}

void SeriesBlock::read_slab(const BlockGroup& block, const plain::Extents& count, const plain::Extents& start)
{
    const int32_t values_alone = 8, slab = 1, real = 4;
    const int64_t n[] = {int64_t(count[0]), int64_t(count[1]), int64_t(count[2])};
    const int64_t from[] = {int64_t(start[0]), int64_t(start[1]), int64_t(start[2])};
    int32_t found = 0, params[2] = {0, 0}, nstate = int32_t(count[0]), ierr = 0;
    VAK_READ_MULTIENTITYRESULTS2(block.id(), &values_alone, nullptr, series_.data(), etyp_.data(), &nent_,
                                 etypvar_.data(), &ncoo_, blank_.data(), &none_, blank_.data(), &fswitch_,
                                 &dmpswitch_, &index_.n, &nstate, nullptr, nullptr, nullptr, &fidglob_,
                                 nullptr, nullptr, nullptr, res.data(), &real, &found, params, &slab, n, from,
                                 &ierr);
    must(ierr, "reading a slab");
}

void SeriesBlock::read_slab_plainly(hid_t group, const plain::Extents& count, const plain::Extents& start)
{
    plain::read_slab(group, values(count[0]), count, start);
}

}  // namespace bench
