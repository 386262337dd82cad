// __DOUT__ against standard output and the debugger (the fake platform's
// OutputDebugStringA).

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <iostream>
#include <sstream>
#include <string>

#include "diagnostics/LogTestSupport.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;

TEST(DebugOutput, StreamFormSendsAllToOutputAndUpToNulToTheDebugger)
{
    fake::Reset();
    CapturedOutput out;
    std::stringstream stream;
    stream << "ab";
    stream.put('\0');
    stream << "cd";
    __DOUT__(stream);
    __DOUT__(stream);  // drained: the second call finds nothing
    EXPECT_EQ(out.Text(), std::string("ab\0cd", 5));
    EXPECT_EQ(fake::TakeCalls(), (fake::Calls{"OutputDebugStringA(\"ab\")", "OutputDebugStringA(\"\")"}));
}

TEST(DebugOutput, FormatFormGoesToBothSinksAndNeverToTheLog)
{
    LogDirectory log("dout");
    std::string const before = log.History();
    fake::Reset();
    {
        CapturedOutput out;
        __DOUT__("%s=%u;", "n", 7u);
        EXPECT_EQ(out.Text(), "n=7;");
    }
    EXPECT_EQ(fake::TakeCalls(), (fake::Calls{"OutputDebugStringA(\"n=7;\")"}));
    EXPECT_EQ(log.History(), before) << "__DOUT__ never touches the log buffer";
}

TEST(DebugOutput, FoutReachesNeitherOutputNorDebugger)
{
    LogDirectory log("fout");
    fake::Reset();
    CapturedOutput out;
    __FOUT__("quiet");
    std::stringstream stream("also quiet");
    __FOUT__(stream);
    EXPECT_EQ(out.Text(), "");
    EXPECT_TRUE(fake::TakeCalls().empty());
}
