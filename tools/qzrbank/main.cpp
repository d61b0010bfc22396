// qzrbank: lists, shows, describes (info), checks, converts, edits, compares and imports the
// bank files of QZRMachine.
// This file only binds the process's standard streams to the command line of CommandLine.h.
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "CommandLine.h"
#include "Commands.h"

namespace {

// Writes what a command gave for standard output; every byte must reach it.
int Finished(int exitCode, const std::string& output) {
    errno = 0;
    if (std::fwrite(output.data(), 1, output.size(), stdout) != output.size() ||
        std::fflush(stdout) != 0) {
        std::cerr << "qzrbank: standard output: "
                  << (errno != 0 ? std::generic_category().message(errno) : "write error") << '\n';
        return qzrbank::kExitError;
    }
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    std::ostringstream out;
    const int code = qzrbank::RunCommandLine(arguments, std::cin, out, std::cerr);
    return Finished(code, out.str());
}
