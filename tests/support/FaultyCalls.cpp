// SPDX-License-Identifier: MIT
// A library to be preloaded: it counts the calls for files below a folder, logs them, and lets one
// of them go wrong. On Linux only. The environment tells what to do:
//
//   KSE_FAULT_FOLDER  the folder, an absolute path free of links; nothing happens elsewhere
//   KSE_FAULT_LOG     a file elsewhere that gets a line for each call that was made: its name, 0 or
//                     the error code, the number (inode) of the file, and its path
//   KSE_FAULT_AT      which call goes wrong, from 1
//   KSE_FAULT_LASTING if set, all later ones go wrong too
//   KSE_FAULT_VICTIM  the file that somebody else spoils
//   KSE_FAULT_NAMED   if set, the file system has no files without a name and no hard links
//   KSE_FAULT_MODE    what goes wrong:
//     error CODE      the call isn't made, and fails with that error code
//     late CODE       the call is made, and yet fails
//     short           a read or a write does half of its work
//     before, after   the process is killed before the call is made, or after it
//     torn            the process is killed after half of a write, or before any other call
//     swap, cut, remove, deny
//                     before the call the victim is replaced by another file, cut, removed, or
//                     loses all permissions
//     claim           before the call somebody else takes the backup's name that was looked at last
//     start           before the call the program KSE_FAULT_VICTIM is started
//   KSE_FAULT_OVER    if set, nothing goes wrong any more, and nothing is logged
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The function `name` that this library stands before.
template <typename Function>
Function* next(Function* /*ours*/, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#define NEXT(function) next(&::function, #function)

std::string setting(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

struct Settings
{
    std::string folder = setting("KSE_FAULT_FOLDER");
    std::string mode = setting("KSE_FAULT_MODE");
    std::string victim = setting("KSE_FAULT_VICTIM");
    int at = std::atoi(setting("KSE_FAULT_AT").c_str());
    bool named = !setting("KSE_FAULT_NAMED").empty();
    bool lasting = !setting("KSE_FAULT_LASTING").empty();
    int log = NEXT(open)(setting("KSE_FAULT_LOG").c_str(),
                         O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
};

const Settings& settings()
{
    static const Settings settings;
    return settings;
}

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

bool isWatched(const std::string& path)
{
    const std::string& folder = settings().folder;
    return !folder.empty() && startsWith(path, folder) &&
           (path.size() == folder.size() || path[folder.size()] == '/') &&
           !std::getenv("KSE_FAULT_OVER");
}

std::string pathOf(int descriptor)
{
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t size = NEXT(readlink)(link.c_str(), path, sizeof path);
    return size > 0 ? std::string(path, static_cast<std::size_t>(size)) : std::string();
}

ino_t numberOf(int descriptor)
{
    struct stat status = {};
    return NEXT(fstat)(descriptor, &status) == 0 ? status.st_ino : 0;
}

ino_t numberOf(const std::string& path)
{
    struct stat status = {};
    return NEXT(lstat)(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

void writeLine(const char* call, int error, ino_t number, const std::string& path)
{
    const std::string line = std::string(call) + ' ' + std::to_string(error) + ' ' +
                             std::to_string(number) + ' ' + path + '\n';
    if (NEXT(write)(settings().log, line.data(), line.size()) < 0) {
        std::abort();
    }
}

std::string freeName; // of a backup

/// Remembers which name for a backup was found to be free.
void note(int error, const std::string& path)
{
    if (error == ENOENT && path.find(".bak-") != std::string::npos) {
        freeName = path;
    }
}

void claimName()
{
    const int file = NEXT(open)(freeName.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
    if (file >= 0) {
        (void)!NEXT(write)(file, "claimed", 7);
        NEXT(close)(file);
        writeLine("claim", 0, numberOf(freeName), freeName);
    }
}

/// Returns when `program` runs, which it does until the standard input ends.
void start(const char* program)
{
    char* const none[] = {nullptr};
    pid_t id = 0;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    if (posix_spawn(&id, program, &actions, nullptr, none, none) != 0) {
        std::abort();
    }
    posix_spawn_file_actions_destroy(&actions);
}

void spoilVictim(const std::string& how)
{
    const char* const victim = settings().victim.c_str();
    const std::string other = settings().victim + ".other";
    if (how == "swap") {
        const int file = NEXT(open)(other.c_str(), O_WRONLY | O_CREAT, 0666);
        (void)!NEXT(write)(file, "other", 5);
        NEXT(close)(file);
        NEXT(rename)(other.c_str(), victim);
    } else if (how == "cut") {
        (void)!NEXT(truncate)(victim, 3);
    } else if (how == "remove") {
        NEXT(unlink)(victim);
    } else if (how == "deny") {
        NEXT(chmod)(victim, 0);
    } else if (how == "claim") {
        claimName();
    } else if (how == "start") {
        start(victim);
    }
}

int calls = 0;

void die()
{
    kill(getpid(), SIGKILL);
}

/// Does what the settings say with a call for a file. `make(half)` makes it, or half of it;
/// `number()` tells of which file, afterwards unless the call closes it.
template <typename Make, typename Number>
auto handle(const char* name, const std::string& path, Make make, Number number)
{
    const Settings& to = settings();
    ++calls;
    const bool wrong = calls == to.at || (to.lasting && to.at > 0 && calls > to.at);
    const std::string mode = wrong ? to.mode : "";
    const bool transfers = std::strcmp(name, "read") == 0 || std::strcmp(name, "write") == 0;
    const auto code = [&mode] {
        return std::atoi(mode.c_str() + mode.find(' '));
    };
    if (mode == "before" || (mode == "torn" && !transfers)) {
        die();
    }
    spoilVictim(mode);
    ino_t file = std::strcmp(name, "close") == 0 ? number() : 0;
    decltype(make(false)) result = -1;
    int error = 0;
    if (startsWith(mode, "error")) {
        error = code();
        if (file != 0) {
            (void)make(false); // a file is closed even if that fails
        }
    } else {
        result = make((mode == "short" || mode == "torn") && transfers);
        error = result == decltype(result)(-1) ? errno : 0;
    }
    if (startsWith(mode, "late")) {
        error = code();
        result = -1;
    }
    file = file == 0 ? number() : file;
    writeLine(name, error, file, path);
    note(error, path);
    if (mode == "after" || mode == "torn") {
        die();
    }
    if (error != 0) {
        errno = error;
    }
    return result;
}

template <typename Make>
auto onPath(const char* name, const std::string& path, Make make)
{
    const auto whole = [&make](bool /*half*/) {
        return make();
    };
    return isWatched(path) ? handle(name, path, whole, [&path] { return numberOf(path); }) : make();
}

/// The same for a call that a file system of the poorer kind refuses with `code`.
template <typename Make>
int onPathIfRich(const char* name, const std::string& path, int code, Make make)
{
    const auto refuse = [code] {
        errno = code;
        return -1;
    };
    return settings().named && isWatched(path) ? onPath(name, path, refuse)
                                               : onPath(name, path, make);
}

template <typename Make>
auto onTransfer(const char* name, int descriptor, Make make)
{
    const std::string path = pathOf(descriptor);
    return isWatched(path) ? handle(name, path, make, [descriptor] { return numberOf(descriptor); })
                           : make(false);
}

template <typename Make>
auto onFile(const char* name, int descriptor, Make make)
{
    return onTransfer(name, descriptor, [&make](bool /*half*/) { return make(); });
}

bool isRefused(const std::string& path, int flags)
{
    const bool refused =
        settings().named && (flags & O_TMPFILE) == O_TMPFILE && startsWith(path, settings().folder);
    errno = refused ? EOPNOTSUPP : errno;
    return refused;
}

/// At least one byte, since none would be the end of the file.
std::size_t part(std::size_t size, bool half)
{
    return half ? (size + 1) / 2 : size;
}

} // namespace

// A call is watched by the path that it was given, or by that of its file. Whatever the program
// calls by another name has to be added here.
#define MODE_OF(flags, last)                                                                       \
    mode_t mode = 0;                                                                               \
    if ((flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE) {                                   \
        va_list arguments;                                                                         \
        va_start(arguments, last);                                                                 \
        mode = va_arg(arguments, mode_t);                                                          \
        va_end(arguments);                                                                         \
    }
#define WATCH_OPEN(function)                                                                       \
    int function(const char* path, int flags, ...)                                                 \
    {                                                                                              \
        MODE_OF(flags, flags)                                                                      \
        return isRefused(path, flags)                                                              \
                   ? -1                                                                            \
                   : onPath("open", path, [=] { return NEXT(function)(path, flags, mode); });      \
    }
#define WATCH_OPEN_AT(function)                                                                    \
    int function(int folder, const char* path, int flags, ...)                                     \
    {                                                                                              \
        MODE_OF(flags, flags)                                                                      \
        return isRefused(path, flags) ? -1 : onPath("open", path, [=] {                            \
            return NEXT(function)(folder, path, flags, mode);                                      \
        });                                                                                        \
    }
#define WATCH_PATH(call, result, function, parameters, arguments)                                  \
    result function parameters                                                                     \
    {                                                                                              \
        return onPath(call, path, [=] { return NEXT(function) arguments; });                       \
    }
#define WATCH_FILE(call, result, function, parameters, arguments)                                  \
    result function parameters                                                                     \
    {                                                                                              \
        return onFile(call, file, [=] { return NEXT(function) arguments; });                       \
    }
#define WATCH_TRANSFER(call, result, function, parameters, arguments)                              \
    result function parameters                                                                     \
    {                                                                                              \
        return onTransfer(call, file, [=](bool half) { return NEXT(function) arguments; });        \
    }

// clang-format off
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the system's are reserved names
extern "C" {

WATCH_OPEN(open)
WATCH_OPEN(open64)
WATCH_OPEN_AT(openat)
WATCH_OPEN_AT(openat64)
WATCH_TRANSFER("read", ssize_t, read, (int file, void* to, std::size_t size), (file, to, part(size, half)))
WATCH_TRANSFER("read", ssize_t, pread, (int file, void* to, std::size_t size, off_t at), (file, to, part(size, half), at))
WATCH_TRANSFER("read", ssize_t, pread64, (int file, void* to, std::size_t size, off64_t at), (file, to, part(size, half), at))
WATCH_TRANSFER("write", ssize_t, write, (int file, const void* from, std::size_t size), (file, from, part(size, half)))
WATCH_TRANSFER("write", ssize_t, pwrite, (int file, const void* from, std::size_t size, off_t at), (file, from, part(size, half), at))
WATCH_TRANSFER("write", ssize_t, pwrite64, (int file, const void* from, std::size_t size, off64_t at), (file, from, part(size, half), at))
WATCH_TRANSFER("write", ssize_t, sendfile, (int file, int from, off_t* at, std::size_t size), (file, from, at, part(size, half)))
WATCH_TRANSFER("write", ssize_t, copy_file_range, (int from, off64_t* fromAt, int file, off64_t* at, std::size_t size, unsigned flags), (from, fromAt, file, at, part(size, half), flags))
WATCH_FILE("flush", int, fsync, (int file), (file))
WATCH_FILE("flush", int, fdatasync, (int file), (file))
WATCH_FILE("close", int, close, (int file), (file))
WATCH_FILE("seek", off_t, lseek, (int file, off_t at, int from) noexcept, (file, at, from))
WATCH_FILE("seek", off64_t, lseek64, (int file, off64_t at, int from) noexcept, (file, at, from))
WATCH_FILE("truncate", int, ftruncate, (int file, off_t size) noexcept, (file, size))
WATCH_FILE("truncate", int, ftruncate64, (int file, off64_t size) noexcept, (file, size))
WATCH_FILE("mode", int, fchmod, (int file, mode_t mode) noexcept, (file, mode))
WATCH_FILE("owner", int, fchown, (int file, uid_t owner, gid_t group) noexcept, (file, owner, group))
WATCH_FILE("time", int, futimens, (int file, const timespec* times) noexcept, (file, times))
WATCH_FILE("status", int, fstat, (int file, struct stat* to) noexcept, (file, to))
WATCH_FILE("status", int, fstat64, (int file, struct stat64* to) noexcept, (file, to))
WATCH_PATH("status", int, stat, (const char* path, struct stat* to) noexcept, (path, to))
WATCH_PATH("status", int, stat64, (const char* path, struct stat64* to) noexcept, (path, to))
WATCH_PATH("status", int, lstat, (const char* path, struct stat* to) noexcept, (path, to))
WATCH_PATH("status", int, lstat64, (const char* path, struct stat64* to) noexcept, (path, to))
WATCH_PATH("access", int, access, (const char* path, int mode) noexcept, (path, mode))
WATCH_PATH("link", ssize_t, readlink, (const char* path, char* to, std::size_t size) noexcept, (path, to, size))
WATCH_PATH("mode", int, chmod, (const char* path, mode_t mode) noexcept, (path, mode))
WATCH_PATH("owner", int, chown, (const char* path, uid_t owner, gid_t group) noexcept, (path, owner, group))
WATCH_PATH("remove", int, unlink, (const char* path) noexcept, (path))
WATCH_PATH("remove", int, unlinkat, (int folder, const char* path, int flags) noexcept, (folder, path, flags))
WATCH_PATH("rename", int, rename, (const char* from, const char* path) noexcept, (from, path))
WATCH_PATH("rename", int, renameat, (int folder, const char* from, int to, const char* path) noexcept, (folder, from, to, path))

int renameat2(int folder, const char* from, int to, const char* path, unsigned flags) noexcept
{
    return onPathIfRich("rename", path, EINVAL, [=] {
        return NEXT(renameat2)(folder, from, to, path, flags);
    });
}

int link(const char* from, const char* path) noexcept
{
    return onPathIfRich("name", path, EPERM, [=] { return NEXT(link)(from, path); });
}

int linkat(int folder, const char* from, int to, const char* path, int flags) noexcept
{
    return onPathIfRich("name", path, EPERM, [=] {
        return NEXT(linkat)(folder, from, to, path, flags);
    });
}

int fcntl(int file, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return onFile("control", file, [=] {
        return NEXT(fcntl)(file, command, argument);
    });
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* to) noexcept
{
    const auto make = [=] {
        return NEXT(statx)(folder, path, flags, mask, to);
    };
    return *path ? onPath("status", path, make) : onFile("status", folder, make);
}

char* realpath(const char* path, char* to) noexcept
{
    char* resolved = nullptr;
    const int result = onPath("link", path, [&] {
        resolved = NEXT(realpath)(path, to);
        return resolved ? 0 : -1;
    });
    return result == 0 ? resolved : nullptr;
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
// clang-format on
