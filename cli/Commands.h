#pragma once

// The zk command's subcommands and what they share. zk is a caller of the
// library like any application: it uses the installed public API only.

#include <zk64/zk64.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "Report.h"

namespace zk {

// A failure the person at the terminal can act on (a missing file, a process
// that does not exist): printed as the one line "zk: <message>", exit 1.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    bool json = false;
    int exitCode = 0;
};

// Prints a report as the options ask.
void Emit(Options const& options, Value const& report);
// A message on standard error, "zk: " first; the exit code becomes 1.
void Warn(Options& options, std::string const& message);

// The whole file; fails with a message naming the path.
std::string ReadWholeFile(std::string const& path);
// A library string as a standard one, every byte of it.
std::string Std(ZKString const& text);
// A number from text: decimal, or hexadecimal after 0x; fails naming `what`.
unsigned long long ParseNumber(std::string const& text, std::string const& what);
// Lower-case ASCII letters.
std::string Lower(std::string text);
// The platform's path separator, as the library writes it into patterns.
char Separator();
// The strings extractor over a whole file.
ZKContainer<ZKString> FindStrings(std::string const& path, unsigned minimum, bool wide);
// Sizes as people read them ("1.50 GiB"), through the library's scaling.
Value Bytes(unsigned long long bytes);

// Terminal.cpp: whether the stream is an interactive terminal.
bool IsTerminal(std::FILE* stream);

// Each adds one subcommand.
void AddInfo(CLI::App& app, Options& options);
void AddPe(CLI::App& app, Options& options);
void AddStrings(CLI::App& app, Options& options);
void AddFind(CLI::App& app, Options& options);
void AddWatch(CLI::App& app, Options& options);
void AddPs(CLI::App& app, Options& options);
void AddWindows(CLI::App& app, Options& options);
void AddHash(CLI::App& app, Options& options);
void AddMsg(CLI::App& app, Options& options);
void AddColor(CLI::App& app, Options& options);
void AddNoise(CLI::App& app, Options& options);
void AddTour(CLI::App& app, Options& options);

// A colour name or r,g,b[,a]; fails with a message.
ZKColor ColorFromText(std::string const& text);

// The pieces the tour runs, with the options it gives them.
Value InfoReport();
Value PeReport(std::string const& path, bool summary);
// seed < 0: the library's own random grid.
Value NoisePicture(std::string const& path, unsigned size, int octaves, long long seed, ZKColor const& from,
                   ZKColor const& to);

}  // namespace zk
