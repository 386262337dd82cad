// A first look at zk64: identity, strings from narrow and wide text, and a
// container of them grown past its capacity.

#include <zk64/zk64.h>

#include <cstdio>

namespace {

void PrintContainer(ZKContainer<ZKString> const& list)
{
    std::printf("  %llu item(s), capacity %llu:\n", list.GetItemCount(), list.GetMaxItemCount());
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i)
        std::printf("    [%llu] \"%s\" (%d bytes)\n", i, list[i].GetString(), list[i].GetSize());
}

}  // namespace

int main()
{
    std::printf("%s %s - %s\n", GetZKName(), GetZKVersion(), GetZKAbout());
    std::printf("little-endian: %s\n\n", IsMachineLittleEndian() ? "yes" : "no");

    // Wide text is UTF-16 (wchar_t on Windows, char16_t elsewhere).
    static ZKWideChar const wide[] = {'G', 'r', 0xFC, 0xDF, 'e', ' ', 0x20AC, ' ', 0xD83D, 0xDE00, 0};

    ZKContainer<ZKString> list(2);
    std::printf("A container of capacity %llu:\n", list.GetMaxItemCount());
    std::printf("  PushBack narrow -> slot %llu\n", list.PushBack("narrow text"));
    std::printf("  PushBack wide   -> slot %llu\n", list.PushBack(ZKString(wide)));
    std::printf("  full: %s; the next push doubles it\n", list.IsContainerFull() ? "yes" : "no");
    std::printf("  PushFront       -> slot %llu\n", list.PushFront(ZKString("first")));
    std::printf("  PushBack        -> slot %llu\n", list.PushBack(ZKString("last")));
    std::printf("  PushBack        -> slot %llu\n", list.PushBack(ZKString("one more")));
    PrintContainer(list);

    unsigned int units = 0;
    ZKWideChar* back = list[2].GetWideString(nullptr, &units);
    std::printf("\n\"%s\" back to UTF-16: %u units including the terminator\n", list[2].GetString(), units);
    ZKString::CleanupWideString(&back);

    ZKString text("abc");
    text += '\0';
    text += "def";
    ZKString const copied(text);
    ZKString assigned;
    assigned = text;
    std::printf("\nA text with an embedded zero has %d bytes; its copy has %d, an assigned one %d.\n",
                text.GetSize(), copied.GetSize(), assigned.GetSize());
    return 0;
}
