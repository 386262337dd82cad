// ZKString's regular-expression members over the standard regex engine.

// GCC 12's libstdc++ moves a regex automaton state through a union whose
// std::function member the optimizer cannot see initialised; at -O3 under
// AddressSanitizer it reports that, inside <regex> itself, as possibly
// uninitialised (fixed in GCC 13). Silenced for the standard header's own
// lines only: code in this file is still checked.
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ < 13
#  pragma GCC diagnostic push
#  pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#  include <regex>
#  pragma GCC diagnostic pop
#else
#  include <regex>
#endif
#include <string>

#include "ZKString.h"

namespace {

// The library's flag word: 1 ignore case, 2 ECMAScript, 4 basic, 8 extended.
// No grammar bit means ECMAScript; with several, the lowest one wins (the
// engine itself rejects a combination).
std::regex::flag_type EngineOptions(unsigned long long flags)
{
    std::regex::flag_type options = (flags & 1) ? std::regex::icase : std::regex::flag_type{};
    if (flags & 2) options |= std::regex::ECMAScript;
    else if (flags & 4) options |= std::regex::basic;
    else if (flags & 8) options |= std::regex::extended;
    else options |= std::regex::ECMAScript;
    return options;
}

// Compiles, runs one match or search, and appends the groups on success.
bool Run(ZKString const& text, ZKString const& pattern, ZKContainer<ZKString>* captures,
         unsigned long long flags, bool wholeText)
{
    std::regex const expression(pattern.GetString(), EngineOptions(flags));
    // A copy, as the text may be an item of *captures, which the pushes can
    // move or overwrite.
    std::string const subject(text.GetString());
    std::smatch groups;
    bool const found = wholeText ? std::regex_match(subject, groups, expression)
                                 : std::regex_search(subject, groups, expression);
    if (found && captures != nullptr) {
        ZKString item;  // reused for every push
        for (auto const& group : groups) {
            item.SetString(group.matched ? group.str().c_str() : "");
            captures->PushBack(item);
        }
    }
    return found;
}

}  // namespace

bool ZKString::RegexMatch(ZKString const& text, ZKString const& pattern, unsigned long long const& flags)
{
    return Run(text, pattern, nullptr, flags, true);
}

bool ZKString::RegexMatch(ZKString const& text, ZKString const& pattern, ZKContainer<ZKString>& captures,
                          unsigned long long const& flags)
{
    return Run(text, pattern, &captures, flags, true);
}

bool ZKString::RegexSearch(ZKString const& text, ZKString const& pattern, unsigned long long const& flags)
{
    return Run(text, pattern, nullptr, flags, false);
}

bool ZKString::RegexSearch(ZKString const& text, ZKString const& pattern, ZKContainer<ZKString>& captures,
                           unsigned long long const& flags)
{
    return Run(text, pattern, &captures, flags, false);
}

// The instance forms work on a copy of the text, up to its first zero byte.
bool ZKString::RegexMatch(ZKString const& pattern, unsigned long long const& flags) const
{
    return RegexMatch(ZKString(*this), pattern, flags);
}

bool ZKString::RegexMatch(ZKString const& pattern, ZKContainer<ZKString>& captures,
                          unsigned long long const& flags) const
{
    return RegexMatch(ZKString(*this), pattern, captures, flags);
}

bool ZKString::RegexSearch(ZKString const& pattern, unsigned long long const& flags) const
{
    return RegexSearch(ZKString(*this), pattern, flags);
}

bool ZKString::RegexSearch(ZKString const& pattern, ZKContainer<ZKString>& captures,
                           unsigned long long const& flags) const
{
    return RegexSearch(ZKString(*this), pattern, captures, flags);
}
