// The road from a packaged process to its logo file: the manifest read with
// tinyxml2, the resource string, and its resolution through the fake
// platform, from the manifests these tests write.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

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

std::string Text(ZKString const& text) { return text.GetString(); }

std::string Manifest(std::string const& applications)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Package "
           "xmlns=\"http://schemas.microsoft.com/appx/manifest/foundation/windows10\" "
           "xmlns:uap=\"http://schemas.microsoft.com/appx/manifest/uap/windows10\"><Identity Name=\"Pkg\"/>" +
           applications + "</Package>\n";
}

std::string App(std::string const& inside) { return "<Application Id=\"App\">" + inside + "</Application>"; }
std::string Visual(std::string const& logo) { return App("<uap:VisualElements " + logo + " DisplayName=\"App\"/>"); }
std::string Applications(std::string const& inside) { return Manifest("<Applications>" + inside + "</Applications>"); }

using LogoRoad = FakeTest;

}  // namespace

TEST(ManifestLogo, FirstElementsOnTheFixedPathDecide)
{
    std::string const logo = "Square44x44Logo=\"a.png\"";
    std::pair<std::string, char const*> const rows[] = {
        {Applications(Visual("Square44x44Logo=\"Assets\\Logo.png\"")), "Assets\\Logo.png"},
        {"<Other><Applications>" + Visual(logo) + "</Applications></Other>", "a.png"},  // a root of any name
        {Applications(Visual(logo) + Visual("Square44x44Logo=\"b.png\"")), "a.png"},
        {Applications(App("") + Visual(logo)), ""},  // the first Application decides
        {Applications("<Extensions/>" +
                      App("<Resources/><uap:VisualElements Square150x150Logo=\"big.png\" " + logo + "/>")),
         "a.png"},
        {Applications(Visual("Square150x150Logo=\"big.png\"")), ""},
        {Applications(App("<VisualElements " + logo + "/>")), ""},  // no uap prefix
        {Manifest(""), ""},
        {Applications(""), ""},
        {Manifest("<Wrapper><Applications>" + Visual(logo) + "</Applications></Wrapper>"), ""},
        {Applications(Visual(logo)).substr(0, 200), ""},  // malformed
        {"<?xml version=\"1.0\"?>", ""},
    };
    zk64::test::TempDir const dir("manifest");
    for (auto const& [content, logoFound] : rows) {
        EXPECT_EQ(Text(zk64::detail::ManifestLogo(dir.Write("AppxManifest.xml", content).c_str())), logoFound)
            << content;
    }
    EXPECT_EQ(Text(zk64::detail::ManifestLogo(dir.Path("missing.xml").c_str())), "");

    // Slashes turn forward, an empty logo stays empty.
    using zk64::detail::LogoResourceString;
    EXPECT_EQ(Text(LogoResourceString("Pkg_1.0.0.0_x64__pub", "Pkg", "Assets\\Tiles\\Logo.png")),
              "@{Pkg_1.0.0.0_x64__pub?ms-resource://Pkg/Files/Assets/Tiles/Logo.png}");
    EXPECT_EQ(Text(LogoResourceString("F", "N", "\\a/b\\\\c")), "@{F?ms-resource://N/Files//a/b//c}");
    EXPECT_EQ(Text(LogoResourceString("", "", "")), "@{?ms-resource:///Files/}");
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
    // fail with an answer of `answers`.
    std::vector<HRESULT32> answers;
    std::vector<std::string> sources;
    std::vector<unsigned int> sizes;
    std::string resolved = "C:\\Apps\\Pkg\\Assets\\Logo.scale-100.png";
    fake::Packages().SHLoadIndirectString = [&](WCHAR const* source, WCHAR* output, unsigned int size) -> HRESULT32 {
        sources.emplace_back(source, source + std::char_traits<WCHAR>::length(source));
        sizes.push_back(size);
        HRESULT32 const answer = answers.at(sources.size() - 1);
        if (answer != 0 || resolved.size() >= size) return answer != 0 ? answer : platform::kHresultInsufficientBuffer;
        Wide const wide(resolved.begin(), resolved.end());
        std::memcpy(output, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
        return 0;
    };
    auto const road = [&](std::string const& content, std::vector<HRESULT32> const& told) {
        std::ofstream(manifest, std::ios::binary) << content;
        answers = told;
        sources.clear();
        sizes.clear();
        return Text(GetUniversalWindowsPlatformIconPath(kProcess));
    };

    std::string const resource = "@{Pkg_1.0.0.0_x64__pub?ms-resource:///Files/Assets/Logo.png}";
    auto const length = static_cast<unsigned int>(resource.size() + 1);
    HRESULT32 const small = platform::kHresultInsufficientBuffer, fail = static_cast<HRESULT32>(0x80004005U);
    std::pair<std::vector<HRESULT32>, bool> const rows[] = {
        {{0}, true}, {{small, 0}, true}, {{small, small}, false}, {{fail}, false}, {{small, fail}, false}};
    std::vector<unsigned int> const doubled{length, 2 * length};
    for (auto const& [told, found] : rows) {
        EXPECT_EQ(road(Applications(Visual("Square44x44Logo=\"Assets\\Logo.png\"")), told), found ? resolved : "");
        EXPECT_EQ(sources, std::vector<std::string>(told.size(), resource));
        EXPECT_EQ(sizes, std::vector<unsigned int>(doubled.begin(), doubled.begin() + told.size()));
    }
    Calls const calls = fake::TakeCalls();
    EXPECT_EQ(calls.back(), "SHLoadIndirectString(\"" + resource +
                                "\", output=source, size=" + std::to_string(2 * length) + ", reserved=null)");

    // A long logo path that resolves only in the doubled buffer.
    std::string const logo(300, 'L');
    resolved = "C:\\Apps\\Pkg\\Assets\\" + logo + logo + ".png";
    EXPECT_EQ(road(Applications(Visual("Square44x44Logo=\"Assets\\" + logo + ".png\"")), {0, 0}), resolved);
    EXPECT_EQ(sizes.size(), 2u);

    // Without a logo the resource string is still resolved.
    resolved = "C:\\resolved.png";
    for (std::string const& content : {std::string("<broken"), Applications(Visual("Square150x150Logo=\"b.png\""))}) {
        EXPECT_EQ(road(content, {0}), resolved);
        EXPECT_EQ(sources, (std::vector<std::string>{"@{Pkg_1.0.0.0_x64__pub?ms-resource:///Files/}"}));
    }
    // Not packaged: nothing beyond the family-name query.
    fake::Packages().GetPackageFamilyName = nullptr;
    fake::TakeCalls();
    EXPECT_EQ(road("", {}), "");
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetPackageFamilyName(0x44, length=0, buffer=null)"}));
    std::filesystem::remove(manifest);
}
