#include "tools/save_file.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr int MOST_NAMES = 100;

[[noreturn]] void Refuse(const fs::path& path, const char* cWhy)
{
    throw std::runtime_error(path.string() + ": cannot be written, " + cWhy);
}

/* A file that is not there yet, in the folder of the one it will become; gone again unless it was renamed. */
struct NewFile {
    fs::path path;
    int nFile = -1;

    explicit NewFile(const fs::path& folder)
    {
        for (int i = 0; nFile < 0 && i < MOST_NAMES; i++) {
            path = folder / (".saved-" + std::to_string(getpid()) + "-" + std::to_string(i));
            nFile = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (nFile < 0 && errno != EEXIST) {
                return;
            }
        }
    }
    ~NewFile()
    {
        if (nFile >= 0) {
            close(nFile);
            unlink(path.c_str());
        }
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    bool Write(const char* pBytes, std::size_t cb) const
    {
        while (cb > 0) {
            const ssize_t cbWritten = write(nFile, pBytes, cb);
            if (cbWritten < 0 && errno == EINTR) {
                continue;
            }
            if (cbWritten <= 0) {
                return false;
            }
            pBytes += cbWritten;
            cb -= static_cast<std::size_t>(cbWritten);
        }
        return true;
    }

    bool Become(const fs::path& target)
    {
        if (fsync(nFile) != 0 || rename(path.c_str(), target.c_str()) != 0) {
            return false;
        }
        close(nFile);
        nFile = -1;
        return true;
    }
};

/* The plain file that a name leads to, or the name where nothing is. */
fs::path TargetOf(const fs::path& path)
{
    std::error_code error;
    if (fs::symlink_status(path, error).type() == fs::file_type::not_found) {
        return path;
    }
    fs::path target = fs::canonical(path, error);
    if (error || !fs::is_regular_file(target, error)) {
        Refuse(path, "it is no plain file");
    }
    return target;
}

} // namespace

void SaveFile(const fs::path& path, const void* pBytes, std::size_t cb)
{
    const fs::path target = TargetOf(path);
    struct stat before;
    const bool bThere = stat(target.c_str(), &before) == 0;
    if (bThere && access(target.c_str(), W_OK) != 0) {
        Refuse(path, std::strerror(errno));
    }
    NewFile file(target.parent_path());
    if (file.nFile < 0 || !file.Write(static_cast<const char*>(pBytes), cb) ||
        (bThere && fchmod(file.nFile, before.st_mode & 07777) != 0) || !file.Become(target)) {
        Refuse(path, std::strerror(errno));
    }
}
