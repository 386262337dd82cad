// ZKMessagingObject: attachment by id, delivery order and switches, the
// two-way clean-up guard, and copies that are not registered.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using Log = std::vector<std::string>;

// An observer that logs "name:id" per delivery and shows its table and
// clean-up list.
class Node : public ZKMessagingObject {
public:
    Node(std::string nodeName, Log* deliveries) : name(std::move(nodeName)), log(deliveries) {}

    void ReceiveNotify(ZKBaseMessage* message) override
    {
        log->push_back(name + ":" + std::to_string(message->id));
        if (onReceive) onReceive(message);
    }

    std::vector<ZKMessagingObject*> Cleanup() const
    {
        std::vector<ZKMessagingObject*> out;
        for (unsigned long long i = 0; i < cleanupList.GetItemCount(); ++i) {
            ZKMessagingObject* item = nullptr;
            cleanupList.GetItem(item, i);
            out.push_back(item);
        }
        return out;
    }
    std::vector<ZKMessagingObject*> ObserversOf(unsigned int id) const
    {
        std::vector<ZKMessagingObject*> out;
        auto const [first, last] = observers.equal_range(id);
        for (auto entry = first; entry != last; ++entry) out.push_back(entry->second);
        return out;
    }
    std::size_t TableSize() const { return observers.size(); }
    std::size_t Buckets() const { return observers.bucket_count(); }
    float MaxLoad() const { return observers.max_load_factor(); }

    std::string name;
    Log* log;
    std::function<void(ZKBaseMessage*)> onReceive;
};

using Objects = std::vector<ZKMessagingObject*>;

class Messaging : public ::testing::Test {
protected:
    Log log;
    Node a{"a", &log}, b{"b", &log}, c{"c", &log};

    void Send(ZKMessagingObject& from, unsigned int id)
    {
        ZKBaseMessage message{id};
        from.Notify(&message);
    }
    Log Take()
    {
        Log taken;
        taken.swap(log);
        return taken;
    }
};

}  // namespace

TEST_F(Messaging, ANewObjectReceivesKnowsNobodyAndCannotObserveItself)
{
    EXPECT_EQ(a.GetFlagsData(), 1u);
    EXPECT_TRUE(a.IsReceiveNotifyEnabled());
    EXPECT_GE(a.Buckets(), 8u);
    EXPECT_EQ(a.MaxLoad(), 1.0f);
    a.AttachObserver(7, &a);
    EXPECT_EQ(a.TableSize(), 0u);
    EXPECT_TRUE(a.Cleanup().empty());
    Send(a, 7);
    EXPECT_TRUE(Take().empty());
}

TEST_F(Messaging, AnObserverIsEnteredOncePerIdAndHearsOnlyItsIds)
{
    ZKMessagingObject plain;  // the base class receives silently
    a.AttachObserver(7, &plain);
    a.AttachObserver(7, &b);
    a.AttachObserver(7, &b);
    Send(a, 7);
    EXPECT_EQ(Take(), (Log{"b:7"}));
    a.DetachObserver(&plain);
    a.AttachObserver(8, &b);
    Send(a, 7);
    Send(a, 8);
    Send(a, 9);
    EXPECT_EQ(Take(), (Log{"b:7", "b:8"}));
    // One clean-up entry each way, however many ids.
    EXPECT_EQ(a.Cleanup(), (Objects{&plain, &b}));
    EXPECT_EQ(b.Cleanup(), (Objects{&a}));
    EXPECT_EQ(b.TableSize(), 0u) << "attachment is one-directional in the tables";
}

TEST_F(Messaging, DeliveryFollowsAttachmentOrderThroughRehashes)
{
    std::vector<std::unique_ptr<Node>> crowd;
    Log expected;
    for (int i = 0; i < 60; ++i) {
        crowd.push_back(std::make_unique<Node>(std::string("n").append(std::to_string(i)), &log));
        // Interleave other ids so that the table grows while id 5 fills up.
        a.AttachObserver(static_cast<unsigned int>(5 + (i % 3)), crowd.back().get());
        if (i % 3 == 0) expected.push_back(crowd.back()->name + ":5");
        a.AttachObserver(5, crowd.back().get());
        if (i % 3 != 0) expected.push_back(crowd.back()->name + ":5");
    }
    EXPECT_GT(a.Buckets(), 8u);
    Send(a, 5);
    EXPECT_EQ(Take(), expected);
}

TEST_F(Messaging, DisabledObserversAreSkippedButStayAttached)
{
    a.AttachObserver(1, &b);
    a.AttachObserver(1, &c);
    b.DisableReceiveNotify();
    EXPECT_FALSE(b.IsReceiveNotifyEnabled());
    Send(a, 1);
    EXPECT_EQ(Take(), (Log{"c:1"}));
    b.EnableReceiveNotify();
    Send(a, 1);
    EXPECT_EQ(Take(), (Log{"b:1", "c:1"}));
    // The flags members reach the same bit; the other bits are the caller's.
    c.SetFlagsData(0b110);
    EXPECT_FALSE(c.IsReceiveNotifyEnabled());
    Send(a, 1);
    EXPECT_EQ(Take(), (Log{"b:1"}));
    c.EnableReceiveNotify();
    EXPECT_EQ(c.GetFlagsData(), 0b111u);
    c.ClearFlagsData();
    Send(a, 1);
    EXPECT_EQ(Take(), (Log{"b:1"}));
}

TEST_F(Messaging, TheMessageReachesReceiversUnchanged)
{
    struct Move : ZKBaseMessage {
        int x, y;
    } move{};
    move.id = 3;
    move.x = 10;
    move.y = -4;
    ZKBaseMessage* seen = nullptr;
    b.onReceive = [&](ZKBaseMessage* message) { seen = message; };
    a.AttachObserver(3, &b);
    a.Notify(&move);
    ASSERT_EQ(seen, &move);
    EXPECT_EQ(static_cast<Move*>(seen)->y, -4);
    a.Notify(nullptr);  // ignored
    EXPECT_EQ(Take(), (Log{"b:3"}));
}

TEST_F(Messaging, DetachRemovesEveryIdAndKeepsTheCleanupLists)
{
    a.AttachObserver(1, &b);
    a.AttachObserver(2, &b);
    a.AttachObserver(2, &c);
    a.DetachObserver(&b);
    EXPECT_TRUE(a.ObserversOf(1).empty());
    EXPECT_EQ(a.ObserversOf(2), (Objects{&c}));
    EXPECT_EQ(a.Cleanup(), (Objects{&b, &c}));
    EXPECT_EQ(b.Cleanup(), (Objects{&a}));
    a.DetachObserver(&b);  // not attached: nothing changes
    a.DetachObserver(nullptr);
    EXPECT_EQ(a.TableSize(), 1u);
    // Attaching again re-enters the pair without doubling the clean-up lists.
    a.AttachObserver(1, &b);
    EXPECT_EQ(a.Cleanup(), (Objects{&b, &c}));
    EXPECT_EQ(b.Cleanup(), (Objects{&a}));
}

TEST_F(Messaging, RemoveAllObserversKeepsTheCleanupList)
{
    a.AttachObserver(1, &b);
    a.AttachObserver(2, &c);
    a.RemoveAllObservers();
    EXPECT_EQ(a.TableSize(), 0u);
    EXPECT_EQ(a.Cleanup(), (Objects{&b, &c}));
    Send(a, 1);
    EXPECT_TRUE(Take().empty());
}

TEST_F(Messaging, ADeadObserverIsForgottenByItsSubject)
{
    auto doomed = std::make_unique<Node>("d", &log);
    a.AttachObserver(1, &b);
    a.AttachObserver(1, doomed.get());
    a.AttachObserver(4, doomed.get());
    a.AttachObserver(1, &c);
    doomed.reset();
    EXPECT_EQ(a.ObserversOf(1), (Objects{&b, &c}));
    EXPECT_TRUE(a.ObserversOf(4).empty());
    EXPECT_EQ(a.Cleanup(), (Objects{&b, &c}));
    Send(a, 1);
    Send(a, 4);
    EXPECT_EQ(Take(), (Log{"b:1", "c:1"}));

    // The guard holds for a pair whose entries were detached before.
    auto detached = std::make_unique<Node>("x", &log);
    a.AttachObserver(1, detached.get());
    a.DetachObserver(detached.get());
    detached.reset();
    EXPECT_EQ(a.Cleanup(), (Objects{&b, &c}));
}

TEST_F(Messaging, ADeadSubjectIsForgottenByItsObservers)
{
    auto subject = std::make_unique<Node>("s", &log);
    subject->AttachObserver(1, &b);
    b.AttachObserver(9, subject.get());  // both directions
    subject.reset();
    EXPECT_TRUE(b.Cleanup().empty());
    EXPECT_EQ(b.TableSize(), 0u);
    Send(b, 9);
    EXPECT_TRUE(Take().empty());
}

TEST_F(Messaging, CleanupEntriesAreOneSidedAndUnique)
{
    a.AddObserverToAlertWhenCleanup(&b);
    a.AddObserverToAlertWhenCleanup(&b);
    a.AddObserverToAlertWhenCleanup(&c);
    a.AddObserverToAlertWhenCleanup(nullptr);
    EXPECT_EQ(a.Cleanup(), (Objects{&b, &c}));
    EXPECT_TRUE(b.Cleanup().empty());
    a.RemoveObserverToAlertWhenCleanup(&b);
    a.RemoveObserverToAlertWhenCleanup(&b);  // absent: nothing
    EXPECT_EQ(a.Cleanup(), (Objects{&c}));
    // c does not know a, so it would not take itself out of a's list: the
    // caller who made the entry takes it out before c goes.
    a.RemoveObserverToAlertWhenCleanup(&c);
    EXPECT_TRUE(a.Cleanup().empty());
}

TEST_F(Messaging, ADeadObserverLeavesAFullCleanupList)
{
    // 512 observers fill the subject's list exactly, and the container
    // refuses to remove from a full ring; the dead observer must leave anyway.
    std::vector<std::unique_ptr<Node>> crowd;
    for (int i = 0; i < 512; ++i) {
        crowd.push_back(std::make_unique<Node>("n", &log));
        a.AttachObserver(1, crowd.back().get());
    }
    ASSERT_EQ(a.Cleanup().size(), 512u);
    ZKMessagingObject* gone = crowd[200].get();
    crowd[200].reset();
    Objects const left = a.Cleanup();
    EXPECT_EQ(left.size(), 511u);
    EXPECT_EQ(std::count(left.begin(), left.end(), gone), 0);
    EXPECT_EQ(a.ObserversOf(1).size(), 511u);
}

TEST_F(Messaging, ReceiversMayAttachDetachAndDestroyOtherIdsObserversDuringDelivery)
{
    Node e("e", &log);
    auto doomed = std::make_unique<Node>("doomed", &log);
    std::vector<std::unique_ptr<Node>> late;
    b.onReceive = [&](ZKBaseMessage* message) {
        if (message->id != 1) return;
        a.DetachObserver(&e);  // only under 6
        doomed.reset();        // only under 7
        for (int i = 0; i < 40; ++i) {
            late.push_back(std::make_unique<Node>("late", &log));
            a.AttachObserver(100 + static_cast<unsigned int>(i), late.back().get());
        }
        late.push_back(std::make_unique<Node>("tail", &log));
        a.AttachObserver(1, late.back().get());
    };
    // Ids 6 and 7 hash next to 1 in a small table, so their entries are
    // likely the neighbours of id 1's in the table's list.
    a.AttachObserver(6, &e);
    a.AttachObserver(1, &c);
    a.AttachObserver(1, &b);
    a.AttachObserver(7, doomed.get());
    Node d("d", &log);
    a.AttachObserver(1, &d);
    std::size_t const buckets = a.Buckets();
    Send(a, 1);
    EXPECT_GT(a.Buckets(), buckets) << "the table rehashed during the delivery";
    EXPECT_EQ(Take(), (Log{"c:1", "b:1", "d:1", "tail:1"}));
    EXPECT_TRUE(a.ObserversOf(6).empty());
    EXPECT_TRUE(a.ObserversOf(7).empty());
}

TEST_F(Messaging, CopiesTakeTheTableAndListButAreNotRegistered)
{
    a.AttachObserver(1, &b);
    a.AttachObserver(1, &c);
    a.SetFlagsData(0b1110);  // reception off, caller bits on
    {
        Node copy(a);
        EXPECT_EQ(copy.GetFlagsData(), 0u) << "only bit 0 travels, and it is off";
        EXPECT_EQ(copy.ObserversOf(1), (Objects{&b, &c}));
        EXPECT_EQ(copy.Cleanup(), (Objects{&b, &c}));
        EXPECT_EQ(b.Cleanup(), (Objects{&a})) << "the copy is in nobody's list";
        Send(copy, 1);
        EXPECT_EQ(Take(), (Log{"b:1", "c:1"}));
    }
    // The copy's destructor took only itself out: the original pairs stand.
    EXPECT_EQ(b.Cleanup(), (Objects{&a}));
    EXPECT_EQ(a.ObserversOf(1), (Objects{&b, &c}));
    a.EnableReceiveNotify();
    Node enabledCopy(a);
    EXPECT_EQ(enabledCopy.GetFlagsData(), 1u);
}

TEST_F(Messaging, AssignmentKeepsTheTargetsOtherBits)
{
    a.AttachObserver(3, &b);
    Node target("t", &log);
    target.SetFlagsData(0b1000);
    target = a;  // a's flags are 1
    EXPECT_EQ(target.GetFlagsData(), 0b1001u);
    EXPECT_EQ(target.ObserversOf(3), (Objects{&b}));
    EXPECT_EQ(target.Cleanup(), (Objects{&b}));
    EXPECT_EQ(b.Cleanup(), (Objects{&a}));
    a.DisableReceiveNotify();
    target = a;
    EXPECT_EQ(target.GetFlagsData(), 0b1000u);

    Node& alias = a;
    a = alias;
    EXPECT_EQ(a.ObserversOf(3), (Objects{&b}));
    EXPECT_EQ(a.Cleanup(), (Objects{&b}));
}
