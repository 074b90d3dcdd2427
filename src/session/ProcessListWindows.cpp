// SPDX-License-Identifier: MIT
#include "session/ProcessList.h"

#include <windows.h>

#include <tlhelp32.h> // after windows.h, which it needs

namespace kse {

namespace {

std::string toUtf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1) {
        return {};
    }
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back(); // the trailing NUL
    return utf8;
}

} // namespace

std::vector<ProcessEntry> listProcesses()
{
    std::vector<ProcessEntry> processes;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) {
        return processes;
    }
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more;
         more = Process32NextW(snapshot, &entry)) {
        processes.push_back({entry.th32ProcessID, toUtf8(entry.szExeFile)});
    }
    CloseHandle(snapshot);
    return processes;
}

} // namespace kse
