// Three decimal digits and deflate 6: element results as one chunk, and a series.
#include "cases.h"
#include "duel.h"
#include "series_block.h"

#include <memory>

namespace bench {

namespace {

constexpr int32_t elements = 1000000, states = 5, entities = 200000;
constexpr int32_t scale_offset_and_deflate = 128 + 2;  // of reals
const plain::Filters like_it{.digits = 3, .deflate = 6};

// Stresses at one location of each element.
class ElementResults {
public:
    ElementResults();
    ElementResults(const ElementResults&) = delete;  // the fields point to the members

    void write(const File& file);
    void read(const File& file);
    void write_plainly(hid_t file) { plain::write_block(file, path_, fields_); }
    void read_plainly(hid_t file) { plain::read_block(file, path_, fields_); }

    std::vector<float> res = std::vector<float>(size_t(elements) * 3);

private:
    const std::string path_ = state_path(1, "elementresults/HEX8/STRESS");
    Head head_{1100, "elementresults"};
    std::string etypelem_ = field("HEX8"), etypvar_ = field("STRESS"), blank_ = field("");
    int32_t n_ = elements, ncoo_ = 3, numl_ = 1, ndim_ = 3, none_ = -1, zero_ = 0, fidglob_ = 0;
    Index index_;
    std::vector<int32_t> ids_ = numbers_from_1(elements);
    float eloc_[3] = {0, 0, 0};
    std::vector<plain::Field> fields_;
};

ElementResults::ElementResults()
{
    using namespace plain;
    fields_ = {attribute("block", head_.key),
               attribute("blocktype", head_.type),
               attribute("etypelem", etypelem_),
               attribute("nele", n_),
               attribute("etypvar", etypvar_),
               attribute("ncoo", ncoo_),
               attribute("numl", numl_),
               attribute("ndim", ndim_),
               attribute("etypzone", blank_),
               attribute("zoneid", none_),
               attribute("etypframe", blank_),
               attribute("fswitch", zero_),
               attribute("dmpswitch", zero_),
               attribute("nindex", index_.n),
               attribute("indexic", index_.code),
               integers("indexident", {1}, &index_.ident),
               reals("indexval", {1}, &index_.value),
               integers("idele", {elements}, ids_.data()),
               integers("fidglob", {}, &fidglob_),
               reals("eloc", {1, 3}, eloc_),
               reals("res", {elements, 1, 3}, res.data(), like_it)};
    fill_smoothly(res, 0);
}

void ElementResults::write(const File& file)
{
    const int32_t state = 1, flags = scale_offset_and_deflate, params[2] = {3, 6}, real = 4;
    int32_t ierr = 0;
    VAK_WRITE_ELEMENTRESULTS(file.id(), etypelem_.data(), &n_, etypvar_.data(), &ncoo_, &numl_, &ndim_,
                             blank_.data(), &none_, blank_.data(), &zero_, &zero_, &index_.n, &index_.code,
                             &index_.ident, &index_.value, ids_.data(), &fidglob_, nullptr, eloc_, nullptr,
                             nullptr, res.data(), &none_, &state, &flags, params, &real, &ierr);
    must(ierr, "writing element results");
}

void ElementResults::read(const File& file)
{
    const BlockGroup block(file, path_);
    const int32_t everything = 2;
    int32_t flags = 0, params[2] = {0, 0}, ierr = 0;
    VAK_READ_ELEMENTRESULTS(block.id(), &everything, etypelem_.data(), &n_, etypvar_.data(), &ncoo_, &numl_,
                            &ndim_, blank_.data(), &none_, blank_.data(), &zero_, &zero_, &index_.n,
                            &index_.code, &index_.ident, &index_.value, ids_.data(), &fidglob_, nullptr,
                            eloc_, nullptr, nullptr, res.data(), &flags, params, &ierr);
    must(ierr, "reading element results");
}

void write_elements(ElementResults& e, const std::string& name)
{
    const File file(name, create);
    e.write(file);
}

Contest writing_elements()
{
    const auto e = std::make_shared<ElementResults>();
    return writing([=](const std::string& name) { write_elements(*e, name); },
                   [=](const std::string& name) {
                       const hid_t file = plain::create_file(name);
                       e->write_plainly(file);
                       plain::close_file(file);
                   });
}

Contest reading_elements()
{
    const auto e = std::make_shared<ElementResults>();
    const std::string name = file_name("elements.h5");
    write_elements(*e, name);
    return reading([=] { e->read(File(name, read_only)); },
                   [=] {
                       const hid_t file = plain::open_file(name);
                       e->read_plainly(file);
                       plain::close_file(file);
                   },
                   e->res);
}

std::shared_ptr<SeriesBlock> series()
{
    return std::make_shared<SeriesBlock>(entities, scale_offset_and_deflate, like_it);
}

void append_all(SeriesBlock& s, const std::string& name)
{
    const File file(name, create);
    for (int32_t i = 0; i < states; ++i) s.append(file);
}

Contest appending()
{
    const auto s = series();
    return writing([=](const std::string& name) { append_all(*s, name); },
                   [=](const std::string& name) {
                       const hid_t file = plain::create_file(name);
                       for (int32_t i = 0; i < states; ++i) s->append_plainly(file);
                       plain::close_file(file);
                   });
}

Contest reading_series()
{
    const auto s = series();
    const std::string name = file_name("series.h5");
    append_all(*s, name);
    s->res.resize(size_t(states) * size_t(entities) * SeriesBlock::components);
    return reading([=] { s->read(File(name, read_only), states); },
                   [=] {
                       const hid_t file = plain::open_file(name);
                       s->read_plainly(file, states);
                       plain::close_file(file);
                   },
                   s->res);
}

}  // namespace

void add_scale_offset()
{
    add_duel({"Scale-offset, deflate 6: 1,000,000 x 3 in a chunk, written", 0.4, 5}, writing_elements);
    add_duel({"Scale-offset, deflate 6: 1,000,000 x 3 in a chunk, read", 0.4, 9}, reading_elements);
    add_duel({"Scale-offset, deflate 6: series of 5 x 200,000 x 3, written", 0.4, 5}, appending);
    add_duel({"Scale-offset, deflate 6: series of 5 x 200,000 x 3, read", 0.4, 9}, reading_series);
}

}  // namespace bench
