#include "detail/ListFill.h"

#include <typeinfo>

namespace zk64::detail {
namespace {

// Reaches the list's slot bookkeeping, which has no public reader.
struct ListState : ZKContainer<ZKString> {
    static unsigned long long FrontSlot(ZKContainer<ZKString> const& list) { return list.*(&ListState::frontSlot); }
    static unsigned long long BackSlot(ZKContainer<ZKString> const& list) { return list.*(&ListState::backSlot); }
};

}  // namespace

unsigned long long DoubledCapacity(unsigned long long capacity, unsigned long long items)
{
    while (capacity < items) capacity *= 2;
    return capacity;
}

void MatchDoubledSlot(ZKContainer<ZKString>& list, unsigned long long initialCapacity)
{
    unsigned long long const capacity = list.GetMaxItemCount();
    if (capacity > initialCapacity && list.GetItemCount() < capacity)
        list.SetItem(list.GetItem(capacity / 2 - 1), capacity - 1);  // logical index capacity - 1 is slot 0
}

bool IsUnusedList(ZKContainer<ZKString> const& list)
{
    if (typeid(list) != typeid(ZKContainer<ZKString>) || !list.IsContainerAutoResize()) return false;
    if (list.GetItemCount() != 0 || list.GetMaxItemCount() == 0) return false;
    return ListState::FrontSlot(list) == 0 && ListState::BackSlot(list) == 1;
}

void FillUnusedList(ZKContainer<ZKString>& list, std::vector<std::string>& texts)
{
    unsigned long long const initial = list.GetMaxItemCount();
    unsigned long long const capacity = DoubledCapacity(initial, texts.size());
    if (capacity != initial) list.Reserve(capacity);
    ZKString const empty;
    for (std::string& text : texts) {
        list.PushBack(empty);
        TextAccess::Text(list.GetItem(list.GetItemCount() - 1)) = std::move(text);
    }
    MatchDoubledSlot(list, initial);
}

}  // namespace zk64::detail
