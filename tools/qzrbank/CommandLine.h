// The command line of qzrbank: the commands and their options, the parse, and the call of the
// command's function of Commands.h.
#ifndef QZRBANK_COMMANDLINE_H
#define QZRBANK_COMMANDLINE_H

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace qzrbank {

// Runs qzrbank with these arguments (those after the program's name): what the command gives for
// standard output goes to out (--help and --version too), its errors to err, and `check -` reads
// in. Returns the exit code (Commands.h); a usage error is one line on err and kExitError.
int RunCommandLine(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
                   std::ostream& err);

}  // namespace qzrbank

#endif  // QZRBANK_COMMANDLINE_H
