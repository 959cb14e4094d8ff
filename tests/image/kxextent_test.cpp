// Observable extents and their lists: values, order of calls, listeners that interfere with a broadcast.

#include "tests/support/test.h"

#include "kalvo/frame/boundary.h"

namespace Zelkor::Kalvo {
namespace {

using Extent = GenericRoiExtentWithBroadcast;
using ExtentList = GenericRoiExtentBroadcastingVector;

using Broadcasters = std::vector<IBroadcaster*>;

struct Ear final : IListener {
    void Listen(IBroadcaster* pBroadcaster) override {
        heard.push_back(pBroadcaster);
        if (log) log();
        if (reaction) std::exchange(reaction, nullptr)();
    }
    Broadcasters heard;
    std::function<void()> log, reaction;  // the reaction comes once
};

KX_ERRORS ThrownCode(const std::function<void()>& operation) {
    KxOk();
    AtBoundary(nullptr, operation);
    return KxGetError();
}

TEST(Extent, PropertiesReadAssignAndAlwaysBroadcast) {
    Extent a(GenericRoiExtent(1, 2, 3, 4)), b;
    Ear ear;
    for (int i = 0; i < 2; ++i) a.AddListener(&ear);
    a.Width = 3;
    EXPECT_EQ(ear.heard, Broadcasters(2, &a));
    a.RemoveListener(&ear);
    b.Height = 40;
    a.Width = b.Height;
    EXPECT_EQ(a, GenericRoiExtent(1, 2, 40, 4));
    a.OrgX = a.OrgY + a.Width;
    EXPECT_EQ(a.GetExtent(), GenericRoiExtent(42, 2, 40, 4));
    const Extent copy(a);
    EXPECT_TRUE(copy == a && copy != b);
    b = a;
    EXPECT_EQ(b, a);
    a = GenericRoiExtent();
    EXPECT_NE(a, copy);
    EXPECT_EQ(ear.heard.size(), 5u);  // b has no listeners
    Extent::IntProperty unbound;
    EXPECT_EQ(ThrownCode([&] { EXPECT_EQ(unbound, 0); }), KX_ERROR_INTERNAL);
    EXPECT_EQ(ThrownCode([&] { unbound = 0; }), KX_ERROR_INTERNAL);
}

// What the first of three listeners does once during a broadcast, and whom that broadcast and the ones inside
// it call, in order.
struct Interference {
    std::function<void(std::unique_ptr<Extent>&, Ear*)> act;
    std::string calls;
};
const Interference kInterferences[] = {
    {[](auto& e, Ear* ears) { e->RemoveListener(&ears[0]); }, "012"},
    {[](auto& e, Ear* ears) { e->RemoveListener(&ears[1]); }, "02"},
    {[](auto& e, Ear* ears) { e->RemoveListener(&ears[1]), e->AddListener(&ears[1]); }, "02"},
    {[](auto& e, Ear* ears) {
         (ears[1].reaction = [&e, ears] { e->RemoveListener(&ears[0]); }), e->Width = 1;
     },
     "001212"},
    {[](auto& e, Ear*) { e.reset(); }, "0"},
    {[](auto& e, Ear* ears) { (ears[1].reaction = [&e] { e.reset(); }), e->Width = 1; }, "001"},
};

TEST(Extent, ListenersAreCalledInOrderAndMayInterfere) {
    for (const Interference& interference : kInterferences) {
        auto extent = std::make_unique<Extent>();
        std::string calls;
        Ear ears[3];
        for (int i = 0; i < 3; ++i) {
            ears[i].log = [&calls, i] { calls += std::to_string(i); };
            extent->AddListener(&ears[i]);
        }
        extent->AddListener(nullptr);
        ears[0].reaction = [&] { interference.act(extent, ears); };
        extent->Width = 7;
        EXPECT_EQ(calls, interference.calls);
    }
}

TEST(ExtentList, BroadcastsWhenItemsComeAndGo) {
    constexpr GenericRoiExtent a(0, 0, 10, 10), b(1, 2, 3, 4);
    Ear ear;  // outlives the list, whose end it hears of
    ExtentList list(3);
    list.AddListener(&ear);
    const auto expectHeard = [&](std::size_t times) {
        EXPECT_EQ(std::exchange(ear.heard, {}), Broadcasters(times, &list));
    };
    list.Add(a);
    list.AddOnce(a);
    expectHeard(1);
    KxImage<KxBW8> image(3, 4);
    (list += b) += image;
    EXPECT_EQ(list[2], GenericRoiExtent(0, 0, 3, 4));
    list.InsertItem(b, 0);
    EXPECT_EQ(list.Find(b), 0);
    list.InsertItem(b, 4);
    expectHeard(4);
    list.Remove(b);
    EXPECT_EQ(list.Find(b), 1);
    expectHeard(1);
    list.Remove(GenericRoiExtent(9, 9, 9, 9));
    list.SetSize(5);
    list[0].Width = 5;
    expectHeard(0);
    list[0].AddListener(&list);
    list[0].Width = 5;
    expectHeard(1);
    list.SetSize(1);
    expectHeard(1);
    const std::function<void()> outOfRange[] = {[&] { list.Remove(-1); }, [&] { list.Remove(1); },
                                                [&] { list[1]; }, [&] { list.InsertItem(a, 2); },
                                                [&] { list.SetSize(-1); }};
    for (const auto& operation : outOfRange)
        EXPECT_EQ(ThrownCode(operation), KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    EXPECT_EQ(ThrownCode([&] { list.SetSize(INT_MAX); }), KX_ERROR_ALLOCATION);
    EXPECT_EQ(list.NbItems(), 1);
    expectHeard(0);
    ExtentList(list).AddListener(&ear);
    EXPECT_EQ(ear.heard.size(), 1u);  // the copy died with an item
}

TEST(ExtentList, CopiesItemsButNotListeners) {
    ExtentList source;
    source.Add({1, 2, 3, 4});
    const GenericRoiExtent plain = source[0];
    EXPECT_EQ(plain, GenericRoiExtent(1, 2, 3, 4)) << "an item is an extent too";

    Ear ear;
    ExtentList list;
    list.AddListener(&ear);
    for (int i = 0; i < 70; ++i) list.Add({i, 0, 1, 1});
    ExtentList copy(list), assigned;
    EXPECT_TRUE(copy == list && assigned != list);
    copy[69].Width = 2;
    EXPECT_NE(copy, list);
    assigned.AddListener(&ear);
    ear.heard.clear();
    assigned = list;
    assigned = *&assigned;
    EXPECT_EQ(assigned, list);
    EXPECT_EQ(ear.heard, Broadcasters(3, &assigned));  // cleared only where there were items
    auto mortal = std::make_unique<ExtentList>(list);
    mortal->AddListener(&ear);
    ear.reaction = [&] { mortal.reset(); };
    *mortal = copy;
    EXPECT_EQ(ear.heard.size(), 4u);
}

TEST(UtilsVector, GrowsBy32AndKeepsWhatFits) {
    int values[70];
    Utils::Vector<int*> list;
    for (int& value : values) list.InsertItem(&value, 0);
    EXPECT_EQ(list.Capacity(), 96);
    list.SetSize(40);
    EXPECT_EQ(list.Find(&values[29]), -1);
    EXPECT_EQ(list.Find(&values[30]), 39);
}

TEST(UtilsVector, StaysInOrderWhereverItemsComeAndGo) {
    int values[200];
    Utils::Vector<int*> list;
    std::vector<int*> expected;
    const auto items = [&] {
        std::vector<int*> all;
        for (int i = 0; i < list.NbItems(); ++i) all.push_back(list[i]);
        return all;
    };
    unsigned random = 1;
    for (int& value : values) {
        random = random * 1664525 + 1013904223;
        const int index = static_cast<int>(random >> 16) % (list.NbItems() + 1);
        if (random >> 30 != 0 || index == list.NbItems()) {
            list.InsertItem(&value, index);
            expected.insert(expected.begin() + index, &value);
        }
        for (const int removed : {0, index, static_cast<int>(expected.size()) - 1}) {
            if (random >> 28 & 1 || removed >= list.NbItems()) continue;
            list.Remove(removed);
            expected.erase(expected.begin() + removed);
        }
        ASSERT_EQ(items(), expected);
    }
    list.SetSize(2);
    expected.resize(2);
    EXPECT_EQ(items(), expected);
}

TEST(ExtentOperators, ReturnTheStoredCodeAndNeverThrow) {
    const auto assign = GenericRoiExtentWithBroadcast_operatorAssign_GenericRoiExtent;
    constexpr GenericRoiExtent values(1, 2, 3, 4);
    Extent extent, other;
    KxSetError(KX_ERROR_FILE_READ);
    EXPECT_EQ(assign(&extent, &values), KX_ERROR_FILE_READ);
    EXPECT_EQ(GenericRoiExtentWithBroadcast_operatorAssign_GenericRoiExtentWithBroadcast(&other, &extent),
              KX_OK);
    EXPECT_EQ(other, values);
    Ear ear;
    extent.AddListener(&ear);
    ear.reaction = [] { throw std::runtime_error("no"); };
    KxSetError(KX_ERROR_FILE_READ);
    EXPECT_EQ(assign(&extent, &values), KX_ERROR_INTERNAL);
    EXPECT_EQ(assign(&extent, nullptr), KX_ERROR_INTERNAL);
    EXPECT_EQ(KxGetError(), KX_ERROR_FILE_READ);
    KxOk();
    const ExtentList a, b(a);
    bool equal = false, unequal = true;
    GenericRoiExtentWithBroadcast_operatorEquality_GenericRoiExtentBroadcastingVector_GenericRoiExtentBroadcastingVector(
        &a, &b, &equal);
    GenericRoiExtentWithBroadcast_operatorInequality_GenericRoiExtentBroadcastingVector_GenericRoiExtentBroadcastingVector(
        &a, &b, &unequal);
    EXPECT_TRUE(equal && !unequal);
}

}  // namespace
}  // namespace Zelkor::Kalvo
