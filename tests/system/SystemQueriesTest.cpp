// System queries on the real backend: relations that hold on any machine,
// natively on Linux and for the DLL under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cerrno>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

void SetSystemLastError(unsigned long code)
{
#if defined(_WIN32)
    ::SetLastError(code);
#else
    errno = static_cast<int>(code);
#endif
}

}  // namespace

TEST(SystemQueries, KilobyteFormsAreTheByteCountsShiftedRight)
{
    unsigned long long const total = GetSystemPhysicalMemoryTotalBytes();
    EXPECT_GT(total, 64ull << 20);
    EXPECT_EQ(GetSystemPhysicalMemoryTotalKB(), total >> 10);
    unsigned long long const pageFile = GetSystemPageFileSizeBytes();
    EXPECT_GE(pageFile, total) << "the page-file figure counts physical memory too";
    EXPECT_LE(GetSystemPhysicalMemoryAvailableKB(), GetSystemPhysicalMemoryTotalKB());
    EXPECT_LE(GetMemoryLoadPercent(), 100u);
}

TEST(SystemQueries, AddressRangeAndProcessor)
{
    unsigned long long const low = GetSystemMinApplicationAddress();
    unsigned long long const high = GetSystemMaxApplicationAddress();
    EXPECT_GT(low, 0u);
    EXPECT_GT(high, low);
    EXPECT_LT(high, 1ull << 48) << "a 64-bit user address space";
#if defined(__x86_64__)
    EXPECT_EQ(GetProcessorArchitecture(), ProcessorArchitectureX64);
#endif
#if defined(_WIN32)
    // Windows x64 and Wine alike.
    EXPECT_EQ(low, 0x10000u);
    EXPECT_EQ(high, 0x7FFFFFFEFFFFu);
#endif
}

TEST(SystemQueries, NamesAreNonEmptyAndFitTheirBuffers)
{
    ZKString const computer = GetComputerNameLocal();
    EXPECT_TRUE(computer.IsNotEmpty());
    EXPECT_LE(computer.GetSize(), 15);
    ZKString const user = GetCurrentUserName();
    EXPECT_TRUE(user.IsNotEmpty());
    EXPECT_LE(user.GetSize(), 256);
    EXPECT_FALSE(IsDebuggerAttached()) << "tests run without a debugger";
}

TEST(SystemQueries, ErrorTextForAKnownCode)
{
    unsigned long code = 0;
    SetSystemLastError(2);  // "file not found" on both systems
    ZKString const plain = GetLastErrorMsg(&code, "");
    EXPECT_EQ(code, 2u);
    ASSERT_TRUE(plain.IsNotEmpty());

    SetSystemLastError(2);
    ZKString const prefixed = GetLastErrorMsg(nullptr, "open:");
    EXPECT_EQ(std::string(prefixed.GetString()), std::string("open: ") + plain.GetString());
#if defined(_WIN32)
    // Windows' texts end in a line break, kept as given. (Wine's wording
    // differs from Windows': "File not found." against "The system cannot
    // find the file specified.")
    EXPECT_EQ(std::string(plain.GetString()).substr(static_cast<std::size_t>(plain.GetSize()) - 2), "\r\n");
#else
    EXPECT_EQ(std::string(plain.GetString()), "No such file or directory");
#endif
}
