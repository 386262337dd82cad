// Package identity through the fake backend: the name queries, the
// packaged test, and the two-step read of a package's description.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstring>
#include <string>
#include <vector>

#include "FakeProcess.h"

namespace {

using platform::LONG32;
using platform::UINT32;
using platform::WCHAR;
using Wide = std::basic_string<WCHAR>;

Wide WideOf(std::string const& text) { return Wide(text.begin(), text.end()); }

// A name query that knows `text`: the length query answers `first` with the
// length of the text and its terminator (0 for no text); a read copies the
// text's units as far as they fit, never the terminator.
auto AnswerName(std::string const& text, LONG32 first)
{
    return [wide = WideOf(text), first](HANDLE, UINT32* length, WCHAR* buffer) -> LONG32 {
        if (buffer == nullptr) *length = static_cast<UINT32>(wide.empty() ? 0 : wide.size() + 1);
        if (buffer != nullptr)
            std::memcpy(buffer, wide.c_str(), std::min<std::size_t>(*length, wide.size()) * sizeof(WCHAR));
        return buffer == nullptr ? first : 0;
    };
}

std::string Text(ZKString const& text) { return text.GetString(); }

std::string Fields(ProcessPackageInfo const& out)
{
    std::string fields = std::to_string(out.flags);
    for (ZKString const* text : {&out.path, &out.fullName, &out.familyName}) fields += " " + Text(*text);
    fields += " " + std::to_string(out.processorArchitecture) + " " + std::to_string(out.version.major) + "." +
              std::to_string(out.version.minor) + "." + std::to_string(out.version.build) + "." +
              std::to_string(out.version.revision);
    for (ZKString const* text : {&out.name, &out.publisher, &out.resourceId, &out.publisherId})
        fields += " " + Text(*text);
    return fields;
}

std::string Query(char const* call, std::string const& length, bool buffer)
{
    return std::string(call) + "(0x44, length=" + length + ", buffer=" + (buffer ? "out" : "null") + ")";
}

using PackageCalls = FakeTest;

}  // namespace

TEST_F(PackageCalls, NamesQueryTheLengthThenReadWithIt)
{
    struct Form {
        char const* call;
        decltype(fake::PackagesScript::GetPackageFullName) fake::PackagesScript::*script;
        bool (*operation)(ProcessHandle, ZKString&);
    };
    for (Form const& form :
         {Form{"GetPackageFullName", &fake::PackagesScript::GetPackageFullName, GetProcessPackageFullName},
          Form{"GetPackageFamilyName", &fake::PackagesScript::GetPackageFamilyName, GetProcessPackageFamilyName}}) {
        SCOPED_TRACE(form.call);
        for (LONG32 first : {122, 87, 0}) {  // only "no package" refuses
            fake::Packages().*form.script = AnswerName("Pkg_1.0_x64__8wekyb", first);
            ZKString out("old");
            EXPECT_TRUE(form.operation(kProcess, out) && out == "Pkg_1.0_x64__8wekyb");
            EXPECT_EQ(fake::TakeCalls(), (Calls{Query(form.call, "0", false), Query(form.call, "20", true)}));
        }
        fake::Packages().*form.script = AnswerName("ignored", platform::kAppModelErrorNoPackage);
        ZKString out("old");
        EXPECT_FALSE(form.operation(kProcess, out) || form.operation(ProcessHandle{}, out));
        EXPECT_TRUE(out == "old");
        EXPECT_EQ(fake::TakeCalls(), (Calls{Query(form.call, "0", false)})) << "a null handle asks nothing";
        // A length of 0 and a read that writes nothing: found, and empty.
        fake::Packages().*form.script = AnswerName("", 122);
        EXPECT_TRUE(form.operation(kProcess, out) && out.IsEmpty());
        EXPECT_EQ(fake::TakeCalls(), (Calls{Query(form.call, "0", false), Query(form.call, "0", true)}));
    }
    fake::Packages().GetPackageFamilyName = nullptr;
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(kProcess)) << "a full name alone does not count";
    fake::Packages().GetPackageFamilyName = AnswerName("Family", 122);
    EXPECT_TRUE(IsProcessUniversalWindowsPlatform(kProcess));

    // The identifier forms open with query rights and close again; a process
    // that does not open gives false.
    ZKString name;
    ProcessPackageInfo info;
    bool (*const forms[])(ZKString&, ProcessPackageInfo&) = {
        [](ZKString&, ProcessPackageInfo&) { return IsProcessUniversalWindowsPlatform(9ul); },
        [](ZKString& text, ProcessPackageInfo&) { return GetProcessPackageFullName(9ul, text); },
        [](ZKString& text, ProcessPackageInfo&) { return GetProcessPackageFamilyName(9ul, text); },
        [](ZKString&, ProcessPackageInfo& record) { return GetProcessPackageInfo(9ul, record); },
    };
    for (auto const form : forms) {
        fake::Processes().OpenProcess = nullptr;
        EXPECT_FALSE(form(name, info));
        fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
        fake::TakeCalls();
        form(name, info);
        Calls const calls = fake::TakeCalls();
        EXPECT_EQ(calls.front(), "OpenProcess(access=0x400, inherit=0, pid=9)");
        EXPECT_EQ(calls.back(), "CloseHandle(handle=0x44)");
    }
}

TEST_F(PackageCalls, PackageInfoReadsTwiceAndTheSecondCallDecides)
{
    Wide texts[] = {WideOf("C:\\Apps\\Pkg"), WideOf("Pkg_1.2.3.4_x64__pub"), WideOf("Pkg_pub"),
                    WideOf("Pkg"),           WideOf("CN=Publisher"),         WideOf("pub")};
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
    struct Row {
        std::vector<LONG32> answers;
        UINT32 asked;
        std::vector<int> lengths;
        std::string fields;
    };
    std::string const full = "16 C:\\Apps\\Pkg Pkg_1.2.3.4_x64__pub Pkg_pub 9 1.2.3.4 Pkg CN=Publisher  pub";
    ProcessPackageInfo before, bare;  // an untouched record; one that holds only flags
    before.resourceId = "unchanged";
    bare.flags = 0x10;
    std::string const unchanged = Fields(before);
    std::vector<Row> const rows = {
        {{122, 0}, 500, {80, 500}, full},
        {{0, 0}, 0, {80, 80}, full},  // a first success is asked again
        {{87, 0}, 0, {80, 80}, full},
        {{122, 87}, 500, {80, 500}, unchanged},
        {{0, 122}, 0, {80, 80}, unchanged},
        // Asked for less than one record, the rest of the record reads as zero.
        {{122, 0}, 8, {80, 8}, Fields(bare)},
    };
    for (Row const& row : rows) {
        answers = row.answers;
        asked = row.asked;
        ProcessPackageInfo out = before;
        EXPECT_EQ(GetProcessPackageInfo(kProcess, out), row.fields != unchanged);
        EXPECT_EQ(Fields(out), row.fields);
        Calls expected = {Query("GetPackageFullName", "0", false), Query("GetPackageFullName", "21", true),
                          "OpenPackageInfoByFullName(\"Pkg_1.2.3.4_x64__pub\", reserved=0, reference=out)"};
        for (int length : row.lengths)
            expected.push_back("GetPackageInfo(0x77, flags=0x100, length=" + std::to_string(length) +
                               ", buffer=out, count=1)");
        expected.push_back("ClosePackageInfo(0x77)");
        EXPECT_EQ(fake::TakeCalls(), expected);
    }
    // No package, or one that cannot be opened: nothing is read or closed.
    fake::Packages().OpenPackageInfoByFullName = nullptr;
    ProcessPackageInfo out;
    EXPECT_FALSE(GetProcessPackageInfo(kProcess, out));
    EXPECT_EQ(fake::TakeCalls().size(), 3u);
    fake::Packages().GetPackageFullName = AnswerName("", 122);
    EXPECT_FALSE(GetProcessPackageInfo(kProcess, out)) << "an empty full name";
    EXPECT_EQ(fake::TakeCalls().size(), 2u);
}
