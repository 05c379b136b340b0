// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "fuzz/input_file.h"
#include "host/files/host_error.h"
#include "host/source/macos_databases.h"
#include "host/source/wal_changes.h"

#include <QDir>
#include <QJsonDocument>
#include <QtEndian>

using namespace Qt::StringLiterals;

/** The first four bytes say how many of the others are a database; the rest is its write-ahead log. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 4)
        return 0;
    const QByteArrayView bytes(reinterpret_cast<const char *>(data + 4), qsizetype(size - 4));
    const qsizetype split = qMin<qsizetype>(qFromLittleEndian<quint32>(data), bytes.size());
    const QString path = path_in_source(other_devices_database);
    QDir(input_folder().path()).mkpath(u"copies/"_s + macos_database_folder);
    input_file(u"copies/"_s + path, bytes.first(split));
    input_file(u"copies/"_s + path + u"-wal"_s, bytes.sliced(split));
    evidence_state evidence;
    for (const QString &name : QStringList{path, path + u"-wal"_s}) {
        evidence_file file;
        file.path = name;
        file.state = evidence_file::presence::present;
        file.copy_sha256 = u"known"_s;
        evidence.files.append(file);
    }
    const QString output = input_folder().filePath(u"changes"_s);
    write_wal_changes(evidence, input_folder().filePath(u"copies"_s), input_folder().path(), output);
    QFile changes(output);
    require(changes.open(QIODevice::ReadOnly), "no file of changes");
    for (QByteArray line = changes.readLine(); !line.isEmpty(); line = changes.readLine())
        require(QJsonDocument::fromJson(line).isObject(), "a line is no JSON object");
    require(!QFile::exists(input_folder().filePath(u"wal"_s)), "the copies stay");
    return 0;
}
