#include "qor/tools/container/sptr.h"

#include <gtest/gtest.h>

#include "support/tracked.h"

#include "qor/tools/algorithm/singleton.h"
#include "qor/tools/container/ptr.h"
#include "support/counted_unknown.h"

using namespace qor::tools;
using namespace qor::tools::container;

namespace {

using qor::tools::testing::tracked;


}  // namespace

TEST(SptrSharing, AttachMovesOnlyThisHandle) {
    int alive = 0;
    auto *q = new tracked(&alive);
    {
        sptr<tracked> a(new tracked(&alive));
        sptr<tracked> b = a;
        tracked *first = a.Get();
        a.Attach(q, false);
        EXPECT_EQ(alive, 2);
        EXPECT_EQ(b.Get(), first);
        EXPECT_EQ(a.Get(), q);
        EXPECT_EQ(a.Body()->Counter(), 1u);
        EXPECT_EQ(b.Body()->Counter(), 1u);
    }
    EXPECT_EQ(alive, 0);
}

TEST(SptrSharing, ReplaceMovesEveryHandle) {
    int alive = 0;
    auto *q = new tracked(&alive);
    sptr<tracked> a(new tracked(&alive));
    sptr<tracked> b = a;
    a.Replace(q, false);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(a.Get(), q);
    EXPECT_EQ(b.Get(), q);
}

TEST(SptrMark, ReferencedObjectsSurvive) {
    int alive = 0;
    tracked keep(&alive);
    { sptr<tracked> view(&keep, true); }
    EXPECT_EQ(alive, 1);
    {
        sptr<tracked> a(new tracked(&alive));
        a.Reference(true);
        tracked *leaked = a.Get();
        a.Reference(true);
        a.Release();
        EXPECT_EQ(alive, 2);  // Release with the mark set gives nothing back
        delete leaked;
    }
    EXPECT_EQ(alive, 1);
}

TEST(SptrAttach, SameElementChangesNothingNotEvenTheMark) {
    int alive = 0;
    sptr<tracked> a(new tracked(&alive));
    a.Attach(a.Get(), true);
    EXPECT_FALSE(a.Reference());
    auto const &same = a;
    a = same;
    EXPECT_EQ(a.Body()->Counter(), 1u);
    a = nullptr;
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(a.IsEmpty());
}

TEST(SptrDetach, EveryHandleSeesNullAndTheCallerOwns) {
    int alive = 0;
    sptr<tracked> a(new tracked(&alive), true);
    sptr<tracked> b = a;
    tracked *p = a.Detach();
    EXPECT_TRUE(b.IsEmpty());
    EXPECT_FALSE(b.Reference());
    EXPECT_EQ(alive, 1);
    delete p;
}

TEST(Comptr, AddrReleasesFirstRefAddrDoesNot) {
    bool firstDeleted = false, secondDeleted = false;
    {
        comptr<IUnknown> c(new qor::tools::testing::counted_unknown(&firstDeleted));
        *c.Addr() = new qor::tools::testing::counted_unknown(&secondDeleted);
        EXPECT_TRUE(firstDeleted);
        IUnknown *held = c.Get();
        *c.RefAddr() = nullptr;
        EXPECT_FALSE(secondDeleted);
        held->Release();
    }
    EXPECT_TRUE(secondDeleted);
}

TEST(Comptr, CreateInstanceWithoutAFactoryFails) {
    comptr<IUnknown> c;
    EXPECT_EQ(c.CoCreateInstance(GUID_NULL), REGDB_E_CLASSNOTREG);
    EXPECT_TRUE(c.IsEmpty());
    bool deleted = false;
    c = new qor::tools::testing::counted_unknown(&deleted);
    EXPECT_EQ(c.CoCreateInstance(u"No.Such.Class"), CO_E_CLASSSTRING);
    EXPECT_FALSE(deleted);  // a failed ProgID lookup keeps the old element
}

TEST(PlainPtr, OwnsAlone) {
    int alive = 0;
    {
        ptr<tracked> p(new tracked(&alive));
        p = new tracked(&alive);
        EXPECT_EQ(alive, 1);
        tracked *free = p.Detach();
        EXPECT_TRUE(p.IsEmpty());
        delete free;
    }
    EXPECT_EQ(alive, 0);
}

namespace {
struct factory : algorithm::singleton<factory> {
    int mValue = 7;
};
}  // namespace

TEST(Singleton, RegistersOnConstructionAndTerminates) {
    EXPECT_EQ(factory::Instance(), nullptr);
    auto *first = new factory;
    EXPECT_EQ(factory::Instance(), first);
    factory copy(*first);
    EXPECT_EQ(factory::Instance(), first);
    auto *second = new factory;
    EXPECT_EQ(factory::Instance(), second);
    second->Terminate();
    EXPECT_EQ(factory::Instance(), nullptr);
    delete first;
}
