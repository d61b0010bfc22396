// An Env that forwards every call to another; a test derives from it and overrides the one
// call it wants to fail.
#ifndef QZR_TESTS_SUPPORT_ENVWRAPPER_H
#define QZR_TESTS_SUPPORT_ENVWRAPPER_H

#include "platform/Env.h"

namespace qzr::platform {

class EnvWrapper : public Env {
  public:
    explicit EnvWrapper(Env* target) : m_target(target) {}
    Env* target() const { return m_target; }

    bool PathExists(const std::string& path) override { return m_target->PathExists(path); }
    bool IsDirectory(const std::string& path) override { return m_target->IsDirectory(path); }
    std::unique_ptr<ReadableFile> OpenForReading(const std::string& path) override {
        return m_target->OpenForReading(path);
    }
    std::unique_ptr<WritableFile> OpenForWriting(const std::string& path, WriteMode mode) override {
        return m_target->OpenForWriting(path, mode);
    }
    bool CopyFileReplacing(const std::string& from, const std::string& to) override {
        return m_target->CopyFileReplacing(from, to);
    }
    bool RenameReplacing(const std::string& from, const std::string& to) override {
        return m_target->RenameReplacing(from, to);
    }
    bool RemoveFile(const std::string& path) override { return m_target->RemoveFile(path); }
    bool CopyPermissions(const std::string& from, const std::string& to) override {
        return m_target->CopyPermissions(from, to);
    }
    bool ListMatches(const std::string& pattern, std::vector<std::string>* paths) override {
        return m_target->ListMatches(pattern, paths);
    }
    int64_t NowUtcSeconds() override { return m_target->NowUtcSeconds(); }

  private:
    Env* m_target;
};

}  // namespace qzr::platform

#endif  // QZR_TESTS_SUPPORT_ENVWRAPPER_H
