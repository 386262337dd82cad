// libFuzzer target: ConvertToSystemPath on the whole input, and the program
// argument table loaded from the input cut at its zero bytes into an
// argument array (closed by a null entry, as main's is). Every key the table
// made must be found again, with the value of its first load. The table is
// process-wide, so each run starts from an empty one.

#include <zk64/zk64.h>

#include <cstring>
#include <map>

#include "FuzzSupport.h"
#include "foundation/detail/Globals.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    ZKString const path(reinterpret_cast<char const*>(data), static_cast<int>(size));
    ZKString const pattern = ConvertToSystemPath(path);
    ZK_FUZZ_REQUIRE(pattern.IsEmpty() == path.IsEmpty());

    zk64::detail::globals.programArgs.clear();
    std::vector<std::string> pieces = zk64::fuzz::Pieces(data, size);
    std::vector<char*> array;
    for (std::string& piece : pieces) array.push_back(piece.data());
    array.push_back(nullptr);
    LoadProgramArgs(static_cast<int>(pieces.size()), array.data());
    // A model of the table: each entry with a dash makes a key, from the
    // dash to the first blank behind it, or the whole entry without one.
    std::map<std::string, std::string> model;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        char const* entry = pieces[i].c_str();
        char const* dash = std::strchr(entry, '-');
        if (dash == nullptr) continue;
        char const* blank = std::strchr(dash + 1, ' ');
        model.emplace(blank != nullptr ? std::string(dash, blank) : std::string(entry),
                      i + 1 < pieces.size() ? pieces[i + 1] : "");
    }
    for (auto const& [key, value] : model) {
        ZK_FUZZ_REQUIRE(HasProgramArg(ZKString(key.c_str())));
        ZK_FUZZ_REQUIRE(std::strcmp(GetProgramArgData(ZKString(key.c_str())).GetString(), value.c_str()) == 0);
    }
    for (std::string const& piece : pieces) (void)GetProgramArgData(ZKString(piece.c_str()));
    ZK_FUZZ_REQUIRE(zk64::detail::globals.programArgs.size() == model.size());
    return 0;
}
