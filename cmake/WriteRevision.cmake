# SPDX-License-Identifier: MIT
# Run when the build runs: writes OUTPUT, a header with the short commit of SOURCE_DIR, and leaves
# it alone if nothing changed, so that nothing is compiled anew for it.
cmake_minimum_required(VERSION 3.21)

execute_process(
    COMMAND git -C ${SOURCE_DIR} rev-parse --short HEAD
    OUTPUT_VARIABLE revision
    OUTPUT_STRIP_TRAILING_WHITESPACE
    ERROR_QUIET
    RESULT_VARIABLE failed)
if(failed)
    set(revision "unknown")
endif()
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "#pragma once\n#define KSE_REVISION \"@revision@\"\n" @ONLY)
