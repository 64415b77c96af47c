// Registration of ztutil's commands and demo sections.
//
// Each subsystem adds its own commands and demo section from its own source file with
// ZTUTIL_COMMAND and ZTUTIL_DEMO; main.cpp only dispatches. A command receives the
// arguments after its name and returns the process exit status: 0 on success, 1 on
// failure, 2 on a usage error (after printing its usage to standard error).
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace ztutil {

using CommandFn = int (*)(const std::vector<std::string>& args);
using DemoFn = void (*)(std::ostream& out);

struct Command {
    const char* name;
    const char* usage;
    const char* summary;
    CommandFn run;
};

struct DemoSection {
    int order;
    const char* title;
    DemoFn run;
};

std::vector<Command>& Commands();
std::vector<DemoSection>& DemoSections();

struct CommandRegistrar {
    CommandRegistrar(const char* name, const char* usage, const char* summary, CommandFn fn) {
        Commands().push_back({name, usage, summary, fn});
    }
};

struct DemoRegistrar {
    DemoRegistrar(int order, const char* title, DemoFn fn) {
        DemoSections().push_back({order, title, fn});
    }
};

// Prints "usage: ztutil <usage>" to standard error and returns the usage-error status.
int UsageError(const char* usage, const std::string& problem);

} // namespace ztutil

#define ZTUTIL_COMMAND(name, usage, summary, fn)                                                   \
    static ::ztutil::CommandRegistrar ztutilCommand_##name(#name, usage, summary, fn)

#define ZTUTIL_DEMO(order, title, fn)                                                              \
    static ::ztutil::DemoRegistrar ztutilDemo_##order(order, title, fn)
