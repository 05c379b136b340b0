// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_request.h"

#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

/** What a worker gets, as a line has it. */
class test_source_request : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void of_nothing_said();
    void and_back();
};

void test_source_request::of_nothing_said()
{
    const QByteArray expected =
        R"({"case":"","member":"","name":"","number":1,"options":{"display_name":"","engine_type":0,"follow_links":false,)"
        R"("is_confined":true,"is_live":false,"is_verbose":false,"max_database":1024,"max_log":68719476736,)"
        R"("memory_limit":2048,"plugin_file":"","skips_container_hash":false,"suite_tables":false,)"
        R"("tables":["devices","paired_devices"],"timeout":0,"timezone_offset":0},"source":{"container":null,)"
        R"("files_taken_out":[],"follow_links":false,"is_taken_out":false,"kind":"","log_file":"","path":"","root":"",)"
        R"("type":""},"volume":0})";
    QCOMPARE(QJsonDocument(source_request().to_json()).toJson(QJsonDocument::Compact), expected);
}

void test_source_request::and_back()
{
    const QByteArray full =
        R"({"case":"/case","member":"m","name":"n","number":7,"options":{"display_name":"d","engine_type":3,"follow_links":true,)"
        R"("is_confined":true,"is_live":true,"is_verbose":true,"max_database":5,"max_log":6000000000,"memory_limit":4000000000,)"
        R"("plugin_file":"/p","skips_container_hash":true,"suite_tables":true,"tables":["a","b"],"timeout":8000000000,)"
        R"("timezone_offset":-3600},"source":{"container":{"format":"zip"},"files_taken_out":["x","y"],"follow_links":true,)"
        R"("is_taken_out":true,"kind":"macOS","log_file":"/l","path":"/e","root":"/e/","type":"iOS_backup"},"volume":2})";
    const QByteArray empty =
        R"({"case":"","member":"","name":"","number":0,"options":{"display_name":"","engine_type":0,)"
        R"("follow_links":false,"is_confined":false,"is_live":false,"is_verbose":false,"max_database":0,)"
        R"("max_log":0,"memory_limit":0,"plugin_file":"","skips_container_hash":false,)"
        R"("suite_tables":false,"tables":[],"timeout":0,"timezone_offset":0},"source":{"container":null,)"
        R"("files_taken_out":[],"follow_links":false,"is_taken_out":false,"kind":"","log_file":"",)"
        R"("path":"","root":"","type":""},"volume":0})";
    for (const QByteArray &line : {full, empty}) {
        const source_request request = source_request::from_json(QJsonDocument::fromJson(line).object());
        QCOMPARE(QJsonDocument(request.to_json()).toJson(QJsonDocument::Compact), line);
    }
}

BLUETOOTH_LOGS_TEST(test_source_request, QCoreApplication)
#include "test_source_request.moc"
