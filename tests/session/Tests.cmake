# SPDX-License-Identifier: MIT
kse_test(session/dialogs/BackupsDialog kse_ui)
kse_test(session/PixInsightEnv kse_core PROCESSES)
kse_test(session/ProcessList kse_core PROCESSES)
kse_test(session/dialogs/ReviewDialog kse_ui)
kse_test(session/SettingsStore kse_core PROCESSES)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux") # the faults are made by its own means
    kse_test(session/SaveFaults kse_core PROCESSES)
    set(faulty_calls ${PROJECT_SOURCE_DIR}/tests/support/FaultyCalls.cpp)
    target_sources(TestSaveFaults PRIVATE ${faulty_calls})
    # Without the sanitizers, which come between the program and its calls themselves.
    set_source_files_properties(${faulty_calls} PROPERTIES COMPILE_OPTIONS -fno-sanitize=all)
    # So that Qt finds them, also by the names for large files.
    set_target_properties(TestSaveFaults PROPERTIES ENABLE_EXPORTS ON)
    foreach(name IN ITEMS open lseek ftruncate fstat stat lstat)
        target_link_options(TestSaveFaults PRIVATE LINKER:--defsym=${name}64=${name})
    endforeach()
endif()

# The list for systems without a way of their own, held to the same test. It is a library beside
# the core, which has another one here.
if(UNIX AND NOT APPLE)
    add_library(kse_process_list_posix STATIC
        ${PROJECT_SOURCE_DIR}/src/session/ProcessListPosix.cpp)
    target_link_libraries(kse_process_list_posix PUBLIC kse_options)
    add_executable(TestProcessListPosix ${PROJECT_SOURCE_DIR}/tests/session/TestProcessList.cpp)
    set_target_properties(TestProcessListPosix PROPERTIES AUTOMOC ON)
    target_include_directories(TestProcessListPosix PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(TestProcessListPosix PRIVATE
        KSE_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
        KSE_IDLE_PROCESS="$<TARGET_FILE:idle-process>")
    target_link_libraries(TestProcessListPosix PRIVATE kse_process_list_posix Qt6::Test)
    add_dependencies(TestProcessListPosix idle-process)
    kse_add_test(session/ProcessListPosix TestProcessListPosix PROCESSES)
endif()
