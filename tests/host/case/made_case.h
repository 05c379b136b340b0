// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_CASE_MADE_CASE_H
#define TESTS_HOST_CASE_MADE_CASE_H

#include "host/case/case_layout.h"
#include "host/case/case_sources.h"
#include "host/case/manifest.h"
#include "host/files/json_file.h"
#include "host/files/sha256.h"
#include "tests/support/strict_test.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/** A case that no plug-in ever saw: records and files as a run leaves them, in a folder of its own. */
class made_case
{
public:
    explicit made_case(QList<int> source_numbers = {1, 2})
        : numbers(source_numbers)
    {
        for (const int number : std::as_const(numbers)) {
            const source_layout source = layout().source(number);
            write(source.plugin_log(), "log " + QByteArray::number(number));
            write(source.result_database(), "rows");
            write_record(finished(number));
        }
    }

    QString directory() const
    {
        return folder.path() + QStringLiteral("/case");
    }

    case_layout layout() const
    {
        return case_layout(directory());
    }

    /** A record of a run that is done, with the files that are there now. */
    source_record finished(int number) const
    {
        const source_layout source = layout().source(number);
        source_record record;
        record.number = number;
        record.path = QStringLiteral("/evidence/") + QString::number(number);
        record.type = QStringLiteral("macOS");
        record.status = source_status::done;
        record.exit_code = 0;
        record.started = QStringLiteral("2026-01-31T12:00:00Z");
        record.finished = QStringLiteral("2026-01-31T12:00:01Z");
        record.result_path = source.relative_to_case(source.result_database());
        record.files = list_files_of_source(layout(), number);
        for (const kept_file &file : std::as_const(*record.files)) {
            if (file.path == record.result_path)
                record.result_sha256 = file.sha256;
        }
        return record;
    }

    void write_record(const source_record &record, int version = case_version) const
    {
        QList<named_source> sources;
        for (const int number : numbers) {
            named_source source;
            source.number = number;
            source.path = QStringLiteral("/evidence/") + QString::number(number);
            sources.append(source);
        }
        QJsonObject members = record.to_json();
        members.insert(QStringLiteral("format"), QStringLiteral("bluetooth-logs source"));
        members.insert(QStringLiteral("version"), version);
        members.insert(QStringLiteral("case_sources"), sources_identity(sources));
        write_json_file(layout().source(record.number).record(), members);
    }

    static void write(const QString &path, const QByteArray &content)
    {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    static QByteArray content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir folder;
    QList<int> numbers;
};

#endif
