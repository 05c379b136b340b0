# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT

# Which files of common/platform/ are built, and the target that carries what they need.
#   apple     Foundation and Spotlight
#   gnustep   the same Foundation file on GNUstep Base, to test it where there is no Mac
#   libplist  builds without Foundation
if(CMAKE_SYSTEM_NAME STREQUAL "Darwin") # macOS alone: other Apple systems have no Spotlight
    set(bluetooth_logs_default_platform apple)
else()
    set(bluetooth_logs_default_platform libplist)
endif()
set(BLUETOOTH_LOGS_PLATFORM ${bluetooth_logs_default_platform} CACHE STRING
    "Where property lists are read with: apple, gnustep or libplist")
set_property(CACHE BLUETOOTH_LOGS_PLATFORM PROPERTY STRINGS apple gnustep libplist)

add_library(bluetooth_logs_platform INTERFACE)
if(BLUETOOTH_LOGS_PLATFORM STREQUAL "apple")
    enable_language(OBJCXX)
    target_link_libraries(bluetooth_logs_platform INTERFACE "-framework Foundation" "-framework CoreServices")
elseif(BLUETOOTH_LOGS_PLATFORM STREQUAL "gnustep")
    enable_language(OBJCXX)
    find_program(BLUETOOTH_LOGS_GNUSTEP_CONFIG gnustep-config REQUIRED)
    execute_process(COMMAND ${BLUETOOTH_LOGS_GNUSTEP_CONFIG} --objc-flags
        OUTPUT_VARIABLE bluetooth_logs_objc_flags COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(bluetooth_logs_objc_flags UNIX_COMMAND "${bluetooth_logs_objc_flags}")
    # Its warnings, optimisation and dependency files are left to this project; its headers are not ours to warn about.
    list(FILTER bluetooth_logs_objc_flags INCLUDE REGEX "^-([DI][^.]|f|pthread)")
    list(TRANSFORM bluetooth_logs_objc_flags REPLACE "^-I" "-isystem")
    execute_process(COMMAND ${BLUETOOTH_LOGS_GNUSTEP_CONFIG} --base-libs
        OUTPUT_VARIABLE bluetooth_logs_base_libs COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(bluetooth_logs_base_libs UNIX_COMMAND "${bluetooth_logs_base_libs}")
    list(FILTER bluetooth_logs_base_libs INCLUDE REGEX "^-[lL]")
    target_compile_options(bluetooth_logs_platform INTERFACE
        "$<$<COMPILE_LANGUAGE:OBJCXX>:${bluetooth_logs_objc_flags}>"
        # What the compiler itself generates for classes would fail.
        $<$<COMPILE_LANGUAGE:OBJCXX>:-Wno-zero-as-null-pointer-constant>)
    target_link_libraries(bluetooth_logs_platform INTERFACE ${bluetooth_logs_base_libs})
elseif(BLUETOOTH_LOGS_PLATFORM STREQUAL "libplist")
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(libplist REQUIRED IMPORTED_TARGET libplist-2.0>=2.2)
    target_link_libraries(bluetooth_logs_platform INTERFACE PkgConfig::libplist)
else()
    message(FATAL_ERROR "BLUETOOTH_LOGS_PLATFORM is apple, gnustep or libplist, not ${BLUETOOTH_LOGS_PLATFORM}")
endif()

# The Objective-C++ files release what they own themselves. GCC never does it for them.
target_compile_options(bluetooth_logs_platform INTERFACE
    $<$<AND:$<COMPILE_LANGUAGE:OBJCXX>,$<OBJCXX_COMPILER_ID:Clang,AppleClang>>:-fno-objc-arc>)
