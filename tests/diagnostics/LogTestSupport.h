#pragma once

// The log buffer, name and path are process-wide: a test points the log at a
// scratch directory of its own and reads the file back.

#include <zk64/zk64.h>

#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>

#include "files/TempFiles.h"

// Captures std::cout while alive.
class CapturedOutput {
public:
    CapturedOutput() : previous(std::cout.rdbuf(captured.rdbuf())) {}
    ~CapturedOutput() { std::cout.rdbuf(previous); }
    std::string Text() const { return captured.str(); }

private:
    std::stringstream captured;
    std::streambuf* previous;
};

// What WRITE_LOG_FILE leaves on disk for `text`: it writes in text mode.
inline std::string OnDisk(std::string const& text) { return zk64::test::TextOnDisk(text); }

class LogDirectory {
public:
    explicit LogDirectory(std::string const& name) : scratch("log-" + name), path(scratch.Dir())
    {
        SET_LOG_DIRECTORY(directory.c_str());
        SET_LOG_FILENAME("test");
        SET_LOG_FILE_EXT(".log");
        CLEAR_LOG_FILE();
    }

    std::filesystem::path File() const { return path / "test.log"; }
    std::string Read() const { return scratch.Read("test.log"); }
    // The buffer's whole history, as WRITE_LOG_FILE writes it onto an empty file.
    std::string History() const
    {
        CLEAR_LOG_FILE();
        WRITE_LOG_FILE();
        std::string text = Read();
        CLEAR_LOG_FILE();
        return text;
    }

private:
    zk64::test::TempDir scratch;

public:
    std::filesystem::path path;
    std::string directory = path.generic_string() + "/";
};
