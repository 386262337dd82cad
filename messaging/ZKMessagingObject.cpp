#include "ZKMessagingObject.h"

template class ZKContainer<ZKMessagingObject*>;

namespace {

constexpr std::size_t kInitialBuckets = 8;

// Logical index of `object` in `list`, or the item count when absent.
unsigned long long IndexOf(ZKContainer<ZKMessagingObject*> const& list, ZKMessagingObject const* object)
{
    unsigned long long const count = list.GetItemCount();
    for (unsigned long long index = 0; index < count; ++index) {
        ZKMessagingObject* entry = nullptr;
        if (list.GetItem(entry, index) && entry == object) return index;
    }
    return count;
}

// Takes the first entry of `object` out of `list`. The container refuses to
// remove from a full ring, so a full list grows first: the entry must go, or
// the list would keep a pointer to an object about to die.
void RemoveFirst(ZKContainer<ZKMessagingObject*>& list, ZKMessagingObject const* object)
{
    unsigned long long const index = IndexOf(list, object);
    if (index == list.GetItemCount()) return;
    if (list.IsContainerFull()) list.Reserve(list.GetMaxItemCount() * 2);
    list.Remove(index);
}

}  // namespace

ZKMessagingObject::ZKMessagingObject() : flagsData(kReceiveNotifyBit), observers(kInitialBuckets)
{
    observers.max_load_factor(1.0f);
}

ZKMessagingObject::ZKMessagingObject(ZKMessagingObject const& other)
    : flagsData(other.flagsData & kReceiveNotifyBit), observers(other.observers), cleanupList(other.cleanupList)
{
}

ZKMessagingObject& ZKMessagingObject::operator=(ZKMessagingObject const& other)
{
    if (this == &other) return *this;
    observers = other.observers;
    cleanupList = other.cleanupList;
    flagsData = (flagsData & ~kReceiveNotifyBit) | (other.flagsData & kReceiveNotifyBit);
    return *this;
}

ZKMessagingObject::~ZKMessagingObject()
{
    unsigned long long const count = cleanupList.GetItemCount();
    for (unsigned long long index = 0; index < count; ++index) {
        ZKMessagingObject* other = nullptr;
        if (!cleanupList.GetItem(other, index) || other == nullptr) continue;
        other->DetachObserver(this);
        RemoveFirst(other->cleanupList, this);
    }
}

void ZKMessagingObject::Notify(ZKBaseMessage* message)
{
    if (message == nullptr) return;
    unsigned int const id = message->id;
    // The walk runs on the live table. Entries of one id are adjacent and
    // stay in order, so the walk goes on while the key matches instead of
    // holding the end of the range, which a receiver may erase by detaching
    // an observer of another id. A receiver that attaches may make the table
    // rehash, which invalidates iterators: the walk then finds its place
    // again by counting the entries of the id it has passed. The lookup
    // stops at the first of the adjacent equal keys, so find gives the start
    // of the id's entries without walking them all as equal_range does.
    auto entry = observers.find(id);
    unsigned long long passed = 0;
    while (entry != observers.end() && entry->first == id) {
        ZKMessagingObject* observer = entry->second;
        ++passed;
        if ((observer->flagsData & kReceiveNotifyBit) != 0) {
            std::size_t const buckets = observers.bucket_count();
            observer->ReceiveNotify(message);
            if (observers.bucket_count() != buckets) {
                entry = observers.find(id);
                for (unsigned long long skipped = 0;
                     skipped < passed && entry != observers.end() && entry->first == id; ++skipped) {
                    ++entry;
                }
                continue;
            }
        }
        ++entry;
    }
}

void ZKMessagingObject::ReceiveNotify(ZKBaseMessage* /*message*/) {}

void ZKMessagingObject::AttachObserver(unsigned int const& id, ZKMessagingObject* observer)
{
    if (observer == this || observer == nullptr) return;
    observer->AddObserverToAlertWhenCleanup(this);
    AddObserverToAlertWhenCleanup(observer);

    auto const [first, last] = observers.equal_range(id);
    auto lastOfId = observers.end();
    for (auto entry = first; entry != last; ++entry) {
        if (entry->second == observer) return;
        lastOfId = entry;
    }
    // Inserting with the last entry of the id as the hint puts the new entry
    // behind it; without a hint the new entry would go in front of the id's
    // others.
    if (lastOfId == observers.end()) observers.emplace(id, observer);
    else observers.emplace_hint(lastOfId, id, observer);
}

void ZKMessagingObject::DetachObserver(ZKMessagingObject* observer)
{
    for (auto entry = observers.begin(); entry != observers.end();) {
        if (entry->second == observer) entry = observers.erase(entry);
        else ++entry;
    }
}

void ZKMessagingObject::RemoveAllObservers() { observers.clear(); }

void ZKMessagingObject::AddObserverToAlertWhenCleanup(ZKMessagingObject* object)
{
    if (object == nullptr || IndexOf(cleanupList, object) != cleanupList.GetItemCount()) return;
    cleanupList.PushBack(object);
}

void ZKMessagingObject::RemoveObserverToAlertWhenCleanup(ZKMessagingObject* object) { RemoveFirst(cleanupList, object); }
