# SPDX-License-Identifier: MIT

# The examples are what the generator makes.
foreach(instance 1 2)
    set(name tools/Sample${instance})
    set(sample ${CMAKE_CURRENT_BINARY_DIR}/core-00${instance}-pxi.settings)
    add_test(NAME ${name}/generate COMMAND kse-generate --sample ${instance} ${sample})
    add_test(NAME ${name}/compare COMMAND ${CMAKE_COMMAND} -E compare_files ${sample}
        ${PROJECT_SOURCE_DIR}/examples/core-00${instance}-pxi.settings)
    set_tests_properties(${name}/generate PROPERTIES FIXTURES_SETUP ${name})
    set_tests_properties(${name}/compare PROPERTIES FIXTURES_REQUIRED ${name})
endforeach()
