// Bank files as the tool names and opens them: paths in the form the OS takes, the reason a
// file cannot be read, and what kind of bank the library's header recognition takes it for.
#ifndef QZRBANK_BANKFILES_H
#define QZRBANK_BANKFILES_H

#include <string>

namespace qzrbank {

// Paths as the tool is given them may use the backslash of the bank paths; on POSIX the
// library maps it to '/', and so does the tool before it touches a file itself.
std::string NativePath(const std::string& path);

// Why the file system cannot tell what a path is, in the system's words ("No such file or
// directory", "Permission denied"); empty when it can.
std::string StatusProblem(const std::string& path);

// Why a path cannot be read as a bank file, in the system's words ("No such file or
// directory", "Permission denied", "is a folder", "not a regular file"); empty when it can.
// A FIFO or a device is refused without being opened, as the library refuses it.
std::string ReadProblem(const std::string& path);

// The name of a qzr::bank::BankKind value; "not a bank" for -1.
const char* BankKindName(int kind);

// A file's header as a new load/save front recognises it.
struct Recognition {
    bool recognized = false;
    int kind = -1;  // a qzr::bank::BankKind value, or -1 when no loader recognises the header
    int version = -1;
    int format = -1;
    int type = -1;
};
Recognition RecognizeBankFile(const std::string& path);

}  // namespace qzrbank

#endif  // QZRBANK_BANKFILES_H
