// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_FOLDER_STORE_H
#define HOST_CONTAINER_FOLDER_STORE_H

#include "host/container/evidence_store.h"

/** The files below a folder of this machine. @p follow_links: also where a link leads out of it. */
std::unique_ptr<evidence_store> open_folder(const QString &folder, bool follow_links);

#endif
