// Package identity through the fake backend: the name queries, the
// packaged test, and the two-step read of a package's description.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "FakeProcess.h"

namespace {

using platform::LONG32;
using platform::UINT32;
using platform::WCHAR;
using Wide = std::basic_string<WCHAR>;

Wide WideOf(std::string const& text) { return Wide(text.begin(), text.end()); }

using NameScript = std::function<LONG32(HANDLE, UINT32*, WCHAR*)>;

// A name query that knows `text`: the length query answers `first` with the
// length of the text and its terminator; a read copies as much as fits.
NameScript AnswerName(std::string const& text, LONG32 first)
{
    return [text, first](HANDLE, UINT32* length, WCHAR* buffer) -> LONG32 {
        Wide const wide = WideOf(text);
        if (buffer == nullptr) {
            *length = static_cast<UINT32>(wide.size() + 1);
            return first;
        }
        std::size_t const fits = std::min<std::size_t>(*length, wide.size() + 1);
        std::memcpy(buffer, wide.c_str(), fits * sizeof(WCHAR));
        return 0;
    };
}

struct NameForm {
    char const* call;
    NameScript platform::fake::PackagesScript::*script;
    bool (*operation)(ProcessHandle, ZKString&);
};
NameForm const kNameForms[] = {
    {"GetPackageFullName", &fake::PackagesScript::GetPackageFullName, GetProcessPackageFullName},
    {"GetPackageFamilyName", &fake::PackagesScript::GetPackageFamilyName, GetProcessPackageFamilyName},
};

std::string Query(char const* call, std::string const& length, bool buffer)
{
    return std::string(call) + "(0x44, length=" + length + ", buffer=" + (buffer ? "out" : "null") + ")";
}

using PackageCalls = FakeTest;

}  // namespace

TEST_F(PackageCalls, NamesQueryTheLengthThenReadWithIt)
{
    for (NameForm const& form : kNameForms) {
        SCOPED_TRACE(form.call);
        // Only "no package" refuses; any other first answer is read on.
        for (LONG32 first : {122, 87, 0}) {
            fake::Packages().*form.script = AnswerName("Pkg_1.0_x64__8wekyb", first);
            ZKString out("old");
            EXPECT_TRUE(form.operation(kProcess, out));
            EXPECT_TRUE(out == "Pkg_1.0_x64__8wekyb");
            EXPECT_EQ(fake::TakeCalls(), (Calls{Query(form.call, "0", false), Query(form.call, "20", true)}));
        }
        fake::Packages().*form.script = AnswerName("ignored", platform::kAppModelErrorNoPackage);
        ZKString out("old");
        EXPECT_FALSE(form.operation(kProcess, out));
        EXPECT_TRUE(out == "old");
        EXPECT_EQ(fake::TakeCalls(), (Calls{Query(form.call, "0", false)}));
        EXPECT_FALSE(form.operation(ProcessHandle{}, out)) << "a null handle asks nothing";
        EXPECT_TRUE(fake::TakeCalls().empty());
        // A length of 0 and a read that writes nothing: found, and empty.
        fake::Packages().*form.script = [](HANDLE, UINT32* length, WCHAR*) {
            *length = 0;
            return 122;
        };
        EXPECT_TRUE(form.operation(kProcess, out));
        EXPECT_TRUE(out.IsEmpty());
        fake::TakeCalls();
    }
}

TEST_F(PackageCalls, PackagedMeansAFamilyName)
{
    fake::Packages().GetPackageFullName = AnswerName("Full", 122);
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(kProcess)) << "a full name alone does not count";
    EXPECT_EQ(fake::TakeCalls(), (Calls{Query("GetPackageFamilyName", "0", false)}));
    fake::Packages().GetPackageFamilyName = AnswerName("Family", 122);
    EXPECT_TRUE(IsProcessUniversalWindowsPlatform(kProcess));
    EXPECT_EQ(fake::TakeCalls().size(), 2u);
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(ProcessHandle{}));

    // The identifier forms open with query rights and close again.
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    ZKString name;
    ProcessPackageInfo info;
    std::vector<std::function<bool()>> const forms = {
        [] { return IsProcessUniversalWindowsPlatform(9ul); },
        [&] { return GetProcessPackageFullName(9ul, name); },
        [&] { return GetProcessPackageFamilyName(9ul, name); },
        [&] { return GetProcessPackageInfo(9ul, info); },
    };
    for (auto const& form : forms) {
        form();
        Calls const calls = fake::TakeCalls();
        ASSERT_GE(calls.size(), 3u);
        EXPECT_EQ(calls.front(), "OpenProcess(access=0x400, inherit=0, pid=9)");
        EXPECT_EQ(calls.back(), "CloseHandle(handle=0x44)");
    }
}

namespace {

// A package description as GetPackageInfo lays it out: one record, then
// its strings.
struct PackageBuffer {
    std::vector<unsigned char> bytes;

    PackageBuffer()
    {
        std::vector<std::string> const texts = {"C:\\Apps\\Pkg", "Pkg_1.2.3.4_x64__pub", "Pkg_pub", "Pkg",
                                                "CN=Publisher", "", "pub"};
        std::size_t size = sizeof(platform::PackageInfo);
        for (std::string const& text : texts) size += (text.size() + 1) * sizeof(WCHAR);
        bytes.assign(size, 0);
        auto* info = reinterpret_cast<platform::PackageInfo*>(bytes.data());
        WCHAR* strings[7];
        auto* next = reinterpret_cast<WCHAR*>(bytes.data() + sizeof(platform::PackageInfo));
        for (std::size_t index = 0; index < texts.size(); ++index) {
            Wide const wide = WideOf(texts[index]);
            std::memcpy(next, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
            strings[index] = next;
            next += wide.size() + 1;
        }
        info->flags = 0x10;
        info->path = strings[0];
        info->packageFullName = strings[1];
        info->packageFamilyName = strings[2];
        info->packageId.processorArchitecture = 9;
        info->packageId.version = {4, 3, 2, 1};
        info->packageId.name = strings[3];
        info->packageId.publisher = strings[4];
        info->packageId.resourceId = nullptr;
        info->packageId.publisherId = strings[6];
    }
};

class PackageInfoCalls : public FakeTest {
protected:
    PackageBuffer package;
    std::vector<LONG32> answers;  // of the GetPackageInfo calls, in order
    platform::PackageInfoReference const reference = reinterpret_cast<platform::PackageInfoReference>(0x77);

    void SetUp() override
    {
        FakeTest::SetUp();
        fake::Packages().GetPackageFullName = AnswerName("Pkg_1.2.3.4_x64__pub", 122);
        fake::Packages().OpenPackageInfoByFullName = [this](WCHAR const*, platform::PackageInfoReference* out) {
            *out = reference;
            return 0;
        };
        fake::Packages().GetPackageInfo = [this](UINT32* length, unsigned char* buffer, UINT32*) -> LONG32 {
            LONG32 const answer = answers.at(0);
            answers.erase(answers.begin());
            if (answer == 122) *length = static_cast<UINT32>(package.bytes.size());
            if (answer == 0) std::memcpy(buffer, package.bytes.data(), std::min<std::size_t>(*length, package.bytes.size()));
            return answer;
        };
        fake::TakeCalls();
    }

    static std::string Info(std::size_t length)
    {
        return "GetPackageInfo(0x77, flags=0x100, length=" + std::to_string(length) + ", buffer=out, count=1)";
    }
    Calls Expected(std::vector<std::size_t> const& lengths) const
    {
        Calls calls = {Query("GetPackageFullName", "0", false), Query("GetPackageFullName", "21", true),
                       "OpenPackageInfoByFullName(\"Pkg_1.2.3.4_x64__pub\", reserved=0, reference=out)"};
        for (std::size_t length : lengths) calls.push_back(Info(length));
        calls.push_back("ClosePackageInfo(0x77)");
        return calls;
    }
};

}  // namespace

TEST_F(PackageInfoCalls, TooSmallFirstTryIsRetriedWithTheLengthAsked)
{
    answers = {122, 0};
    ProcessPackageInfo out;
    out.resourceId = "stays empty in a new record";
    ASSERT_TRUE(GetProcessPackageInfo(kProcess, out));
    EXPECT_EQ(fake::TakeCalls(), Expected({80, package.bytes.size()}));
    EXPECT_EQ(out.flags, 0x10u);
    EXPECT_TRUE(out.path == "C:\\Apps\\Pkg");
    EXPECT_TRUE(out.fullName == "Pkg_1.2.3.4_x64__pub");
    EXPECT_TRUE(out.familyName == "Pkg_pub");
    EXPECT_EQ(out.processorArchitecture, 9u);
    EXPECT_EQ(out.version.revision, 4);
    EXPECT_EQ(out.version.build, 3);
    EXPECT_EQ(out.version.minor, 2);
    EXPECT_EQ(out.version.major, 1);
    EXPECT_TRUE(out.name == "Pkg");
    EXPECT_TRUE(out.publisher == "CN=Publisher");
    EXPECT_TRUE(out.resourceId.IsEmpty());
    EXPECT_TRUE(out.publisherId == "pub");
}

TEST_F(PackageInfoCalls, SecondCallDecides)
{
    struct Row {
        std::vector<LONG32> answers;
        bool result;
        std::vector<std::size_t> lengths;
    };
    std::vector<Row> const rows = {
        {{0, 0}, true, {80, 80}},      // a first success is asked again
        {{122, 87}, false, {80, 0}},   // 0: the length of the package, below
        {{87, 0}, true, {80, 80}},     // another first error keeps the 80 bytes
        {{0, 122}, false, {80, 80}},
    };
    for (Row const& row : rows) {
        answers = row.answers;
        ProcessPackageInfo out;
        out.name = "unchanged";
        EXPECT_EQ(GetProcessPackageInfo(kProcess, out), row.result);
        std::vector<std::size_t> lengths = row.lengths;
        if (lengths[1] == 0) lengths[1] = package.bytes.size();
        EXPECT_EQ(fake::TakeCalls(), Expected(lengths));
        EXPECT_TRUE(out.name == (row.result ? "Pkg" : "unchanged"));
    }
    // No package, or one that cannot be opened: nothing is read or closed.
    fake::Packages().OpenPackageInfoByFullName = nullptr;
    ProcessPackageInfo out;
    EXPECT_FALSE(GetProcessPackageInfo(kProcess, out));
    EXPECT_EQ(fake::TakeCalls().size(), 3u);
    fake::Packages().GetPackageFullName = AnswerName("", 122);
    EXPECT_FALSE(GetProcessPackageInfo(kProcess, out)) << "an empty full name";
    EXPECT_EQ(fake::TakeCalls().size(), 2u);
    EXPECT_TRUE(out.name.IsEmpty());
}
