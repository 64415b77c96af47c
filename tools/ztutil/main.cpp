// ztutil: the command-line face of ZtUtilities. Dispatches to the registered commands.
#include "tools/ztutil/registry.h"

#include "Util/Version.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

namespace ztutil {

std::vector<Command>& Commands() {
    static std::vector<Command> commands;
    return commands;
}

std::vector<DemoSection>& DemoSections() {
    static std::vector<DemoSection> sections;
    return sections;
}

int UsageError(const char* usage, const std::string& problem) {
    if (!problem.empty())
        std::cerr << "ztutil: " << problem << "\n";
    std::cerr << "usage: ztutil " << usage << "\n";
    return 2;
}

} // namespace ztutil

namespace {

std::vector<ztutil::Command> SortedCommands() {
    auto commands = ztutil::Commands();
    std::sort(commands.begin(), commands.end(),
              [](const auto& a, const auto& b) { return std::strcmp(a.name, b.name) < 0; });
    return commands;
}

void PrintHelp(std::ostream& out) {
    out << "ztutil " ZTUTIL_VERSION " - command-line tool of the ZtUtilities library\n\n"
        << "usage: ztutil [--help | --version] <command> [arguments]\n\n"
        << "commands:\n";
    for (const auto& c : SortedCommands()) {
        out << "  " << c.usage << "\n      " << c.summary << "\n";
    }
}

int RunDemo(const std::vector<std::string>& args) {
    if (!args.empty())
        return ztutil::UsageError("demo", "demo takes no arguments");
    auto sections = ztutil::DemoSections();
    std::stable_sort(sections.begin(), sections.end(),
                     [](const auto& a, const auto& b) { return a.order < b.order; });
    std::cout << "ZtUtilities " ZTUTIL_VERSION " demo\n";
    for (const auto& s : sections) {
        std::cout << "\n== " << s.title << " ==\n";
        s.run(std::cout);
    }
    return 0;
}

// Output that could not be written (a full disk, a closed pipe, /dev/full) is a failure: the
// caller would otherwise take a truncated result for a whole one.
int CheckedExit(int status) {
    std::cout.flush();
    errno = 0;
    const bool flushed = std::fflush(stdout) == 0;
    const int error = errno;
    if (flushed && std::cout && !std::ferror(stdout))
        return status;
    std::cerr << "ztutil: cannot write to standard output"
              << (error != 0 ? std::string(": ") + std::strerror(error) : std::string()) << "\n";
    return status != 0 ? status : 1;
}

int Dispatch(int argc, char** argv) {
    if (argc < 2) {
        PrintHelp(std::cerr);
        return 2;
    }
    std::string first = argv[1];
    if (first == "--help" || first == "-h" || first == "help") {
        PrintHelp(std::cout);
        return 0;
    }
    if (first == "--version") {
        std::cout << "ztutil " ZTUTIL_VERSION "\n";
        return 0;
    }
    std::vector<std::string> args(argv + 2, argv + argc);
    for (const auto& c : ztutil::Commands()) {
        if (first == c.name) {
            try {
                return c.run(args);
            } catch (const std::exception& e) {
                std::cerr << "ztutil: " << c.name << ": " << e.what() << "\n";
                return 1;
            }
        }
    }
    std::cerr << "ztutil: unknown command '" << first << "'\n";
    std::cerr << "run 'ztutil --help' for the list of commands\n";
    return 2;
}

} // namespace

ZTUTIL_COMMAND(demo, "demo", "Walk through what the library can do", RunDemo);

int main(int argc, char** argv) {
    return CheckedExit(Dispatch(argc, argv));
}
