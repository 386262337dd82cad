#pragma once

// Helpers shared by the string tests.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <vector>

namespace zk64::test {

// The whole counted text, embedded zero bytes included.
inline std::string Bytes(ZKString const& s)
{
    return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize()));
}

inline ZKString Counted(std::string const& bytes)
{
    return ZKString(bytes.data(), static_cast<int>(bytes.size()));
}

// The live items of a string list, each as its whole counted text.
inline std::vector<std::string> ItemBytes(ZKContainer<ZKString> const& list)
{
    std::vector<std::string> out;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) out.push_back(Bytes(list.GetItem(i)));
    return out;
}

// The live items, each read up to its first zero byte.
inline std::vector<std::string> ItemTexts(ZKContainer<ZKString> const& list)
{
    std::vector<std::string> out;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) {
        ZKString item;
        list.GetItem(item, i);
        out.emplace_back(item.GetString());
    }
    return out;
}

template <class E, class F>
void ExpectThrowWithMessage(F&& f, char const* message)
{
    try {
        f();
        ADD_FAILURE() << "no exception, expected \"" << message << "\"";
    } catch (E const& e) {
        EXPECT_STREQ(e.what(), message);
    }
}

}  // namespace zk64::test
