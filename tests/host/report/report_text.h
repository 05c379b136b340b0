// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_REPORT_REPORT_TEXT_H
#define TESTS_HOST_REPORT_REPORT_TEXT_H

#include "tests/support/file_content.h"

#include <QTest>

/**
 * Compares a text with texts/NAME, line by line. With BLUETOOTH_LOGS_WRITE_TEXTS in the environment it is written anew;
 * what is different then is to be read.
 */
inline void compare_with_text(const QString &name, const QByteArray &text)
{
    const QString file = QStringLiteral(REPORT_TEXTS_FOLDER) + u'/' + name;
    if (qEnvironmentVariableIsSet("BLUETOOTH_LOGS_WRITE_TEXTS"))
        write_file(file, text);
    const QList<QByteArray> lines = text.split('\n');
    const QList<QByteArray> expected = content_of(file).split('\n');
    for (qsizetype i = 0; i < qMin(lines.size(), expected.size()); ++i)
        QCOMPARE(lines.at(i), expected.at(i));
    QCOMPARE(lines.size(), expected.size());
}

#endif
