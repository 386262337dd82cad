// find and watch: directory search with its exclusion list, and directory
// watching until Ctrl-C.

#include <atomic>
#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <thread>

#include "Commands.h"

namespace zk {

namespace {

// A directory the person named, checked, without trailing separators.
std::string ReadableDirectory(std::string directory)
{
    while (directory.size() > 1 && (directory.back() == '/' || directory.back() == Separator())) directory.pop_back();
    std::error_code error;
    if (!std::filesystem::exists(directory, error)) throw Failure(directory + ": no such directory");
    if (!std::filesystem::is_directory(directory, error)) throw Failure(directory + ": not a directory");
    std::filesystem::directory_iterator probe(directory, error);
    if (error) throw Failure(directory + ": cannot be read (" + error.message() + ")");
    return directory;
}

// The search pattern of a directory: the directory, a separator and a star.
ZKString Pattern(std::string const& directory)
{
    std::string pattern = directory;
    if (pattern.back() != Separator()) pattern += Separator();
    return ZKString((pattern + "*").c_str());
}

}  // namespace

void AddFind(CLI::App& app, Options& options)
{
    auto* find = app.add_subcommand("find", "files and directories in a directory, by a piece of their name");
    static std::string directory, sequence;
    static bool recursive = false, ignoreCase = false, filesOnly = false, dirsOnly = false, count = false;
    static std::vector<std::string> excluded;
    find->add_option("DIR", directory, "the directory to search")->required();
    find->add_option("SEQUENCE", sequence, "keep names that contain it");
    find->add_flag("-r,--recursive", recursive, "go down into subdirectories");
    find->add_flag("-i,--ignore-case", ignoreCase, "compare SEQUENCE without case");
    auto* files = find->add_flag("--files", filesOnly, "files only");
    find->add_flag("--dirs", dirsOnly, "directories only")->excludes(files);
    find->add_flag("--count", count,
                   "count files and directories instead of listing them "
                   "(SEQUENCE is ignored)");
    find->add_option("--exclude", excluded,
                     "directories not to go down into: names inside DIR, or "
                     "paths beginning with DIR");
    find->callback([&options] {
        std::string const root = ReadableDirectory(directory);
        ZKContainer<ZKString> skip;
        for (std::string item : excluded) {
            while (item.size() > 1 && (item.back() == '/' || item.back() == Separator())) item.pop_back();
            if (item.find('/') == std::string::npos && item.find(Separator()) == std::string::npos)
                item = root + Separator() + item;
            skip.PushBack(Pattern(item));
        }
        SetDirsToExcludeFromSearch(skip);
        ZKString const pattern = Pattern(root);
        if (count) {
            unsigned long long fileCount = 0, dirCount = 0;
            GetNumberOfFilesAndDirs(pattern, fileCount, dirCount, recursive);
            Value report = Value::Record();
            if (!dirsOnly) report.Add("files", Value::Unsigned(fileCount));
            if (!filesOnly) report.Add("directories", Value::Unsigned(dirCount));
            return Emit(options, report);
        }
        ZKString const piece(sequence.c_str());
        ZKContainer<FileDataStruct> found =
            sequence.empty() ? (filesOnly  ? GetFilesInDir(pattern, recursive)
                                : dirsOnly ? GetDirectoriesInDir(pattern, recursive)
                                           : GetFilesAndDirectoriesInDir(pattern, recursive))
                             : (filesOnly  ? GetFilesWithSequence(pattern, piece, recursive, ignoreCase)
                                : dirsOnly ? GetDirsWithSequence(pattern, piece, recursive, ignoreCase)
                                           : GetFilesAndDirsWithSequence(pattern, piece, recursive, ignoreCase));
        Value list = Value::List();
        for (unsigned long long i = 0; i < found.GetItemCount(); ++i) {
            FileDataStruct& entry = found.GetItem(i);
            std::string path = std::string(entry.GetDir()) + Separator() + entry.GetName();
            if (options.json) {
                Value record = Value::Record();
                record.Add("path", Value::Text(path)).Add("file", Value::Bool(entry.IsAFile()));
                list.Push(record);
            } else {
                list.Push(Value::Text(entry.IsAFile() ? path : path + Separator()));
            }
        }
        Emit(options, list);
    });
}

namespace {

std::atomic<bool> interrupted{false};
bool watchJson = false;

void OnInterrupt(int) { interrupted = true; }

char const* ActionName(unsigned action)
{
    switch (action) {
    case ZK_FILE_ACTION_ADDED:
        return "added";
    case ZK_FILE_ACTION_REMOVED:
        return "removed";
    case ZK_FILE_ACTION_MODIFIED:
        return "modified";
    case ZK_FILE_ACTION_RENAMED_OLD_NAME:
        return "renamed";
    case ZK_FILE_ACTION_RENAMED_NEW_NAME:
        return "renamed to";
    default:
        return "changed";
    }
}

// Runs on the library's watching thread.
void OnChange(DirChangeStruct const& change)
{
    char clock[16];
    std::time_t const now = std::time(nullptr);
    std::strftime(clock, sizeof clock, "%H:%M:%S", std::localtime(&now));
    Value event = Value::Record();
    event.Add("time", Value::Text(clock))
        .Add("action", Value::Text(ActionName(change.action)))
        .Add("name", Value::Text(Std(change.fileName)));
    if (change.action == ZK_FILE_ACTION_RENAMED_OLD_NAME) event.Add("to", Value::Text("-> " + Std(change.newFileName)));
    PrintLine(std::cout, event, watchJson);
}

struct Filter {
    char const* name;
    unsigned long long bit;
};
constexpr Filter kFilters[] = {
    {"file-name", ZK_FILE_NOTIFY_CHANGE_FILE_NAME},   {"dir-name", ZK_FILE_NOTIFY_CHANGE_DIR_NAME},
    {"attributes", ZK_FILE_NOTIFY_CHANGE_ATTRIBUTES}, {"size", ZK_FILE_NOTIFY_CHANGE_SIZE},
    {"last-write", ZK_FILE_NOTIFY_CHANGE_LAST_WRITE}, {"last-access", ZK_FILE_NOTIFY_CHANGE_LAST_ACCESS},
    {"creation", ZK_FILE_NOTIFY_CHANGE_CREATION},     {"security", ZK_FILE_NOTIFY_CHANGE_SECURITY},
};

}  // namespace

void AddWatch(CLI::App& app, Options& options)
{
    auto* watch = app.add_subcommand("watch", "print changes in a directory as they come, until Ctrl-C");
    static std::string directory;
    static bool subtree = false;
    static std::vector<std::string> filters;
    static double seconds = 0;
    std::string filterHelp = "what to report (default: file-name dir-name size last-write):";
    for (auto const& f : kFilters) filterHelp += std::string(" ") + f.name;
    watch->add_option("DIR", directory, "the directory to watch")->required();
    watch->add_flag("--subtree", subtree, "also changes in subdirectories");
    watch->add_option("--filter", filters, filterHelp);
    watch->add_option("--seconds", seconds, "stop after this many seconds (default: only Ctrl-C)")
        ->check(CLI::NonNegativeNumber);
    watch->callback([&options] {
        std::string const root = ReadableDirectory(directory);
        unsigned long long mask = 0;
        for (auto const& name : filters) {
            auto const* found =
                std::find_if(std::begin(kFilters), std::end(kFilters), [&](Filter const& f) { return name == f.name; });
            if (found == std::end(kFilters)) throw Failure("watch: no filter is named '" + name + "'");
            mask |= found->bit;
        }
        if (mask == 0)
            mask = ZK_FILE_NOTIFY_CHANGE_FILE_NAME | ZK_FILE_NOTIFY_CHANGE_DIR_NAME | ZK_FILE_NOTIFY_CHANGE_SIZE |
                   ZK_FILE_NOTIFY_CHANGE_LAST_WRITE;
        watchJson = options.json;
        std::signal(SIGINT, OnInterrupt);
        std::signal(SIGTERM, OnInterrupt);
        InitDirectoryWatching();
        if (!AddDirectoryToWatchForChanges(ZKString(root.c_str()), OnChange, mask, subtree)) {
            CleanupDirectoryWatching();
            throw Failure(root + ": cannot be watched");
        }
        if (!options.json) std::cerr << "watching " << root << " (Ctrl-C ends)" << std::endl;
        auto const end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (!interrupted && (seconds == 0 || std::chrono::steady_clock::now() < end))
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        CleanupDirectoryWatching();  // stops the worker, closes the directory
        std::cout.flush();
    });
}

}  // namespace zk
