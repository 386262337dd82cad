// libFuzzer target: a packaged application's manifest, read for its logo,
// and the resource string made of what it gave.

#include <zk64/zk64.h>

#include <cstring>

#include "FuzzSupport.h"
#include "processes/detail/PackageManifest.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const& path = zk64::fuzz::ScratchFile(data, size, ".xml");
    ZKString const logo = zk64::detail::ManifestLogo(path.c_str());
    ZKString const resource = zk64::detail::LogoResourceString("Pkg_1.0.0.0_x64__id", "Pkg", logo);
    ZK_FUZZ_REQUIRE(std::strchr(resource.GetString(), '\\') == nullptr);
    ZK_FUZZ_REQUIRE(std::strncmp(resource.GetString(), "@{Pkg_1.0.0.0_x64__id?ms-resource://Pkg/Files/", 46) == 0);
    return 0;
}
