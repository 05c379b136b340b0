// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_MACOS_SOURCE_H
#define TESTS_SUPPORT_MACOS_SOURCE_H

#include "tests/support/sqlite_file.h"

#include <QTemporaryDir>

/** An empty macOS source whose low-energy device databases a test fills. */
class macos_source
{
public:
    macos_source();

    /** The source's root, ending with "/". */
    QString root() const;
    QString other_db() const;
    QString paired_db() const;

    /** Makes the databases with their empty device table, in the layout of the operating system. */
    sqlite_file make_other() const;
    sqlite_file make_paired() const;

    /** One device; its values in the order of the table's columns, the rest NULL. */
    static void add_device(const sqlite_file &database, const QString &table, const QVariantList &values);

private:
    QTemporaryDir directory;
};

#endif
