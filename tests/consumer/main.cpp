#include <zk64/zk64.h>

#include <cstdio>
#include <cstring>
#include <system_error>

// A caller of the installed package. Besides the library's identity it checks
// that an error code thrown inside the library compares equal to the portable
// condition here: the library and its caller share one C++ runtime.
int main()
{
    ZKContainer<ZKString> names(1);
    names.PushBack(GetZKName());
    names.PushBack(ZKString(GetZKVersion()));
    if (names.GetMaxItemCount() != 2 || !(names[1] == "0.0.20.5.16")) return 1;
    if (std::strcmp(GetZKAbout(), "ZK Library. XY") != 0) return 2;

    ZKThread idle;
    try {
        idle.JoinThread();
        return 3;
    } catch (std::system_error const& error) {
        if (!(error.code() == std::errc::invalid_argument)) {
            std::printf("error code %s:%d does not compare equal to std::errc::invalid_argument\n",
                        error.code().category().name(), error.code().value());
            return 4;
        }
    }
    std::printf("%s %s\n", names[0].GetString(), names[1].GetString());
    return 0;
}
