#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <deque>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/Support.h"

using zk64::test::Items;
using zk64::test::RingState;
using zk64::test::RingView;
using Ints = std::vector<int>;
using Strings = std::vector<std::string>;

namespace {

std::string Slot(unsigned long long slot) { return slot == ~0ull ? "-" : std::to_string(slot); }

// The end slots and the whole storage, stale slots included.
std::string Ring(ZKContainer<int> const& c)
{
    RingView<int> const view(c);
    std::string out = Slot(view.Front()) + "/" + Slot(view.Back()) + ":";
    for (int item : view.Storage()) out += std::to_string(item) + ",";
    return out;
}

// Runs a script of operations and reports what each returned, then the live
// items and the capacity. bN/fN push N at the back/front, e emplaces at the
// back, B/F pop, rN removes index N, RN reserves, zN resizes, gN sets growth,
// c clears, and ? shows the end slots and the whole storage.
std::string Script(ZKContainer<int>& c, char const* script)
{
    std::istringstream in(script);
    std::string op, out;
    while (in >> op) {
        int const n = op.size() > 1 ? std::stoi(op.substr(1)) : 0;
        auto const index = static_cast<unsigned long long>(n);
        int value = -1;
        char const kind = op[0];
        if (kind == 'b') out += Slot(c.PushBack(n)) + " ";
        if (kind == 'f') out += Slot(c.PushFront(n)) + " ";
        if (kind == 'e') out += Slot(c.EmplaceBack()) + " ";
        if (kind == 'B') out += (c.PopBack(value) ? std::to_string(value) : "!") + " ";
        if (kind == 'F') out += (c.PopFront(value) ? std::to_string(value) : "!") + " ";
        if (kind == 'r') out += c.Remove(index) ? "y " : "n ";
        if (kind == 'R') c.Reserve(index);
        if (kind == 'z') c.Resize(index);
        if (kind == 'g') c.SetContainerAutoResize(n != 0);
        if (kind == 'c') c.Clear();
        if (kind == '?') out += Ring(c) + " ";
    }
    out += "[";
    for (int item : Items(c)) out += std::to_string(item) + " ";
    return out + "] " + std::to_string(c.GetMaxItemCount());
}

}  // namespace

// Pushes return the physical slot they wrote (all ones when refused); the
// ring's end slots may be left unwrapped by a filling push.
TEST(ContainerBasics, ScriptedRings)
{
    struct Row {
        unsigned long long capacity;
        char const* script;
        char const* expected;
    } const rows[] = {
        {2, "b1 b2 b3", "1 0 3 [1 2 3 ] 4"},  // doubles exactly
        {512, "f1 f2 b3", "0 511 1 [2 1 3 ] 512"}, {2, "b1 b2 g0 b3 f3 e ?", "1 0 - - - 0/1:2,1, [1 2 ] 2"},
        {2, "f1 f2 ?", "0 1 0/1:1,2, [2 1 ] 2"}, {3, "b1 b2 f0 ?", "1 2 0 -/0:0,1,2, [0 1 2 ] 3"},
        {3, "f1 b2 b3 ?", "0 1 2 2/3:1,2,3, [1 2 3 ] 3"},
        // After an unwrapped fill and a pop at the other end, the next push
        // at the unwrapped end writes the one free slot.
        {3, "b1 b2 f0 B f-1 F F F", "1 2 0 2 2 -1 0 1 [] 3"},
        {3, "f1 b2 b3 F b4 ?", "0 1 2 1 0 0/1:4,2,3, [2 3 4 ] 3"},
        {1, "g0 f7 ? f8 F b5 B f6 B", "0 -/1:7, - 7 0 5 0 6 [] 1"}, {0, "b1 f1 r0 B R2 b1", "- - n ! 1 [1 ] 2"},
        // Reserve linearises the ring; below the count it doubles while
        // growth is on and drops the rest while it is off.
        {4, "f2 f1 b3 R4 ?", "0 3 1 0/0:2,1,2,3, [1 2 3 ] 4"},
        {16, "b0 b1 b2 b3 b4 b5 b6 R3", "1 2 3 4 5 6 7 [0 1 2 3 4 5 6 ] 12"},
        {16, "b0 b1 b2 b3 b4 b5 b6 g0 R3", "1 2 3 4 5 6 7 [0 1 2 ] 3"},
        // Resize re-pushes the old items while growth is on, keeps them in
        // place while it is off, and on an empty ring exposes slots 1 on.
        {512, "b1 b2 b3 z5", "1 2 3 [1 2 3 0 0 1 2 3 ] 10"}, {8, "b1 b2 g0 z4 b9", "1 2 - [1 2 0 0 ] 4"},
        {3, "f9 b1 b2 c z4", "0 1 2 [1 2 0 9 ] 4"},
        // Remove shifts later items down, keeps a stale copy in the vacated
        // slot and resets the slot behind the old last item.
        {6, "b1 b2 b3 r1 ? b4", "1 2 3 y 0/3:0,1,3,3,0,0, 3 [1 3 4 ] 6"},
        {2, "r0 b1 r1 b2 r0", "n 1 n 0 n [1 2 ] 2"},  // empty, at the count, full
        {5, "b3 b4 f2 f1 r0 r2 b5", "1 2 0 4 y y 1 [2 3 5 ] 5"},
        {3, "b1 b2 ? r0 ?", "1 2 0/0:0,1,2, y 0/2:0,2,2, [2 ] 3"}, {3, "f1 b2 b3 F r0 b4", "0 1 2 1 y 2 [3 4 ] 3"},
    };
    for (Row const& row : rows) {
        ZKContainer<int> c(row.capacity);
        EXPECT_EQ(Script(c, row.script), row.expected) << row.capacity << ": " << row.script;
    }
}

TEST(ContainerItems, UncheckedCheckedAndCopiedAccess)
{
    ZKContainer<ZKString> fresh;
    EXPECT_EQ(RingView<ZKString>(fresh).Storage().size(), 512u) << "every slot is constructed at once";
    EXPECT_TRUE(fresh.PopFront().IsEmpty()) << "by-value form on empty gives a default item";
    EXPECT_FALSE(fresh.SetItem("x", 0)) << "needs an item";
    fresh.PushBack("a");
    EXPECT_TRUE(fresh.SetItem("x", 7) && fresh.GetItem(7) == ZKString("x")) << "ignores the count";
    EXPECT_TRUE(fresh.SetItem("y", 512) && fresh.GetItem(0) == ZKString("y")) << "512 is slot 1 again";
    EXPECT_EQ(ZKContainer<void*>(2).PeekBack(), nullptr);

    ZKContainer<int> c(4);
    Script(c, "f2 f1 b3 B");
    int out = 0;  // the checked form refuses an index at the count
    EXPECT_FALSE(c.GetItem(out, 2));
    EXPECT_EQ(c.GetItem(2) * 10 + c.GetItem(4), 31) << "unchecked: the stale slot, and index 4 is slot 3 again";
    EXPECT_EQ(static_cast<ZKContainer<int> const&>(c).GetItem(2), 0) << "by-value form checks";
    c.SetBitsOn(0b1000);
    ZKContainer<int> copy(c), target(8);
    EXPECT_EQ(copy.GetFlagsData(), 1u) << "only the growth bit travels";
    target.SetFlagsData(0b0110);
    target = c;
    EXPECT_EQ(target.GetFlagsData(), 0b0111u) << "the target keeps its other bits";
    EXPECT_EQ(RingView<int>(target).Storage(), RingView<int>(c).Storage()) << "stale slots are copied";
    c.Clear();
    EXPECT_EQ(c.GetItem(0), 3) << "after Clear, index 0 is slot 1";

    ZKContainer<int> moved(std::move(copy));
    EXPECT_EQ(Items(copy), Items(moved)) << "move construction copies";  // NOLINT(bugprone-use-after-move)
    ZKContainer<int> big(64);
    for (int i = 0; i < 40; ++i) big.PushBack(i);
    target = std::move(big);
    EXPECT_EQ(big.GetItemCount() + big.GetMaxItemCount(), 104u) << "moving leaves the counters";  // NOLINT
    // A moved-from container stays inside its storage (checked by the
    // sanitizer builds), and it can be assigned to again.
    big.PushBack(1);
    big.Remove(3);
    big = moved;
    EXPECT_EQ(Items(big), (Ints{1, 2}));
    ZKContainer<int>& alias = target;
    target = std::move(alias);
    EXPECT_EQ(target.GetItem(39), 39) << "self-move changes nothing";
}

// Records the virtual calls the container makes on itself.
struct CallLog : ZKContainer<int> {
    using Base = ZKContainer<int>;
    explicit CallLog(unsigned long long n) : Base(n) {}
    Strings calls;
    CallLog& Log(std::string call) const
    {
        auto& self = const_cast<CallLog&>(*this);
        self.calls.push_back(std::move(call));
        return self;
    }
    void Clear() override { Log("Clear").Base::Clear(); }
    void Reserve(unsigned long long n) override { Log("Reserve " + std::to_string(n)).Base::Reserve(n); }
    unsigned long long PushBack(int const& x) override { return Log("PushBack").Base::PushBack(x); }
    unsigned long long PushFront(int const& x) override { return Log("PushFront").Base::PushFront(x); }
    bool PopFront(int& out) override { return Log("PopFront&").Base::PopFront(out); }
    bool GetItem(int& out, unsigned long long const& index) const override
    {
        return Log("GetItem& " + std::to_string(index)).Base::GetItem(out, index);
    }
    using Base::GetItem;
    using Base::PopFront;
};

TEST(ContainerVirtuals, GrowthAndByValueFormsGoThroughTheVirtuals)
{
    CallLog c(2);
    c.EmplaceBack();
    c.EmplaceFront();
    c.PopFront();
    (void)static_cast<ZKContainer<int> const&>(c)[0];
    c.PushBack(2);
    c.PushBack(3);
    EXPECT_EQ(c.calls, (Strings{"PushBack", "PushFront", "PopFront&", "GetItem& 0", "PushBack", "PushBack",
                                "Reserve 4", "GetItem& 0", "GetItem& 1", "Clear", "PushBack", "PushBack"}));
}

// Random operations on small rings, where the wrap points come constantly:
// the content must follow a std::deque, and the closed-form Reserve must
// leave exactly the storage that the step-by-step re-push leaves.
TEST(ContainerModel, FollowsADequeAndTheStepwiseRepush)
{
    std::mt19937 random(12345);
    for (unsigned long long capacity = 1; capacity <= 6; ++capacity) {
        ZKContainer<int> c(capacity);
        CallLog slow(capacity);  // derived: its Reserve re-pushes step by step through the virtuals
        std::deque<int> model;
        for (int step = 0; step < 4000; ++step) {
            unsigned const op = random() % 9;
            auto const arg = static_cast<unsigned long long>(random() % 4);
            bool const removable = !c.IsContainerFull() && arg < model.size();
            bool const some = !model.empty();
            for (ZKContainer<int>* x : {&c, static_cast<ZKContainer<int>*>(&slow)}) {
                int out = -1;
                unsigned long long slot = 0;
                bool done = true;
                if (op < 2) slot = x->PushBack(step);
                if (op == 2 || op == 3) slot = x->PushFront(step);
                if (op == 4) done = x->PopFront(out);
                if (op == 5) done = x->PopBack(out);
                if (op == 6) done = x->Remove(arg);
                if (op == 7) x->Reserve(model.size() + arg / 2 + (some ? 0 : 1));
                if (op == 8 && some) done = x->SetItem(step, arg % model.size());
                ASSERT_NE(slot, ~0ull) << "step " << step;
                ASSERT_EQ(done, op == 4 || op == 5 ? some : op != 6 || removable) << "step " << step;
                if ((op == 4 || op == 5) && some) {
                    ASSERT_EQ(out, op == 4 ? model.front() : model.back());
                }
            }
            if (op < 2) model.push_back(step);
            if (op == 2 || op == 3) model.push_front(step);
            if (op == 4 && some) model.pop_front();
            if (op == 5 && some) model.pop_back();
            if (op == 6 && removable) model.erase(model.begin() + static_cast<long>(arg));
            if (op == 8 && some) model[arg % model.size()] = step;
            ASSERT_EQ(Items(c), Ints(model.begin(), model.end())) << "step " << step;
            if (!model.empty()) {
                ASSERT_EQ(Ints({c.PeekFront(), c.PeekBack()}), Ints({model.front(), model.back()}));
            }
            ASSERT_EQ(RingState(c), RingState<int>(slow)) << "step " << step;
        }
    }
}
