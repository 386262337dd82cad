// The argument table is process-wide and cannot be cleared, so every test
// uses keys of its own.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <vector>

namespace {

// An argument array as main receives it: entries, then a null entry.
struct Argv {
    explicit Argv(std::vector<std::string> entries) : texts(std::move(entries))
    {
        for (std::string& text : texts) pointers.push_back(text.data());
        pointers.push_back(nullptr);
    }
    int Count() const { return static_cast<int>(texts.size()); }
    char** Array() { return pointers.data(); }
    std::vector<std::string> texts;
    std::vector<char*> pointers;
};

bool Load(std::vector<std::string> entries)
{
    Argv argv(std::move(entries));
    return LoadProgramArgs(argv.Count(), argv.Array());
}

std::string Value(char const* key) { return GetProgramArgData(key).GetString(); }

}  // namespace

TEST(ProgramArgs, ValueIsTheNextEntryEvenWhenItIsAnOption)
{
    EXPECT_TRUE(Load({"app", "-a1", "1", "-b1"}));
    EXPECT_EQ(Value("-a1"), "1");
    EXPECT_TRUE(HasProgramArg("-b1"));
    EXPECT_EQ(Value("-b1"), "") << "the last entry's value comes from the null entry";

    Load({"app", "-a2", "-b2"});
    EXPECT_EQ(Value("-a2"), "-b2") << "an option can be the value of the one before it";
    EXPECT_TRUE(HasProgramArg("-b2"));
    EXPECT_EQ(Value("-b2"), "");

    Load({"app", "--size3", "10"});
    EXPECT_EQ(Value("--size3"), "10");
    EXPECT_FALSE(HasProgramArg("size3")) << "the key keeps its dashes";
    EXPECT_FALSE(HasProgramArg("-size3"));
}

TEST(ProgramArgs, KeyExtentRules)
{
    Load({"app", "x4-y", "1", "-n4 value", "2", "a -m4 value", "3", "my4-app"});
    EXPECT_EQ(Value("x4-y"), "1") << "no blank: the whole entry, with what stands before the dash";
    EXPECT_EQ(Value("-n4"), "2") << "up to the blank; the rest of the entry is dropped";
    EXPECT_EQ(Value("-m4"), "3") << "from the dash, not from the entry's start";
    EXPECT_FALSE(HasProgramArg("a -m4"));
    EXPECT_TRUE(HasProgramArg("my4-app"));
}

TEST(ProgramArgs, FirstValueWinsAcrossCalls)
{
    Load({"app", "-k5", "1", "-k5", "2"});
    EXPECT_EQ(Value("-k5"), "1");
    Load({"app", "-k5", "3", "-j5", "4"});
    EXPECT_EQ(Value("-k5"), "1");
    EXPECT_EQ(Value("-j5"), "4") << "a second load adds new keys";
}

TEST(ProgramArgs, EntriesWithoutADashAndEmptyOrTinyArrays)
{
    EXPECT_TRUE(LoadProgramArgs(0, nullptr)) << "a count of 0 reads nothing";
    EXPECT_TRUE(LoadProgramArgs(-3, nullptr));
    Load({"plain6", "5", ""});
    EXPECT_FALSE(HasProgramArg("plain6"));
    EXPECT_FALSE(HasProgramArg("5"));
    EXPECT_FALSE(HasProgramArg(""));

    Load({"app", "-", "lone-dash-value6"});
    EXPECT_EQ(Value("-"), "lone-dash-value6") << "a lone dash is a key";
    EXPECT_TRUE(HasProgramArg("lone-dash-value6")) << "a value can be a key in its own turn";
}

TEST(ProgramArgs, LookupIsCaseSensitiveAndCutsTheKeyAtZero)
{
    Load({"app", "-Case7", "v"});
    EXPECT_TRUE(HasProgramArg("-Case7"));
    EXPECT_FALSE(HasProgramArg("-case7"));
    ZKString key("-Case7");
    key += '\0';
    key += "junk";
    EXPECT_TRUE(HasProgramArg(key));
    EXPECT_EQ(std::string(GetProgramArgData(key).GetString()), "v");
    EXPECT_TRUE(GetProgramArgData("-missing7").IsEmpty());
}
