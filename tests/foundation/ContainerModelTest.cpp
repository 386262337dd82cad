// Long random operation sequences on small rings, where the wrap points are
// hit constantly: the container's logical content must follow a std::deque,
// and the closed-form Reserve must leave exactly the storage that the
// step-by-step re-push leaves.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <deque>
#include <random>
#include <vector>

#include "foundation/ContainerTestSupport.h"

namespace {

// A derived type: Reserve then takes the step-by-step re-push path through
// the virtual operations instead of the closed form.
struct StepwiseContainer : ZKContainer<int> {
    explicit StepwiseContainer(unsigned long long n) : ZKContainer<int>(n) {}
    void Clear() override { ZKContainer<int>::Clear(); }
};

template <class C>
void ExpectSameRing(ZKContainer<int> const& fast, C const& stepwise, int step)
{
    RingView<int> a(fast), b(stepwise);
    ASSERT_EQ(a.GetMaxItemCount(), b.GetMaxItemCount()) << "step " << step;
    ASSERT_EQ(a.GetItemCount(), b.GetItemCount()) << "step " << step;
    ASSERT_EQ(a.Front(), b.Front()) << "step " << step;
    ASSERT_EQ(a.Back(), b.Back()) << "step " << step;
    ASSERT_EQ(a.Storage(), b.Storage()) << "step " << step;
}

}  // namespace

TEST(ContainerModel, LogicalContentFollowsADeque)
{
    std::mt19937 random(12345);
    for (unsigned long long capacity = 1; capacity <= 6; ++capacity) {
        ZKContainer<int> c(capacity);
        std::deque<int> model;
        for (int step = 0; step < 4000; ++step) {
            int const value = step;
            switch (random() % 9) {
            case 0: case 1:
                ASSERT_NE(c.PushBack(value), ~0ull);
                model.push_back(value);
                break;
            case 2: case 3:
                ASSERT_NE(c.PushFront(value), ~0ull);
                model.push_front(value);
                break;
            case 4: {
                int out = -1;
                ASSERT_EQ(c.PopFront(out), !model.empty());
                if (!model.empty()) { ASSERT_EQ(out, model.front()); model.pop_front(); }
                break;
            }
            case 5: {
                int out = -1;
                ASSERT_EQ(c.PopBack(out), !model.empty());
                if (!model.empty()) { ASSERT_EQ(out, model.back()); model.pop_back(); }
                break;
            }
            case 6: {
                unsigned long long const index = model.empty() ? 0 : random() % (model.size() + 1);
                bool const full = c.IsContainerFull();
                bool const removable = !full && index < model.size();
                ASSERT_EQ(c.Remove(index), removable) << "step " << step;
                if (removable) model.erase(model.begin() + static_cast<long>(index));
                break;
            }
            case 7:
                c.Reserve(c.GetItemCount() + random() % 3 + (model.empty() ? 1 : 0));
                break;
            case 8:
                if (!model.empty()) {
                    std::size_t const index = random() % model.size();
                    ASSERT_TRUE(c.SetItem(value, index));
                    model[index] = value;
                }
                break;
            }
            ASSERT_EQ(c.GetItemCount(), model.size()) << "step " << step;
            ASSERT_EQ(Items(c), std::vector<int>(model.begin(), model.end())) << "step " << step;
            if (!model.empty()) {
                ASSERT_EQ(c.PeekFront(), model.front());
                ASSERT_EQ(c.PeekBack(), model.back());
            }
        }
    }
}

TEST(ContainerModel, ClosedFormReserveMatchesStepwiseRepush)
{
    std::mt19937 random(777);
    for (unsigned long long capacity = 1; capacity <= 5; ++capacity) {
        ZKContainer<int> fast(capacity);
        StepwiseContainer stepwise(capacity);
        for (int step = 0; step < 3000; ++step) {
            unsigned const op = random() % 8;
            int const value = step;
            auto both = [&](auto&& f) { f(static_cast<ZKContainer<int>&>(fast)); f(static_cast<ZKContainer<int>&>(stepwise)); };
            if (op == 0) both([&](ZKContainer<int>& c) { c.PushBack(value); });
            if (op == 1) both([&](ZKContainer<int>& c) { c.PushFront(value); });
            if (op == 2) both([&](ZKContainer<int>& c) { c.PopFront(); });
            if (op == 3) both([&](ZKContainer<int>& c) { c.PopBack(); });
            if (op == 4) {
                unsigned long long const target = random() % 9;
                both([&](ZKContainer<int>& c) { c.Reserve(target); });
            }
            if (op == 5) {
                unsigned long long const target = random() % 5;
                both([&](ZKContainer<int>& c) { c.Resize(target); });
            }
            if (op == 6) {
                bool const on = random() % 4 != 0;
                both([&](ZKContainer<int>& c) { c.SetContainerAutoResize(on); });
            }
            if (op == 7) {
                unsigned long long const index = random() % 4;
                both([&](ZKContainer<int>& c) { c.Remove(index); });
            }
            ExpectSameRing(fast, stepwise, step);
            if (HasFatalFailure()) return;
            // Keep the rings small so that wrap points keep coming round.
            if (fast.GetMaxItemCount() > 64) {
                both([&](ZKContainer<int>& c) {
                    c.Clear();
                    c.Reserve(capacity);
                    c.SetContainerAutoResize(true);
                });
                ExpectSameRing(fast, stepwise, step);
            }
        }
    }
}
