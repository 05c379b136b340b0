# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT

# Locales that write numbers, dates and letters otherwise than C does: a decimal comma, a dotless i, other digits, another
# calendar. They are compiled into the build folder, so that the tests need nobody's right to install; C libraries find
# them there by LOCPATH. The sources are Debian's package locales. Where one is missing the tests run without it.
set(BLUETOOTH_LOGS_LOCALES_FOLDER ${PROJECT_BINARY_DIR}/locales)
set(BLUETOOTH_LOGS_LOCALES)
find_program(BLUETOOTH_LOGS_LOCALEDEF localedef DOC "Compiles the locales that tests run in")
foreach(language de_DE tr_TR ar_EG fa_IR)
    set(locale ${language}.UTF-8)
    set(folder ${BLUETOOTH_LOGS_LOCALES_FOLDER}/${locale})
    if(BLUETOOTH_LOGS_LOCALEDEF AND NOT EXISTS ${folder}/LC_NUMERIC)
        file(MAKE_DIRECTORY ${BLUETOOTH_LOGS_LOCALES_FOLDER})
        execute_process(COMMAND ${BLUETOOTH_LOGS_LOCALEDEF} --no-archive -i ${language} -f UTF-8 ${folder}
            OUTPUT_QUIET ERROR_QUIET)
    endif()
    if(EXISTS ${folder}/LC_NUMERIC)
        list(APPEND BLUETOOTH_LOGS_LOCALES ${locale})
    else()
        message(STATUS "No tests in the locale ${locale}: localedef or its sources are missing")
    endif()
endforeach()
