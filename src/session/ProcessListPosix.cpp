// SPDX-License-Identifier: MIT
#include "session/ProcessList.h"

#include <cstdio>
#include <cstdlib>

namespace kse {

namespace {

/// The process that a line "  id command" of `ps` tells of; id 0 if it tells of none that runs.
ProcessEntry parseLine(std::string line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == ' ')) {
        line.pop_back();
    }
    static const std::string defunct = "<defunct>"; // ended, but not reaped yet
    if (line.size() >= defunct.size() &&
        line.compare(line.size() - defunct.size(), defunct.size(), defunct) == 0) {
        return {};
    }
    char* end = nullptr;
    const std::uint64_t id = std::strtoull(line.c_str(), &end, 10);
    while (*end == ' ') {
        ++end;
    }
    // Some systems give the whole path, which may hold blanks.
    const std::string command(end);
    return {id, command.substr(command.rfind('/') + 1)};
}

} // namespace

std::vector<ProcessEntry> listProcesses()
{
    std::vector<ProcessEntry> processes;
    std::FILE* const output = popen("ps -A -o pid=,comm= 2>/dev/null", "r");
    if (!output) {
        return processes;
    }
    std::string line;
    for (int c = std::fgetc(output); c != EOF; c = std::fgetc(output)) {
        line.push_back(static_cast<char>(c));
        if (c == '\n') {
            const ProcessEntry entry = parseLine(line);
            if (entry.id != 0) {
                processes.push_back(entry);
            }
            line.clear();
        }
    }
    pclose(output);
    return processes;
}

} // namespace kse
