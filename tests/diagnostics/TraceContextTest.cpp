#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <iostream>
#include <sstream>
#include <string>

#include "diagnostics/LogTestSupport.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;

TEST(TraceContext, DebugOutputLinesAtStartAndEnd)
{
    fake::Reset();
    CapturedOutput out;
    {
        __traceContext context("x", true);
        EXPECT_EQ(out.Text(), ">>> Start Trace Context: x\n");
    }
    EXPECT_EQ(out.Text(), ">>> Start Trace Context: x\n<<< End Trace Context: x\n");
    EXPECT_EQ(fake::TakeCalls(), (fake::Calls{"OutputDebugStringA(\">>> Start Trace Context: x\n\")",
                                              "OutputDebugStringA(\"<<< End Trace Context: x\n\")"}));
}

TEST(TraceContext, NestedFormattedAndEmptyNames)
{
    CapturedOutput out;
    {
        __traceContext outer("%s-%d", true, "A", 1);
        __traceContext inner("", true);
    }
    EXPECT_EQ(out.Text(),
              ">>> Start Trace Context: A-1\n>>> Start Trace Context: \n"
              "<<< End Trace Context: \n<<< End Trace Context: A-1\n");
}

TEST(TraceContext, StreamNameIsCutAtNulAndDrained)
{
    CapturedOutput out;
    std::stringstream stream;
    stream << "left";
    stream.put('\0');
    stream << "right";
    {
        __traceContext context(stream, true);
    }
    EXPECT_EQ(out.Text(), ">>> Start Trace Context: left\n<<< End Trace Context: left\n");
    EXPECT_EQ(stream.rdbuf()->in_avail(), 0);
}

TEST(TraceContext, LogSideLinesWaitForTheLogFile)
{
    LogDirectory log("trace");
    std::string const before = log.History();
    CapturedOutput out;
    {
        __traceContext context("quiet", false);
    }
    EXPECT_EQ(out.Text(), "") << "nothing printed";
    WRITE_LOG_FILE();
    EXPECT_EQ(log.Read(), before + OnDisk(">>> Start Trace Context: quiet\n<<< End Trace Context: quiet\n"));
}

TEST(TraceContext, CopiesAddAnEndLineAndFollowTheAssignedFlag)
{
    LogDirectory log("copies");
    std::string const before = log.History();
    CapturedOutput out;
    {
        __traceContext original("orig", true);
        {
            __traceContext copy(original);
        }
        __traceContext logged("other", false);
        logged = original;  // now "orig", to debug output
    }
    EXPECT_EQ(out.Text(),
              ">>> Start Trace Context: orig\n<<< End Trace Context: orig\n"
              "<<< End Trace Context: orig\n<<< End Trace Context: orig\n");
    EXPECT_EQ(log.History(), before + OnDisk(">>> Start Trace Context: other\n"));
}
