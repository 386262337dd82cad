// ZKMessagingObject on a random walk against a model of its tables, then what
// the walk does not reach: a full clean-up list, receivers that change the
// table during delivery, and copies.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <random>

namespace {

std::vector<int> delivered;  // 100 * the receiver's number + the id

struct Node : ZKMessagingObject {
    explicit Node(int number) : n(number) {}
    void ReceiveNotify(ZKBaseMessage* message) override { delivered.push_back(n * 100 + int(message->id)), act(); }
    using ZKMessagingObject::cleanupList, ZKMessagingObject::observers;
    int n;
    std::function<void()> act = [] {};
};

auto Send(ZKMessagingObject& s, ZKBaseMessage message) { return delivered.clear(), s.Notify(&message), delivered; }

}  // namespace

TEST(Messaging, RandomWalkAgainstAModelThenCleanupChangesDuringDeliveryAndCopies)
{
    std::vector<std::unique_ptr<Node>> nodes(5), crowd;
    std::vector<Node*> m[20];  // observers of subject * 4 + id, in attachment order
    for (int i = 0; i < 5; ++i) nodes[i] = std::make_unique<Node>(i);
    std::mt19937 random(18);
    for (int step = 0; step < 6000; ++step) {
        Node *s = nodes[random() % 5].get(), *o = nodes[random() % 5].get();
        unsigned int const id = random() % 4, op = random() % 6;
        std::vector<Node*>& entries = m[s->n * 4 + id];
        std::vector<int> expected;  // disabled observers are skipped
        for (Node* e : entries) e->IsReceiveNotifyEnabled() ? expected.push_back(e->n * 100 + int(id)) : void();
        ASSERT_EQ(Send(*s, {id}), expected) << "step " << step;
        // Attached once per id, never to itself; detached from every id; a death every partner learns of.
        if (op < 3) s->AttachObserver(id, o);
        if (op < 3 && s != o && std::ranges::find(entries, o) == entries.end()) entries.push_back(o);
        if (op == 3) s->DetachObserver(o);
        if (op == 4) o->SetFlagsData(random() % 4);  // bit 0 switches reception
        for (int k = 0; op == 3 && k < 4; ++k) std::erase(m[s->n * 4 + k], o);
        for (int i = 0; op == 5 && i < 20; ++i) std::erase_if(m[i], [&](Node* e) { return i / 4 == s->n || e == s; });
        if (op == 5) nodes[s->n] = std::make_unique<Node>(s->n);
    }

    // What the walk does not reach: a full clean-up list, a table changed during
    // a delivery, copies.
    Node a(0), b(1), c(2), d(3), x(4);
    EXPECT_TRUE(a.GetFlagsData() == 1 && a.observers.bucket_count() >= 8 && a.observers.max_load_factor() == 1.0f);
    // 512 fill the ring exactly; a dead one leaves anyway.
    for (int i = 0; i < 512; ++i) a.AttachObserver(9, crowd.emplace_back(std::make_unique<Node>(5)).get());
    EXPECT_TRUE((crowd[200].reset(), a.cleanupList.GetItemCount() == 511 && a.observers.size() == 511));
    crowd.clear();
    // On a small table, a receiver detaches and destroys observers of other
    // ids, whose entries may be the neighbours of id 1's, and makes it rehash.
    auto y = std::make_unique<Node>(6);
    for (auto [id, o] : {std::pair{6u, &x}, {1u, &b}, {2u, &b}, {7u, y.get()}, {1u, &c}}) d.AttachObserver(id, o);
    std::size_t const buckets = d.observers.bucket_count();
    b.act = [&] {
        d.DetachObserver(&x), y.reset();
        for (unsigned int i = 0; i < 41; ++i)
            d.AttachObserver(i < 40 ? 100 + i : 1, crowd.emplace_back(std::make_unique<Node>(7 + i / 40)).get());
        b.act = [] {};
    };
    EXPECT_TRUE(Send(d, {1}) == (std::vector<int>{101, 201, 801}) && d.observers.bucket_count() > buckets);
    d.Notify(nullptr),
        d.SetFlagsData(0b1110);  // null is ignored; only bit 0 travels in a copy
                                 // or an assignment
    Node copy(d), target(9);
    target.SetFlagsData(0b1001), static_cast<ZKMessagingObject&>(target) = copy;
    EXPECT_TRUE(copy.GetFlagsData() == 0 && target.GetFlagsData() == 0b1000 && target.observers == d.observers);
    EXPECT_EQ(Send(copy, {1}), (std::vector<int>{101, 201, 801})) << "copies are not registered";
    d.RemoveAllObservers();
    EXPECT_TRUE(Send(d, {1}).empty() && d.cleanupList.GetItemCount() == 44 && b.cleanupList.GetItemCount() == 1);
}
