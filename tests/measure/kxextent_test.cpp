// Observable extents and their lists: values, order of calls, listeners that interfere with a broadcast.
#include "kalvo/measure/kxextent.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <stdexcept>
#include <vector>

#include "kalvo/frame/kxerror.h"
#include "kalvo/image/kximage.h"

namespace Zelkor::Kalvo {
namespace {

using Extent = GenericRoiExtentWithBroadcast;
using ExtentList = GenericRoiExtentBroadcastingVector;

struct Ear final : IListener {
    void Listen(IBroadcaster* pBroadcaster) override {
        heard.push_back(pBroadcaster);
        if (reaction) std::exchange(reaction, nullptr)();
    }
    std::vector<IBroadcaster*> heard;
    std::function<void()> reaction;  // once
};

using Broadcasters = std::vector<IBroadcaster*>;

template <class Operation>
KX_ERRORS ThrownCode(Operation operation) {
    try {
        operation();
    } catch (const Exception& exception) {
        return exception.GetError();
    }
    return KX_OK;
}

TEST(Extent, PropertiesReadAssignAndAlwaysBroadcast) {
    Extent a(GenericRoiExtent(1, 2, 3, 4)), b;
    Ear ear;
    a.AddListener(&ear);
    a.Width = 3;
    EXPECT_EQ(ear.heard, Broadcasters{&a});
    b.Height = 40;
    a.Width = b.Height;
    EXPECT_EQ(a, GenericRoiExtent(1, 2, 40, 4));
    a.OrgX = a.OrgY + a.Width;
    EXPECT_EQ(a.GetExtent(), GenericRoiExtent(42, 2, 40, 4));
    const Extent copy(a);
    EXPECT_TRUE(copy == a && copy != b);
    b = a;
    EXPECT_EQ(b, a);
    EXPECT_EQ(b.GetListeners().NbItems(), 0);
    EXPECT_EQ(ear.heard.size(), 3u);
    a = GenericRoiExtent();
    EXPECT_NE(a, copy);
    EXPECT_EQ(ear.heard.size(), 4u);

    Extent::IntProperty unbound;
    EXPECT_EQ(ThrownCode([&] { EXPECT_EQ(unbound, 0); }), KX_ERROR_INTERNAL);
    EXPECT_EQ(ThrownCode([&] { unbound = 0; }), KX_ERROR_INTERNAL);
}

TEST(Extent, ListenersAreCalledInOrderAsOftenAsTheyWereAdded) {
    Extent extent;
    Ear first, second;
    for (Ear* ear : {&first, &second, &first}) extent.AddListener(ear);
    extent.AddListener(nullptr);
    std::vector<int> order;
    first.reaction = [&] { order.push_back(1); };
    second.reaction = [&] { order.push_back(2); };
    extent.Broadcast();
    EXPECT_EQ(order, (std::vector{1, 2}));
    EXPECT_EQ(first.heard.size(), 2u);
    extent.RemoveListener(&first);
    extent.RemoveListener(nullptr);
    extent.Broadcast();
    EXPECT_EQ(first.heard.size(), 3u);
    EXPECT_EQ(second.heard.size(), 2u);
}

// What the first of three listeners does during a broadcast, and how often each of the three is called.
struct Interference {
    const char* name;
    std::function<void(std::unique_ptr<Extent>&, Ear*)> act;
    std::vector<std::size_t> calls;
};
const Interference kInterferences[] = {
    {"removes itself", [](auto& extent, Ear* ears) { extent->RemoveListener(&ears[0]); }, {1, 1, 1}},
    {"removes the next", [](auto& extent, Ear* ears) { extent->RemoveListener(&ears[1]); }, {1, 0, 1}},
    {"adds one that is there",
     [](auto& extent, Ear* ears) {
         for (int i = 0; i < 40; ++i) extent->AddListener(&ears[1]);
     },
     {1, 1, 1}},
    {"moves the next to the end",
     [](auto& extent, Ear* ears) {
         extent->RemoveListener(&ears[1]);
         extent->AddListener(&ears[1]);
     },
     {1, 0, 1}},
    {"changes the extent", [](auto& extent, Ear*) { extent->Width = 1; }, {2, 2, 2}},
    {"removes itself in a nested broadcast",
     [](auto& extent, Ear* ears) {
         ears[1].reaction = [&extent, ears] { extent->RemoveListener(&ears[0]); };
         extent->Width = 1;
     },
     {2, 2, 2}},
    {"destroys the extent", [](auto& extent, Ear*) { extent.reset(); }, {1, 0, 0}},
    {"destroys the extent in a nested broadcast",
     [](auto& extent, Ear* ears) {
         ears[1].reaction = [&extent] { extent.reset(); };
         extent->Width = 1;
     },
     {2, 1, 0}},
};

TEST(Extent, ListenersMayInterfereWithTheBroadcast) {
    for (const Interference& interference : kInterferences) {
        auto extent = std::make_unique<Extent>();
        Ear ears[3];
        for (Ear& ear : ears) extent->AddListener(&ear);
        ears[0].reaction = [&] { interference.act(extent, ears); };
        extent->Width = 7;
        const std::vector calls{ears[0].heard.size(), ears[1].heard.size(), ears[2].heard.size()};
        EXPECT_EQ(calls, interference.calls) << interference.name;
    }
}

TEST(ExtentList, BroadcastsWhenItemsComeAndGo) {
    constexpr GenericRoiExtent a(0, 0, 10, 10), b(1, 2, 3, 4);
    ExtentList list(3);
    Ear ear;
    list.AddListener(&ear);
    const auto heard = [&] { return std::exchange(ear.heard, {}).size(); };
    list.Add(a);
    EXPECT_EQ(ear.heard, Broadcasters{&list});
    list.AddOnce(a);
    EXPECT_EQ(heard(), 1u);
    KxImage<KxBW8> image(3, 4);
    (list += b) += image;
    EXPECT_EQ(list[2], GenericRoiExtent(0, 0, 3, 4));
    EXPECT_EQ(heard(), 2u);
    list.InsertItem(b, 0);
    EXPECT_EQ(list.Find(b), 0);
    EXPECT_EQ(ThrownCode([&] { list.InsertItem(a, 5); }), KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    list.InsertItem(b, 4);
    EXPECT_EQ(heard(), 2u);
    list.Remove(b);
    EXPECT_EQ(list.Find(b), 1);
    list.Remove(GenericRoiExtent(9, 9, 9, 9));
    EXPECT_FALSE(list.Contains(GenericRoiExtent(9, 9, 9, 9)));
    EXPECT_EQ(heard(), 1u);
    list.SetSize(5);
    list[0].Width = 5;
    EXPECT_EQ(heard(), 0u);
    list[0].AddListener(&list);
    list[0].Width = 5;
    EXPECT_EQ(ear.heard, Broadcasters{&list});
    list.SetSize(1);
    EXPECT_EQ(heard(), 2u);
    EXPECT_EQ(list.NbItems(), 1);
    for (const int index : {-1, 1, INT_MAX}) {
        EXPECT_EQ(ThrownCode([&] { list.ItemAt(index); }), KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
        EXPECT_EQ(ThrownCode([&] { list.Remove(index); }), KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    }
    EXPECT_EQ(ThrownCode([&] { list.SetSize(-1); }), KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    EXPECT_EQ(ThrownCode([&] { list.SetSize(INT_MAX); }), KX_ERROR_ALLOCATION);
    EXPECT_EQ(heard(), 0u);
    EXPECT_EQ(list.NbItems(), 1);
    { ExtentList(list).AddListener(&ear); }
    EXPECT_EQ(heard(), 1u);  // the copy died with an item
}

TEST(ExtentList, CopiesItemsButNotListeners) {
    ExtentList list;
    Ear ear;
    list.AddListener(&ear);
    for (int i = 0; i < 70; ++i) list.Add({i, 0, 1, 1});
    ExtentList copy(list), assigned;
    EXPECT_TRUE(copy == list && assigned != list);
    EXPECT_EQ(copy.GetListeners().NbItems(), 0);
    copy[69].Width = 2;
    EXPECT_NE(copy, list);
    assigned.AddListener(&ear);
    ear.heard.clear();
    assigned = list;
    EXPECT_EQ(assigned, list);
    assigned = *&assigned;
    EXPECT_EQ(assigned, list);
    EXPECT_EQ(ear.heard, Broadcasters(3, &assigned));  // cleared only where there were items

    auto mortal = std::make_unique<ExtentList>(list);
    mortal->AddListener(&ear);
    ear.reaction = [&] { mortal.reset(); };
    *mortal = copy;
    EXPECT_FALSE(mortal);
}

TEST(UtilsVector, GrowsBy32) {
    int values[70];
    Utils::Vector<int*> list;
    for (int i = 0; i < 70; ++i) {
        list.Add(&values[i]);
        EXPECT_EQ(list.Capacity(), i / 32 * 32 + 32);
    }
    list.RemoveItem(&values[0]);
    list.InsertItem(&values[0], 69);
    EXPECT_EQ(list[68], &values[69]);
    EXPECT_EQ(list.Find(&values[0]), 69);
    list.SetSize(40);
    EXPECT_EQ(list.Find(&values[0]), -1);
    EXPECT_EQ(list.Find(&values[40]), 39);
}

TEST(ExtentOperators, ReturnTheStoredCodeAndNeverThrow) {
    const auto assign = GenericRoiExtentWithBroadcast_operatorAssign_GenericRoiExtent;
    const auto equal =
        GenericRoiExtentWithBroadcast_operatorEquality_GenericRoiExtentBroadcastingVector_GenericRoiExtentBroadcastingVector;
    const auto unequal =
        GenericRoiExtentWithBroadcast_operatorInequality_GenericRoiExtentBroadcastingVector_GenericRoiExtentBroadcastingVector;
    constexpr GenericRoiExtent values(1, 2, 3, 4);
    Extent extent, other;
    KxSetError(KX_ERROR_FILE_READ);
    EXPECT_EQ(assign(&extent, &values), KX_ERROR_FILE_READ);
    EXPECT_EQ(KxGetError(), KX_OK);
    EXPECT_EQ(GenericRoiExtentWithBroadcast_operatorAssign_GenericRoiExtentWithBroadcast(&other, &extent),
              KX_OK);
    EXPECT_EQ(other, values);

    Ear ear;
    extent.AddListener(&ear);
    ear.reaction = [] { throw std::runtime_error("no"); };
    KxSetError(KX_ERROR_FILE_READ);
    EXPECT_EQ(assign(&extent, &values), KX_ERROR_INTERNAL);
    EXPECT_EQ(assign(&extent, nullptr), KX_ERROR_INTERNAL);
    EXPECT_EQ(KxOk(), KX_OK);

    ExtentList a, b;
    bool result = false;
    EXPECT_EQ(equal(&a, &b, &result), KX_OK);
    EXPECT_TRUE(result);
    b.Add(values);
    EXPECT_EQ(unequal(&a, &b, &result), KX_OK);
    EXPECT_TRUE(result);
}

}  // namespace
}  // namespace Zelkor::Kalvo
