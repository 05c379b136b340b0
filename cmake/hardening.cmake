# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT

# What makes a fault in memory end the program instead of obeying whoever planted it. The program reads what strangers
# wrote. Each part is left out where the compiler, the linker or the processor does not have it.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)

# Index checks of the standard library.
target_compile_definitions(bluetooth_logs_flags INTERFACE _GLIBCXX_ASSERTIONS)

# Returns are checked: by a value behind each array of the stack, by the processor (x86, then AArch64). Clang takes what its
# target has not, with a warning.
set(BLUETOOTH_LOGS_HARDENING_FLAGS)
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(flag -fstack-protector-strong -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "BLUETOOTH_LOGS_HAS${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
        list(APPEND BLUETOOTH_LOGS_HARDENING_FLAGS ${flag})
    endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)
target_compile_options(bluetooth_logs_flags INTERFACE ${BLUETOOTH_LOGS_HARDENING_FLAGS})

# Sizes of blocks are checked in calls of the C library. It needs an optimiser, and level 3 a newer compiler; a compiler
# may have a level of its own.
set(BLUETOOTH_LOGS_OPTIMISED "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
set(fortify_level 2)
set(CMAKE_REQUIRED_FLAGS "-O2 -Werror -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
check_cxx_source_compiles("#include <cstring>\nint main() { return 0; }" BLUETOOTH_LOGS_HAS_FORTIFY_3)
unset(CMAKE_REQUIRED_FLAGS)
if(BLUETOOTH_LOGS_HAS_FORTIFY_3)
    set(fortify_level 3)
endif()
target_compile_options(bluetooth_logs_flags INTERFACE
    "$<${BLUETOOTH_LOGS_OPTIMISED}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=${fortify_level}>")

# All addresses of other libraries are found at the start, and cannot be written from then on.
check_linker_flag(CXX "-Wl,-z,relro,-z,now" BLUETOOTH_LOGS_HAS_FULL_RELRO)
if(BLUETOOTH_LOGS_HAS_FULL_RELRO)
    target_link_options(bluetooth_logs_flags INTERFACE -Wl,-z,relro,-z,now)
endif()
