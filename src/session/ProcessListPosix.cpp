// SPDX-License-Identifier: MIT
#include "session/ProcessList.h"

#include <cstdio>
#include <cstdlib>

namespace kse {

namespace {

/// The process in a line "  id state command" of `ps`; id 0 if it isn't running.
ProcessEntry parseLine(const std::string& line)
{
    char* end = nullptr;
    const std::uint64_t id = std::strtoull(line.c_str(), &end, 10);
    const auto state = line.find_first_not_of(' ', static_cast<std::size_t>(end - line.c_str()));
    const auto command = line.find_first_not_of(' ', line.find(' ', state));
    if (command == std::string::npos || line[state] == 'Z') { // ended, but not reaped yet
        return {};
    }
    // Some systems give the whole path, which may hold blanks.
    const auto slash = line.rfind('/');
    const auto name = slash == std::string::npos ? command : slash + 1;
    return {id, line.substr(name, line.find_last_not_of(' ') + 1 - name)};
}

} // namespace

std::vector<ProcessEntry> listProcesses()
{
    std::vector<ProcessEntry> processes;
    // `-ww` allows lines of any length: some systems cut them at the width in COLUMNS.
    std::FILE* const output = popen("ps -A -ww -o pid=,stat=,comm= 2>/dev/null", "r");
    if (!output) {
        return processes;
    }
    std::string line;
    for (int c = std::fgetc(output); c != EOF; c = std::fgetc(output)) {
        if (c != '\n') {
            line.push_back(static_cast<char>(c));
        } else {
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
