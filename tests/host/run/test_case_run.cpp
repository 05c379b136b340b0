// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/case_run.h"

#include "host/case/case_sources.h"
#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/source/macos_databases.h"
#include "tests/host/run/account_of_run.h"
#include "tests/host/run/scripted_worker.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace worker_script;

namespace {

using earlier_run = case_request::earlier_run;

/** Names of sources: "a" and "b" are there, "none" is not. */
struct step
{
    QString sources;
    earlier_run earlier = earlier_run::refused;
    QByteArray script = whole;
    std::optional<int> only = {};
    QString before = {}; ///< done before it: "+name" makes a file of the case, "-name" removes one
};

} // namespace

Q_DECLARE_METATYPE(step)

/** Runs of a case, one after another, with workers that do what a script says. */
class test_case_run : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void runs_data();
    void runs();
    void locked();
    void list_of_the_case();

private:
    QString run(const step &one);
    QString path(const QString &name) const
    {
        return folder->filePath(name);
    }

    std::unique_ptr<QTemporaryDir> folder;
};

void test_case_run::init()
{
    strict_test::init();
    folder = std::make_unique<QTemporaryDir>();
    for (const QString &name : {u"a"_s, u"b"_s}) {
        for (const macos_database *database : macos_databases)
            write_file(path(name) + u'/' + path_in_source(*database), "content");
    }
}

QString test_case_run::run(const step &one)
{
    for (const QString &change : one.before.split(u' ', Qt::SkipEmptyParts)) {
        const QString file = path(u"case/"_s + change.sliced(1));
        if (change.startsWith(u'+'))
            write_file(file, "content");
        else if (!QFile::remove(file))
            QTest::qFail(qPrintable(u"there is no "_s + file), __FILE__, __LINE__);
    }
    write_file(path(u"plugin"_s), QByteArray(one.script).replace("@", QFile::encodeName(path(u"case/Source$2"_s))));
    case_request request;
    for (const QString &name : one.sources.split(u' ', Qt::SkipEmptyParts)) {
        named_source source;
        source.path = path(name);
        source.kind = &macos_kind;
        source.place = u"-i"_s;
        request.sources.append(source);
    }
    request.directory = path(u"case"_s);
    request.earlier = one.earlier;
    request.only = one.only;
    request.options.plugin_file = path(u"plugin"_s);
    account_of_run observer;
    QStringList account;
    try {
        const case_tally tally = run_case(request, observer);
        account.append(u"code "_s + QString::number(int(tally.code())));
        if (tally.is_interrupted)
            account.append(u"interrupted"_s);
    } catch (const host_error &error) {
        account.append(u"thrown "_s + QString::number(int(error.kind())) + u": "_s + error.message());
    }
    QStringList files = tree_of(path(u"case"_s));
    files.removeIf([](const QString &name) {
        return name == ".lock"_L1 || name.endsWith("/.lock"_L1) || name.endsWith("/plugin.log"_L1)
               || name == "manifest.json.sha256"_L1;
    });
    return (observer.lines.filter(QRegularExpression(u"^(kept|cancelling|finished|all)"_s)) + account + files)
        .join(u" | "_s)
        .remove(folder->path() + u'/');
}

void test_case_run::runs_data()
{
    QTest::addColumn<QList<step>>("steps");
    QTest::addColumn<QStringList>("accounts");

    const QByteArray crash_of_second = others_inspect + "[ $2 = 2 ] && {\n" + say_loaded + say_looked
                                       + "kill -SEGV $$; }\n" + whole;
    const QByteArray stop = others_inspect + "[ $2 = 2 ] && {\n" + saying(loaded_line())
                            + "read -r word; kill -INT $PPID; exec sleep 60; }\n" + whole;
    const auto of = [](const QString &sources, earlier_run earlier = earlier_run::refused,
                       const QByteArray &script = whole) {
        return step{sources, earlier, script};
    };
    const auto removed = earlier_run::removed;
    const auto continued = earlier_run::continued;
    const auto added = earlier_run::added_to;
    const QString first = u" | Source1/ | Source1/source.json | manifest.json"_s;
    const QString both =
        u" | Source1/ | Source1/source.json | Source2/ | Source2/source.json | manifest.json | sources.json"_s;
    // clang-format off
    QTest::newRow("one") << QList{of(u"a"_s)}
        << QStringList{u"finished 1 done | all finished | code 0"_s + first};
    QTest::newRow("two") << QList{of(u"a b"_s)}
        << QStringList{u"finished 1 done | finished 2 done | all finished | code 0"_s + both};
    QTest::newRow("none") << QList{of(u"none"_s)}
        << QStringList{u"thrown 2: there is no source at none"_s};
    QTest::newRow("one of two") << QList{of(u"none b"_s)}
        << QStringList{u"finished 1 failed | finished 2 done | all finished | code 4"_s + both};
    QTest::newRow("again") << QList{of(u"a"_s), of(u"a"_s)}
        << QStringList{u"finished 1 done | all finished | code 0"_s + first,
                       u"thrown 1: the case already holds a result, case/Source1: --resume runs what is not done, --force removes it first"_s + first};
    QTest::newRow("plug-in cannot be used") << QList{of(u"a b"_s, earlier_run::refused, "exit 1\n"_ba)}
        << QStringList{u"thrown 0: the plug-in file plugin cannot be used: it ended the process while it was loaded, with exit code 1"_s};
    QTest::newRow("second crashes, then again") << QList{of(u"a b"_s, earlier_run::refused, crash_of_second), of({}, continued), of({}, continued)}
        << QStringList{u"finished 1 done | finished 2 crashed | all finished | code 4"_s + both,
                       u"finished 2 done | all finished | code 0"_s + both,
                       u"code 0"_s + both};
    QTest::newRow("stopped, then on") << QList{of(u"a b"_s, earlier_run::refused, stop), of({}, continued)}
        << QStringList{u"finished 1 done | cancelling | finished 2 interrupted | all finished | code 130 | interrupted"_s + both,
                       u"finished 2 done | all finished | code 0"_s + both};
    QTest::newRow("added") << QList{of(u"a"_s), of(u"b"_s, added)}
        << QStringList{u"finished 1 done | all finished | code 0"_s + first,
                       u"finished 2 done | all finished | code 0"_s + both};
    QTest::newRow("added to none") << QList{of(u"b"_s, added)}
        << QStringList{u"thrown 1: there is no case to add to: case"_s};
    QTest::newRow("fewer by force") << QList{of(u"a b"_s), of(u"b"_s, removed)}
        << QStringList{u"finished 1 done | finished 2 done | all finished | code 0"_s + both,
                       u"finished 1 done | all finished | code 0"_s + first};
    QTest::newRow("force, and others' files") << QList{of(u"a b"_s), step{u"a"_s, removed, whole, {}, u"+Source1/x +Source2/y +z"_s}}
        << QStringList{u"finished 1 done | finished 2 done | all finished | code 0"_s + both,
                       u"kept case/Source1/x case/Source2/y | finished 1 done | all finished | code 0 | Source1/ | Source1/source.json | Source1/x | Source2/ | Source2/y | manifest.json | z"_s};
    QTest::newRow("others' temporary files") << QList{step{u"a"_s, earlier_run::refused, whole, {}, u"+Source1/tmp/x"_s}}
        << QStringList{u"thrown 1: the case already holds a result, case/Source1: --resume runs what is not done, --force removes it first | Source1/ | Source1/tmp/ | Source1/tmp/x"_s};
    QTest::newRow("only the second") << QList{step{u"a b"_s, earlier_run::refused, whole, 2}, step{u"a b"_s, removed, whole, 1}}
        << QStringList{u"finished 2 done | all finished | code 0 | Source2/ | Source2/source.json"_s,
                       u"finished 1 done | all finished | code 0 | Source1/ | Source1/source.json | Source2/ | Source2/source.json"_s};
    QTest::newRow("without a record") << QList{of(u"a b"_s), step{{}, continued, whole, {}, u"-Source2/source.json -Source2/plugin.log"_s}}
        << QStringList{u"finished 1 done | finished 2 done | all finished | code 0"_s + both,
                       u"finished 2 done | all finished | code 0"_s + both};
    // clang-format on
}

void test_case_run::runs()
{
    QFETCH(const QList<step>, steps);
    QStringList found;
    for (const step &one : steps)
        found.append(run(one));
    QTEST(found, "accounts");
}

void test_case_run::locked()
{
    run({u"a"_s});
    const file_lock others(path(u"case/Source1/.lock"_s));
    const QString account = run({u"a"_s, earlier_run::removed});
    QVERIFY2(account.startsWith("thrown 1: another run works here, process "_L1)
                 && account.endsWith(": case/Source1/.lock | Source1/ | Source1/source.json | manifest.json"_L1),
             qPrintable(account));
}

void test_case_run::list_of_the_case()
{
    run({u"a"_s});
    run({u"b"_s, earlier_run::added_to});
    const QList<named_source> listed = read_list_of_case(path(u"case/sources.json"_s));
    QCOMPARE(listed.size(), 2);
    QCOMPARE(listed.at(0).path, path(u"a"_s));
    QCOMPARE(listed.at(1).path, path(u"b"_s));
    QCOMPARE(listed.at(1).number, 2);
}

BLUETOOTH_LOGS_TEST(test_case_run, QCoreApplication)
#include "test_case_run.moc"
