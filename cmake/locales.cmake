# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT

# Locales that write numbers, dates and letters otherwise than C does: a decimal comma, a dotless i, other digits, another
# calendar. They are compiled into the build folder, so that the tests need nobody's right to install; C libraries find
# them there by LOCPATH. The sources are Debian's package locales. Where one is missing the tests run without it, and under
# a sanitizer, which finds nothing else in them.
set(BLUETOOTH_LOGS_LOCALES_FOLDER ${PROJECT_BINARY_DIR}/locales)
set(BLUETOOTH_LOGS_LOCALES)
set(compiled)
find_program(BLUETOOTH_LOGS_LOCALEDEF localedef DOC "Compiles the locales that tests run in")
find_path(BLUETOOTH_LOGS_LOCALE_SOURCES de_DE PATHS /usr/share/i18n/locales NO_DEFAULT_PATH DOC "Sources of locales")
foreach(language de_DE tr_TR ar_EG fa_IR)
    set(locale ${language}.UTF-8)
    set(file ${BLUETOOTH_LOGS_LOCALES_FOLDER}/${locale}/LC_NUMERIC)
    if(BLUETOOTH_LOGS_LOCALEDEF AND EXISTS ${BLUETOOTH_LOGS_LOCALE_SOURCES}/${language} AND NOT BLUETOOTH_LOGS_SANITIZED)
        add_custom_command(OUTPUT ${file}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${BLUETOOTH_LOGS_LOCALES_FOLDER}
            COMMAND ${BLUETOOTH_LOGS_LOCALEDEF} --no-archive -i ${language} -f UTF-8
                ${BLUETOOTH_LOGS_LOCALES_FOLDER}/${locale}
            COMMENT "Compiling the locale ${locale}"
            VERBATIM)
        list(APPEND BLUETOOTH_LOGS_LOCALES ${locale})
        list(APPEND compiled ${file})
    else()
        message(STATUS "No tests in the locale ${locale}")
    endif()
endforeach()
add_custom_target(bluetooth_logs_locales ALL DEPENDS ${compiled})
