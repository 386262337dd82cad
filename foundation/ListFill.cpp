#include "detail/ListFill.h"

namespace zk64::detail {

unsigned long long DoubledCapacity(unsigned long long capacity, unsigned long long items)
{
    while (capacity != 0 && capacity < items) capacity *= 2;  // doubling 0 stays 0
    return capacity;
}

bool HoldsNoText(ZKContainer<ZKString> const& list)
{
    for (ZKString const& slot : ListState<ZKString>::Slots(list))
        if (!TextAccess::Text(slot).empty()) return false;
    return true;
}

void FillUnusedList(ZKContainer<ZKString>& list, std::vector<std::string>& texts)
{
    ZKString const empty;
    FillUnusedList(list, texts, [&empty](ZKContainer<ZKString>& target, std::string& text) {
        target.PushBack(empty);
        TextAccess::Text(target.GetItem(target.GetItemCount() - 1)) = std::move(text);
    });
}

}  // namespace zk64::detail
