// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_RECORD_OBJECTIONS_H
#define HOST_CASE_RECORD_OBJECTIONS_H

#include <QJsonObject>
#include <QString>

/**
 * Why what is said of a source, in its record or in the manifest, was not written by this program: an unknown status or
 * code, another source's number, a path that leads elsewhere. Empty when nothing speaks against it. Whoever opens a
 * file by such a path asks first.
 */
QString objection_to_record(const QJsonObject &record, int number);

/** The same for a manifest's sources: at least one, each as above, by ascending numbers, and those that it lists. */
QString objection_to_sources(const QJsonObject &manifest);

#endif
