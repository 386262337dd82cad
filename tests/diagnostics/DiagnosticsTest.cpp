// __DOUT__, __FOUT__, the log file and trace scopes. The debugger is the fake
// platform's OutputDebugStringA. The log's buffer, name and path are
// process-wide: the test points the log at a scratch directory and reads the
// file back.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <filesystem>
#include <iostream>
#include <sstream>

#include "files/TempFiles.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;

TEST(LogFile, NamesAndTheOutputDebuggerAndLogSidesOfEveryForm)
{
    // Checked first: nothing else in this program touches the names.
    EXPECT_TRUE(GET_FULL_LOG_PATH() == "../logs/SYSLOG.log" && GET_LOG_DIRECTORY() == "../logs/" &&
                GET_LOG_FILE_EXT() == ".log" && GET_LOG_FILENAME() == std::string("SYSLOG"));
    SET_LOG_DIRECTORY("logs");
    SET_LOG_FILE_EXT("txt");
    EXPECT_TRUE(GET_FULL_LOG_PATH() == "logsSYSLOGtxt") << "no separator is added";
    SET_LOG_FILENAME("test");
    EXPECT_EQ(GET_LOG_FILENAME(), GET_LOG_FILENAME()) << "the same storage, not a copy";

    zk64::test::TempDir scratch("log-forms");
    std::string const directory = std::filesystem::path(scratch.Dir()).generic_string() + "/", big(100000, 'z');
    SET_LOG_DIRECTORY(directory.c_str());
    SET_LOG_FILE_EXT(".log");
    auto const history = [&] {  // the buffer's whole history, as WRITE_LOG_FILE writes it onto an empty file
        CLEAR_LOG_FILE();
        WRITE_LOG_FILE();
        std::string const text = scratch.Read("test.log");
        CLEAR_LOG_FILE();
        return text;
    };
    std::string const before = history();
    std::string const start = ">>> Start Trace Context: ", end = "<<< End Trace Context: ";
    std::stringstream dout, traceName, drained("s"), out;
    dout << "ab" << '\0' << "cd";
    traceName << "left" << '\0' << "right";
    std::streambuf* const console = std::cout.rdbuf(out.rdbuf());
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
    std::cout.rdbuf(console);
    EXPECT_EQ(out.str(), std::string("ab\0cdn=7;", 9) + start + "A-1\n" + start + "left\n" + end + "A-1\n" + end +
                             "left\n" + end + "left\n" + end + "A-1\n");
    fake::Calls const calls = fake::TakeCalls();
    EXPECT_EQ(fake::Calls(calls.begin(), calls.begin() + 3),
              (fake::Calls{"OutputDebugStringA(\"ab\")", "OutputDebugStringA(\"\")", "OutputDebugStringA(\"n=7;\")"}));
    EXPECT_TRUE(calls.size() == 9 && traceName.rdbuf()->in_avail() == 0);

    std::string const added = zk64::test::TextOnDisk("<" + big + ">\n" + start + "quiet\n");
    WRITE_LOG_FILE();
    WRITE_LOG_FILE();
    EXPECT_EQ(scratch.Read("test.log"), before + added + before + added) << "every write appends the whole history";
    SET_LOG_DIRECTORY((directory + "absent/").c_str());
    WRITE_LOG_FILE();
    EXPECT_FALSE(std::filesystem::exists(directory + "absent"));
    SET_LOG_DIRECTORY(directory.c_str());
    __FOUT__(drained);
    __FOUT__(drained);  // nothing to read: the buffer fails until the file is cleared
    __FOUT__("lost");
    EXPECT_EQ(history(), before + added + "s");
    __FOUT__("back");
    EXPECT_EQ(history(), before + added + "sback");
}
