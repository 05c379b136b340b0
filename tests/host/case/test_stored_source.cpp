// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/stored_source.h"
#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "tests/host/case/made_case.h"
#include "tests/support/test_entry.h"

using namespace Qt::StringLiterals;

/** The sources of a case as they are shown. */
class test_stored_source : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void sources_of_a_case();
    void one_that_a_run_works_on();
    void folder_without_a_record();
    void result_database_in_a_case();
    void result_database_alone();
    void nothing_there_data();
    void nothing_there();
    void reservations_data();
    void reservations();
    void titles();
};

void test_stored_source::sources_of_a_case()
{
    const made_case that({3, 1, 10});
    const QList<stored_source> sources = stored_sources(that.directory());
    QCOMPARE(sources.size(), 3);
    QCOMPARE(sources.at(0).name, u"Source1"_s);
    QCOMPARE(sources.at(1).name, u"Source3"_s);
    QCOMPARE(sources.at(2).name, u"Source10"_s);
    QCOMPARE(sources.at(1).result_database, that.layout().source(3).result_database());
    QCOMPARE(sources.at(1).record->path, u"/evidence/3"_s);
    QVERIFY(sources.at(1).is_complete());
    QCOMPARE(sources.at(1).reservation(), QString());
}

void test_stored_source::one_that_a_run_works_on()
{
    const made_case that({1});
    const file_lock lock(that.layout().source(1).lock());
    const stored_source source = stored_sources(that.directory()).first();
    QVERIFY(source.is_locked);
    QVERIFY(!source.is_complete());
    QCOMPARE(source.reservation(), u"Source1 is incomplete: a run works on it"_s);
}

void test_stored_source::folder_without_a_record()
{
    const made_case that({1});
    QVERIFY(QFile::remove(that.layout().source(1).record()));
    const stored_source source = stored_sources(that.directory()).first();
    QVERIFY(!source.record);
    QCOMPARE(source.title(), u"Source1"_s);
    QCOMPARE(source.reservation(),
             u"Source1 has no record of its run: whether its rows are all that there were is not known"_s);
}

void test_stored_source::result_database_in_a_case()
{
    const made_case that({1, 2});
    const QList<stored_source> sources = stored_sources(that.layout().source(2).result_database());
    QCOMPARE(sources.size(), 1);
    QCOMPARE(sources.first().name, u"Source2"_s);
    QVERIFY(sources.first().record.has_value());
}

void test_stored_source::result_database_alone()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"found.db"_s);
    made_case::write(file, "rows");
    const QList<stored_source> sources = stored_sources(file);
    QCOMPARE(sources.size(), 1);
    QCOMPARE(sources.first().name, QString());
    QCOMPARE(sources.first().result_database, file);
    QVERIFY(sources.first().is_complete());
    QCOMPARE(sources.first().reservation(), QString());
}

void test_stored_source::nothing_there_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("words");
    QTest::newRow("no folder") << u"gone"_s << QString();
    QTest::newRow("an empty folder") << u"."_s << u": a case holds a folder Source1"_s;
}

void test_stored_source::nothing_there()
{
    QFETCH(const QString, name);
    QFETCH(const QString, words);
    const QTemporaryDir folder;
    const QString place = QDir::cleanPath(folder.filePath(name));
    try {
        stored_sources(place);
        QFAIL("something was found");
    } catch (const host_error &error) {
        QCOMPARE(error.kind(), error_kind::not_found);
        QCOMPARE(error.message(), u"there is no case and no result database at "_s + place + words);
    }
}

void test_stored_source::reservations_data()
{
    QTest::addColumn<source_status>("status");
    QTest::addColumn<bool>("is_complete");
    QTest::addColumn<QString>("words");
    const auto row = [](source_status status, bool is_complete, const QString &words) {
        QTest::newRow(status_name(status).data()) << status << is_complete << words;
    };
    row(source_status::done, true, {});
    row(source_status::partial, true, u"Source4 is partial: its source.json says what could not be read or written"_s);
    row(source_status::evidence_changed, true,
        u"the evidence of Source4 changed during its run: its source.json says how"_s);
    row(source_status::running, false, u"Source4 is incomplete: its run ended as \"running\""_s);
    row(source_status::failed, false, u"Source4 is incomplete: its run ended as \"failed\""_s);
    row(source_status::crashed, false, u"Source4 is incomplete: its run ended as \"crashed\""_s);
    row(source_status::timed_out, false, u"Source4 is incomplete: its run ended as \"timed out\""_s);
    row(source_status::out_of_memory, false, u"Source4 is incomplete: its run ended as \"out of memory\""_s);
    row(source_status::interrupted, false, u"Source4 is incomplete: its run ended as \"interrupted\""_s);
    row(source_status::not_run, false, u"Source4 is incomplete: its run ended as \"not run\""_s);
}

void test_stored_source::reservations()
{
    QFETCH(const source_status, status);
    QFETCH(const bool, is_complete);
    QFETCH(const QString, words);
    stored_source source;
    source.name = u"Source4"_s;
    source.record.emplace();
    source.record->status = status;
    QCOMPARE(source.is_complete(), is_complete);
    QCOMPARE(source.reservation(), words);
}

void test_stored_source::titles()
{
    stored_source source;
    source.name = u"Source4"_s;
    source.record.emplace();
    source.record->path = u"/mnt/image"_s;
    source.record->type = u"macOS"_s;
    QCOMPARE(source.title(), u"Source4  macOS: /mnt/image"_s);
    source.record->name = u"the laptop"_s;
    QCOMPARE(source.title(), u"Source4  the laptop  macOS: /mnt/image"_s);
    source.record->type = u"of a later version"_s;
    QCOMPARE(source.title(), u"Source4  the laptop  of a later version: /mnt/image"_s);
}

BLUETOOTH_LOGS_TEST(test_stored_source, QCoreApplication)
#include "test_stored_source.moc"
