// SPDX-License-Identifier: MIT
// A library to be preloaded: it counts the calls for files below a folder, logs them, and lets one
// of them go wrong. On Linux only. The environment tells what to do:
//
//   KSE_FAULT_FOLDER  the folder, an absolute path free of links; nothing happens elsewhere
//   KSE_FAULT_LOG     a file elsewhere that gets a line for each call: its name, 0 or the error
//                     code, the number (inode) of the file, and its path
//   KSE_FAULT_AT      which call goes wrong, from 1
//   KSE_FAULT_LASTING if set, all later ones go wrong too
//   KSE_FAULT_NAMED   if set, the file system has no files without a name and no hard links
//   KSE_FAULT         what goes wrong:
//     error CODE      the call isn't made, and fails with that error code
//     late CODE       the call is made, and yet fails
//     short           a read or a write does half of its work
//     kill, torn      the process is killed after the call, after half of it if it reads or writes
//     run COMMAND     before the call the shell runs this command. KSE_FREE_NAME is the name for a
//                     backup that was last found to be free
//   KSE_FAULT_OVER    if set, nothing goes wrong any more, and nothing is logged
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
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
    std::string fault = setting("KSE_FAULT");
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
    return !folder.empty() && startsWith(path + '/', folder + '/') &&
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

/// Logs a call, and remembers which name for a backup was found to be free.
void note(const std::string& call, int error, ino_t number, const std::string& path)
{
    const std::string line =
        call + ' ' + std::to_string(error) + ' ' + std::to_string(number) + ' ' + path + '\n';
    if (NEXT(write)(settings().log, line.data(), line.size()) < 0) {
        std::abort();
    }
    if (error == ENOENT && path.find(".bak-") != std::string::npos) {
        setenv("KSE_FREE_NAME", path.c_str(), 1);
    }
}

/// Has the shell run `command`, without this library's help.
void runCommand(const std::string& command)
{
    if (std::system(("unset LD_PRELOAD; KSE_FAULT_OVER=1; " + command).c_str()) != 0) {
        std::abort();
    }
}

int calls = 0;

/// Does what the settings say with a call for a file. `make(half)` makes it, or half of it;
/// `number()` tells of which file, afterwards unless the call closes it.
template <typename Make, typename Number>
auto handle(const std::string& name, const std::string& path, Make make, Number number)
{
    const Settings& to = settings();
    ++calls;
    const bool wrong = calls == to.at || (to.lasting && calls > to.at);
    const std::string fault = wrong ? to.fault : std::string();
    const bool refused = startsWith(fault, "error ");
    const bool half = (fault == "short" || fault == "torn") && (name == "read" || name == "write");
    const bool closes = name == "close";
    if (startsWith(fault, "run ")) {
        runCommand(fault.substr(4));
    }
    const ino_t closed = closes ? number() : 0;
    decltype(make(false)) result = -1;
    if (!refused || closes) { // a file is closed even if that fails
        result = make(half);
    }
    int error = result == decltype(result)(-1) ? errno : 0;
    if (refused || startsWith(fault, "late ")) {
        error = std::atoi(fault.c_str() + fault.find(' '));
        result = -1;
    }
    note(name, error, closes ? closed : number(), path);
    if (fault == "kill" || fault == "torn") {
        kill(getpid(), SIGKILL);
    }
    errno = error != 0 ? error : errno;
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

/// Whether the poorer kind of file system refuses a call for `path`; `errno` is `code` then.
bool isRefused(const std::string& path, int code)
{
    const bool refused = settings().named && isWatched(path);
    errno = refused ? code : errno;
    return refused;
}

/// At least one byte, since none would be the end of the file.
std::size_t part(std::size_t size, bool half)
{
    return half ? (size + 1) / 2 : size;
}

} // namespace

// A call is watched by the path that it was given, or by that of its file. These are the calls that
// Qt and the program make; the linker gives them their other names, as `open64`. Whoever makes
// another adds it here: the test misses it in the order of steps.
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
#define WATCH_TRANSFER(call, function, parameters, arguments)                                      \
    ssize_t function parameters                                                                    \
    {                                                                                              \
        return onTransfer(call, file, [=](bool half) { return NEXT(function) arguments; });        \
    }

// clang-format off
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the system's are reserved names
extern "C" {

WATCH_TRANSFER("read", read, (int file, void* to, std::size_t size), (file, to, part(size, half)))
WATCH_TRANSFER("write", write, (int file, const void* from, std::size_t size), (file, from, part(size, half)))
WATCH_FILE("flush", int, fsync, (int file), (file))
WATCH_FILE("flush", int, fdatasync, (int file), (file))
WATCH_FILE("close", int, close, (int file), (file))
WATCH_FILE("seek", off_t, lseek, (int file, off_t at, int from) noexcept, (file, at, from))
WATCH_FILE("truncate", int, ftruncate, (int file, off_t size) noexcept, (file, size))
WATCH_FILE("mode", int, fchmod, (int file, mode_t mode) noexcept, (file, mode))
WATCH_FILE("owner", int, fchown, (int file, uid_t owner, gid_t group) noexcept, (file, owner, group))
WATCH_FILE("time", int, futimens, (int file, const timespec* times) noexcept, (file, times))
WATCH_FILE("status", int, fstat, (int file, struct stat* to) noexcept, (file, to))
WATCH_PATH("status", int, stat, (const char* path, struct stat* to) noexcept, (path, to))
WATCH_PATH("status", int, lstat, (const char* path, struct stat* to) noexcept, (path, to))
WATCH_PATH("access", int, access, (const char* path, int mode) noexcept, (path, mode))
WATCH_PATH("link", ssize_t, readlink, (const char* path, char* to, std::size_t size) noexcept, (path, to, size))
WATCH_PATH("mode", int, chmod, (const char* path, mode_t mode) noexcept, (path, mode))
WATCH_PATH("remove", int, unlink, (const char* path) noexcept, (path))
WATCH_PATH("rename", int, rename, (const char* from, const char* path) noexcept, (from, path))

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const bool unnamed = (flags & O_TMPFILE) == O_TMPFILE;
    const mode_t mode = unnamed || (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (unnamed && isRefused(path, EOPNOTSUPP)) {
        return -1;
    }
    return onPath("open", path, [=] { return NEXT(open)(path, flags, mode); });
}

int renameat2(int folder, const char* from, int to, const char* path, unsigned flags) noexcept
{
    return onPath("rename", path, [=] {
        return isRefused(path, EINVAL) ? -1 : NEXT(renameat2)(folder, from, to, path, flags);
    });
}

int link(const char* from, const char* path) noexcept
{
    return onPath("name", path, [=] {
        return isRefused(path, EPERM) ? -1 : NEXT(link)(from, path);
    });
}

int linkat(int folder, const char* from, int to, const char* path, int flags) noexcept
{
    return onPath("name", path, [=] {
        return isRefused(path, EPERM) ? -1 : NEXT(linkat)(folder, from, to, path, flags);
    });
}

int fcntl(int file, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return onFile("control", file, [=] { return NEXT(fcntl)(file, command, argument); });
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* to) noexcept
{
    const auto make = [=] { return NEXT(statx)(folder, path, flags, mask, to); };
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
