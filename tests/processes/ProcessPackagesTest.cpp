// Packages, icons and dump files on the real backend: an ordinary process
// (the test itself, a child) has no package, natively on Linux and for the
// DLL under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "ChildProcess.h"

namespace fs = std::filesystem;

namespace {

// Every package operation on one form (identifier, handle or name) of a
// process without a package: false or empty, and the outputs untouched.
template <class Form>
void ExpectNoPackage(Form const& form)
{
    ZKString name("kept");
    ProcessPackageInfo info;
    info.name = "kept";
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(form));
    EXPECT_FALSE(GetProcessPackageFullName(form, name));
    EXPECT_FALSE(GetProcessPackageFamilyName(form, name));
    EXPECT_FALSE(GetProcessPackageInfo(form, info));
    EXPECT_TRUE(GetUniversalWindowsPlatformIconPath(form).IsEmpty());
    EXPECT_TRUE(name == "kept");
    EXPECT_TRUE(info.name == "kept");
}

}  // namespace

TEST(ProcessPackages, UnpackagedProcessesAnswerFalseEverywhere)
{
    ChildProcess child;
    ASSERT_NE(child.Pid(), 0u);
    for (unsigned long pid : {GetCurrentProcessID(), child.Pid()}) {
        SCOPED_TRACE(pid);
        ExpectNoPackage(pid);
        ProcessHandle const opened = OpenProcessHandle(pid, 0x8);
        ASSERT_NE(opened.handle, nullptr);
        ExpectNoPackage(opened);
        CloseProcessHandle(opened);
    }
    ExpectNoPackage(GetCurrentProcessHandle());
    ExpectNoPackage(ProcessHandle{});
    // By name (found natively; Wine lists no process), and by a name no
    // process has.
    ExpectNoPackage(ZKString(ChildProcess::FileName().c_str()));
    ExpectNoPackage(ZKString("no-such-process.exe"));
}

namespace {

// A file of the test's own in the temporary directory, removed at the end.
class ScratchFile {
public:
    explicit ScratchFile(std::string const& name) : path((fs::temp_directory_path() / name).string())
    {
        fs::remove(path);
    }
    ~ScratchFile()
    {
        std::error_code ignored;
        fs::remove(path, ignored);
    }
    ScratchFile(ScratchFile const&) = delete;
    ScratchFile& operator=(ScratchFile const&) = delete;

    std::string Content() const
    {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    void Write(std::string const& content) const { std::ofstream(path, std::ios::binary) << content; }

    std::string const path;
};

}  // namespace

#if defined(_WIN32)

namespace {

// A program built beside the child helper.
std::string SiblingOfChild(std::string const& fileName)
{
    std::string const child = ChildProcess::Path();
    return child.substr(0, child.size() - ChildProcess::FileName().size()) + fileName;
}

}  // namespace

TEST(ProcessIcons, StockIconsAndExecutableIcons)
{
    for (HICON__* (*stock)() : {GetDefaultApplicationIcon, GetDefaultStopSignIcon, GetDefaultQuestionMarkIcon,
                                GetDefaultExclamationPointIcon, GetDefaultAsteriskIcon}) {
        HICON__* const icon = stock();
        EXPECT_NE(icon, nullptr);
        EXPECT_EQ(stock(), icon) << "shared: the same handle each time";
    }
    HICON__* const withIcon = GetExeFileIcon(SiblingOfChild("zk64_process_icon_child.exe").c_str());
    EXPECT_NE(withIcon, nullptr);
    DestroyProcessIcon(withIcon);
    EXPECT_EQ(GetExeFileIcon(ChildProcess::Path().c_str()), nullptr) << "a program without icon resources";
    EXPECT_EQ(GetExeFileIcon(SiblingOfChild("missing.exe").c_str()), nullptr);
    EXPECT_EQ(GetExeFileIcon(ZKString(std::string(300, 'a').c_str())), nullptr);
    DestroyProcessIcon(nullptr);

    ChildProcess child;
    EXPECT_EQ(GetProcessIcon(child.Pid()), nullptr);
    EXPECT_EQ(GetProcessIcon(ProcessHandle{}), nullptr);
}

TEST(ProcessDumps, DumpOfAChildReplacesTheFileAndAFailureLeavesNone)
{
    ChildProcess child;
    ScratchFile const dump("zk64-child.dmp");
    dump.Write("old content");
    // Bits above the low 32 are not the system's: they must not reach it.
    unsigned long long const normal = 0xFFFFFFFF00000000ull;
    ASSERT_TRUE(CreateProcessDumpFile(dump.path.c_str(), child.Pid(), normal));
    std::string const written = dump.Content();
    EXPECT_EQ(written.substr(0, 4), "MDMP");
    EXPECT_GT(written.size(), 1000u);

    // No process to dump: the file made for it, and the dump it replaced,
    // are gone.
    EXPECT_FALSE(CreateProcessDumpFile(dump.path.c_str(), ProcessHandle{}, normal));
    EXPECT_FALSE(fs::exists(dump.path));
    EXPECT_FALSE(CreateProcessDumpFile(dump.path.c_str(), 0ul, normal)) << "no process 0 to open";
    EXPECT_FALSE(CreateProcessDumpFile((dump.path + "\\in\\no\\directory.dmp").c_str(), GetCurrentProcessHandle(), normal));
}

#else

TEST(ProcessIcons, LinuxHasNoIconsAndNoDumps)
{
    for (HICON__* (*stock)() : {GetDefaultApplicationIcon, GetDefaultStopSignIcon, GetDefaultQuestionMarkIcon,
                                GetDefaultExclamationPointIcon, GetDefaultAsteriskIcon}) {
        EXPECT_EQ(stock(), nullptr);
    }
    EXPECT_EQ(GetExeFileIcon(ChildProcess::Path().c_str()), nullptr);
    EXPECT_EQ(GetProcessIcon(GetCurrentProcessID()), nullptr);
    EXPECT_EQ(GetProcessIcon(GetCurrentProcessHandle()), nullptr);
    DestroyProcessIcon(nullptr);

    ChildProcess child;
    ScratchFile const dump("zk64-child.dmp");
    EXPECT_FALSE(CreateProcessDumpFile(dump.path.c_str(), child.Pid(), 2ull));
    EXPECT_FALSE(CreateProcessDumpFile(dump.path.c_str(), GetCurrentProcessHandle(), 2ull));
    EXPECT_FALSE(fs::exists(dump.path)) << "no file left behind";
}

#endif

TEST(ProcessDumps, NameFormNeverWrites)
{
    ScratchFile const dump("zk64-by-name.dmp");
    EXPECT_FALSE(CreateProcessDumpFile(dump.path.c_str(), ZKString("no-such-process.exe"), 2ull));
    EXPECT_FALSE(fs::exists(dump.path));
}
