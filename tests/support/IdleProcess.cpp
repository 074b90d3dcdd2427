// SPDX-License-Identifier: MIT
#include <cstdio>

// Waits until its standard input ends, which it does at the latest with the process that started
// this one. Tests start copies of it under the names of programs that they want to be running.
int main()
{
    std::puts("ready");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
}
