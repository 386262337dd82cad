// __DOUT__, __FOUT__, the log file and trace scopes. The debugger is the fake
// platform's OutputDebugStringA.

#include <gtest/gtest.h>

#include "diagnostics/LogTestSupport.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;

// Declared first: the first test to touch the names sees the defaults.
TEST(LogNames, DefaultsPlainConcatenationAndStoredText)
{
    EXPECT_TRUE(GET_FULL_LOG_PATH() == "../logs/SYSLOG.log" && GET_LOG_DIRECTORY() == "../logs/" &&
                GET_LOG_FILE_EXT() == ".log" && GET_LOG_FILENAME() == std::string("SYSLOG"));
    SET_LOG_DIRECTORY("logs");
    SET_LOG_FILE_EXT("txt");
    EXPECT_TRUE(GET_FULL_LOG_PATH() == "logsSYSLOGtxt") << "no separator is added";
    EXPECT_EQ(GET_LOG_FILENAME(), GET_LOG_FILENAME()) << "the same storage, not a copy";
}

TEST(LogFile, OutputDebuggerAndLogSidesOfEveryForm)
{
    LogDirectory log("forms");
    std::string const before = log.History(), big(100000, 'z');
    std::string const start = ">>> Start Trace Context: ", end = "<<< End Trace Context: ";
    std::stringstream dout, traceName, drained("s");
    dout << "ab" << '\0' << "cd";
    traceName << "left" << '\0' << "right";
    CapturedOutput out;
    fake::Reset();
    __DOUT__(dout);
    __DOUT__(dout);  // drained: the second call finds nothing
    __DOUT__("%s=%u;", "n", 7u);
    __FOUT__("<%s>\n", big.c_str());
    {
        __traceContext outer("%s-%d", true, "A", 1);
        __traceContext cut(traceName, true);
        __traceContext logged("quiet", false);
        __traceContext copy(outer);  // no start line, an end line
        logged = cut;
    }
    EXPECT_EQ(out.Text(), std::string("ab\0cdn=7;", 9) + start + "A-1\n" + start + "left\n" + end + "A-1\n" + end +
                              "left\n" + end + "left\n" + end + "A-1\n");
    fake::Calls const calls = fake::TakeCalls();
    EXPECT_EQ(fake::Calls(calls.begin(), calls.begin() + 3),
              (fake::Calls{"OutputDebugStringA(\"ab\")", "OutputDebugStringA(\"\")", "OutputDebugStringA(\"n=7;\")"}));
    EXPECT_TRUE(calls.size() == 9 && traceName.rdbuf()->in_avail() == 0);

    std::string const added = OnDisk("<" + big + ">\n" + start + "quiet\n");
    WRITE_LOG_FILE();
    WRITE_LOG_FILE();
    EXPECT_EQ(log.Read(), before + added + before + added) << "every write appends the whole history";
    SET_LOG_DIRECTORY((log.directory + "absent/").c_str());
    WRITE_LOG_FILE();
    EXPECT_FALSE(std::filesystem::exists(log.path / "absent"));
    SET_LOG_DIRECTORY(log.directory.c_str());
    __FOUT__(drained);
    __FOUT__(drained);  // nothing to read: the buffer fails until the file is cleared
    __FOUT__("lost");
    EXPECT_EQ(log.History(), before + added + "s");
    __FOUT__("back");
    EXPECT_EQ(log.History(), before + added + "sback");
}
