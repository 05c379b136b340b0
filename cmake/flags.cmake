# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT

# What every target of the project is compiled and linked with. Nothing of it reaches targets that link ours.
add_library(bluetooth_logs_flags INTERFACE)
target_compile_features(bluetooth_logs_flags INTERFACE cxx_std_20)
target_compile_definitions(bluetooth_logs_flags INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_USE_QSTRINGBUILDER)
target_compile_options(bluetooth_logs_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
    -Wzero-as-null-pointer-constant -Wsuggest-override
    $<$<BOOL:${BLUETOOTH_LOGS_WARNINGS_AS_ERRORS}>:-Werror>)
if(NOT APPLE)
    target_link_options(bluetooth_logs_flags INTERFACE -Wl,--no-undefined)
endif()

# Gives a target the project's flags, hidden symbols and Qt's code generators.
function(bluetooth_logs_configure target)
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        AUTOUIC ON
        CXX_EXTENSIONS OFF
        OBJCXX_STANDARD 20
        OBJCXX_STANDARD_REQUIRED ON
        OBJCXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        OBJCXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:bluetooth_logs_flags>)
endfunction()
