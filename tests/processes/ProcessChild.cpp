// A child process for the process tests: with "--exit" it ends at once;
// otherwise it sleeps until it is killed (at most a minute).

#include <chrono>
#include <cstring>
#include <thread>

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--exit") == 0) return 0;
    std::this_thread::sleep_for(std::chrono::seconds(60));
    return 0;
}
