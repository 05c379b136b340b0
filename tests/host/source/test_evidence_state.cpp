// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/evidence_state.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using change = void (*)(evidence_state &evidence);

evidence_state unchanged()
{
    evidence_file file;
    file.path = u"Library/Bluetooth/a.db"_s;
    file.state = evidence_file::presence::present;
    file.before = file_state{u"1:2"_s, 10, u"m"_s, u"c"_s, u"aa"_s};
    file.after = file.before;
    evidence_state evidence;
    evidence.files = {file};
    evidence.listing_before = {u"a.db"_s, u"b"_s};
    evidence.listing_after = evidence.listing_before;
    return evidence;
}

} // namespace

Q_DECLARE_METATYPE(change)

class test_evidence_state : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void changes_data();
    void changes();
    void many_names();
};

void test_evidence_state::changes_data()
{
    QTest::addColumn<change>("make");
    QTest::addColumn<QStringList>("words");

    const QString file = u"Library/Bluetooth/a.db: "_s;
    // clang-format off
    QTest::newRow("none")            << change([](evidence_state &) {}) << QStringList();
    QTest::newRow("gone")            << change([](evidence_state &evidence) { evidence.files[0].after.reset(); }) << QStringList{file + u"it is gone"_s};
    QTest::newRow("came")            << change([](evidence_state &evidence) { evidence.files[0].before.reset(); }) << QStringList{file + u"it was not there before"_s};
    QTest::newRow("another file")    << change([](evidence_state &evidence) { evidence.files[0].after->identity = u"1:3"_s; }) << QStringList{file + u"it is another file than before"_s};
    QTest::newRow("unknown before")  << change([](evidence_state &evidence) { evidence.files[0].before->identity.clear(); }) << QStringList();
    QTest::newRow("size")            << change([](evidence_state &evidence) { evidence.files[0].after->size = 11; }) << QStringList{file + u"its size was 10 bytes and is 11"_s};
    QTest::newRow("content")         << change([](evidence_state &evidence) { evidence.files[0].after->sha256 = u"bb"_s; }) << QStringList{file + u"its content was changed: its SHA-256 was aa and is bb"_s};
    QTest::newRow("unread again")    << change([](evidence_state &evidence) { evidence.files[0].after->sha256.clear(); }) << QStringList();
    QTest::newRow("modified")        << change([](evidence_state &evidence) { evidence.files[0].after->modified = u"n"_s; }) << QStringList{file + u"it was modified"_s};
    QTest::newRow("entry")           << change([](evidence_state &evidence) { evidence.files[0].after->changed = u"d"_s; }) << QStringList{file + u"its entry was changed: permissions, owner, links or times"_s};
    QTest::newRow("one text a file") << change([](evidence_state &evidence) { *evidence.files[0].after = {u"1:3"_s, 11, u"n"_s, u"d"_s, u"bb"_s}; }) << QStringList{file + u"it is another file than before"_s};
    QTest::newRow("new beside")      << change([](evidence_state &evidence) { evidence.listing_after.append(u"c"_s); }) << QStringList{u"Library/Bluetooth/c: it was not there before"_s};
    QTest::newRow("gone beside")     << change([](evidence_state &evidence) { evidence.listing_after = {u"a.db"_s}; }) << QStringList{u"Library/Bluetooth/b: it is gone"_s};
    QTest::newRow("known file is told once") << change([](evidence_state &evidence) { evidence.files[0].after.reset(); evidence.listing_after = {u"b"_s}; }) << QStringList{file + u"it is gone"_s};
    // clang-format on
}

void test_evidence_state::changes()
{
    QFETCH(change, make);
    QFETCH(QStringList, words);
    evidence_state evidence = unchanged();
    make(evidence);
    QCOMPARE(evidence.changes(), words);
}

void test_evidence_state::many_names()
{
    evidence_state evidence;
    for (int i = 0; i < 200'000; ++i)
        evidence.listing_before.append(QString::number(i));
    evidence.listing_after = evidence.listing_before;
    evidence.listing_after.last() = u"new"_s;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(evidence.changes(), (QStringList{u"Library/Bluetooth/new: it was not there before"_s,
                                              u"Library/Bluetooth/199999: it is gone"_s}));
    QVERIFY2(timer.elapsed() < 5000, "each name is compared with each"); // a minute and more then
}

BLUETOOTH_LOGS_TEST(test_evidence_state, QCoreApplication)

#include "test_evidence_state.moc"
