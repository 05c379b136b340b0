// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_KEPT_ACCESS_TIMES_H
#define HOST_CONTAINER_KEPT_ACCESS_TIMES_H

#include <QtGlobal>

/**
 * While one lives, files that libraries open to read keep their access times, where the system allows it: those of EWF,
 * VMDK and VHD take names alone, and open the files of the evidence by themselves. On Linux.
 */
class kept_access_times
{
public:
    kept_access_times();
    ~kept_access_times();
    Q_DISABLE_COPY_MOVE(kept_access_times)
};

#endif
