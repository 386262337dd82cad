#include "PackageManifest.h"

#include <tinyxml2.h>

namespace zk64::detail {

namespace {

// The path from the root element down to the element holding the logo.
char const* const kLogoElements[] = {"Applications", "Application", "uap:VisualElements"};
char const* const kLogoAttribute = "Square44x44Logo";

}  // namespace

ZKString ManifestLogo(char const* path)
{
    tinyxml2::XMLDocument document;
    if (document.LoadFile(path) != tinyxml2::XML_SUCCESS) return ZKString();
    tinyxml2::XMLElement const* element = document.FirstChildElement();
    for (char const* name : kLogoElements) {
        if (element == nullptr) return ZKString();
        element = element->FirstChildElement(name);
    }
    if (element == nullptr) return ZKString();
    tinyxml2::XMLAttribute const* const logo = element->FindAttribute(kLogoAttribute);
    return logo == nullptr ? ZKString() : ZKString(logo->Value());
}

ZKString LogoResourceString(ZKString const& fullName, ZKString const& packageName, ZKString const& logo)
{
    ZKString slashed(logo);
    slashed.ReplaceAll('\\', '/');
    return ZKString::FormatStr("@{%s?ms-resource://%s/Files/%s}", fullName.GetString(), packageName.GetString(),
                               slashed.GetString());
}

}  // namespace zk64::detail
