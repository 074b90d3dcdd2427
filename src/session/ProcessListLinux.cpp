// SPDX-License-Identifier: MIT
#include "session/ProcessList.h"

#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <unistd.h>

namespace kse {

namespace {

/// The kernel's short name of the process in `folder`; empty if it has ended, reaped or not.
std::string shortName(const std::string& folder)
{
    // Not by a stream: its buffer throws where a read fails, as it does for a process that ends
    // between the opening and the reading.
    std::FILE* const file = std::fopen((folder + "/stat").c_str(), "rbe");
    if (!file) {
        return {};
    }
    char buffer[1024]; // the name is within the first 100 bytes or so
    const std::string stat(buffer, std::fread(buffer, 1, sizeof buffer, file));
    std::fclose(file);
    // The line is "id (name) state ...", and the name itself may hold blanks and parentheses.
    const auto open = stat.find('(');
    const auto close = stat.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close + 2 >= stat.size()) {
        return {};
    }
    const char state = stat[close + 2];
    const bool ended = state == 'Z' || state == 'X' || state == 'x';
    return ended ? std::string() : stat.substr(open + 1, close - open - 1);
}

/// File name of the executable of the process in `folder`; empty if it belongs to someone else.
std::string executableName(const std::string& folder)
{
    char target[4096];
    const ssize_t length = readlink((folder + "/exe").c_str(), target, sizeof target);
    if (length <= 0) {
        return {};
    }
    std::string path(target, static_cast<std::size_t>(length));
    static const std::string deleted = " (deleted)"; // an update has replaced it meanwhile
    if (path.size() > deleted.size() &&
        path.compare(path.size() - deleted.size(), deleted.size(), deleted) == 0) {
        path.resize(path.size() - deleted.size());
    }
    return path.substr(path.rfind('/') + 1);
}

} // namespace

std::vector<ProcessEntry> listProcesses()
{
    std::vector<ProcessEntry> processes;
    DIR* const proc = opendir("/proc");
    if (!proc) {
        return processes;
    }
    while (const dirent* const entry = readdir(proc)) {
        char* end = nullptr;
        const std::uint64_t id = std::strtoull(entry->d_name, &end, 10);
        if (id == 0 || *end != '\0') {
            continue;
        }
        const std::string folder = std::string("/proc/") + entry->d_name;
        const std::string name = shortName(folder);
        if (name.empty()) {
            continue;
        }
        processes.push_back({id, name});
        const std::string executable = executableName(folder);
        if (!executable.empty() && executable != name) {
            processes.push_back({id, executable});
        }
    }
    closedir(proc);
    return processes;
}

} // namespace kse
