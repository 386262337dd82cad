#include <zk64/zk64.h>

#include <cstdio>
#include <cstring>

int main()
{
    ZKContainer<ZKString> names(1);
    names.PushBack(GetZKName());
    names.PushBack(ZKString(GetZKVersion()));
    if (names.GetMaxItemCount() != 2 || !(names[1] == "0.0.20.5.16")) return 1;
    std::printf("%s %s\n", names[0].GetString(), names[1].GetString());
    return std::strcmp(GetZKAbout(), "ZK Library. XY") == 0 ? 0 : 1;
}
