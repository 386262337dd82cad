// __DOUT__, __FOUT__, the log file and trace scopes. The debugger is the fake
// platform's OutputDebugStringA; the log goes to a scratch directory.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include "files/TempFiles.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
using zk64::test::TextOnDisk;

// Declared first: the first test to touch the names sees the defaults.
TEST(LogNames, DefaultsPlainConcatenationAndStoredText)
{
    EXPECT_TRUE(GET_FULL_LOG_PATH() == "../logs/SYSLOG.log");
    EXPECT_TRUE(GET_LOG_DIRECTORY() == "../logs/" && GET_LOG_FILE_EXT() == ".log" &&
                GET_LOG_FILENAME() == std::string("SYSLOG"));
    SET_LOG_DIRECTORY("logs");
    SET_LOG_FILE_EXT("txt");
    EXPECT_TRUE(GET_FULL_LOG_PATH() == "logsSYSLOGtxt") << "no separator is added";
    EXPECT_EQ(GET_LOG_FILENAME(), GET_LOG_FILENAME()) << "the same storage, not a copy";
}

TEST(LogFile, OutputDebuggerAndLogSidesOfEveryForm)
{
    zk64::test::TempDir dir("log");
    std::string const directory = dir.Dir() + "/";
    SET_LOG_DIRECTORY(directory.c_str());
    SET_LOG_FILE_EXT(".log");
    auto History = [&dir] {
        CLEAR_LOG_FILE();  // the buffer's whole history, as WRITE_LOG_FILE writes it onto an empty file
        WRITE_LOG_FILE();
        std::string text = dir.Read("SYSLOG.log");
        CLEAR_LOG_FILE();
        return text;
    };
    std::string const before = History(), big(100000, 'z');
    std::stringstream out, dout, traceName, drained("s");
    dout << "ab" << '\0' << "cd";
    traceName << "left" << '\0' << "right";
    std::streambuf* saved = std::cout.rdbuf(out.rdbuf());
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
    std::cout.rdbuf(saved);
    std::string const start = ">>> Start Trace Context: ", end = "<<< End Trace Context: ";
    EXPECT_EQ(out.str(), std::string("ab\0cdn=7;", 9) + start + "A-1\n" + start + "left\n" + end + "A-1\n" + end +
                             "left\n" + end + "left\n" + end + "A-1\n");
    EXPECT_EQ(traceName.rdbuf()->in_avail(), 0);
    fake::Calls const calls = fake::TakeCalls();
    ASSERT_EQ(calls.size(), 9u);
    EXPECT_EQ(fake::Calls(calls.begin(), calls.begin() + 4),
              (fake::Calls{"OutputDebugStringA(\"ab\")", "OutputDebugStringA(\"\")", "OutputDebugStringA(\"n=7;\")",
                           "OutputDebugStringA(\">>> Start Trace Context: A-1\n\")"}));

    std::string const added = TextOnDisk("<" + big + ">\n" + start + "quiet\n");
    WRITE_LOG_FILE();
    WRITE_LOG_FILE();
    EXPECT_EQ(dir.Read("SYSLOG.log"), before + added + before + added) << "every write appends the whole history";
    SET_LOG_DIRECTORY((directory + "absent/").c_str());
    WRITE_LOG_FILE();
    CLEAR_LOG_FILE();
    EXPECT_FALSE(dir.Exists("absent"));
    SET_LOG_DIRECTORY(directory.c_str());
    __FOUT__(drained);
    __FOUT__(drained);  // nothing to read: the buffer fails until the file is cleared
    __FOUT__("lost");
    EXPECT_EQ(History(), before + added + "s");
    __FOUT__("back");
    EXPECT_EQ(History(), before + added + "sback");
}
