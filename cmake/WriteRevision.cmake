# SPDX-License-Identifier: MIT
# Runs in every build: writes the header OUTPUT with the abbreviated commit of SOURCE_DIR. An
# unchanged header isn't written again, so nothing is recompiled.
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
