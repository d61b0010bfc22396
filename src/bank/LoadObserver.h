// LoadObserver: what the bank loaders see, told as they see it. A tool that checks banks
// installs one for a load and learns, from the loader itself, which header it recognised, which
// rows and sections it kept or passed over and why, which values came from elsewhere than a
// reader of the file would expect, and how many machines it read against the count the file
// declares. Hosts never see it: the exported API has no observer, and a load without one pays
// a null test per line at most.
//
// Line numbers count the file's lines from 1 as a text editor does (a line longer than a
// loader's limit is read in pieces, and every piece carries the number of its line).
#ifndef QZR_BANK_LOADOBSERVER_H
#define QZR_BANK_LOADOBSERVER_H

#include <string>
#include <string_view>

namespace qzr::bank {

// The header of a file as recognition read it, and whether the load went on with it.
struct HeaderSeen {
    std::string_view path;
    int bankKind = -1;  // a BankKind value, or -1 when the file is no bank
    int version = -1;
    int format = -1;
    int type = -1;
    bool accepted = false;  // false: the file is not of the kind this load reads
};

// What a legacy loader made of one line piece.
enum class LegacyLine {
    kRowLoaded,        // a machine row, handed to the catalogue
    kRowTooFewFields,  // a row with fewer fields than its layout needs: skipped
    kRowIdNotOne,      // a user-bank row whose ID is not 1: skipped
    kRowNotAdded,      // a row the catalogue did not take (a catalogue without a store)
    kDatabaseMarker,   // the marker that opens the rows; never a row itself
    kVersionLine,      // a line holding "Version": sets the file version, never a row
    kTotalNoLine,      // "TotalNo" after the header of a user bank: the load fails here
    kEndMarker,        // "[EOF]": the load ends here
};

struct LegacyLineSeen {
    std::string_view path;
    long line = 0;
    LegacyLine what = LegacyLine::kRowLoaded;
    int fileVersion = 0;  // the catalogue's file version after this line (it picks the layout)
};

// One machine section of a sectioned bank, by its number n in "[Machine-n]".
struct SectionSeen {
    std::string_view path;
    long number = 0;
    long line = 0;        // the section's first header line; 0 when the file has none
    bool loaded = false;  // false: the load stops here (no header, or no Maker or Grade)
};

// A key that a machine section lacks, answered by the first line with that key after the
// section's header, which lies in a later section: the machine takes the other one's value.
struct KeyFromLaterSection {
    std::string_view path;
    long number = 0;  // the section that lacks the key
    std::string_view key;
    long line = 0;  // where the value was found
};

// A line longer than a loader's limit, read as several pieces.
struct LineCut {
    std::string_view path;
    long line = 0;
    size_t limit = 0;  // characters per piece
};

// The machines a file gave, against the number its header declares ("TotalMachine" of a
// sectioned bank, "TotalNo" of a legacy system bank).
struct MachineCount {
    std::string_view path;
    long read = 0;
    long declared = 0;
    bool hasDeclared = false;
};

// A value that a reader found but could not read as the number its field holds: the field
// keeps what the reader's rule gives it instead (for a sectioned bank the previous number of
// the same kind in that section, or 0; for a legacy row whatever the row's conversion left).
struct FieldNotConverted {
    std::string_view path;
    long line = 0;    // the line that holds the value
    long number = 0;  // the section number n of "[Machine-n]", or 0 for a legacy row
    // The field's key in the sectioned format, or its legacy column title (the nozzle columns,
    // which have none, by their field's name: "NozzleSpecification.Value1").
    std::string_view field;
    std::string_view value;  // the text as the reader saw it
};

class LoadObserver {
  public:
    virtual ~LoadObserver() = default;
    virtual void OnHeader(const HeaderSeen&) {}
    virtual void OnLegacyLine(const LegacyLineSeen&) {}
    virtual void OnSection(const SectionSeen&) {}
    virtual void OnKeyFromLaterSection(const KeyFromLaterSection&) {}
    virtual void OnLineCut(const LineCut&) {}
    virtual void OnMachineCount(const MachineCount&) {}
    virtual void OnFieldNotConverted(const FieldNotConverted&) {}
};

// The observer of the loads on this thread, or null (the usual case).
LoadObserver* CurrentLoadObserver();

// Installs an observer for every load on this thread while the object lives.
class ScopedLoadObserver {
  public:
    explicit ScopedLoadObserver(LoadObserver* observer);
    ~ScopedLoadObserver();
    ScopedLoadObserver(const ScopedLoadObserver&) = delete;
    ScopedLoadObserver& operator=(const ScopedLoadObserver&) = delete;

  private:
    LoadObserver* m_previous;
};

}  // namespace qzr::bank

#endif  // QZR_BANK_LOADOBSERVER_H
