// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_PROGRAM_PART_H
#define HOST_FILES_PROGRAM_PART_H

/**
 * A part of the program that stands beside it in a file of its own, with libraries that are long to load and that few
 * commands need. The file is loaded now and stays. Throws host_error (io) where it or the function is not there.
 */
void *address_in_part(const char *file, const char *function_name);

template<typename function>
function *function_of_part(const char *file, const char *function_name)
{
    return reinterpret_cast<function *>(address_in_part(file, function_name));
}

#endif
