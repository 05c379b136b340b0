// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_RUN_ACCOUNT_OF_RUN_H
#define TESTS_HOST_RUN_ACCOUNT_OF_RUN_H

#include "host/run/run_observer.h"

#include <QString>
#include <QStringList>

/** What is said of a run, line by line. */
class account_of_run : public run_observer
{
public:
    void kept(const QStringList &paths) override
    {
        lines.append(QStringLiteral("kept ") + paths.join(u' '));
    }
    void source_started(const source_request &, const QList<run_message> &messages) override
    {
        lines.append(QStringLiteral("started"));
        for (const run_message &message : messages)
            lines.append(message.text);
    }
    void bytes_hashed(const source_request &, qint64 bytes) override
    {
        lines.append(QStringLiteral("hashed ") + QString::number(bytes));
    }
    void bytes_read(const source_request &, qint64 bytes) override
    {
        lines.append(QStringLiteral("read ") + QString::number(bytes));
    }
    void records_announced(const source_request &, qint64 records, int tables_done) override
    {
        lines.append(QString::number(records) + QStringLiteral(" records, tables: ") + QString::number(tables_done));
    }
    void worker_said(const source_request &, const QString &line) override
    {
        words.append(line); // when they come, between the others, is not fixed
    }
    void cancelling(const source_request &) override
    {
        lines.append(QStringLiteral("cancelling"));
    }
    void source_finished(const source_request &request, const source_record &record) override
    {
        lines.append(QStringLiteral("finished %1 ").arg(request.number) + status_name(record.status));
    }
    void case_finished() override
    {
        lines.append(QStringLiteral("all finished"));
    }

    QStringList lines;
    QStringList words; ///< of the workers
};

#endif
