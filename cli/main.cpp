// zk: the zk64 library from a terminal.

#include <exception>
#include <iostream>

#include "Commands.h"

int main(int argc, char** argv)
{
    using namespace zk;
    CLI::App app{"zk: what the zk64 library does, from a terminal (zk COMMAND "
                 "--help for each command)",
                 "zk"};
    app.require_subcommand(1);
    app.fallthrough();  // --json may come after the command
    app.set_version_flag("--version", std::string(GetZKName()) + " " + GetZKVersion());
    app.failure_message([](CLI::App const*, CLI::Error const& e) {
        return std::string("zk: ") + e.what() + " (zk --help lists the commands)\n";
    });
    Options options;
    app.add_flag("--json", options.json, "print JSON for scripts instead of text for people");

    AddInfo(app, options);
    AddPe(app, options);
    AddStrings(app, options);
    AddFind(app, options);
    AddWatch(app, options);
    AddPs(app, options);
    AddWindows(app, options);
    AddHash(app, options);
    AddMsg(app, options);
    AddColor(app, options);
    AddNoise(app, options);
    AddTour(app, options);

    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& e) {
        return app.exit(e) == 0 ? 0 : 2;
    } catch (Failure const& e) {
        std::cout.flush();
        std::cerr << "zk: " << e.what() << std::endl;
        return 1;
    } catch (std::exception const& e) {
        std::cout.flush();
        std::cerr << "zk: " << e.what() << std::endl;
        return 1;
    }
    return options.exitCode;
}
