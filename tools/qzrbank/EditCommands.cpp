// qzrbank set, add, rm and rename: one machine of a user bank changed in place, through the
// honest write (BankWrite.h), the bank's previous content kept as BANK.bak.
#include <optional>
#include <string>
#include <vector>

#include <QZRMachine/QZRMoldingMachineCtrl.h>

#include "BankLoading.h"
#include "BankWrite.h"
#include "Commands.h"
#include "MachineDetails.h"
#include "MachineEditing.h"
#include "TextEncoding.h"

namespace qzrbank {

namespace {

// A user bank loaded for an edit, and how it is written back.
struct EditedBank {
    CQZRMoldingMachineCtrl catalogue;
    WriteOptions write;
};

bool LoadForEdit(const EditOptions& options, EditedBank* bank, std::ostream& err) {
    if (!LoadUserBank(options.bank, &bank->catalogue, &bank->write, err)) {
        return false;
    }
    bank->write.allowLoss = options.allowLoss;
    bank->write.encoding = TextEncoding::Parse(options.encoding).value_or(TextEncoding());
    return true;
}

// The edit's texts as the bank holds them: maker, grade, new maker and grade, and each
// KEY=VALUE, from the command line's UTF-8 into the bank's code page. False, with a message, at
// a character the code page lacks.
bool InBankCodePage(const EditOptions& given, EditOptions* options, std::ostream& err) {
    const std::optional<TextEncoding> encoding = EncodingOption(given.encoding, err);
    if (!encoding) {
        return false;
    }
    *options = given;
    std::vector<std::string*> texts = {&options->maker, &options->grade, &options->newMaker,
                                       &options->newGrade};
    for (std::string& assignment : options->assignments) {
        texts.push_back(&assignment);
    }
    for (std::string* text : texts) {
        if (!ArgumentInCodePage(*encoding, given.bank, text, err)) {
            return false;
        }
    }
    return true;
}

std::string Named(const std::string& maker, const std::string& grade) {
    return maker + " - " + grade;
}

bool IsRTM(const CQZRMoldingMachineCtrl& catalogue) {
    return catalogue.GetFileType() == 1;
}

// The edit of one command on a machine of the bank's kind; false with a message on err.
class Edit {
  public:
    virtual ~Edit() = default;
    virtual bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRIM* machine, std::string* error) = 0;
    virtual bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRRTM* machine, std::string* error) = 0;
};

template <class Record>
bool ApplyAs(const EditOptions& options, bool existing, CQZRMoldingMachineCtrl* catalogue,
             Edit* edit, std::string* error) {
    Record machine;
    if (existing && !catalogue->GetMachine(options.maker.c_str(), options.grade.c_str(), machine)) {
        *error = "no machine " + Named(options.maker, options.grade);
        return false;
    }
    return edit->Apply(catalogue, &machine, error);
}

// Loads the bank, applies the edit to the machine named (existing: one the bank holds) and
// writes the bank back.
int RunEdit(const EditOptions& options, bool existing, Edit* edit, std::ostream& out,
            std::ostream& err) {
    EditedBank bank;
    if (!LoadForEdit(options, &bank, err)) {
        return kExitError;
    }
    std::string error;
    const bool applied = IsRTM(bank.catalogue)
                             ? ApplyAs<CQZRRTM>(options, existing, &bank.catalogue, edit, &error)
                             : ApplyAs<CQZRIM>(options, existing, &bank.catalogue, edit, &error);
    if (!applied) {
        err << "qzrbank: " << options.bank << ": " << error << '\n';
        return kExitError;
    }
    return WriteBank(bank.catalogue, bank.write, out, err);
}

class SetEdit : public Edit {
  public:
    explicit SetEdit(const EditOptions& options) : m_assignments(options.assignments) {}
    bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRIM* machine, std::string* error) override {
        return Set(catalogue, machine, error);
    }
    bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRRTM* machine, std::string* error) override {
        return Set(catalogue, machine, error);
    }

  private:
    template <class Record>
    bool Set(CQZRMoldingMachineCtrl* catalogue, Record* machine, std::string* error) const {
        return AssignAttributes(m_assignments, machine, error) &&
               catalogue->SetMachineData(machine->GetMachineID(), *machine);
    }
    const std::vector<std::string>& m_assignments;
};

// A new machine, or one under a new name: refused when the catalogue has the name already.
template <class Record>
bool AddUnderName(CQZRMoldingMachineCtrl* catalogue, Record machine, const std::string& maker,
                  const std::string& grade, std::string* error) {
    if (maker.empty() || grade.empty()) {
        *error = "a machine needs a maker and a grade";
        return false;
    }
    machine.SetMaker(maker.c_str());
    machine.SetGrade(grade.c_str());
    Record existing;
    if (catalogue->GetMachine(maker.c_str(), grade.c_str(), existing)) {
        *error = "the bank holds " + DisplayName(existing) +
                 " already (maker and grade compare with letter case ignored)";
        return false;
    }
    if (!catalogue->AddMachine(machine)) {
        *error = "the catalogue did not take " + DisplayName(machine);
        return false;
    }
    return true;
}

class AddEdit : public Edit {
  public:
    explicit AddEdit(const EditOptions& options) : m_options(options) {}
    bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRIM* machine, std::string* error) override {
        return Add(catalogue, machine, error);
    }
    bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRRTM* machine, std::string* error) override {
        return Add(catalogue, machine, error);
    }

  private:
    template <class Record>
    bool Add(CQZRMoldingMachineCtrl* catalogue, Record* machine, std::string* error) const {
        return AssignAttributes(m_options.assignments, machine, error) &&
               AddUnderName(catalogue, *machine, m_options.maker, m_options.grade, error);
    }
    const EditOptions& m_options;
};

class RemoveEdit : public Edit {
  public:
    explicit RemoveEdit(const EditOptions&) {}
    bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRIM* machine, std::string* error) override {
        return Remove(catalogue, *machine, error);
    }
    bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRRTM* machine, std::string* error) override {
        return Remove(catalogue, *machine, error);
    }

  private:
    static bool Remove(CQZRMoldingMachineCtrl* catalogue, const CQZRMoldingMachine& machine,
                       std::string* error) {
        if (!catalogue->RemoveMachine(machine.GetMachineID())) {
            *error = "the catalogue did not remove " + DisplayName(machine);
            return false;
        }
        return true;
    }
};

class RenameEdit : public Edit {
  public:
    explicit RenameEdit(const EditOptions& options) : m_options(options) {}
    bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRIM* machine, std::string* error) override {
        return Rename(catalogue, *machine, error);
    }
    bool Apply(CQZRMoldingMachineCtrl* catalogue, CQZRRTM* machine, std::string* error) override {
        return Rename(catalogue, *machine, error);
    }

  private:
    // The machine leaves its place and joins its new maker's machines at their end.
    template <class Record>
    bool Rename(CQZRMoldingMachineCtrl* catalogue, const Record& machine,
                std::string* error) const {
        CQZRMoldingMachineCtrl renamed(*catalogue);
        renamed.RemoveMachine(machine.GetMachineID());
        if (!AddUnderName(&renamed, machine, m_options.newMaker, m_options.newGrade, error)) {
            return false;
        }
        *catalogue = renamed;
        return true;
    }
    const EditOptions& m_options;
};

// The edit of kind EditKind, its texts in the bank's code page first.
template <class EditKind>
int RunEncodedEdit(const EditOptions& given, bool existing, std::ostream& out, std::ostream& err) {
    EditOptions options;
    if (!InBankCodePage(given, &options, err)) {
        return kExitError;
    }
    EditKind edit(options);
    return RunEdit(options, existing, &edit, out, err);
}

}  // namespace

int RunSet(const EditOptions& options, std::ostream& out, std::ostream& err) {
    if (options.assignments.empty()) {
        err << "qzrbank: set needs at least one KEY=VALUE\n";
        return kExitError;
    }
    return RunEncodedEdit<SetEdit>(options, true, out, err);
}

int RunAdd(const EditOptions& options, std::ostream& out, std::ostream& err) {
    return RunEncodedEdit<AddEdit>(options, false, out, err);
}

int RunRemove(const EditOptions& options, std::ostream& out, std::ostream& err) {
    return RunEncodedEdit<RemoveEdit>(options, true, out, err);
}

int RunRename(const EditOptions& options, std::ostream& out, std::ostream& err) {
    return RunEncodedEdit<RenameEdit>(options, true, out, err);
}

}  // namespace qzrbank
