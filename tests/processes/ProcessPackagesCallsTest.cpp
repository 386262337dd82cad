// Package identity through the fake backend: the name queries, the
// packaged test, and the two-step read of a package's description.

#include <cstring>
#include <string>
#include <vector>

#include "FakeProcess.h"

namespace {

using platform::LONG32;
using platform::UINT32;
using platform::WCHAR;
using Wide = std::basic_string<WCHAR>;

// A name query that knows `text`: the length query answers `first` with the
// length of the text and its terminator (0 for no text); a read copies the
// text's units as far as they fit, never the terminator.
auto AnswerName(std::string const& text, LONG32 first)
{
    return [wide = Wide(text.begin(), text.end()), first](HANDLE, UINT32* length, WCHAR* buffer) -> LONG32 {
        if (buffer == nullptr) *length = static_cast<UINT32>(wide.empty() ? 0 : wide.size() + 1);
        if (buffer != nullptr) std::memcpy(buffer, wide.data(), std::min<std::size_t>(*length, wide.size()) * 2);
        return buffer == nullptr ? first : 0;
    };
}

std::string Query(std::string const& call, int length, bool buffer)
{
    return call + "(0x44, length=" + std::to_string(length) + ", buffer=" + (buffer ? "out" : "null") + ")";
}

using PackageCalls = FakeTest;

}  // namespace

TEST_F(PackageCalls, NamesQueryTheLengthThenReadWithIt)
{
    for (bool const family : {false, true}) {
        std::string const call = family ? "GetPackageFamilyName" : "GetPackageFullName";
        auto& script = family ? fake::Packages().GetPackageFamilyName : fake::Packages().GetPackageFullName;
        bool (*operation)(ProcessHandle, ZKString&) = GetProcessPackageFullName;
        if (family) operation = GetProcessPackageFamilyName;
        for (LONG32 first : {122, 87, 0}) {  // only "no package" refuses
            script = AnswerName("Pkg_1.0_x64__8wekyb", first);
            ZKString out("old");
            EXPECT_TRUE(operation(kProcess, out) && out == "Pkg_1.0_x64__8wekyb");
            EXPECT_EQ(fake::TakeCalls(), (Calls{Query(call, 0, false), Query(call, 20, true)}));
        }
        script = AnswerName("ignored", platform::kAppModelErrorNoPackage);
        ZKString out("old");
        EXPECT_FALSE(operation(kProcess, out) || operation(ProcessHandle{}, out) || out != "old");
        EXPECT_EQ(fake::TakeCalls(), (Calls{Query(call, 0, false)})) << "a null handle asks nothing";
        script = AnswerName("", 122);  // a length of 0, a read that writes nothing: found, and empty
        EXPECT_TRUE(operation(kProcess, out) && out.IsEmpty());
        EXPECT_EQ(fake::TakeCalls(), (Calls{Query(call, 0, false), Query(call, 0, true)}));
    }
    fake::Packages().GetPackageFamilyName = nullptr;
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(kProcess)) << "a full name alone does not count";

    // The identifier forms give false when the process does not open, and
    // open it with query rights.
    ZKString name;
    ProcessPackageInfo info;
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(9ul) || GetProcessPackageFullName(9ul, name) ||
                 GetProcessPackageFamilyName(9ul, name) || GetProcessPackageInfo(9ul, info));
    fake::Packages().GetPackageFamilyName = AnswerName("Family", 122);
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    fake::TakeCalls();
    EXPECT_TRUE(IsProcessUniversalWindowsPlatform(9ul));
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"OpenProcess(access=0x400, inherit=0, pid=9)", Query("GetPackageFamilyName", 0, false),
                     Query("GetPackageFamilyName", 7, true), "CloseHandle(handle=0x44)"}));
}

TEST_F(PackageCalls, PackageInfoReadsTwiceAndTheSecondCallDecides)
{
    std::vector<Wide> texts;
    for (char const* text : {"C:\\Apps\\Pkg", "Pkg_1.2.3.4_x64__pub", "Pkg_pub", "Pkg", "CN=Publisher", "pub"})
        texts.emplace_back(text, text + std::strlen(text));
    platform::PackageInfo record{0, 0x10, texts[0].data(), texts[1].data(), texts[2].data(), {}};
    record.packageId = {0, 9, {4, 3, 2, 1}, texts[3].data(), texts[4].data(), nullptr, texts[5].data()};
    std::vector<LONG32> answers;
    UINT32 asked = 0;  // the length a too-small first call asks for
    fake::Packages().GetPackageFullName = AnswerName("Pkg_1.2.3.4_x64__pub", 122);
    fake::Packages().OpenPackageInfoByFullName = [](WCHAR const*, platform::PackageInfoReference* out) {
        *out = reinterpret_cast<platform::PackageInfoReference>(0x77);
        return 0;
    };
    fake::Packages().GetPackageInfo = [&](UINT32* length, unsigned char* buffer, UINT32*) -> LONG32 {
        LONG32 const answer = answers.at(0);
        answers.erase(answers.begin());
        if (answer == 122) *length = asked;
        if (answer == 0) std::memcpy(buffer, &record, std::min<std::size_t>(*length, sizeof record));
        return answer;
    };
    auto const fields = [](ProcessPackageInfo const& out) {
        std::string all = std::to_string(out.flags) + " " + std::to_string(out.processorArchitecture) + " ";
        for (int part : {out.version.major, out.version.minor, out.version.build, out.version.revision})
            all += std::to_string(part) + ".";
        for (ZKString const* text :
             {&out.path, &out.fullName, &out.familyName, &out.name, &out.publisher, &out.resourceId, &out.publisherId})
            all += std::string(" ") + text->GetString();
        return all;
    };
    std::string const full = "16 9 1.2.3.4. C:\\Apps\\Pkg Pkg_1.2.3.4_x64__pub Pkg_pub Pkg CN=Publisher  pub";
    std::string const unchanged = "0 0 0.0.0.0.      stale ", bare = "16 0 0.0.0.0.       ";
    struct Row {
        std::vector<LONG32> answers;
        UINT32 asked;
        std::string fields;
    } const rows[] = {
        {{122, 0}, 500, full},       {{0, 0}, 80, full},
        {{87, 0}, 80, full},  // any other first answer keeps 80
        {{122, 87}, 500, unchanged}, {{0, 122}, 80, unchanged},
        {{122, 0}, 8, bare},  // less than one record: the rest reads as zero
    };
    for (Row const& row : rows) {
        answers = row.answers;
        asked = row.asked;
        ProcessPackageInfo out;
        out.resourceId = "stale";
        EXPECT_EQ(GetProcessPackageInfo(kProcess, out), row.fields != unchanged);
        EXPECT_EQ(fields(out), row.fields);
        Calls expected = {Query("GetPackageFullName", 0, false), Query("GetPackageFullName", 21, true),
                          "OpenPackageInfoByFullName(\"Pkg_1.2.3.4_x64__pub\", reserved=0, reference=out)"};
        for (UINT32 length : {80u, row.asked})
            expected.push_back("GetPackageInfo(0x77, flags=0x100, length=" + std::to_string(length) +
                               ", buffer=out, count=1)");
        expected.push_back("ClosePackageInfo(0x77)");
        EXPECT_EQ(fake::TakeCalls(), expected);
    }
    // A package that cannot be opened, or none: nothing is read or closed.
    ProcessPackageInfo out;
    fake::Packages().OpenPackageInfoByFullName = nullptr;
    EXPECT_FALSE(GetProcessPackageInfo(kProcess, out));
    EXPECT_EQ(fake::TakeCalls().size(), 3u);
    fake::Packages().GetPackageFullName = AnswerName("", 122);
    EXPECT_FALSE(GetProcessPackageInfo(kProcess, out)) << "an empty full name";
    EXPECT_EQ(fake::TakeCalls().size(), 2u);
}
