// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_sources.h"
#include "host/files/host_error.h"
#include "host/files/sha256.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

named_source source_at(const QString &path, int number = -1)
{
    named_source source;
    source.number = number;
    source.path = path;
    source.place = u"-i"_s;
    return source;
}

/** What is refused, in the words of the refusal; empty when nothing is. */
QString refusal(const std::function<void()> &work)
{
    try {
        work();
    } catch (const host_error &error) {
        return error.message();
    }
    return {};
}

QList<int> numbers_of(const QList<named_source> &sources)
{
    QList<int> numbers;
    for (const named_source &source : sources)
        numbers.append(source.number);
    return numbers;
}

} // namespace

class test_case_sources : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void free_numbers_are_given();
    void numbers_given_twice_are_refused();
    void overlaps_data();
    void overlaps();
    void links_are_followed_where_places_are_compared();
    void list_of_sources();
    void a_written_list_reads_the_same();
    void places_of_a_list_data();
    void places_of_a_list();
    void faults_of_a_list_data();
    void faults_of_a_list();
    void list_that_is_a_link();
    void identity_data();
    void identity();
    void numbers_in_a_text_data();
    void numbers_in_a_text();
};

void test_case_sources::free_numbers_are_given()
{
    QList<named_source> sources{source_at(u"/a"_s), source_at(u"/b"_s, 2), source_at(u"/c"_s), source_at(u"/d"_s, 1)};
    number_sources(sources);
    QCOMPARE(numbers_of(sources), QList<int>({3, 2, 4, 1}));
}

void test_case_sources::numbers_given_twice_are_refused()
{
    QList<named_source> sources{source_at(u"/a"_s, 2), source_at(u"/b"_s, 2)};
    QCOMPARE(refusal([&] { number_sources(sources); }), u"the number 2 is given twice: /a (-i) and /b (-i)"_s);
}

void test_case_sources::overlaps_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("message");

    // clang-format off
    QTest::newRow("apart")         << QStringList{u"/a"_s, u"/b"_s, u"/ab"_s}    << QString();
    QTest::newRow("twice")         << QStringList{u"/a"_s, u"/b"_s, u"/a"_s}     << u"a source is given twice: /a (-i) and /a (-i)"_s;
    QTest::newRow("inside")        << QStringList{u"/a"_s, u"/a/b"_s}            << u"a source lies inside another: /a/b (-i) inside /a (-i)"_s;
    QTest::newRow("deep inside")   << QStringList{u"/a/b/c/d"_s, u"/a"_s}        << u"a source lies inside another: /a/b/c/d (-i) inside /a (-i)"_s;
    QTest::newRow("the root")      << QStringList{u"/"_s, u"/a"_s}               << u"a source lies inside another: /a (-i) inside / (-i)"_s;
    // clang-format on
}

void test_case_sources::overlaps()
{
    QFETCH(QStringList, paths);
    QFETCH(QString, message);
    QList<named_source> sources;
    for (const QString &path : paths)
        sources.append(source_at(path));
    QCOMPARE(refusal([&] { refuse_overlaps(sources, path_comparison::texts); }), message);
}

void test_case_sources::links_are_followed_where_places_are_compared()
{
    const QTemporaryDir folder;
    QVERIFY(QDir().mkpath(folder.filePath(u"a/b"_s)) && QFile::link(folder.filePath(u"a"_s), folder.filePath(u"l"_s)));
    const QList<named_source> same{source_at(folder.filePath(u"a"_s)), source_at(folder.filePath(u"l"_s))};
    const QList<named_source> inner{source_at(folder.filePath(u"a"_s)), source_at(folder.filePath(u"l/b"_s))};
    QVERIFY(
        refusal([&] { refuse_overlaps(same, path_comparison::places); }).startsWith(u"a source is given twice: "_s));
    QVERIFY(refusal([&] { refuse_overlaps(inner, path_comparison::places); }).startsWith(u"a source lies inside "_s));
    QCOMPARE(refusal([&] { refuse_overlaps(same, path_comparison::texts); }), QString());
}

void test_case_sources::list_of_sources()
{
    const QTemporaryDir folder;
    const QString list = folder.filePath(u"list.json"_s);
    write_file(list,
               R"({"sources": [{"path": "mac", "name": "Laptop", "number": 7}, {"path": "/log", "type": "iOS_UID"}]})");
    const QList<named_source> sources = read_source_list(list);
    QCOMPARE(numbers_of(sources), QList<int>({7, -1}));
    QCOMPARE(sources.at(0).path, folder.filePath(u"mac"_s));
    QCOMPARE(sources.at(0).name, u"Laptop"_s);
    QVERIFY(!sources.at(0).kind);
    QCOMPARE(sources.at(0).place, u"list.json: sources[0]"_s);
    QCOMPARE(sources.at(1).path, u"/log"_s);
}

void test_case_sources::a_written_list_reads_the_same()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"sources.json"_s);
    QList<named_source> sources{source_at(u"/a"_s, 7), source_at(u"/image.dd"_s, 2), source_at(u"/x.zip"_s, 3)};
    sources[0].name = u"it's \"the\" laptop"_s;
    sources[0].kind = &macos_kind;
    sources[1].volume = 4;
    sources[2].member = u"a/b"_s;
    write_source_list(file, sources);
    const QList<named_source> read = read_source_list(file);
    QCOMPARE(numbers_of(read), QList<int>({7, 2, 3}));
    QCOMPARE(sources_identity(read), sources_identity(sources));
    QCOMPARE(read.at(0).kind, &macos_kind);
    QCOMPARE(read.at(1).kind, nullptr);
}

void test_case_sources::faults_of_a_list_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    // clang-format off
    QTest::newRow("no JSON")        << QByteArray("{\"sources\": [}")                             << u"%1/list.json is no JSON file: object is missing after a comma at byte 14"_s;
    QTest::newRow("no sources")     << QByteArray(R"({"sources": []})")                           << u"list.json: sources is no list of at least one source"_s;
    QTest::newRow("unknown inside") << QByteArray(R"({"sources": [{"path": "a", "tpye": "macOS"}]})") << u"list.json: sources[0] has an unknown member, tpye"_s;
    QTest::newRow("path, a number") << QByteArray(R"({"sources": [{"path": 1}]})")                << u"list.json: sources[0].path is no text"_s;
    QTest::newRow("no list")        << QByteArray(R"({"sources": 1})")                            << u"list.json: sources is no list of at least one source"_s;
    QTest::newRow("unknown member") << QByteArray(R"({"sources": [{"path": "a"}], "x": 1})")      << u"list.json has an unknown member, x"_s;
    QTest::newRow("no object")      << QByteArray(R"({"sources": ["a"]})")                        << u"list.json: sources[0] is no object"_s;
    QTest::newRow("no path")        << QByteArray(R"({"sources": [{"path": "a"}, {}]})")          << u"list.json: sources[1].path is missing or empty"_s;
    QTest::newRow("a number, half") << QByteArray(R"({"sources": [{"path": "a", "number": 1.5}]})") << u"list.json: sources[0].number is no whole number from 1 to 1000000"_s;
    QTest::newRow("a member twice") << QByteArray(R"({"sources": [{"path": "a", "path": "b"}]})") << u"%1/list.json gives the member \"path\" twice"_s;
    QTest::newRow("unknown type")   << QByteArray(R"({"sources": [{"path": "a", "type": "x"}]})") << u"list.json: sources[0].type is x, and only macOS, iOS_UID, iOS_files, iOS_backup, winOS and auto are known"_s;
    // clang-format on
}

void test_case_sources::places_of_a_list_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("place"); // %1: the folder of the list

    QTest::newRow("absolute") << u"/a/b"_s << u"/a/b"_s;
    QTest::newRow("relative") << u"a/b"_s << u"%1/a/b"_s;
    QTest::newRow("dots") << u"./a//b/"_s << u"%1/a/b"_s;
    QTest::newRow("a colon") << u":a"_s << u"%1/:a"_s;
}

void test_case_sources::places_of_a_list()
{
    QFETCH(QString, path);
    QFETCH(QString, place);
    const QTemporaryDir folder;
    const QString list = folder.filePath(u"list.json"_s);
    write_file(list, "{\"sources\": [{\"path\": \"" + path.toUtf8() + "\"}]}");
    QCOMPARE(read_source_list(list).first().path, place.replace(u"%1"_s, folder.path()));
}

void test_case_sources::faults_of_a_list()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    const QTemporaryDir folder;
    const QString list = folder.filePath(u"list.json"_s);
    write_file(list, content);
    QCOMPARE(refusal([&] { read_source_list(list); }), message.replace(u"%1"_s, folder.path()));
}

/** The examiner's own list may be a link; one that stands in a case is none. */
void test_case_sources::list_that_is_a_link()
{
    const QTemporaryDir folder;
    const QString list = folder.filePath(u"list.json"_s);
    const QString link = folder.filePath(u"link.json"_s);
    write_source_list(list, {source_at(u"/a"_s, 1)});
    QVERIFY(QFile::link(list, link));
    QCOMPARE(read_source_list(link).size(), 1);
    QCOMPARE(read_list_of_case(list).size(), 1);
    QCOMPARE(refusal([&] { read_list_of_case(link); }), link + u" cannot be read: too many levels of symbolic links"_s);
}

void test_case_sources::identity_data()
{
    QTest::addColumn<QList<named_source>>("sources");
    QTest::addColumn<QString>("numbers");
    QTest::addColumn<QByteArray>("list"); // whose hash it is

    const auto of = [](int number, const QString &path, const QString &name, int volume, const QString &member) {
        named_source source = source_at(path, number);
        source.name = name;
        source.volume = volume;
        source.member = member;
        return source;
    };
    const auto plain = [&of](int number, const QString &path) { return of(number, path, {}, 0, {}); };
    // clang-format off
    QTest::newRow("one")       << QList{plain(1, u"/a"_s)} << u"1"_s << R"([[1,"","/a"]])"_ba;
    QTest::newRow("by number") << QList{plain(3, u"/a"_s), plain(1, u"/b"_s), plain(2, u"/c"_s), plain(7, u"/d"_s)}
        << u"1-3,7"_s << R"([[1,"","/b"],[2,"","/c"],[3,"","/a"],[7,"","/d"]])"_ba;
    QTest::newRow("name")      << QList{of(1, u"/a"_s, u"it's"_s, 0, {})} << u"1"_s << R"([[1,"it's","/a"]])"_ba;
    QTest::newRow("volume")    << QList{of(1, u"/a"_s, {}, 2, {})} << u"1"_s << R"([[1,"","/a",{"member":"","volume":2}]])"_ba;
    QTest::newRow("first volume") << QList{of(1, u"/a"_s, {}, 1, {})} << u"1"_s << R"([[1,"","/a",{"member":"","volume":1}]])"_ba;
    QTest::newRow("member")    << QList{of(1, u"/a"_s, {}, 0, u"b/c"_s)} << u"1"_s << R"([[1,"","/a",{"member":"b/c","volume":0}]])"_ba;
    QTest::newRow("both")      << QList{of(9, u"/a"_s, u"x"_s, 4, u"b"_s), plain(10, u"/a"_s)}
        << u"9-10"_s << R"([[9,"x","/a",{"member":"b","volume":4}],[10,"","/a"]])"_ba;
    // clang-format on
}

void test_case_sources::identity()
{
    QFETCH(const QList<named_source>, sources);
    QFETCH(const QString, numbers);
    QFETCH(const QByteArray, list);
    QCOMPARE(sources_identity(sources),
             (QJsonObject{{u"count"_s, sources.size()}, {u"numbers"_s, numbers}, {u"sha256"_s, sha256::of(list)}}));
}

void test_case_sources::numbers_in_a_text_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("numbers");

    // clang-format off
    QTest::newRow("one")          << u"7"_s           << QList<int>{7};
    QTest::newRow("zero")         << u"0"_s           << QList<int>{0};
    QTest::newRow("ranges")       << u"1-3,7,9-10"_s  << QList<int>{1, 2, 3, 7, 9, 10};
    QTest::newRow("the last")     << u"1000000"_s     << QList<int>{1000000};
    QTest::newRow("too large")    << u"1000001"_s     << QList<int>();
    QTest::newRow("absurd")       << u"2147483647-2147483647"_s << QList<int>();
    QTest::newRow("much")         << u"1-9999999"_s   << QList<int>();
    QTest::newRow("again")        << u"1-3,3"_s       << QList<int>();
    QTest::newRow("backwards")    << u"3-1"_s         << QList<int>();
    QTest::newRow("no number")    << u"1,x"_s         << QList<int>();
    QTest::newRow("a blank")      << u"1, 2"_s        << QList<int>();
    // clang-format on
}

void test_case_sources::numbers_in_a_text()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, numbers);
    QList<int> found;
    const QString message = refusal([&] { found = numbers_in(text); });
    QCOMPARE(found, numbers);
    QCOMPARE(message, numbers.isEmpty() ? QString(u"these are no numbers of sources: "_s + text) : QString());
}

BLUETOOTH_LOGS_TEST(test_case_sources, QCoreApplication)

#include "test_case_sources.moc"
