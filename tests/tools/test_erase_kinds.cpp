// The eraser on every kind of block that a state may have, wherever its layout keeps the index values.
#include "samples/activflags.h"
#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/elementresults.h"
#include "samples/parts.h"
#include "samples/sparsematrix.h"
#include "samples/text.h"
#include "samples/triangularmatrix.h"
#include "tools/eraser_test.h"

namespace vak::test {

namespace {

class EraseKinds : public EraserTest {
protected:
    template <class S>
    void expect_erased_by_its_index()
    {
        auto s = sample<S>();
        s.index.indexident = {4, 5};
        EXPECT_GE(s.write(file), 0) << S::type;
        close_groups();
        const std::string before = layout(file, "singlestate");
        EXPECT_EQ(erase({4, 5}).ierr, 0);
        EXPECT_EQ(erase({4}).ierr, 0);
        EXPECT_EQ(layout(file, "singlestate"), before) << S::type;
        EXPECT_EQ(erase({4, 4}).ierr, 0);
        EXPECT_FALSE(has("singlestate")) << S::type;
    }

private:
    // The writer of element results leaves its block's group open.
    void close_groups() const
    {
        hid_t group = H5I_INVALID_HID;
        while (H5Fget_obj_ids(file, H5F_OBJ_GROUP, 1, &group) > 0) H5Gclose(group);
    }
};
INSTANTIATE_TEST_SUITE_P(, EraseKinds, both_families, family_name);

TEST_P(EraseKinds, go_and_stay_by_their_own_index_values)
{
    write_frame();
    expect_erased_by_its_index<EntityResults>();
    expect_erased_by_its_index<ElementResults>();
    expect_erased_by_its_index<ActivFlags>();
    expect_erased_by_its_index<Parts>();
    expect_erased_by_its_index<Attributes>();
    expect_erased_by_its_index<Connectivities>();
    expect_erased_by_its_index<Collector>();
    expect_erased_by_its_index<DenseMatrix>();
    expect_erased_by_its_index<TriangularMatrix>();
    expect_erased_by_its_index<SparseMatrix>();
    if (legacy()) return;
    expect_erased_by_its_index<Identifiers>();
    expect_erased_by_its_index<Text>();
}

}  // namespace

}  // namespace vak::test
