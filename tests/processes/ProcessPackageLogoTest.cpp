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
#include "processes/detail/PackageManifest.h"

namespace {

namespace fs = std::filesystem;
using platform::HRESULT32;
using platform::LONG32;
using platform::UINT32;
using platform::WCHAR;
using Wide = std::basic_string<WCHAR>;

std::string Text(ZKString const& text) { return text.GetString(); }

std::string Manifest(std::string const& applications)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<Package xmlns=\"http://schemas.microsoft.com/appx/manifest/foundation/windows10\"\n"
           "         xmlns:uap=\"http://schemas.microsoft.com/appx/manifest/uap/windows10\">\n"
           "  <Identity Name=\"Pkg\"/>\n" +
           applications + "</Package>\n";
}

std::string Visual(std::string const& attributes)
{
    return "<Applications><Application Id=\"App\"><uap:VisualElements " + attributes +
           " DisplayName=\"App\"/></Application></Applications>";
}

// A directory of its own for each test, removed at the end.
class ManifestFiles : public FakeTest {
protected:
    fs::path directory;

    void SetUp() override
    {
        FakeTest::SetUp();
        directory = fs::temp_directory_path() /
                    ("zk64-manifest-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(directory);
        fs::create_directories(directory);
    }
    void TearDown() override
    {
        std::error_code ignored;
        fs::remove_all(directory, ignored);
        FakeTest::TearDown();
    }
    std::string Write(std::string const& name, std::string const& content) const
    {
        std::string const path = (directory / name).string();
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }
};

using ManifestLogo = ManifestFiles;

}  // namespace

TEST_F(ManifestLogo, FirstElementsOnTheFixedPathDecide)
{
    struct Row {
        char const* what;
        std::string content;
        char const* logo;
    };
    std::vector<Row> const rows = {
        {"the usual manifest", Manifest(Visual("Square44x44Logo=\"Assets\\Logo.png\"")), "Assets\\Logo.png"},
        {"a root of any name",
         "<Other><Applications><Application><uap:VisualElements Square44x44Logo=\"a.png\"/></Application>"
         "</Applications></Other>",
         "a.png"},
        {"the first Application of two",
         Manifest("<Applications><Application><uap:VisualElements Square44x44Logo=\"first.png\"/></Application>"
                  "<Application><uap:VisualElements Square44x44Logo=\"second.png\"/></Application></Applications>"),
         "first.png"},
        {"a first Application without visual elements",
         Manifest("<Applications><Application/><Application><uap:VisualElements Square44x44Logo=\"second.png\"/>"
                  "</Application></Applications>"),
         ""},
        {"elements found among others",
         Manifest("<Capabilities/><Applications><Extensions/><Application><Resources/>"
                  "<uap:VisualElements Square150x150Logo=\"big.png\" Square44x44Logo=\"small.png\"/>"
                  "</Application></Applications>"),
         "small.png"},
        {"another logo size only", Manifest(Visual("Square150x150Logo=\"big.png\"")), ""},
        {"no uap prefix",
         Manifest("<Applications><Application><VisualElements Square44x44Logo=\"a.png\"/></Application>"
                  "</Applications>"),
         ""},
        {"no Applications", Manifest(""), ""},
        {"no Application", Manifest("<Applications/>"), ""},
        {"no visual elements", Manifest("<Applications><Application Id=\"App\"/></Applications>"), ""},
        {"Applications deeper than under the root",
         Manifest("<Wrapper>" + Visual("Square44x44Logo=\"a.png\"") + "</Wrapper>"), ""},
        {"malformed XML", Manifest(Visual("Square44x44Logo=\"a.png\"")).substr(0, 200), ""},
        {"an empty document", "<?xml version=\"1.0\"?>", ""},
    };
    int index = 0;
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        std::string const path = Write("AppxManifest" + std::to_string(index++) + ".xml", row.content);
        EXPECT_EQ(Text(zk64::detail::ManifestLogo(path.c_str())), row.logo);
    }
    EXPECT_EQ(Text(zk64::detail::ManifestLogo((directory / "missing.xml").string().c_str())), "");
}

TEST(LogoResource, SlashesTurnForwardAndAnEmptyLogoStays)
{
    using zk64::detail::LogoResourceString;
    EXPECT_EQ(Text(LogoResourceString("Pkg_1.0.0.0_x64__pub", "Pkg", "Assets\\Tiles\\Logo.png")),
              "@{Pkg_1.0.0.0_x64__pub?ms-resource://Pkg/Files/Assets/Tiles/Logo.png}");
    EXPECT_EQ(Text(LogoResourceString("F", "N", "\\a/b\\\\c")), "@{F?ms-resource://N/Files//a/b//c}");
    EXPECT_EQ(Text(LogoResourceString("F", "N", "")), "@{F?ms-resource://N/Files/}");
    EXPECT_EQ(Text(LogoResourceString("", "", "")), "@{?ms-resource:///Files/}");
}

namespace {

Wide WideOf(std::string const& text) { return Wide(text.begin(), text.end()); }
std::string Narrow(WCHAR const* text)
{
    std::string narrow;
    for (; *text != 0; ++text) narrow.push_back(static_cast<char>(*text));
    return narrow;
}

// A packaged process whose executable lies in the test's directory.
class LogoRoad : public ManifestFiles {
protected:
    std::string exePath;
    std::vector<HRESULT32> answers;  // of the SHLoadIndirectString calls, in order
    std::vector<std::string> sources;
    std::vector<unsigned int> sizes;
    std::string resolved = "C:\\Apps\\Pkg\\Assets\\Logo.scale-100.png";

    void SetUp() override
    {
        ManifestFiles::SetUp();
        exePath = (directory / "App.exe").string();
        auto name = [](std::string text) {
            return [text](HANDLE, UINT32* length, WCHAR* buffer) -> LONG32 {
                Wide const wide = WideOf(text);
                if (buffer == nullptr) {
                    *length = static_cast<UINT32>(wide.size() + 1);
                    return 122;
                }
                std::memcpy(buffer, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
                return 0;
            };
        };
        fake::Packages().GetPackageFamilyName = name("Pkg_pub");
        fake::Packages().GetPackageFullName = name("Pkg_1.0.0.0_x64__pub");
        fake::Processes().K32GetModuleFileNameExA = [this](HANDLE, HINSTANCE__*, char* buffer, DWORD size) {
            std::strncpy(buffer, exePath.c_str(), size);
            return static_cast<DWORD>(exePath.size());
        };
        // No package description: the package name stays empty.
        fake::Packages().SHLoadIndirectString = [this](WCHAR const* source, WCHAR* output, unsigned int size) {
            sources.push_back(Narrow(source));
            sizes.push_back(size);
            HRESULT32 const answer = answers.at(sources.size() - 1);
            if (answer == 0) {
                Wide const wide = WideOf(resolved);
                if (wide.size() < size) std::memcpy(output, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
            }
            return answer;
        };
    }
    // The manifest beside the executable, as the road names it.
    void WriteManifest(std::string const& content)
    {
        std::ofstream(directory.string() + "\\AppxManifest.xml", std::ios::binary) << content;
    }
};

}  // namespace

TEST_F(LogoRoad, ManifestLogoIsResolvedWithOneDoubledRetry)
{
    WriteManifest(Manifest(Visual("Square44x44Logo=\"Assets\\Logo.png\"")));
    std::string const resource = "@{Pkg_1.0.0.0_x64__pub?ms-resource:///Files/Assets/Logo.png}";
    auto const length = static_cast<unsigned int>(resource.size() + 1);
    struct Row {
        std::vector<HRESULT32> answers;
        bool found;
    };
    std::vector<Row> const rows = {
        {{0}, true},
        {{platform::kHresultInsufficientBuffer, 0}, true},
        {{platform::kHresultInsufficientBuffer, platform::kHresultInsufficientBuffer}, false},
        {{static_cast<HRESULT32>(0x80070002U)}, false},
        {{platform::kHresultInsufficientBuffer, static_cast<HRESULT32>(0x80004005U)}, false},
    };
    for (Row const& row : rows) {
        answers = row.answers;
        sources.clear();
        sizes.clear();
        EXPECT_EQ(Text(GetUniversalWindowsPlatformIconPath(kProcess)), row.found ? resolved : "");
        ASSERT_EQ(sources.size(), row.answers.size());
        EXPECT_EQ(sources, std::vector<std::string>(sources.size(), resource)) << "resolved in place";
        EXPECT_EQ(sizes[0], length);
        if (sizes.size() > 1) {
            EXPECT_EQ(sizes[1], 2 * length);
        }
    }
    Calls const calls = fake::TakeCalls();
    EXPECT_EQ(calls.back(), "SHLoadIndirectString(\"" + resource + "\", output=source, size=" +
                                std::to_string(2 * length) + ", reserved=null)");
}

TEST_F(LogoRoad, LongLogoPathNeedsTheRetry)
{
    std::string const logo(300, 'L');
    WriteManifest(Manifest(Visual("Square44x44Logo=\"Assets\\" + logo + ".png\"")));
    resolved = "C:\\Apps\\Pkg\\Assets\\" + logo + logo + ".png";  // longer than the request
    // Resolves only when the output has room, as the shell does.
    fake::Packages().SHLoadIndirectString = [this](WCHAR const*, WCHAR* output, unsigned int size) -> HRESULT32 {
        sizes.push_back(size);
        Wide const wide = WideOf(resolved);
        if (wide.size() >= size) return platform::kHresultInsufficientBuffer;
        std::memcpy(output, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR));
        return 0;
    };
    EXPECT_EQ(Text(GetUniversalWindowsPlatformIconPath(kProcess)), resolved);
    EXPECT_EQ(sizes.size(), 2u);
}

TEST_F(LogoRoad, WithoutALogoTheStringIsStillResolved)
{
    for (std::string const& content : {std::string("<broken"), Manifest(Visual("Square150x150Logo=\"b.png\"")),
                                       Manifest("<Applications/>")}) {
        WriteManifest(content);
        answers = {0};
        sources.clear();
        EXPECT_EQ(Text(GetUniversalWindowsPlatformIconPath(kProcess)), resolved);
        EXPECT_EQ(sources, (std::vector<std::string>{"@{Pkg_1.0.0.0_x64__pub?ms-resource:///Files/}"}));
    }
    // Not packaged: nothing beyond the family-name query.
    fake::Packages().GetPackageFamilyName = nullptr;
    fake::TakeCalls();
    EXPECT_TRUE(GetUniversalWindowsPlatformIconPath(kProcess).IsEmpty());
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetPackageFamilyName(0x44, length=0, buffer=null)"}));
}
