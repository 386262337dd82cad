#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <vector>

#include "foundation/ContainerTestSupport.h"

using Strings = std::vector<std::string>;
using Ints = std::vector<int>;
constexpr unsigned long long kAllOnes = ~0ull;

TEST(ContainerBasics, NewContainerState)
{
    ZKContainer<ZKString> c;
    EXPECT_EQ(c.GetItemCount(), 0u);
    EXPECT_EQ(c.GetMaxItemCount(), 512u);
    EXPECT_TRUE(c.IsContainerAutoResize());
    EXPECT_TRUE(c.IsContainerEmpty());
    EXPECT_FALSE(c.IsContainerFull());
    EXPECT_EQ(FrontSlot(c), 0u);
    EXPECT_EQ(BackSlot(c), 1u);
    EXPECT_EQ(RingView<ZKString>(c).Storage().size(), 512u) << "every slot is constructed at once";
}

TEST(ContainerPush, ReturnsPhysicalSlotsAndDoublesExactly)
{
    ZKContainer<ZKString> c(2);
    EXPECT_EQ(c.PushBack("a"), 1u);
    EXPECT_EQ(c.PushBack("b"), 0u);
    EXPECT_TRUE(c.IsContainerFull());
    EXPECT_EQ(c.GetItem(0), ZKString("a"));
    EXPECT_EQ(c.GetItem(1), ZKString("b"));
    EXPECT_EQ(c.PushBack("c"), 3u);
    EXPECT_EQ(c.GetMaxItemCount(), 4u);
    EXPECT_EQ(Texts(c), (Strings{"a", "b", "c"}));
}

TEST(ContainerPush, FirstFrontPushWritesSlotZeroThenWrapsToTheEnd)
{
    ZKContainer<int> c;
    EXPECT_EQ(c.PushFront(1), 0u);
    EXPECT_EQ(c.PushFront(2), 511u);
    EXPECT_EQ(c.PushBack(3), 1u);
    EXPECT_EQ(Items(c), (Ints{2, 1, 3}));
}

TEST(ContainerPush, RefusedWhenFullWithGrowthOff)
{
    ZKContainer<int> c(2);
    c.PushBack(1);
    c.PushBack(2);
    c.SetContainerAutoResize(false);
    EXPECT_EQ(c.PushBack(3), kAllOnes);
    EXPECT_EQ(c.PushFront(3), kAllOnes);
    EXPECT_EQ(c.EmplaceBack(), kAllOnes);
    EXPECT_EQ(c.GetMaxItemCount(), 2u);
    EXPECT_EQ(Items(c), (Ints{1, 2}));
    EXPECT_EQ(FrontSlot(c), 0u);
    EXPECT_EQ(BackSlot(c), 1u);
}

TEST(ContainerPush, FillingByFrontOnCapacityTwo)
{
    ZKContainer<int> c(2);
    EXPECT_EQ(c.PushFront(1), 0u);
    EXPECT_EQ(c.PushFront(2), 1u);
    EXPECT_TRUE(c.IsContainerFull());
    EXPECT_EQ(FrontSlot(c), 0u);
    EXPECT_EQ(Items(c), (Ints{2, 1}));
}

TEST(ContainerPush, FillingPushLeavesEndIndexUnwrapped)
{
    ZKContainer<int> front(3);
    front.PushBack(1);   // slot 1
    front.PushBack(2);   // slot 2, backSlot wraps to 0
    EXPECT_EQ(front.PushFront(0), 0u);
    EXPECT_EQ(FrontSlot(front), kAllOnes);

    ZKContainer<int> back(3);
    back.PushFront(1);  // slot 0, frontSlot 2
    back.PushBack(2);   // slot 1
    EXPECT_EQ(back.PushBack(3), 2u);
    EXPECT_EQ(BackSlot(back), 3u) << "equals the capacity";
    EXPECT_EQ(Items(back), (Ints{1, 2, 3}));
}

// After a filling push left an end unwrapped and the other end was popped,
// the next push at the unwrapped end writes the one free slot.
TEST(ContainerPush, PushAfterUnwrappedFillAndOppositePop)
{
    ZKContainer<int> c(3);
    c.PushBack(1);
    c.PushBack(2);
    c.PushFront(0);  // frontSlot all ones, storage [0, 1, 2]
    EXPECT_EQ(c.PopBack(), 2);
    EXPECT_EQ(c.PushFront(-1), 2u) << "slot before 0, not slot 0 again";
    EXPECT_EQ(Items(c), (Ints{-1, 0, 1}));
    EXPECT_EQ(c.PopFront(), -1);
    EXPECT_EQ(c.PopFront(), 0);
    EXPECT_EQ(c.PopFront(), 1);
    EXPECT_TRUE(c.IsContainerEmpty());

    ZKContainer<int> d(3);
    d.PushFront(1);
    d.PushBack(2);
    d.PushBack(3);   // backSlot == 3
    EXPECT_EQ(d.PopFront(), 1);
    EXPECT_EQ(d.PushBack(4), 0u) << "backSlot equal to the capacity means slot 0";
    EXPECT_EQ(BackSlot(d), 1u);
    EXPECT_EQ(Items(d), (Ints{2, 3, 4}));
    EXPECT_EQ(d.PeekBack(), 4);
    EXPECT_EQ(d.PeekFront(), 2);
}

TEST(ContainerPush, CapacityOneWorksFromBothEnds)
{
    ZKContainer<int> c(1);
    c.SetContainerAutoResize(false);
    EXPECT_EQ(c.PushFront(7), 0u);
    EXPECT_EQ(FrontSlot(c), kAllOnes);
    EXPECT_EQ(c.PeekFront(), 7);
    EXPECT_EQ(c.GetItem(0), 7);
    EXPECT_EQ(c.PushFront(8), kAllOnes);
    EXPECT_EQ(c.PopFront(), 7);
    EXPECT_TRUE(c.IsContainerEmpty());

    EXPECT_EQ(c.PushBack(5), 0u) << "backSlot 1 of a one-slot storage folds to slot 0";
    EXPECT_EQ(c.PeekBack(), 5);
    EXPECT_EQ(c.PeekFront(), 5);
    EXPECT_EQ(c.PopBack(), 5);
    EXPECT_EQ(c.PushFront(6), 0u);
    EXPECT_EQ(c.PopBack(), 6);
}

TEST(ContainerPush, CapacityZeroRefusesEveryPushSafely)
{
    ZKContainer<int> c(0);
    EXPECT_TRUE(c.IsContainerAutoResize());
    EXPECT_TRUE(c.IsContainerFull()) << "0 of 0";
    EXPECT_EQ(c.PushBack(1), kAllOnes);
    EXPECT_EQ(c.PushFront(1), kAllOnes);
    EXPECT_EQ(c.GetMaxItemCount(), 0u);
    EXPECT_FALSE(c.SetItem(3, 5));
    EXPECT_FALSE(c.Remove(0));
    int out = 42;
    EXPECT_FALSE(c.PopBack(out));
    EXPECT_EQ(out, 42);
    c.GetItem(9) = 3;  // the unchecked form still reaches an element
    c.Reserve(2);
    EXPECT_EQ(c.PushBack(1), 1u);
    EXPECT_EQ(Items(c), (Ints{1}));
}

TEST(ContainerPop, PopsAndPeeksAtBothEnds)
{
    ZKContainer<ZKString> c(4);
    c.PushBack("b");
    c.PushFront("a");
    c.PushBack("c");
    EXPECT_EQ(c.PeekFront(), ZKString("a"));
    EXPECT_EQ(c.PeekBack(), ZKString("c"));
    EXPECT_EQ(c.GetItemCount(), 3u) << "peeks change nothing";
    EXPECT_EQ(c.PopFront(), ZKString("a"));
    EXPECT_EQ(c.PopBack(), ZKString("c"));
    EXPECT_EQ(c.PopBack(), ZKString("b"));
    ZKString out("kept");
    EXPECT_FALSE(c.PopFront(out));
    EXPECT_FALSE(c.PeekBack(out));
    EXPECT_EQ(out, ZKString("kept"));
    EXPECT_TRUE(c.PopFront().IsEmpty()) << "by-value form on empty gives a default item";
}

TEST(ContainerPop, ByValueFormsOfPointerTypesGiveNullWhenEmpty)
{
    ZKContainer<void*> c(2);
    EXPECT_EQ(c.PopFront(), nullptr);
    EXPECT_EQ(c.PeekBack(), nullptr);
    EXPECT_EQ(static_cast<ZKContainer<void*> const&>(c).GetItem(0), nullptr);
}

TEST(ContainerPop, PoppedElementStaysAsStaleCopy)
{
    ZKContainer<int> c(4);
    c.PushBack(10);
    c.PushBack(20);
    c.PopBack();
    EXPECT_EQ(c.GetItem(1), 20) << "unchecked reference form reads the stale slot";
    EXPECT_EQ(static_cast<ZKContainer<int> const&>(c).GetItem(1), 0) << "by-value form checks";
    c.Clear();
    EXPECT_EQ(c.GetItem(0), 10) << "Clear then GetItem(0) reaches slot 1";
    EXPECT_EQ(c.GetItemCount(), 0u);
    EXPECT_EQ(c.GetMaxItemCount(), 4u);
}

TEST(ContainerItems, IndexesWrapModuloCapacity)
{
    ZKContainer<int> c(4);
    c.PushFront(2);   // slot 0
    c.PushFront(1);   // slot 3
    c.PushBack(3);    // slot 1
    EXPECT_EQ(Items(c), (Ints{1, 2, 3}));
    EXPECT_EQ(c[0], 1);
    EXPECT_EQ(c[2], 3);
    EXPECT_EQ(c.GetItem(4), 1) << "index 4 is slot 3 again";
    int out = 0;
    EXPECT_FALSE(c.GetItem(out, 3));
    c[1] = 20;
    EXPECT_EQ(c.GetItem(1), 20);
}

TEST(ContainerItems, SetItemIgnoresCountButNeedsAnItem)
{
    ZKContainer<ZKString> c;
    EXPECT_FALSE(c.SetItem("x", 0));
    c.PushBack("a");
    EXPECT_TRUE(c.SetItem("x", 7));
    EXPECT_EQ(c.GetItemCount(), 1u);
    EXPECT_EQ(c.GetItem(0), ZKString("a"));
    EXPECT_EQ(c.GetItem(7), ZKString("x"));
    EXPECT_TRUE(c.SetItem("y", 512)) << "512 is slot 1 again: the live item";
    EXPECT_EQ(c.GetItem(0), ZKString("y"));
}

TEST(ContainerReserve, LinearisesTheRing)
{
    ZKContainer<int> c(4);
    c.PushFront(2);
    c.PushFront(1);
    c.PushBack(3);
    c.Reserve(4);
    EXPECT_EQ(FrontSlot(c), 0u);
    EXPECT_EQ(BackSlot(c), 0u) << "three items in slots 1 to 3";
    EXPECT_EQ(RingView<int>(c).Storage(), (Ints{2, 1, 2, 3})) << "slot 0 keeps its old element";
    EXPECT_EQ(Items(c), (Ints{1, 2, 3}));
}

TEST(ContainerReserve, BelowCountGrowsByDoublingWhileGrowthIsOn)
{
    ZKContainer<int> c(16);
    for (int i = 0; i < 7; ++i) c.PushBack(i);
    c.Reserve(3);
    EXPECT_EQ(c.GetMaxItemCount(), 12u) << "3 doubled twice holds 7 items";
    EXPECT_EQ(Items(c), (Ints{0, 1, 2, 3, 4, 5, 6}));
}

TEST(ContainerReserve, BelowCountDropsTheRestWhileGrowthIsOff)
{
    ZKContainer<int> c(16);
    for (int i = 0; i < 7; ++i) c.PushBack(i);
    c.SetContainerAutoResize(false);
    c.Reserve(3);
    EXPECT_EQ(c.GetMaxItemCount(), 3u);
    EXPECT_EQ(Items(c), (Ints{0, 1, 2}));
}

TEST(ContainerResize, DuplicatesOldItemsWhileGrowthIsOn)
{
    ZKContainer<ZKString> c;
    c.PushBack("a");
    c.PushBack("b");
    c.PushBack("c");
    c.Resize(5);
    EXPECT_EQ(c.GetMaxItemCount(), 10u);
    EXPECT_EQ(Texts(c), (Strings{"a", "b", "c", "", "", "a", "b", "c"}));
}

TEST(ContainerResize, KeepsItemsInPlaceWhileGrowthIsOff)
{
    ZKContainer<int> c(8);
    c.PushBack(1);
    c.PushBack(2);
    c.SetContainerAutoResize(false);
    c.Resize(4);
    EXPECT_EQ(c.GetMaxItemCount(), 4u);
    EXPECT_EQ(Items(c), (Ints{1, 2, 0, 0}));
    EXPECT_TRUE(c.IsContainerFull());
}

TEST(ContainerResize, OnEmptyContainerGivesSlotsFromOneRoundToZero)
{
    ZKContainer<int> c(3);
    c.PushFront(9);  // slot 0
    c.PushBack(1);   // slot 1
    c.PushBack(2);   // slot 2
    c.Clear();
    c.Resize(4);
    EXPECT_EQ(Items(c), (Ints{1, 2, 0, 9}));
}

TEST(ContainerRemove, ShiftsLaterItemsDown)
{
    ZKContainer<ZKString> c;
    c.PushBack("a");
    c.PushBack("b");
    c.PushBack("c");
    EXPECT_TRUE(c.Remove(1));
    EXPECT_EQ(Texts(c), (Strings{"a", "c"}));
    EXPECT_EQ(BackSlot(c), 3u);
    EXPECT_EQ(c.GetItem(2), ZKString("c")) << "the vacated slot keeps a stale copy";
    EXPECT_EQ(c.GetItem(3), ZKString("")) << "the slot behind the old last item is reset";
    EXPECT_EQ(c.PushBack("d"), 3u);
}

TEST(ContainerRemove, RefusesFullEmptyAndOutOfRange)
{
    ZKContainer<int> c(2);
    EXPECT_FALSE(c.Remove(0)) << "empty";
    c.PushBack(1);
    EXPECT_FALSE(c.Remove(1)) << "index at the count";
    c.PushBack(2);
    EXPECT_FALSE(c.Remove(0)) << "full";
    EXPECT_EQ(Items(c), (Ints{1, 2}));
}

TEST(ContainerRemove, OnWrappedRingWalksCyclically)
{
    ZKContainer<int> c(5);
    c.PushBack(3);    // slot 1
    c.PushBack(4);    // slot 2
    c.PushFront(2);   // slot 0
    c.PushFront(1);   // slot 4: live range 4,0,1,2
    EXPECT_TRUE(c.Remove(0));
    EXPECT_EQ(Items(c), (Ints{2, 3, 4}));
    EXPECT_TRUE(c.Remove(2));
    EXPECT_EQ(Items(c), (Ints{2, 3}));
    EXPECT_EQ(c.PushBack(5), 1u);
    EXPECT_EQ(Items(c), (Ints{2, 3, 5}));
}

TEST(ContainerRemove, WithBackSlotAtZero)
{
    ZKContainer<int> c(3);
    c.PushBack(1);  // slot 1
    c.PushBack(2);  // slot 2, backSlot 0
    EXPECT_EQ(BackSlot(c), 0u);
    EXPECT_TRUE(c.Remove(0));
    EXPECT_EQ(Items(c), (Ints{2}));
    EXPECT_EQ(BackSlot(c), 2u);
}

TEST(ContainerRemove, AfterUnwrappedBackFillAndFrontPop)
{
    ZKContainer<int> c(3);
    c.PushFront(1);
    c.PushBack(2);
    c.PushBack(3);  // backSlot == capacity
    c.PopFront();
    EXPECT_TRUE(c.Remove(0));
    EXPECT_EQ(Items(c), (Ints{3}));
    EXPECT_EQ(c.PushBack(4), 2u);
    EXPECT_EQ(Items(c), (Ints{3, 4}));
}

TEST(ContainerCopy, CopiesStaleSlotsAndOnlyTheGrowthBit)
{
    ZKContainer<int> source(4);
    source.PushBack(1);
    source.PushBack(2);
    source.PopBack();
    source.SetBitsOn(0b1000);

    ZKContainer<int> copy(source);
    EXPECT_EQ(copy.GetFlagsData(), 1u) << "only bit 0 travels";
    EXPECT_EQ(Items(copy), (Ints{1}));
    EXPECT_EQ(copy.GetItem(1), 2) << "the stale slot is copied";

    ZKContainer<int> target(8);
    target.SetFlagsData(0b0110);
    source.SetContainerAutoResize(true);
    target = source;
    EXPECT_EQ(target.GetFlagsData(), 0b0111u) << "target keeps its other bits";
    EXPECT_EQ(target.GetMaxItemCount(), 4u);
    EXPECT_EQ(RingView<int>(target).Storage(), RingView<int>(source).Storage());
}

TEST(ContainerCopy, MoveConstructionCopiesAndLeavesTheSourceIntact)
{
    ZKContainer<ZKString> source(2);
    source.PushBack("a");
    ZKContainer<ZKString> moved(std::move(source));
    EXPECT_EQ(Texts(moved), (Strings{"a"}));
    EXPECT_EQ(Texts(source), (Strings{"a"}));  // NOLINT(bugprone-use-after-move): contract
}

TEST(ContainerCopy, MoveAssignmentTakesStorageAndLeavesSourceCounters)
{
    ZKContainer<ZKString> source(4);
    source.PushBack("a");
    source.PushBack("b");
    ZKContainer<ZKString> target(2);
    target.SetFlagsData(0b100);
    target = std::move(source);
    EXPECT_EQ(Texts(target), (Strings{"a", "b"}));
    EXPECT_EQ(target.GetFlagsData(), 0b101u);
    EXPECT_EQ(source.GetItemCount(), 2u);  // NOLINT(bugprone-use-after-move): contract
    EXPECT_EQ(source.GetMaxItemCount(), 4u);
    source = target;  // assigning to a moved-from container works
    EXPECT_EQ(Texts(source), (Strings{"a", "b"}));

    ZKContainer<ZKString>& alias = target;
    target = std::move(alias);  // self-move changes nothing
    EXPECT_EQ(Texts(target), (Strings{"a", "b"}));
}

TEST(ContainerCopy, MovedFromContainerStaysMemorySafe)
{
    ZKContainer<int> source(64);
    for (int i = 0; i < 40; ++i) source.PushBack(i);
    ZKContainer<int> target;
    target = std::move(source);
    // Whatever these read, they must stay inside the storage (checked by
    // the sanitizer builds).
    source.GetItem(39) = 1;                                  // NOLINT(bugprone-use-after-move)
    source.PushBack(1);
    source.PopFront();
    source.Remove(3);
    EXPECT_EQ(target.GetItem(39), 39);
}

// Records the virtual calls the container makes on itself.
struct CallLog : ZKContainer<int> {
    explicit CallLog(unsigned long long n) : ZKContainer<int>(n) {}
    std::vector<std::string> calls;
    void Clear() override { calls.push_back("Clear"); ZKContainer<int>::Clear(); }
    void Reserve(unsigned long long n) override
    {
        calls.push_back("Reserve " + std::to_string(n));
        ZKContainer<int>::Reserve(n);
    }
    unsigned long long PushBack(int const& item) override
    {
        calls.push_back("PushBack " + std::to_string(item));
        return ZKContainer<int>::PushBack(item);
    }
    unsigned long long PushFront(int const& item) override
    {
        calls.push_back("PushFront " + std::to_string(item));
        return ZKContainer<int>::PushFront(item);
    }
    bool PopFront(int& out) override { calls.push_back("PopFront&"); return ZKContainer<int>::PopFront(out); }
    bool GetItem(int& out, unsigned long long const& index) const override
    {
        const_cast<CallLog*>(this)->calls.push_back("GetItem& " + std::to_string(index));
        return ZKContainer<int>::GetItem(out, index);
    }
    using ZKContainer<int>::GetItem;
    using ZKContainer<int>::PopFront;
};

TEST(ContainerVirtuals, GrowthGoesThroughTheVirtualOperations)
{
    CallLog c(2);
    c.PushBack(1);
    c.PushBack(2);
    c.calls.clear();
    c.PushBack(3);
    EXPECT_EQ(c.calls, (Strings{"PushBack 3", "Reserve 4", "GetItem& 0", "GetItem& 1", "Clear",
                                "PushBack 1", "PushBack 2"}));
}

TEST(ContainerVirtuals, ByValueFormsAndEmplaceCallTheVirtualForms)
{
    CallLog c(4);
    c.EmplaceBack();
    c.EmplaceFront();
    c.PopFront();
    int const value = static_cast<ZKContainer<int> const&>(c)[0];
    EXPECT_EQ(value, 0);
    EXPECT_EQ(c.calls, (Strings{"PushBack 0", "PushFront 0", "PopFront&", "GetItem& 0"}));
}

TEST(ContainerInstantiations, NestedContainersOfDoubles)
{
    ZKContainer<ZKContainer<double>> grid(2);
    ZKContainer<double> row(3);
    row.PushBack(0.5);
    grid.PushBack(row);
    grid.PushBack(row);
    grid.PushBack(row);
    EXPECT_EQ(grid.GetMaxItemCount(), 4u);
    EXPECT_EQ(grid.GetItem(2).GetItem(0), 0.5);
    ZKContainer<ZKContainer<ZKContainer<double>>> cube(1);
    cube.PushBack(grid);
    EXPECT_EQ(cube.GetItem(0).GetItemCount(), 3u);
}
