// Package identity through the fake backend: the name queries, the
// packaged test, the two-step read of a package's description, the logo's
// place in the manifest, and the road from the manifest beside the
// executable to a resolved logo file.

#include <filesystem>
#include <fstream>
#include <vector>

#include "FakeProcess.h"
#include "files/TempFiles.h"
#include "processes/detail/PackageManifest.h"

namespace {

using platform::HRESULT32;
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

std::string Manifest(std::string const& inside)
{
    return "<?xml version=\"1.0\"?><Package><Identity Name=\"Pkg\"/>" + inside + "</Package>";
}
std::string App(std::string const& inside) { return "<Application Id=\"App\">" + inside + "</Application>"; }
std::string Visual(std::string const& logo) { return App("<uap:VisualElements " + logo + " DisplayName=\"App\"/>"); }
std::string Apps(std::string const& inside) { return Manifest("<Applications>" + inside + "</Applications>"); }

std::string Text(ZKString const& text) { return text.GetString(); }
using PackageCalls = FakeTest;
using ManifestLogo = FakeTest;

}  // namespace

TEST_F(PackageCalls, NamesQueryTheLengthThenReadWithIt)
{
    std::string const call = "GetPackageFullName", family = "GetPackageFamilyName";
    for (LONG32 first : {122, 87, 0}) {  // only "no package" refuses
        fake::Packages().GetPackageFullName = AnswerName("Pkg_1.0_x64__8wekyb", first);
        ZKString out("old");
        EXPECT_TRUE(GetProcessPackageFullName(kProcess, out) && out == "Pkg_1.0_x64__8wekyb");
        EXPECT_EQ(fake::TakeCalls(), (Calls{Query(call, 0, false), Query(call, 20, true)}));
    }
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(kProcess)) << "a full name alone does not count";
    fake::Packages().GetPackageFullName = AnswerName("ignored", platform::kAppModelErrorNoPackage);
    fake::Packages().GetPackageFamilyName = AnswerName("", 122);  // a length of 0, a read that writes nothing
    ZKString out("old");
    fake::TakeCalls();
    EXPECT_FALSE(GetProcessPackageFullName(kProcess, out) || GetProcessPackageFullName(ProcessHandle{}, out));
    EXPECT_TRUE(GetProcessPackageFamilyName(kProcess, out) && out.IsEmpty() &&
                IsProcessUniversalWindowsPlatform(kProcess));
    EXPECT_EQ(fake::TakeCalls(), (Calls{Query(call, 0, false), Query(family, 0, false), Query(family, 0, true),
                                        Query(family, 0, false), Query(family, 0, true)}))
        << "a null handle asks nothing";
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
    auto const info = [](UINT32 length) {
        return "GetPackageInfo(0x77, flags=0x100, length=" + std::to_string(length) + ", buffer=out, count=1)";
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
        Calls const calls = fake::TakeCalls();
        EXPECT_EQ(Calls(calls.end() - 3, calls.end()), (Calls{info(80), info(row.asked), "ClosePackageInfo(0x77)"}));
    }
    // A package that cannot be opened, or none: nothing is read or closed.
    ProcessPackageInfo out;
    fake::Packages().OpenPackageInfoByFullName = nullptr;
    EXPECT_FALSE(GetProcessPackageInfo(kProcess, out));
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{Query("GetPackageFullName", 0, false), Query("GetPackageFullName", 21, true),
                     "OpenPackageInfoByFullName(\"Pkg_1.2.3.4_x64__pub\", reserved=0, reference=out)"}));
    fake::Packages().GetPackageFullName = AnswerName("", 122);
    EXPECT_FALSE(GetProcessPackageInfo(kProcess, out)) << "an empty full name";
    EXPECT_EQ(fake::TakeCalls().size(), 2u);
}

TEST_F(PackageCalls, LogoIsResolvedInPlaceWithOneDoubledRetry)
{
    // A packaged process without a package description (the package name
    // stays empty), with the manifest beside its executable.
    zk64::test::TempDir const dir("logo");
    std::string const manifest = dir.Dir() + "\\AppxManifest.xml", resolved = "C:\\Logo.png";
    std::ofstream(manifest, std::ios::binary) << Apps(Visual("Square44x44Logo=\"Assets\\Logo.png\""));
    ScriptExePath(dir.Path("App.exe"));
    fake::Packages().GetPackageFamilyName = AnswerName("Pkg_pub", 122);
    fake::Packages().GetPackageFullName = AnswerName("Pkg_1.0.0.0_x64__pub", 122);
    std::string const resource = "@{Pkg_1.0.0.0_x64__pub?ms-resource:///Files/Assets/Logo.png}";
    std::vector<HRESULT32> answers;
    fake::Packages().SHLoadIndirectString = [&](WCHAR const*, WCHAR* output, unsigned int) -> HRESULT32 {
        HRESULT32 const answer = answers.at(0);
        answers.erase(answers.begin());
        if (answer == 0) std::copy(resolved.c_str(), resolved.c_str() + resolved.size() + 1, output);
        return answer;
    };
    HRESULT32 const small = platform::kHresultInsufficientBuffer, fail = static_cast<HRESULT32>(0x80004005U);
    std::pair<std::vector<HRESULT32>, bool> const rows[] = {
        {{0}, true}, {{small, 0}, true}, {{small, small}, false}, {{fail}, false}, {{small, fail}, false}};
    for (auto const& [told, found] : rows) {
        answers = told;
        EXPECT_EQ(Text(GetUniversalWindowsPlatformIconPath(kProcess)), found ? resolved : "");
        Calls const calls = fake::TakeCalls();
        Calls expected;  // in place, in a buffer of the string's size, then of twice that
        for (std::size_t size = resource.size() + 1; expected.size() < told.size(); size *= 2)
            expected.push_back("SHLoadIndirectString(\"" + resource +
                               "\", output=source, size=" + std::to_string(size) + ", reserved=null)");
        EXPECT_EQ(Calls(calls.end() - static_cast<std::ptrdiff_t>(told.size()), calls.end()), expected);
    }
    // Not packaged: nothing beyond the family-name query.
    fake::Packages().GetPackageFamilyName = nullptr;
    EXPECT_EQ(Text(GetUniversalWindowsPlatformIconPath(kProcess)), "");
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetPackageFamilyName(0x44, length=0, buffer=null)"}));
    std::filesystem::remove(manifest);
}

TEST_F(ManifestLogo, FirstElementsOnTheFixedPathDecideAndSlashesTurnForward)
{
    std::string const logo = "Square44x44Logo=\"a.png\"";
    std::pair<std::string, char const*> const rows[] = {
        {Apps(Visual("Square44x44Logo=\"Assets\\Logo.png\"")), "Assets\\Logo.png"},
        {"<Other><Applications>" + Visual(logo) + "</Applications></Other>", "a.png"},  // a root of any name
        {Apps(Visual(logo) + Visual("Square44x44Logo=\"b.png\"")), "a.png"},
        {Apps(App("") + Visual(logo)), ""},  // the first Application decides
        {Apps("<Extensions/>" + App("<Resources/><uap:VisualElements Square150x150Logo=\"b.png\" " + logo + "/>")),
         "a.png"},
        {Apps(App("<VisualElements " + logo + "/>")), ""},  // no uap prefix
        {Apps(""), ""},
        {Manifest("<Wrapper><Applications>" + Visual(logo) + "</Applications></Wrapper>"), ""},
        {Apps(Visual(logo)).substr(0, 150), ""},  // malformed
    };
    zk64::test::TempDir const dir("manifest");
    for (auto const& [content, found] : rows) {
        EXPECT_STREQ(zk64::detail::ManifestLogo(dir.Write("AppxManifest.xml", content).c_str()).GetString(), found)
            << content;
    }
    EXPECT_STREQ(zk64::detail::ManifestLogo(dir.Path("missing.xml").c_str()).GetString(), "");
    using zk64::detail::LogoResourceString;
    EXPECT_STREQ(LogoResourceString("F", "N", "\\a/b\\\\c").GetString(), "@{F?ms-resource://N/Files//a/b//c}");
    EXPECT_STREQ(LogoResourceString("", "", "").GetString(), "@{?ms-resource:///Files/}");
}
