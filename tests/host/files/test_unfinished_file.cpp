// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/unfinished_file.h"

#include "tests/support/child_answers.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

/** What a signal that ends the program leaves: no file that was not finished. */
class test_unfinished_file : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void signals_remove_it_data();
    void signals_remove_it();
    void ignored_signals_stay_ignored();
    void more_than_there_is_room_for();

private:
    QByteArray path(const QString &name) const
    {
        return QFile::encodeName(folder->filePath(name));
    }
    QStringList names() const
    {
        return tree_of(folder->path());
    }

    std::unique_ptr<QTemporaryDir> folder;
};

void test_unfinished_file::init()
{
    strict_test::init();
    folder = std::make_unique<QTemporaryDir>();
}

void test_unfinished_file::signals_remove_it_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("left");

    // clang-format off
    QTest::newRow("interrupt")   << SIGINT  << u"finished full/ full/file other"_s;
    QTest::newRow("terminate")   << SIGTERM << u"finished full/ full/file other"_s;
    QTest::newRow("hang up")     << SIGHUP  << u"finished full/ full/file other"_s;
    QTest::newRow("another one") << SIGUSR1 << u"a b c/ finished full/ full/file other"_s;
    // clang-format on
}

void test_unfinished_file::signals_remove_it()
{
    QFETCH(const int, signal);
    QFETCH(const QString, left);
    for (const QString &name : {u"a"_s, u"b"_s, u"finished"_s, u"full/file"_s, u"other"_s})
        write_file(folder->filePath(name), "content");
    QVERIFY(QDir().mkpath(folder->filePath(u"c"_s)));
    const child_answers given(1, [this, signal](int *answer) {
        unfinished_file::remove_on_signals();
        const unfinished_file a(path(u"a"_s));
        std::optional<unfinished_file> finished(std::in_place, path(u"finished"_s));
        const unfinished_file b(path(u"b"_s));
        finished.reset();
        const unfinished_file c(path(u"c"_s)); // an empty folder, of a report of many files
        const unfinished_file full(path(u"full"_s));
        const unfinished_file none(path(u"none"_s));
        ::raise(signal);
        *answer = 1;
    });
    QCOMPARE(given.signal(), signal);
    QCOMPARE(given[0], 0);
    QCOMPARE(names().join(u' '), left);
}

/** As nohup wants it. */
void test_unfinished_file::ignored_signals_stay_ignored()
{
    write_file(folder->filePath(u"a"_s), "content");
    const child_answers given(1, [this](int *answer) {
        std::signal(SIGHUP, SIG_IGN);
        unfinished_file::remove_on_signals();
        const unfinished_file a(path(u"a"_s));
        ::raise(SIGHUP);
        *answer = int(QFile::exists(folder->filePath(u"a"_s)));
        ::raise(SIGTERM);
    });
    QCOMPARE(given.signal(), SIGTERM);
    QCOMPARE(given[0], 1);
    QCOMPARE(names(), QStringList());
}

void test_unfinished_file::more_than_there_is_room_for()
{
    for (int number = 0; number < 66; ++number)
        write_file(folder->filePath(QString::number(number)), "content");
    const child_answers given(1, [this](int *) {
        unfinished_file::remove_on_signals();
        std::vector<std::unique_ptr<unfinished_file>> files;
        for (int number = 0; number < 66; ++number)
            files.push_back(std::make_unique<unfinished_file>(path(QString::number(number))));
        files.erase(files.begin() + 64); // it has no place, and takes none from others
        ::raise(SIGINT);
    });
    QCOMPARE(given.signal(), SIGINT);
    QCOMPARE(names(), QStringList({u"64"_s, u"65"_s}));
}

BLUETOOTH_LOGS_TEST(test_unfinished_file, QCoreApplication)
#include "test_unfinished_file.moc"
