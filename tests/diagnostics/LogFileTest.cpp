#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <sstream>
#include <string>

#include "diagnostics/LogTestSupport.h"

TEST(LogNames, DefaultsAndPlainConcatenation)
{
    // The first test to touch the names sees the defaults.
    EXPECT_TRUE(GET_FULL_LOG_PATH() == "../logs/SYSLOG.log");
    EXPECT_TRUE(GET_LOG_DIRECTORY() == "../logs/");
    EXPECT_TRUE(GET_LOG_FILE_EXT() == ".log");
    EXPECT_STREQ(GET_LOG_FILENAME(), "SYSLOG");

    SET_LOG_DIRECTORY("logs");
    SET_LOG_FILENAME("SYSLOG");
    SET_LOG_FILE_EXT("txt");
    EXPECT_TRUE(GET_FULL_LOG_PATH() == "logsSYSLOGtxt") << "no separator is added";
    SET_LOG_DIRECTORY("../logs/");
    SET_LOG_FILE_EXT(".log");
}

TEST(LogNames, FileNameGetterHandsOutTheStoredText)
{
    SET_LOG_FILENAME("first");
    char const* stored = GET_LOG_FILENAME();
    EXPECT_EQ(stored, GET_LOG_FILENAME()) << "the same storage, not a copy";
    EXPECT_STREQ(stored, "first");
    SET_LOG_FILENAME("SYSLOG");
}

TEST(LogFile, EveryWriteAppendsTheWholeHistory)
{
    LogDirectory log("history");
    std::string const before = log.History();
    __FOUT__("a");
    WRITE_LOG_FILE();
    WRITE_LOG_FILE();
    EXPECT_EQ(log.Read(), before + "a" + before + "a");
    CLEAR_LOG_FILE();
    EXPECT_EQ(log.Read(), "");
    WRITE_LOG_FILE();
    EXPECT_EQ(log.Read(), before + "a") << "clearing the file keeps the buffer";
}

TEST(LogFile, BothFormsAppendExactBytes)
{
    LogDirectory log("forms");
    std::string const before = log.History();
    __FOUT__("%d-%s|", 42, "x");
    std::stringstream stream;
    stream << "streamed";
    __FOUT__(stream);
    __FOUT__(stream);  // drained: nothing to read, the buffer fails from here
    __FOUT__("lost");
    WRITE_LOG_FILE();
    EXPECT_EQ(log.Read(), before + "42-x|streamed") << "text before the failure stays writable";

    CLEAR_LOG_FILE();  // resets the failbit
    __FOUT__("back");
    WRITE_LOG_FILE();
    EXPECT_EQ(log.Read(), before + "42-x|streamedback");
}

TEST(LogFile, LongFormattedTextIsNotCut)
{
    LogDirectory log("long");
    std::string const before = log.History();
    std::string const big(100000, 'z');
    __FOUT__("<%s>", big.c_str());
    WRITE_LOG_FILE();
    EXPECT_EQ(log.Read(), before + "<" + big + ">");
}

TEST(LogFile, WritesInTextMode)
{
    LogDirectory log("textmode");
    std::string const before = log.History();
    __FOUT__("one\ntwo\n");
    WRITE_LOG_FILE();
#if defined(_WIN32)
    EXPECT_EQ(log.Read(), before + "one\r\ntwo\r\n");
#else
    EXPECT_EQ(log.Read(), before + "one\ntwo\n");
#endif
}

TEST(LogFile, MissingDirectoryCreatesNothingAndKeepsTheBuffer)
{
    LogDirectory log("missing");
    std::string const before = log.History();
    __FOUT__("kept");
    std::string const missing = log.directory + "absent/";
    SET_LOG_DIRECTORY(missing.c_str());
    WRITE_LOG_FILE();
    CLEAR_LOG_FILE();
    EXPECT_FALSE(std::filesystem::exists(log.path / "absent"));
    SET_LOG_DIRECTORY(log.directory.c_str());
    WRITE_LOG_FILE();
    EXPECT_EQ(log.Read(), before + "kept");
}
