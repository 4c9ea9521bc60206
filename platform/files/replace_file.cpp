#include "platform/files/replace_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/files/descriptor.h"

namespace dorvane::files {

namespace {

namespace fs = std::filesystem;

/// A file beside the one that it is to replace; goes with its owner unless it has taken its place.
class Draft {
 public:
  explicit Draft(const fs::path& target)
      : target_(target),
        name_(target.parent_path() / ".draft-XXXXXX"),
        // Made anew under a name that nobody else has, for its owner alone.
        file_(mkostemp(name_.data(), O_CLOEXEC | O_NOFOLLOW)) {
    if (!file_.IsOpen()) ThrowFileError(errno, target_);
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  ~Draft() {
    if (!renamed_) unlink(name_.c_str());
  }

  void Write(std::string_view bytes, mode_t mode) {
    WriteAll(file_, bytes, target_);
    Check(fchmod(file_.Number(), mode) == 0 ? 0 : errno);
    Check(Sync(file_));
    Check(file_.Close());
  }

  void TakePlace() {
    Check(rename(name_.c_str(), target_.c_str()) == 0 ? 0 : errno);
    renamed_ = true;
  }

 private:
  void Check(int error) const {
    if (error != 0) ThrowFileError(error, target_);
  }

  const fs::path& target_;
  std::string name_;
  Descriptor file_;
  bool renamed_ = false;
};

/// Until the folder is stored as well, a power cut may bring the old file back.
void SyncFolder(const fs::path& folder) {
  const fs::path& name = folder.empty() ? "." : folder;
  const Descriptor opened(open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!opened.IsOpen()) return;  // a folder may be writable and not readable
  if (const int error = Sync(opened)) ThrowFileError(error, name);
}

}  // namespace

void ReplaceFile(const fs::path& path, std::string_view bytes, mode_t mode) {
  Draft draft(path);
  draft.Write(bytes, mode);
  draft.TakePlace();
  SyncFolder(path.parent_path());
}

void MakeFolders(const fs::path& folder) {
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (failure) ThrowFileError(failure.value(), folder);
}

}  // namespace dorvane::files
