// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_EVIDENCE_FILES_H
#define HOST_SOURCE_EVIDENCE_FILES_H

#include "host/source/evidence_source.h"

#include <QString>
#include <QStringList>

/** The files that a source of this kind may hold, relative to its root, present or not, in the order of a record. */
QStringList evidence_paths(const evidence_source &source);

/** The folder whose names are listed before and after. */
QString listed_folder(const evidence_source &source);

#endif
