// The zk command end to end: each case runs the program that sits beside this
// one and checks its exit code and the key lines of what it prints.

#include <zk64/zk64.h>

#include <gtest/gtest.h>
#include <png.h>

#include <cstdlib>
#include <regex>
#include <thread>

#include "files/TempFiles.h"
#include "processes/ChildProcess.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace {

using zk64::test::TempDir;

struct Outcome {
    int code;
    std::string out;
    std::string err;
};

std::string Quote(std::string const& text) { return "\"" + text + "\""; }

// The PE samples live in the source tree; under Wine its Unix path is
// reached through drive Z:.
std::string Sample(std::string const& name)
{
#if defined(_WIN32)
    return "Z:" ZK64_PE_SAMPLES "/" + name;
#else
    return ZK64_PE_SAMPLES "/" + name;
#endif
}

// zk sits beside this program.
std::string ZkPath()
{
    std::string path = GetCurrentProcessExePath().GetString();
    return path.replace(path.find_last_of("/\\") + 1, std::string::npos, "zk");
}

class ZkCommand : public ::testing::Test {
protected:
    TempDir scratch{"cli"};

    Outcome Zk(std::string const& arguments) const
    {
        std::string command =
            Quote(ZkPath()) + " " + arguments + " >" + Quote(scratch.Path("out")) + " 2>" + Quote(scratch.Path("err"));
#if defined(_WIN32)
        int const code = std::system(("\"" + command + "\"").c_str());  // cmd /c strips the outer quotes
#else
        int const status = std::system(command.c_str());
        int const code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
        // Windows programs write their text with CR LF line ends.
        auto const text = [&](char const* file) {
            return std::regex_replace(scratch.Read(file), std::regex("\r\n"), "\n");
        };
        return {code, text("out"), text("err")};
    }
};

struct Case {
    char const* arguments;  // $T: the scratch directory, $S: the PE samples
    int code;
    char const* out;  // a regular expression the output must contain
    char const* err;  // the same for standard error; "" means nothing at all
};

std::string Expand(std::string text, std::string const& scratch)
{
    for (auto const& [from, to] : {std::pair<std::string, std::string>{"$T", scratch}, {"$S", Sample("")}})
        for (size_t at; (at = text.find(from)) != std::string::npos;) text.replace(at, 2, to);
    return text;
}

TEST_F(ZkCommand, CommandsAnswerAsDocumented)
{
    scratch.Write("bytes.bin", std::string("w\0i\0d\0e\0n\0e\0d\0\0\0\x01hello world\x02"
                                           "ab\x01\x01tail run",
                                           41));
    scratch.Write("not-a-pe.txt", "text");
    std::filesystem::create_directories(scratch.Path("tree/sub"));
    scratch.Write("tree/sub/inner.txt", "1");
    scratch.Write("tree/top.txt", "2");
#if !defined(_WIN32)
    std::filesystem::create_directories(scratch.Path("names"));
    scratch.Write("names/a\xED\xA0\x80"
                  "b",
                  "");
#endif
    // Wine's session process list is empty: zk lists nothing there.
    bool const wine = RunningUnderWine();
    std::string const modules = "ps --modules " + std::to_string(GetCurrentProcessID());
    std::string const memory = "ps --memory " + std::to_string(GetCurrentProcessID());
    Case const cases[] = {
        {"info", 0, "version: +0\\.0\\.20\\.5\\.16\n", ""},
        {"--json info", 0, "\"library\": \"Zenkor\"", ""},
        {"info --json", 0, "\"debugger attached\": false", ""},
        {"pe $Sapp-x86_64.exe", 0, "format: +PE32\\+\n(.|\n)*KERNEL32\\.dll(.|\n)*ExitProcess", ""},
        {"pe $Slib-i686.dll", 0, "format: +PE32\n(.|\n)*exports \\(3\\):(.|\n)*1 .*alpha\n.*2 .*beta\n.*3 .*gamma_",
         ""},
        {"pe --summary $Sapp-i686.exe $Smissing.exe $Slib-x86_64.dll", 1, "app-i686\\.exe .*PE32 .*\n.*lib-x86_64",
         "^zk: .*missing\\.exe: no such file\n$"},
        {"pe $Tnot-a-pe.txt", 1, "^$", "takes only files named \\*\\.exe or \\*\\.dll"},
        {"--json pe $Slib-x86_64.dll", 0, "\"name\": \"gamma_\"", ""},
        {"strings $Tbytes.bin", 0, "^hello world\n$", ""},
        {"strings -n 2 --wide $Tbytes.bin", 0, "^widened\nhello world\nab\n$", ""},
        {"strings $Tmissing.bin", 1, "^$", "^zk: .*missing\\.bin: no such file\n$"},
        {"find $Ttree -r --files", 0, "inner\\.txt\n(.|\n)*top\\.txt\n|top\\.txt\n(.|\n)*inner\\.txt\n", ""},
        {"find $Ttree inner -r", 0, "^[^\n]*inner\\.txt\n$", ""},
        {"find $Ttree --count -r", 0, "files: +2\ndirectories: +1\n", ""},
        {"find $Ttree --count -r --exclude sub", 0, "files: +1\ndirectories: +1\n", ""},
        {"find $Tnowhere", 1, "^$", "^zk: .*nowhere: no such directory\n$"},
        {"ps", 0, wine ? "^$" : "pid +session +name\n", ""},
        {modules.c_str(), 0, "modules \\([0-9]+\\):\n(.|\n)*zk64_cli_tests", ""},
        {"ps --modules 4294967295", 1, "^$", "^zk: ps: no process has the id 4294967295\n$"},
        {"ps --memory 12x", 1, "^$", "^zk: process id '12x' is not a number\n$"},
        {memory.c_str(), 0, " [0-9]+\\.[0-9] KiB +(commit|reserve|free)", ""},
        {"--json strings $Tnot-a-pe.txt", 0, "^\\[\\]\n$", ""},
        {"ps --priority 1 upwards", 1, "^$", "."},
        {"hash -l 6 wxyz", 0, "digest: 1D3A1D\n", ""},
        {"hash", 1, "^$", "give a TEXT"},
        {"msg 15", 0, "name: +WM_PAINT\n", ""},
        {"msg 0x400", 0, "Unknown Windows message: 1024", ""},
        {"msg WM_KEYDOWN", 0, "number: 0x0100\n", ""},
        {"msg WM_NOTHING", 1, "^$", "no window message is named 'WM_NOTHING'"},
        {"color Crimson", 0, "rgba: 220,20,60,255\nhex: +#DC143CFF\n", ""},
        {"color 10,20,30", 0, "rgba: 10,20,30,255\n", ""},
        {"color 300,0,0", 1, "^$", "colour component '300' is above 255"},
        {"noise --size 7 -o $Tnowhere/x.png", 1, "^$", "x\\.png: the picture cannot be written"},
        {"", 2, "^$", "^zk: "},
        {"bogus", 2, "^$", "^zk: "},
        {"noise --size many -o $Tx.png", 2, "^$", "^zk: [^\n]*--size[^\n]*\n$"},
        {"--help", 0, "pe(.|\n)*strings(.|\n)*watch(.|\n)*noise", ""},
#if defined(_WIN32)
        {"windows --all", 0, "", ""},
#else
        // Bytes that are not UTF-8 (here a surrogate's) become U+0080..U+00FF in JSON.
        {"--json find $Tnames", 0, "\"path\": \"[^\"]*a\\\\u00ED\\\\u00A0\\\\u0080b\"", ""},
        {"windows", 1, "^$", "^zk: windows: the desktop is not available on this system\n$"},
#endif
    };
    for (Case const& c : cases) {
        std::string const arguments = Expand(c.arguments, scratch.Path(""));
        SCOPED_TRACE("zk " + arguments);
        Outcome const run = Zk(arguments);
        EXPECT_EQ(run.code, c.code) << run.err;
        EXPECT_TRUE(std::regex_search(run.out, std::regex(c.out))) << run.out;
        if (*c.err == '\0')
            EXPECT_EQ(run.err, "");
        else
            EXPECT_TRUE(std::regex_search(run.err, std::regex(c.err))) << run.err;
    }
}

// Decodes a PNG file: its width and height, and its pixels.
std::pair<png_image, std::vector<unsigned char>> Decode(std::string const& path)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    std::vector<unsigned char> pixels;
    if (png_image_begin_read_from_file(&image, path.c_str())) {
        image.format = PNG_FORMAT_RGBA;
        pixels.resize(PNG_IMAGE_SIZE(image));
        if (!png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr)) pixels.clear();
    }
    return {image, pixels};
}

TEST_F(ZkCommand, NoiseAndTheTourWritePictures)
{
    std::string const a = scratch.Path("a.png"), b = scratch.Path("b.png"), tour = scratch.Path("tour.png");
    EXPECT_EQ(Zk("noise --size 48 --octaves 3 --seed 5 --from Red --to 0,0,255 -o " + Quote(a)).code, 0);
    EXPECT_EQ(Zk("noise --size 48 --octaves 3 --seed 5 --from Red --to 0,0,255 -o " + Quote(b)).code, 0);
    auto const [image, pixels] = Decode(a);
    ASSERT_EQ(pixels.size(), 48u * 48u * 4u);
    EXPECT_EQ(image.width, 48u);
    EXPECT_EQ(image.height, 48u);
    EXPECT_EQ(Decode(b).second, pixels) << "one seed, one picture";
    // Every pixel lies on the gradient from red to blue: green 0, opaque,
    // red and blue summing to about 255.
    for (size_t i = 0; i < pixels.size(); i += 4) {
        ASSERT_EQ(pixels[i + 1], 0);
        ASSERT_EQ(pixels[i + 3], 255);
        ASSERT_NEAR(pixels[i] + pixels[i + 2], 255, 1);
    }
    Outcome const run = Zk("tour --pe " + Quote(Sample("app-x86_64.exe")) + " --dir " + Quote(scratch.Dir()) +
                           " --picture " + Quote(tour));
    EXPECT_EQ(run.code, 0) << run.err;
    for (char const* title : {"== system", "== PE image", "== strings", "== directory", "== processes", "== noise"})
        EXPECT_NE(run.out.find(title), std::string::npos) << title;
    EXPECT_EQ(Decode(tour).first.width, 256u);
}

TEST_F(ZkCommand, WatchReportsChangesUntilItsTimeIsUp)
{
    std::string const root = scratch.Path("watched");
    std::filesystem::create_directories(root + "/sub");
    std::thread changes([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        scratch.Write("watched/new.txt", "x");
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        scratch.Write("watched/sub/deep.txt", "x");  // not watched without --subtree
    });
    Outcome const run = Zk("--json watch " + Quote(root) + " --seconds 4");
    changes.join();
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(std::regex_search(
        run.out, std::regex("\\{\"time\":\"[0-9:]{8}\",\"action\":\"added\",\"name\":\"new\\.txt\"\\}\n")))
        << run.out;
    EXPECT_EQ(run.out.find("deep.txt"), std::string::npos) << run.out;
#if !defined(_WIN32)
    // Ctrl-C ends it cleanly.
    std::string const command = "(" + Quote(ZkPath()) + " watch " + Quote(root) + " 2>" + Quote(scratch.Path("err")) +
                                " & sleep 1; kill -INT $!; wait $!)";
    int const status = std::system(command.c_str());
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(scratch.Read("err"), "watching " + root + " (Ctrl-C ends)\n");
#endif
    EXPECT_EQ(Zk("watch " + Quote(root) + " --filter colour --seconds 1").err,
              "zk: watch: no filter is named 'colour'\n");
}

}  // namespace
