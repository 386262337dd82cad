// A packaged application's logo: where the manifest read with tinyxml2 finds
// it, and the resource string that names it.

#include <string>

#include "FakeProcess.h"
#include "files/TempFiles.h"
#include "processes/detail/PackageManifest.h"

namespace {

std::string Manifest(std::string const& inside)
{
    return "<?xml version=\"1.0\"?><Package><Identity Name=\"Pkg\"/>" + inside + "</Package>";
}
std::string App(std::string const& inside) { return "<Application Id=\"App\">" + inside + "</Application>"; }
std::string Visual(std::string const& logo) { return App("<uap:VisualElements " + logo + " DisplayName=\"App\"/>"); }
std::string Apps(std::string const& inside) { return Manifest("<Applications>" + inside + "</Applications>"); }

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
