// tour: a short walk through what the library does, on built-in defaults.

#include <iostream>

#include "Commands.h"

namespace zk {

void AddTour(CLI::App& app, Options& options)
{
    auto* tour = app.add_subcommand("tour", "a short tour on built-in defaults: this system, a PE image, "
                                            "strings, a directory count, processes and a noise picture");
    static std::string image, directory, picture = "zk-noise.png";
    tour->add_option("--pe", image, "the PE image to read (default: this program)");
    tour->add_option("--dir", directory, "the directory to count (default: the system's)");
    tour->add_option("--picture", picture, "where the noise picture goes")->capture_default_str();
    tour->callback([&options] {
        std::string const self = Std(GetCurrentProcessExePath());
        bool const windowsPaths = Separator() == '\\';
        std::string const root = !directory.empty() ? directory : windowsPaths ? "C:\\windows" : "/usr/share";
        Value report = Value::Record();
        auto const step = [&](std::string const& title, std::string const& command, auto const& make) {
            if (!options.json) std::cout << "== " << title << "   (" << command << ")\n";
            try {
                Value part = make();
                if (!options.json) PrintHuman(std::cout, part), std::cout << '\n';
                report.Add(title, part);
            } catch (Failure const& failure) {
                Warn(options, failure.what());
            }
        };
        step("system", "zk info", [] { return InfoReport(); });
        std::string const pe = image.empty() ? self : image;
        step("PE image", "zk pe --summary " + pe, [&] { return PeReport(pe, true); });
        step("strings", "zk strings -n 12 " + self, [&] {
            ZKContainer<ZKString> found = FindStrings(self, 12, false);
            Value part = Value::Record();
            part.Add("file", Value::Text(self))
                .Add("strings of 12 bytes or more", Value::Unsigned(found.GetItemCount()));
            Value first = Value::List();
            for (unsigned long long i = 0; i < found.GetItemCount() && i < 5; ++i)
                first.Push(Value::Text(found.GetItem(i).GetString()));
            return part.Add("the first", first);
        });
        step("directory", "zk find --count -r " + root, [&] {
            unsigned long long files = 0, dirs = 0;
            std::string const pattern = root + Separator() + "*";
            GetNumberOfFilesAndDirs(ZKString(pattern.c_str()), files, dirs, true);
            Value part = Value::Record();
            return part.Add("directory", Value::Text(root))
                .Add("files", Value::Unsigned(files))
                .Add("directories", Value::Unsigned(dirs));
        });
        step("processes", "zk ps", [&] {
            ZKContainer<ProcessInfo> processes;
            GetAllProcesses(processes);
            Value part = Value::Record();
            part.Add("running", Value::Unsigned(processes.GetItemCount()))
                .Add("this one", Value::Unsigned(GetCurrentProcessID()));
            return part;
        });
        step("noise", "zk noise --seed 7 -o " + picture,
             [&] { return NoisePicture(picture, 256, 6, 7, ZKColor::Navy(), ZKColor::Amber()); });
        if (options.json) PrintJson(std::cout, report);
    });
}

}  // namespace zk
