#include "entity_results.h"

namespace bench {

EntityResults::EntityResults(int32_t entities, int32_t components, int32_t flag_word, plain::Filters filters)
    : res(size_t(entities) * size_t(components)),
      nent_(entities),
      ncoo_(components),
      ids_(numbers_from_1(size_t(entities))),
      flags_(flag_word)
{
    using namespace plain;
    const auto n = static_cast<hsize_t>(entities), c = static_cast<hsize_t>(components);
    fields_ = {attribute("block", head_.key),
               attribute("blocktype", head_.type),
               attribute("etyp", etyp_),
               attribute("nent", nent_),
               attribute("etypvar", etypvar_),
               attribute("ncoo", ncoo_),
               attribute("etypzone", blank_),
               attribute("zoneid", none_),
               attribute("etypframe", frame_),
               attribute("fswitch", fswitch_),
               attribute("dmpswitch", dmpswitch_),
               attribute("nindex", index_.n),
               attribute("indexic", index_.code),
               integers("indexident", {1}, &index_.ident),
               reals("indexval", {1}, &index_.value),
               integers("entid", {n}, ids_.data()),
               integers("fidglob", {}, &fidglob_),
               reals("res", {n, c}, res.data(), filters)};
    fill_smoothly(res, 0);
}

void EntityResults::go_to(int32_t number)
{
    state_ = index_.ident = number;
    index_.value = 0.1F * static_cast<float>(number);
}

void EntityResults::write(const File& file)
{
    const int32_t real = 4;
    int32_t ierr = 0;
    VAK_WRITE_ENTITYRESULTS(file.id(), etyp_.data(), &nent_, etypvar_.data(), &ncoo_, blank_.data(), &none_,
                            frame_.data(), &fswitch_, &dmpswitch_, &index_.n, &index_.code, &index_.ident,
                            &index_.value, ids_.data(), &fidglob_, nullptr, nullptr, nullptr, res.data(),
                            &none_, &state_, &flags_, params_, &real, &ierr);
    must(ierr, "writing entity results");
}

void EntityResults::read(const File& file, int32_t pass)
{
    const BlockGroup block(file, path());
    int32_t flags = 0, params[2] = {0, 0}, ierr = 0;
    VAK_READ_ENTITYRESULTS(block.id(), &pass, etyp_.data(), &nent_, etypvar_.data(), &ncoo_, blank_.data(),
                           &none_, frame_.data(), &fswitch_, &dmpswitch_, &index_.n, &index_.code,
                           &index_.ident, &index_.value, ids_.data(), &fidglob_, nullptr, nullptr, nullptr,
                           res.data(), &flags, params, &ierr);
    must(ierr, "reading entity results");
}

}  // namespace bench
