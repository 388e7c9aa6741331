// usage: write_samples FOLDER     writes one file for each kind of block and family, and beside it what the
// library reads from it: <name>.h5, <name>.json
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "samples/activflags.h"
#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/indices.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "samples/parts.h"
#include "samples/properties.h"
#include "samples/sparsematrix.h"
#include "samples/system.h"
#include "samples/text.h"
#include "samples/triangularmatrix.h"
#include "samples/variable.h"
#include "samples/variablegroup.h"
#include "samples/variables1.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

class Folder {
public:
    explicit Folder(std::string path) : path_(std::move(path)) {}

    // The sample as it is stored, and as its own reader finds it.
    template <class S>
    void put(const std::string& name, const S& sample) const
    {
        const FileId file = create_file(path_ + "/" + name + ".h5");
        require(name, write_header(file, sample.legacy()));
        require(name, sample.write(file));
        S found = emptied(sample);
        require(name, found.read(open_object(file, sample.path()), everything<S>(sample.legacy())));
        nlohmann::ordered_json fields;
        S::each(found, [&](const char* field, const auto& value) { fields[field] = value; });
        std::ofstream(path_ + "/" + name + ".json") << nlohmann::ordered_json{
            {"type", S::type}, {"legacy", sample.legacy()}, {"path", sample.path()}, {"fields", fields}};
    }

    // In both families.
    template <class S>
    void put_both(const std::string& name) const
    {
        put(name, sample_of<S>(Family::current));
        put(name + "_legacy", sample_of<S>(Family::legacy));
    }

    template <class S>
    void put_complex(const std::string& name) const
    {
        put(name + "_complex", S::complex_of(Family::current));
        put(name + "_complex_legacy", S::complex_of(Family::legacy));
    }

private:
    static int32_t write_header(hid_t file, bool legacy)
    {
        int32_t ierr = untouched;
        (legacy ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&file, nullptr, nullptr, &ierr);
        return ierr;
    }

    static void require(const std::string& name, int32_t status)
    {
        if (status < 0) throw std::runtime_error(name + ": status " + std::to_string(status));
    }

    std::string path_;
};

// Long enough to be filtered, stored double.
Attributes filtered_attributes(Family family)
{
    Attributes a = sample_of<Attributes>(family);
    a.nent = 100;
    a.nuid = 2;
    a.entid.resize(100, 7);
    a.uid.resize(200, -3);
    a.title.resize(a.title.size() * 25, 't');
    a.index = {9, 1, std::vector<int32_t>(9, 70000), std::vector<float>(9, 0.1F)};
    a.flags = 255;
    a.params[0] = 3;
    a.params[1] = 6;
    a.real_size = 8;
    return a;
}

void put_all(const Folder& folder)
{
    folder.put_both<System>("system");
    folder.put_both<Indices>("indices");
    folder.put("variable", Variable());
    folder.put("variables_legacy", sample_of<Variables1>(Family::legacy));
    folder.put("variablegroup", VariableGroup());
    folder.put_both<Text>("text");
    folder.put_both<Parts>("parts");
    folder.put_both<Attributes>("attributes");
    folder.put("attributes_filtered", filtered_attributes(Family::current));
    folder.put("attributes_filtered_legacy", filtered_attributes(Family::legacy));
    folder.put("identifiers", Identifiers());
    folder.put_both<Connectivities>("connectivities");
    folder.put_both<Collector>("collector");
    folder.put("properties", PropertyTables());
    folder.put_both<EntityResults>("entityresults");
    folder.put_complex<EntityResults>("entityresults");
    folder.put("multientityresults", MultiEntityResults::of_states(Family::current, 3));
    folder.put("multientityresults_complex_legacy", MultiEntityResults::of_states(Family::legacy, 2, 32));
    folder.put_both<ElementResults>("elementresults");
    folder.put_both<MultiElementResults>("multielementresults");
    folder.put_both<ActivFlags>("activflags");
    folder.put_both<MultiActivFlags>("multiactivflags");
    folder.put_both<DenseMatrix>("densematrix");
    folder.put_complex<DenseMatrix>("densematrix");
    folder.put_both<TriangularMatrix>("triangularmatrix");
    folder.put_complex<TriangularMatrix>("triangularmatrix");
    folder.put_both<SparseMatrix>("sparsematrix");
    folder.put_complex<SparseMatrix>("sparsematrix");
}

}  // namespace

}  // namespace vak::test

int main(int argc, char** argv)
{
    try {
        if (argc != 2) throw std::runtime_error("usage: write_samples FOLDER");
        vak::test::put_all(vak::test::Folder(argv[1]));
    } catch (const std::exception& problem) {
        std::cerr << "write_samples: " << problem.what() << '\n';
        return 1;
    }
}
