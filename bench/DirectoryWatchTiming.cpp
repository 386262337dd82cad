// Directory watching, timed: latency from a file creation to its callback
// with 1 and with 8 watched directories, and the process's CPU time while
// one directory is watched and nothing changes. A plain program (the service
// is process-wide and its records stay listed, which suits no benchmark
// loop); it prints one line per figure. std::clock is the process's CPU
// time on Linux only (on Windows it counts wall time).

#include <zk64/zk64.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

std::atomic<long long> arrivedAt{0};

void Arrived(DirChangeStruct const&) { arrivedAt = Clock::now().time_since_epoch().count(); }

fs::path FreshDirectory(std::string const& name)
{
    fs::path const path = fs::temp_directory_path() / ("zk64-timing-" + name + "-" + std::to_string(std::random_device{}()));
    fs::create_directories(path);
    return path;
}

// Median milliseconds from creating a file in the first directory to its
// callback, over `rounds` creations.
double MedianLatency(int directories, int rounds)
{
    InitDirectoryWatching();
    std::vector<fs::path> paths;
    for (int i = 0; i < directories; ++i) {
        paths.push_back(FreshDirectory(std::to_string(directories) + "-" + std::to_string(i)));
        AddDirectoryToWatchForChanges(ZKString(paths.back().string().c_str()), Arrived, 0x1, false);
    }
    std::vector<double> samples;
    for (int round = 0; round < rounds; ++round) {
        arrivedAt = 0;
        auto const start = Clock::now();
        std::ofstream(paths[0] / ("f" + std::to_string(round))).put('x');
        while (arrivedAt == 0 && Clock::now() - start < std::chrono::seconds(30)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        samples.push_back(std::chrono::duration<double, std::milli>(Clock::duration(arrivedAt.load()) -
                                                                    start.time_since_epoch())
                              .count());
    }
    CleanupDirectoryWatching();
    for (auto const& path : paths) fs::remove_all(path);
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}

}  // namespace

int main()
{
    std::printf("latency, 1 directory:  median %.1f ms over 7 changes\n", MedianLatency(1, 7));
    std::printf("latency, 8 directories: median %.1f ms over 5 changes\n", MedianLatency(8, 5));

    InitDirectoryWatching();
    fs::path const idle = FreshDirectory("idle");
    AddDirectoryToWatchForChanges(ZKString(idle.string().c_str()), Arrived, 0x1, false);
    std::clock_t const cpuStart = std::clock();
    auto const wallStart = Clock::now();
    std::this_thread::sleep_for(std::chrono::seconds(10));
    double const cpu = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
    double const wall = std::chrono::duration<double>(Clock::now() - wallStart).count();
    CleanupDirectoryWatching();
    fs::remove_all(idle);
    std::printf("idle, 1 directory: %.4f s CPU over %.1f s (%.3f %%)\n", cpu, wall, 100.0 * cpu / wall);
}
