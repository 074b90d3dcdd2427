# SPDX-License-Identifier: MIT

kse_test(app/Accessibility kse_ui PROCESSES)
kse_test(app/MainWindow kse_ui PROCESSES)
kse_test(app/RandomSessions kse_ui PROCESSES)
kse_test(app/ThemeManager kse_ui)

# They take longest: they start first, in halves, side by side.
kse_add_test(app/4-6/RandomSessions TestRandomSessions PROCESSES)
set_tests_properties(app/RandomSessions PROPERTIES COST 2
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;KSE_SESSION_SEEDS=1-3")
set_tests_properties(app/4-6/RandomSessions PROPERTIES COST 2
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;KSE_SESSION_SEEDS=4-6")

# The program itself, for what it makes of its arguments.
add_dependencies(TestMainWindow kestrane-settings-editor)
target_compile_definitions(TestMainWindow PRIVATE
    KSE_PROGRAM="$<TARGET_FILE:kestrane-settings-editor>")

# With a second screen, to move the window to.
set_tests_properties(app/MainWindow PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen:configfile=screens.json"
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}/tests/support)
