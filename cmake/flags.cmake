# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT

# A folder's sources are one translation unit where this is on, which takes a third of the time; without it each source
# shows that it stands alone.
option(BLUETOOTH_LOGS_JOINED_SOURCES "Compile the sources of a folder together" OFF)
option(BLUETOOTH_LOGS_JOINED_TESTS "Compile the tests of a folder together" "${BLUETOOTH_LOGS_JOINED_SOURCES}")

# Whether a sanitizer watches: its memory and its ends are not the program's.
string(FIND "${CMAKE_CXX_FLAGS}" "sanitize=" at)
if(at EQUAL -1)
    set(BLUETOOTH_LOGS_SANITIZED 0)
else()
    set(BLUETOOTH_LOGS_SANITIZED 1)
endif()

# GCC looks for what it no longer needs once it holds so many KiB. The sources of a folder stay near that; with its own, lower
# limit it spends 5 to 10 % of its time on looking.
set(gcc_garbage $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=524288>)

# What every target of the project is compiled and linked with. Nothing of it reaches targets that link ours.
add_library(bluetooth_logs_flags INTERFACE)
target_compile_features(bluetooth_logs_flags INTERFACE cxx_std_20)
target_compile_definitions(bluetooth_logs_flags INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_USE_QSTRINGBUILDER
    BLUETOOTH_LOGS_SANITIZED=${BLUETOOTH_LOGS_SANITIZED})
target_compile_options(bluetooth_logs_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
    -Wzero-as-null-pointer-constant -Wsuggest-override ${gcc_garbage}
    # A name of one file may stand in a function of another that is compiled with it.
    $<$<NOT:$<BOOL:${BLUETOOTH_LOGS_JOINED_SOURCES}>>:-Wshadow>
    $<$<BOOL:${BLUETOOTH_LOGS_WARNINGS_AS_ERRORS}>:-Werror>)
# The functions of clang's sanitizers are in the programs, not in a library that they load.
if(NOT APPLE AND NOT BLUETOOTH_LOGS_SANITIZED)
    target_link_options(bluetooth_logs_flags INTERFACE -Wl,--no-undefined)
endif()

# One parse of Qt's headers for all sources halves the time of a build; without it each source shows that it includes what
# it uses.
option(BLUETOOTH_LOGS_PRECOMPILED_HEADERS "Parse Qt's headers once for all sources" ON)

# bluetooth_logs_optimise(TARGET FILE...): files of the calling folder that look at every byte of a log. All else waits for the
# disk, SQLite, OpenSSL or Qt, and is as fast with -O1, which compiles in three quarters of the time: docs/performance.md.
function(bluetooth_logs_optimise target)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES
        COMPILE_OPTIONS $<$<CONFIG:Release>:-O2>
        SKIP_UNITY_BUILD_INCLUSION ON
        SKIP_PRECOMPILE_HEADERS ON)
endfunction()

# bluetooth_logs_join_folders(TARGET): called when the target has all of its sources.
function(bluetooth_logs_join_folders target)
    if(NOT BLUETOOTH_LOGS_JOINED_SOURCES)
        return()
    endif()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    get_target_property(folder ${target} SOURCE_DIR)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    foreach(source IN LISTS sources)
        cmake_path(GET source PARENT_PATH group)
        cmake_path(ABSOLUTE_PATH group BASE_DIRECTORY ${folder})
        string(MAKE_C_IDENTIFIER "${group}" group)
        set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP ${group})
    endforeach()
endfunction()

# bluetooth_logs_add_precompiled(NAME FILE library...): FILE's headers, for targets that link no more than the libraries.
function(bluetooth_logs_add_precompiled name file)
    add_library(${name} OBJECT ${PROJECT_SOURCE_DIR}/cmake/precompiled.cpp)
    bluetooth_logs_set_properties(${name})
    target_link_libraries(${name} PRIVATE bluetooth_logs_flags ${ARGN})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_precompile_headers(${name} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:<cmake/${file}$<ANGLE-R>>")
    bluetooth_logs_fit_precompiled(${name})
endfunction()

# Qt gives each folder of tests macros of its own, which no test here uses: headers parsed with others do not fit.
function(bluetooth_logs_fit_precompiled target)
    target_compile_options(${target} PRIVATE -UQT_TESTCASE_BUILDDIR -UQT_TESTCASE_SOURCEDIR)
endfunction()

function(bluetooth_logs_set_properties target)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        OBJCXX_STANDARD 20
        OBJCXX_STANDARD_REQUIRED ON
        OBJCXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        OBJCXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
endfunction()

# bluetooth_logs_configure(TARGET [MOC] [UIC] [PRECOMPILED name]): the project's flags, hidden symbols and, where asked for,
# Qt's code generators.
function(bluetooth_logs_configure target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "MOC;UIC" "PRECOMPILED" "")
    bluetooth_logs_set_properties(${target})
    set_target_properties(${target} PROPERTIES AUTOMOC "${arg_MOC}" AUTOUIC "${arg_UIC}")
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:bluetooth_logs_flags>)
    if(BLUETOOTH_LOGS_PRECOMPILED_HEADERS)
        if(NOT arg_PRECOMPILED)
            set(arg_PRECOMPILED bluetooth_logs_precompiled)
        endif()
        target_precompile_headers(${target} REUSE_FROM ${arg_PRECOMPILED})
        bluetooth_logs_fit_precompiled(${target})
    endif()
endfunction()
