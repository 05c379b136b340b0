# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT

# cmake -DSOURCE=folder -DHEADER=file -P commit.cmake: writes the header with the commit that is checked out in the
# folder, "-modified" behind it where what the program is made of differs from it. Empty where the folder is no checkout
# of its own, or without git. A header that says so already is left alone.
set(commit "")
find_program(git git)
if(git)
    execute_process(COMMAND ${git} rev-parse --show-toplevel WORKING_DIRECTORY ${SOURCE}
        OUTPUT_VARIABLE top OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    file(REAL_PATH "${SOURCE}" folder)
    if(top STREQUAL folder)
        execute_process(COMMAND ${git} rev-parse --verify HEAD WORKING_DIRECTORY ${SOURCE}
            OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
        execute_process(COMMAND ${git} diff-index --quiet HEAD -- common extractors plugin host cmake CMakeLists.txt
            WORKING_DIRECTORY ${SOURCE} RESULT_VARIABLE is_modified OUTPUT_QUIET ERROR_QUIET)
        if(commit AND is_modified)
            string(APPEND commit "-modified")
        endif()
    endif()
endif()
set(text "// Made by cmake/commit.cmake.\n#define BLUETOOTH_LOGS_COMMIT \"${commit}\"\n")
set(before "")
if(EXISTS ${HEADER})
    file(READ ${HEADER} before)
endif()
if(NOT before STREQUAL text)
    file(WRITE ${HEADER} "${text}")
endif()
