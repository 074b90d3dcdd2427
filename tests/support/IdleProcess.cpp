// SPDX-License-Identifier: MIT
#include <cstdio>

#ifdef _WIN32
#include <windows.h>

/// Opens the file called `name` for as long as this process runs, so that the others may read and
/// write it, or do nothing at all with it if `alone` is set.
static bool hold(const char* name, bool alone)
{
    return CreateFileA(name, GENERIC_READ, alone ? 0 : FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       OPEN_EXISTING, 0, nullptr) != INVALID_HANDLE_VALUE;
}
#endif

// Waits until its standard input ends, which it does at the latest with the process that started
// this one. Tests start copies of it under the names of programs that they want to be running. On
// Windows it can hold a file meanwhile: IdleProcess FILE [alone].
int main(int argc, char** argv)
{
#ifdef _WIN32
    if (argc > 1 && !hold(argv[1], argc > 2)) {
        return 1;
    }
#else
    (void)argc;
    (void)argv;
#endif
    std::puts("ready");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
