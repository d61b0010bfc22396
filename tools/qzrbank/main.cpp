// qzrbank: lists, shows, describes (info), checks, converts, edits, compares and imports the
// bank files of QZRMachine.
// This file only binds the process's standard streams to the command line of CommandLine.h.
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <streambuf>
#include <string>
#include <system_error>
#include <vector>

#include "CommandLine.h"
#include "Commands.h"

namespace {

// Standard output as a command writes it, handed to the C library's stream as it comes, so that
// a long report is never held whole; every byte must reach it.
class StandardOutput : public std::streambuf {
  public:
    // The error of the first write that failed, or of the final flush; 0 when every byte went.
    int Finish() {
        errno = 0;
        if (std::fflush(stdout) != 0 && m_error == 0) {
            m_error = errno != 0 ? errno : -1;
        }
        return m_error;
    }

  protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        errno = 0;
        if (std::fwrite(text, 1, static_cast<size_t>(size), stdout) != static_cast<size_t>(size) &&
            m_error == 0) {
            m_error = errno != 0 ? errno : -1;
        }
        return size;
    }

    int_type overflow(int_type c) override {
        if (!traits_type::eq_int_type(c, traits_type::eof())) {
            const char byte = traits_type::to_char_type(c);
            xsputn(&byte, 1);
        }
        return traits_type::not_eof(c);
    }

  private:
    int m_error = 0;
};

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    StandardOutput output;
    std::ostream out(&output);
    const int code = qzrbank::RunCommandLine(arguments, std::cin, out, std::cerr);
    const int error = output.Finish();
    if (error != 0) {
        std::cerr << "qzrbank: standard output: "
                  << (error > 0 ? std::generic_category().message(error) : "write error") << '\n';
        return qzrbank::kExitError;
    }
    return code;
}
