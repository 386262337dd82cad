// libFuzzer target: the JSON and XML readers on a fuzzed file, and the XML
// reader's parse of what it read (which answers false on every path).

#include <zk64/zk64.h>

#include <fcntl.h>

#include "FuzzSupport.h"
#include "platform/fake/Fake.h"

// The XML reader writes its debug lines to standard output: away with them.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    int const null = open("/dev/null", O_WRONLY);
    if (null >= 0) dup2(null, 1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    ZKString const path(zk64::fuzz::ScratchFile(data, size, ".txt").c_str());
    ZKJSONParser json;
    (void)json.ReadJSONFile(path);
    ZKXMLParser xml;
    if (xml.OpenXMLFile(path)) ZK_FUZZ_REQUIRE(!xml.ParseXMLFileData());
    ZK_FUZZ_REQUIRE(!xml.OpenXMLFileAndParse(path));
    // The debug lines also reach the fake platform, which records every call:
    // dropped here, the record would grow with every run until memory ran out.
    zk64::platform::fake::TakeCalls();
    return 0;
}
