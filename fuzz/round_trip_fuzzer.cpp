// Load, save, load, save: the first byte of the input picks the load member (legacy system,
// legacy user, IMM user, RTM user, IMM folder, RTM folder), the rest is the bank file. The
// catalogue loaded is saved as the user bank of its format (legacy tabular, sectioned IMM or
// sectioned RTM), that bank is loaded into a fresh catalogue and saved again.
//
// What "the same" means. The formats round numbers on writing ("%6.2f", "%lg", "%lf"), so the
// first load and the second differ in the digits the first save dropped; a save of either
// writes the same text, though, because a number read back from its own text prints as that
// text again. So the two saves, stamped by one fixed clock, must be equal byte for byte.
//
// That holds for every catalogue the format can hold. A loaded catalogue can hold more: the
// formats have no escapes and read lines in pieces, so a text can break its own line when it
// goes out again (a comma in a legacy maker, a marker word in a legacy remark, a sectioned
// value that fits in the piece the reader took it from but not behind the writer's padded
// key). Such catalogues still go through the whole round trip, under the sanitizers, but the
// two saves are compared only when every text and line of the first one is within the
// format's rules (see the Representable functions).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <QZRMachine/QZRIM.h>
#include <QZRMachine/QZRMoldingMachineCtrl.h>
#include <QZRMachine/QZRMoldingMachineIO.h>

#include "FuzzSupport.h"
#include "support/FixedClock.h"

namespace {

enum class Format { kLegacy, kIMM, kRTM };

// The longest line (without its line end) each format's reader takes whole.
constexpr size_t kLegacyLineChars = 1023;
constexpr size_t kSectionedLineChars = 511;

std::vector<std::string_view> CrLfLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = text.find("\r\n");
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
    }
    return lines;
}

bool LinesFit(std::string_view saved, size_t maxChars) {
    for (const std::string_view line : CrLfLines(saved)) {
        if (line.size() > maxChars) {
            return false;
        }
    }
    return true;
}

bool HasAny(std::string_view text, std::string_view characters) {
    return text.find_first_of(characters) != std::string_view::npos;
}

// A legacy row "1,maker,grade,remark,<numbers>" reads back as written when maker and grade are
// single non-empty fields, no text holds a line feed, no row holds a marker the scan reacts
// to, and the remark is found where it was written (the reader takes it from behind the first
// occurrence of the grade text in the row).
bool LegacyMachineRepresentable(const CQZRIM& machine) {
    const std::string_view maker = machine.GetMaker();
    const std::string_view grade = machine.GetGrade();
    const std::string_view remark = machine.GetRemark();
    if (maker.empty() || grade.empty() || HasAny(maker, ",\n") || HasAny(grade, ",\n") ||
        HasAny(remark, "\n")) {
        return false;
    }
    const std::string head = "1," + std::string(maker) + "," + std::string(grade) + ",";
    size_t gradeAt = head.find(grade);
    if (maker == grade) {
        gradeAt += maker.size() + 1;
    }
    return gradeAt == 3 + maker.size();
}

bool LegacyRepresentable(const CQZRMoldingMachineCtrl& catalogue, std::string_view saved) {
    for (int index = 0; index < catalogue.GetTotalMachine(); ++index) {
        CQZRIM machine;
        if (catalogue.GetCurrentMachine(index, machine) && !LegacyMachineRepresentable(machine)) {
            return false;
        }
    }
    const std::vector<std::string_view> lines = CrLfLines(saved);
    // Lines 9 on up to "[EOF]" are the rows.
    for (size_t line = 8; line + 1 < lines.size(); ++line) {
        const std::string_view row = lines[line];
        for (const std::string_view marker : {"Version", "TotalNo", "Database]", "[EOF]"}) {
            if (row.find(marker) != std::string_view::npos) {
                return false;
            }
        }
    }
    return LinesFit(saved, kLegacyLineChars);
}

// A sectioned value reads back as written when its line fits in one piece: the values a load
// gives hold no line feed, no NUL, no Ctrl-Z and no leading space, and numbers always fit.
bool SectionedRepresentable(std::string_view saved) {
    return LinesFit(saved, kSectionedLineChars);
}

bool Representable(Format format, const CQZRMoldingMachineCtrl& catalogue, std::string_view saved) {
    return format == Format::kLegacy ? LegacyRepresentable(catalogue, saved)
                                     : SectionedRepresentable(saved);
}

bool Load(int kind, const std::string& path, CQZRMoldingMachineCtrl* catalogue) {
    const qzr::fuzz::ScratchFolder& folder = qzr::fuzz::ScratchFolder::Get();
    CQZRMoldingMachineIO io;
    switch (kind) {
        case 0:
            return io.LoadOldIMMSystemDatabase(path.c_str(), catalogue);
        case 1:
            return io.LoadOldIMMUserDatabase(path.c_str(), catalogue);
        case 2:
            return io.LoadIMMUserDatabase(path.c_str(), catalogue);
        case 3:
            return io.LoadRTMUserDatabase(path.c_str(), catalogue);
        case 4:
            return io.LoadIMMSystemDatabase((folder.Folder() + "Input\\*.bnk").c_str(), catalogue);
        default:
            return io.LoadRTMSystemDatabase((folder.Folder() + "Input\\*.bnk").c_str(), catalogue);
    }
}

Format FormatOfKind(int kind) {
    if (kind <= 1) {
        return Format::kLegacy;
    }
    return kind == 3 || kind == 5 ? Format::kRTM : Format::kIMM;
}

// Gives the catalogue the file attributes of a user bank of the format (keeping a sectioned
// version of 9000 or more as loaded), saves it, and returns the saved file's path.
std::string Save(Format format, CQZRMoldingMachineCtrl& catalogue) {
    const qzr::fuzz::ScratchFolder& folder = qzr::fuzz::ScratchFolder::Get();
    CQZRMoldingMachineIO io;
    bool saved = false;
    std::string path;
    if (format == Format::kLegacy) {
        catalogue.SetFileVersion(7007);
        catalogue.SetFileFormat(1);
        catalogue.SetFileType(0);
        saved = io.SaveOldIMMUserDatabase(folder.Folder().c_str(), &catalogue);
        path = "Bank/user-pro.bnk";
    } else {
        if (catalogue.GetFileVersion() < 9000) {
            catalogue.SetFileVersion(9000);
        }
        catalogue.SetFileFormat(1);
        catalogue.SetFileType(format == Format::kRTM ? 1 : 0);
        if (format == Format::kRTM) {
            saved = io.SaveRTMUserDatabase(folder.Folder().c_str(), &catalogue);
            path = "Bank/User-RTMIC.bnk";
        } else {
            saved = io.SaveIMMUserDatabase(folder.File("User-IMM.bnk").c_str(), &catalogue);
            path = "User-IMM.bnk";
        }
    }
    if (!saved) {
        std::abort();  // a catalogue with a user bank's attributes always saves
    }
    return path;
}

bool LoadUserBank(Format format, const std::string& path, CQZRMoldingMachineCtrl* catalogue) {
    CQZRMoldingMachineIO io;
    switch (format) {
        case Format::kLegacy:
            return io.LoadOldIMMUserDatabase(path.c_str(), catalogue);
        case Format::kIMM:
            return io.LoadIMMUserDatabase(path.c_str(), catalogue);
        case Format::kRTM:
            return io.LoadRTMUserDatabase(path.c_str(), catalogue);
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const int kind = data[0] % 6;
    const Format format = FormatOfKind(kind);
    const qzr::fuzz::ScratchFolder& folder = qzr::fuzz::ScratchFolder::Get();
    folder.Clear();
    const std::string input = folder.Write("Input/bank.bnk", data + 1, size - 1);
    folder.Write("Bank/.keep", data, 0);
    const qzr::test::FixedClock clock;

    CQZRMoldingMachineCtrl first;
    Load(kind, input, &first);
    const std::string firstSave = Save(format, first);
    const std::string firstBytes = folder.Read(firstSave);

    const bool representable = Representable(format, first, firstBytes);

    // A text the format cannot hold may even make the bank unreadable (a legacy row holding
    // "TotalNo" fails the user load), so only a representable catalogue must load back.
    CQZRMoldingMachineCtrl second;
    if (!LoadUserBank(format, folder.File(firstSave), &second) && representable) {
        std::abort();  // the library cannot read back a bank it wrote
    }
    qzr::fuzz::TouchCatalogue(second);
    const std::string secondBytes = folder.Read(Save(format, second));
    if (representable && secondBytes != firstBytes) {
        std::abort();  // the second load lost or changed what the first save wrote
    }
    return 0;
}
