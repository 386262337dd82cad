// The road from a packaged process to its logo file: the manifest read with
// tinyxml2, the resource string, and its resolution through the fake
// platform, from the manifests these tests write.

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "FakeProcess.h"
#include "files/TempFiles.h"
#include "processes/detail/PackageManifest.h"

namespace {

using platform::HRESULT32;
using platform::WCHAR;
using Wide = std::basic_string<WCHAR>;

std::string Manifest(std::string const& applications)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Package xmlns:uap=\"http://schemas.microsoft.com/appx/"
           "manifest/uap/windows10\"><Identity Name=\"Pkg\"/>" +
           applications + "</Package>\n";
}
std::string App(std::string const& inside) { return "<Application Id=\"App\">" + inside + "</Application>"; }
std::string Visual(std::string const& logo) { return App("<uap:VisualElements " + logo + " DisplayName=\"App\"/>"); }
std::string Apps(std::string const& inside) { return Manifest("<Applications>" + inside + "</Applications>"); }

using LogoRoad = FakeTest;

}  // namespace

TEST(ManifestLogo, FirstElementsOnTheFixedPathDecideAndSlashesTurnForward)
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

TEST_F(LogoRoad, ManifestLogoIsResolvedInPlaceWithOneDoubledRetry)
{
    // A packaged process whose executable lies in a directory of its own,
    // with no package description: the package name stays empty.
    zk64::test::TempDir const dir("logo");
    std::string const exePath = dir.Path("App.exe"), manifest = dir.Dir() + "\\AppxManifest.xml";
    auto const name = [](std::string const& text) {
        return [wide = Wide(text.begin(), text.end())](HANDLE, platform::UINT32* length, WCHAR* buffer) {
            if (buffer == nullptr) *length = static_cast<platform::UINT32>(wide.size() + 1);
            if (buffer != nullptr) std::memcpy(buffer, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
            return buffer == nullptr ? 122 : 0;
        };
    };
    fake::Packages().GetPackageFamilyName = name("Pkg_pub");
    fake::Packages().GetPackageFullName = name("Pkg_1.0.0.0_x64__pub");
    fake::Processes().K32GetModuleFileNameExA = [&](HANDLE, HINSTANCE__*, char* buffer, DWORD size) {
        std::strncpy(buffer, exePath.c_str(), size);
        return static_cast<DWORD>(exePath.size());
    };
    // Resolves when the output has room, as the shell does, unless told to
    // fail by `answers`.
    std::vector<HRESULT32> answers;
    std::string resolved = "C:\\Apps\\Pkg\\Assets\\Logo.scale-100.png";
    fake::Packages().SHLoadIndirectString = [&](WCHAR const*, WCHAR* output, unsigned int size) -> HRESULT32 {
        HRESULT32 const answer = answers.at(0);
        answers.erase(answers.begin());
        if (answer != 0 || resolved.size() >= size) return answer != 0 ? answer : platform::kHresultInsufficientBuffer;
        std::copy(resolved.c_str(), resolved.c_str() + resolved.size() + 1, output);
        return 0;
    };
    auto const road = [&](std::string const& content, std::vector<HRESULT32> const& told) {
        std::ofstream(manifest, std::ios::binary) << content;
        answers = told;
        return std::string(GetUniversalWindowsPlatformIconPath(kProcess).GetString());
    };
    auto const resolving = [](std::string const& resource, std::size_t tries) {  // the last calls, in place
        Calls const calls = fake::TakeCalls();
        Calls expected;
        for (std::size_t size = resource.size() + 1; expected.size() < tries; size *= 2)
            expected.push_back("SHLoadIndirectString(\"" + resource +
                               "\", output=source, size=" + std::to_string(size) + ", reserved=null)");
        return Calls(calls.end() - static_cast<std::ptrdiff_t>(std::min(tries, calls.size())), calls.end()) == expected;
    };

    HRESULT32 const small = platform::kHresultInsufficientBuffer, fail = static_cast<HRESULT32>(0x80004005U);
    std::pair<std::vector<HRESULT32>, bool> const rows[] = {
        {{0}, true}, {{small, 0}, true}, {{small, small}, false}, {{fail}, false}, {{small, fail}, false}};
    for (auto const& [told, found] : rows) {
        EXPECT_EQ(road(Apps(Visual("Square44x44Logo=\"Assets\\Logo.png\"")), told), found ? resolved : "");
        EXPECT_TRUE(resolving("@{Pkg_1.0.0.0_x64__pub?ms-resource:///Files/Assets/Logo.png}", told.size()));
        EXPECT_TRUE(answers.empty());
    }
    // Without a logo the resource string is still resolved; a long logo
    // resolves only in the doubled buffer.
    EXPECT_EQ(road("<broken", {0}), resolved);
    EXPECT_TRUE(resolving("@{Pkg_1.0.0.0_x64__pub?ms-resource:///Files/}", 1));
    std::string const logo(300, 'L');
    resolved = "C:\\Apps\\Pkg\\Assets\\" + logo + logo + ".png";
    EXPECT_EQ(road(Apps(Visual("Square44x44Logo=\"" + logo + "\"")), {0, 0}), resolved);
    // Not packaged: nothing beyond the family-name query.
    fake::Packages().GetPackageFamilyName = nullptr;
    fake::TakeCalls();
    EXPECT_EQ(road("", {}), "");
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetPackageFamilyName(0x44, length=0, buffer=null)"}));
    std::filesystem::remove(manifest);
}
