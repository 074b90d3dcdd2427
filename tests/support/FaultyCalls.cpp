// SPDX-License-Identifier: MIT
// Stands before the calls for files that Qt and the program make: it logs them, and makes them
// fail as `Faults` says. Whoever makes another call adds it at the end: the test misses it in the
// order of steps.
#include "support/FaultyCalls.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The system's function.
#define NEXT(function) reinterpret_cast<decltype(&::function)>(dlsym(RTLD_NEXT, #function))

QByteArray pathOf(int file)
{
    return "/proc/self/fd/" + QByteArray::number(file);
}

template <typename Result>
const Result failed = Result(-1);
template <>
char* const failed<char*> = nullptr;

/// Makes a call by `make(half)`, unless it goes wrong otherwise.
template <typename Make>
auto watch(const QByteArray& call, const QByteArray& target, Make make)
{
    auto result = failed<decltype(make(false))>;
    // Null meanwhile: what is called from here is no call of the program's.
    kse::Faults* const faults = std::exchange(kse::Faults::active, nullptr);
    char link[4096];
    const bool isOpen = target.startsWith("/proc/self/fd/");
    const ssize_t size = faults && isOpen ? readlink(target.constData(), link, sizeof link) : 0;
    const QByteArray path = isOpen ? QByteArray(link, std::max<ssize_t>(size, 0)) : target;
    if (!faults || !(path + '/').startsWith(faults->folder + '/')) {
        result = make(false);
        kse::Faults::active = faults;
        return result;
    }
    const auto at = faults->calls.size() + 1;
    const bool wrong = at == faults->at || (faults->lasting && at > faults->at);
    const QByteArray kind = wrong ? faults->kind : QByteArray();
    const bool half = (kind == "short" || kind == "torn") && (call == "read" || call == "write");
    if (wrong) {
        faults->meanwhile();
    }
    if (faults->named && (call == "name" || call == "unnamed")) {
        errno = call == "name" ? EINVAL : EOPNOTSUPP;
    } else if (kind == "lost" && call == "mode") {
        result = {};
    } else if (kind != "error" || call == "close") { // a file is closed even if that fails
        result = make(half);
    }
    int error = result == failed<decltype(make(false))> ? errno : 0;
    if (kind == "error" || kind == "late") {
        error = faults->code;
        result = failed<decltype(make(false))>;
    }
    if (kind == "lost" && call == "write") {
        (void)!truncate(target.constData(), 0);
    }
    struct stat status = {};
    (void)stat(target.constData(), &status);
    faults->calls.append({call, error, status.st_ino, path});
    if (error == ENOENT && path.contains(".bak-")) {
        faults->freeName = path;
    }
    if (kind == "kill" || kind == "torn") {
        kill(getpid(), SIGKILL);
    }
    kse::Faults::active = faults;
    errno = error != 0 ? error : errno;
    return result;
}

} // namespace

#define WATCH(call, target, result, function, parameters, arguments)                               \
    result function parameters                                                                     \
    {                                                                                              \
        return watch(call, target,                                                                 \
                     [=]([[maybe_unused]] bool half) { return NEXT(function) arguments; });        \
    }

// clang-format off
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the system's are reserved names
extern "C" {

// At least one byte of a half, since none would be the end of the file.
WATCH("read", pathOf(file), ssize_t, read, (int file, void* to, std::size_t size), (file, to, half ? (size + 1) / 2 : size))
WATCH("write", pathOf(file), ssize_t, write, (int file, const void* from, std::size_t size), (file, from, half ? (size + 1) / 2 : size))
WATCH("close", pathOf(file), int, close, (int file), (file))
WATCH("seek", pathOf(file), off_t, lseek, (int file, off_t at, int from) noexcept, (file, at, from))
WATCH("truncate", pathOf(file), int, ftruncate, (int file, off_t size) noexcept, (file, size))
WATCH("mode", pathOf(file), int, fchmod, (int file, mode_t mode) noexcept, (file, mode))
WATCH("owner", pathOf(file), int, fchown, (int file, uid_t owner, gid_t group) noexcept, (file, owner, group))
WATCH("time", pathOf(file), int, futimens, (int file, const timespec* times) noexcept, (file, times))
WATCH("status", pathOf(file), int, fstat, (int file, struct stat* to) noexcept, (file, to))
WATCH("status", path, int, stat, (const char* path, struct stat* to) noexcept, (path, to))
WATCH("status", path, int, lstat, (const char* path, struct stat* to) noexcept, (path, to))
WATCH("status", *path ? QByteArray(path) : pathOf(folder), int, statx, (int folder, const char* path, int flags, unsigned mask, struct statx* to) noexcept, (folder, path, flags, mask, to))
WATCH("access", path, int, access, (const char* path, int mode) noexcept, (path, mode))
WATCH("link", path, ssize_t, readlink, (const char* path, char* to, std::size_t size) noexcept, (path, to, size))
WATCH("link", path, char*, realpath, (const char* path, char* to) noexcept, (path, to))
WATCH("mode", path, int, chmod, (const char* path, mode_t mode) noexcept, (path, mode))
WATCH("remove", path, int, unlink, (const char* path) noexcept, (path))
WATCH("rename", path, int, rename, (const char* from, const char* path) noexcept, (from, path))
WATCH("name", path, int, link, (const char* from, const char* path) noexcept, (from, path))
WATCH("name", path, int, linkat, (int folder, const char* from, int to, const char* path, int flags) noexcept, (folder, from, to, path, flags))
WATCH("name", path, int, renameat2, (int folder, const char* from, int to, const char* path, unsigned flags) noexcept, (folder, from, to, path, flags))

// The disk isn't waited for: no test cuts its power.
int fsync(int file) { return watch("flush", pathOf(file), [](bool) { return 0; }); }
int fdatasync(int file) { return fsync(file); }

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const bool unnamed = (flags & O_TMPFILE) == O_TMPFILE;
    const mode_t mode = unnamed || (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return watch(unnamed ? "unnamed" : "open", path, [=](bool) { return NEXT(open)(path, flags, mode); });
}

int fcntl(int file, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return watch("control", pathOf(file), [=](bool) { return NEXT(fcntl)(file, command, argument); });
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
// clang-format on
