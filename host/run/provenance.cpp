// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/provenance.h"

#include "host/files/file_hash.h"
#include "host/text/json_member.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <QTimeZone>

#include <bluetooth_logs_commit.h>
#include <filesystem>

#include <openssl/crypto.h>
#include <pwd.h>
#include <sqlite3.h>
#include <unistd.h>
#include <utf8proc.h>

using namespace Qt::StringLiterals;

namespace {

/** CLI11 is headers alone, and libplist has no version to ask for before 2.3: theirs are those of the build. */
QJsonObject libraries()
{
    return {
        {u"cli11"_s, QStringLiteral(BLUETOOTH_LOGS_CLI11_VERSION)},
        {u"libplist"_s, QStringLiteral(BLUETOOTH_LOGS_PLIST_VERSION)},
        {u"openssl"_s, QString::fromLatin1(OpenSSL_version(OPENSSL_VERSION_STRING))},
        {u"qt"_s, QString::fromLatin1(qVersion())},
        {u"sqlite"_s, QString::fromLatin1(sqlite3_libversion())},
        {u"utf8proc"_s, QString::fromLatin1(utf8proc_version())},
    };
}

QJsonValue hash_or_null(const QString &file)
{
    return text_or_null(hash_of_file(QFileInfo(file).canonicalFilePath()).value_or(QString()));
}

QString user_name()
{
    const struct passwd *entry = ::getpwuid(::geteuid());
    return entry ? QString::fromLocal8Bit(entry->pw_name) : QString::number(::geteuid());
}

} // namespace

QJsonObject tool_facts(const QString &plugin_file)
{
    static const QJsonValue own_hash = hash_or_null(QCoreApplication::applicationFilePath());
    return {
        {u"version"_s, QStringLiteral(BLUETOOTH_LOGS_VERSION)},
        {u"commit"_s, text_or_null(QStringLiteral(BLUETOOTH_LOGS_COMMIT))},
        {u"sha256"_s, own_hash},
        {u"qt"_s, QString::fromLatin1(qVersion())},
        {u"sqlite"_s, QString::fromLatin1(sqlite3_libversion())},
        {u"libraries"_s, libraries()},
        {u"plugin"_s, QJsonObject{{u"path"_s, plugin_file}, {u"sha256"_s, hash_or_null(plugin_file)}}},
    };
}

QJsonObject system_facts()
{
    return {
        {u"os"_s, text_or_null(QSysInfo::prettyProductName())},
        {u"kernel"_s, text_or_null(QSysInfo::kernelType() + u' ' + QSysInfo::kernelVersion())},
        {u"host"_s, text_or_null(QSysInfo::machineHostName())},
        {u"user"_s, user_name()},
        {u"zone"_s, text_or_null(QString::fromLatin1(QTimeZone::systemTimeZoneId()))},
    };
}

QJsonValue working_folder()
{
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::current_path(error);
    return error ? QJsonValue() : QJsonValue(QFile::decodeName(folder.c_str()));
}
