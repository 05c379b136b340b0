// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/media_extensions.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <type_traits>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

static_assert(!std::is_polymorphic_v<plugin_helper_functions>, "the host's plug-ins share this plain layout");

class test_plugin_helper_functions : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup();
    void sizes_of_the_lists();
    void entries_of_the_lists_data();
    void entries_of_the_lists();
    void every_entry_is_found();
    void classification_data();
    void classification();
    void database_copies_with_companions();
    void database_copy_keeps_earlier_copies();
    void regular_copies();
    void parent_path_with_and_without_slash();
    void no_copy_gives_an_empty_text_data();
    void no_copy_gives_an_empty_text();
    void no_copy_when_cancelled();
    void no_copy_without_a_parent_path();

private:
    QString path(const QString &name) const
    {
        return directory->filePath(name);
    }

    std::unique_ptr<QTemporaryDir> directory;
};

void test_plugin_helper_functions::init()
{
    strict_test::init();
    directory = std::make_unique<QTemporaryDir>();
    QDir().mkpath(path(u"tmp"_s));
}

void test_plugin_helper_functions::cleanup()
{
    plugin_static_function::set_essentials();
}

void test_plugin_helper_functions::sizes_of_the_lists()
{
    const auto distinct = [](const QStringList &list) { return QSet<QString>(list.cbegin(), list.cend()).size(); };
    QCOMPARE(image_extensions().size(), 570);
    QCOMPARE(distinct(image_extensions()), 548);
    QCOMPARE(video_extensions().size(), 136);
    QCOMPARE(distinct(video_extensions()), 133);
    QCOMPARE(audio_extensions().size(), 571);
    QCOMPARE(distinct(audio_extensions()), 545);
}

void test_plugin_helper_functions::entries_of_the_lists_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QByteArray>("sha256"); // of the entries in order, one a line

    // clang-format off
    QTest::newRow("image") << image_extensions() << "f201e089bc600687bdef727d55fefc123068fb1f217f94238a3bc77cb3245fd8"_ba;
    QTest::newRow("video") << video_extensions() << "2cd88adc1eaeabfaa1718d3c1e47e5c4f002442337c3eaf7c228c9f643065275"_ba;
    QTest::newRow("audio") << audio_extensions() << "0ea3a8a9fc54ff65dc575fe5f406205b6f3719314f1264843ad99618b3072416"_ba;
    // clang-format on
}

void test_plugin_helper_functions::entries_of_the_lists()
{
    QFETCH(QStringList, entries);
    const QByteArray lines = entries.join(u'\n').toLatin1();
    QTEST(QCryptographicHash::hash(lines, QCryptographicHash::Sha256).toHex(), "sha256");
}

void test_plugin_helper_functions::every_entry_is_found()
{
    plugin_helper_functions helper(nullptr);
    for (const QString &extension : image_extensions())
        QVERIFY2(helper.check_is_image_by_extn(u"x"_s + extension), qPrintable(extension));
    for (const QString &extension : video_extensions())
        QVERIFY2(helper.check_is_video_by_extn(u"x"_s + extension.toUpper()), qPrintable(extension));
    for (const QString &extension : audio_extensions())
        QVERIFY2(helper.check_is_audio_by_extn(u"/some.dir/x"_s + extension), qPrintable(extension));
}

void test_plugin_helper_functions::classification_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kinds"); // letters i, v, a

    // clang-format off
    QTest::newRow("image")               << u"a.jpg"_s        << u"i"_s;
    QTest::newRow("upper case")          << u"A.JPG"_s        << u"i"_s;
    QTest::newRow("blanks around")       << u"  a.jpg\t"_s    << u"i"_s;
    QTest::newRow("video")               << u"clip.MOV"_s     << u"v"_s;
    QTest::newRow("audio")               << u"song.mp3"_s     << u"a"_s;
    QTest::newRow("image and audio")     << u"x.hdp"_s        << u"ia"_s;
    QTest::newRow("video and audio")     << u"x.box"_s        << u"va"_s;
    QTest::newRow("last part counts")    << u"a.mov.jpg"_s    << u"i"_s;
    QTest::newRow("hidden file")         << u".jpg"_s         << u"i"_s;
    QTest::newRow("dot at the end")      << u"a.jpg."_s       << u""_s;
    QTest::newRow("two dots at the end") << u"a.jpg.."_s      << u""_s;
    QTest::newRow("dot, then a blank")   << u"a.jpg. "_s      << u""_s;
    QTest::newRow("no dot")              << u"jpg"_s          << u""_s;
    QTest::newRow("empty")               << u""_s             << u""_s;
    QTest::newRow("blank")               << u"   "_s          << u""_s;
    QTest::newRow("only a dot")          << u"."_s            << u""_s;
    QTest::newRow("punctuation first")   << u"a.-jpg"_s       << u""_s;
    QTest::newRow("blank first")         << u"a. jpg"_s       << u""_s;
    QTest::newRow("other script")        << u"a.фото"_s       << u""_s;
    QTest::newRow("unknown")             << u"a.txt"_s        << u""_s;
    QTest::newRow("a part of an entry")  << u"a.jp"_s         << u""_s;
    QTest::newRow("emoji")               << u"a.🎧"_s         << u""_s;
    // clang-format on
}

void test_plugin_helper_functions::classification()
{
    QFETCH(QString, name);
    plugin_helper_functions helper(nullptr);
    QString kinds;
    if (helper.check_is_image_by_extn(name))
        kinds += u'i';
    if (helper.check_is_video_by_extn(name))
        kinds += u'v';
    if (helper.check_is_audio_by_extn(name))
        kinds += u'a';
    QTEST(kinds, "kinds");
}

void test_plugin_helper_functions::database_copies_with_companions()
{
    write_file(path(u"x.db"_s), "main");
    write_file(path(u"x.db-shm"_s), "shm");
    write_file(path(u"x.db-wal"_s), "wal");
    plugin_helper_functions helper(nullptr);
    helper.set_adhoc_parent_path(path(u"tmp/"_s));
    for (const QString &name : {u"x.db"_s, u"1_x.db"_s, u"2_x.db"_s}) {
        const QString copy = helper.get_adhoc_path_for_database(path(u"x.db"_s));
        QCOMPARE(copy, path(u"tmp/"_s + name));
        QCOMPARE(content_of(copy), "main");
        QCOMPARE(content_of(copy + u"-shm"_s), "shm");
        QCOMPARE(content_of(copy + u"-wal"_s), "wal");
    }
    QFile::remove(path(u"x.db-shm"_s));
    const QString copy = helper.get_adhoc_path_for_database(path(u"x.db"_s));
    QCOMPARE(copy, path(u"tmp/3_x.db"_s));
    QVERIFY(!QFile::exists(copy + u"-shm"_s));
    QCOMPARE(content_of(copy + u"-wal"_s), "wal");
}

void test_plugin_helper_functions::database_copy_keeps_earlier_copies()
{
    write_file(path(u"x.db"_s), "main");
    write_file(path(u"x.db-wal"_s), "wal");
    write_file(path(u"1_x.db-shm"_s), "shm");
    plugin_helper_functions helper(nullptr);
    helper.set_adhoc_parent_path(path(u"tmp/"_s));
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(u"x.db-wal"_s)), path(u"tmp/x.db-wal"_s));
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(u"1_x.db-shm"_s)), path(u"tmp/1_x.db-shm"_s));
    write_file(path(u"x.db-wal"_s), "later");
    QCOMPARE(helper.get_adhoc_path_for_database(path(u"x.db"_s)), path(u"tmp/2_x.db"_s));
    QCOMPARE(tree_of(path(u"tmp"_s)), QStringList({u"1_x.db-shm"_s, u"2_x.db"_s, u"2_x.db-wal"_s, u"x.db-wal"_s}));
    QCOMPARE(content_of(path(u"tmp/x.db-wal"_s)), "wal");
    QCOMPARE(content_of(path(u"tmp/2_x.db-wal"_s)), "later");
}

void test_plugin_helper_functions::regular_copies()
{
    write_file(path(u"größe 🎧.txt"_s), "text");
    write_file(path(u"größe 🎧.txt-wal"_s), "no companion of a regular file");
    plugin_helper_functions helper(nullptr);
    helper.set_adhoc_parent_path(path(u"tmp/"_s));
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(u"größe 🎧.txt"_s)), path(u"tmp/größe 🎧.txt"_s));
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(u"größe 🎧.txt"_s)), path(u"tmp/1_größe 🎧.txt"_s));
    QCOMPARE(content_of(path(u"tmp/1_größe 🎧.txt"_s)), "text");
    QCOMPARE(QDir(path(u"tmp"_s)).entryList(QDir::Files).size(), 2);
}

void test_plugin_helper_functions::parent_path_with_and_without_slash()
{
    write_file(path(u"x"_s), "text");
    plugin_helper_functions helper(nullptr);
    helper.set_adhoc_parent_path(path(u"tmp"_s));
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(u"x"_s)), path(u"tmp/x"_s));
    helper.set_adhoc_parent_path(path(u"new/deep"_s));
    QCOMPARE(helper.get_adhoc_path_for_database(path(u"x"_s)), path(u"new/deep/x"_s));
}

void test_plugin_helper_functions::no_copy_gives_an_empty_text_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << u"missing"_s;
    QTest::newRow("directory") << u"directory"_s;
    QTest::newRow("FIFO") << u"fifo"_s;
    QTest::newRow("link to a device") << u"device"_s;
    QTest::newRow("broken link") << u"broken"_s;
}

void test_plugin_helper_functions::no_copy_gives_an_empty_text()
{
    QFETCH(QString, name);
    QDir().mkpath(path(u"directory"_s));
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"fifo"_s)).constData(), 0600), 0);
    QVERIFY(QFile::link(u"/dev/zero"_s, path(u"device"_s)));
    QVERIFY(QFile::link(u"nowhere"_s, path(u"broken"_s)));
    plugin_helper_functions helper(nullptr);
    helper.set_adhoc_parent_path(path(u"tmp/"_s));
    QCOMPARE(helper.get_adhoc_path_for_database(path(name)), QString());
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(name)), QString());
    QVERIFY(QDir(path(u"tmp"_s)).isEmpty());
}

void test_plugin_helper_functions::no_copy_when_cancelled()
{
    write_file(path(u"x"_s), "text");
    plugin_helper_functions helper(nullptr);
    helper.set_adhoc_parent_path(path(u"tmp/"_s));
    plugin_static_function::bool_cancel_extraction = true;
    QCOMPARE(helper.get_adhoc_path_for_database(path(u"x"_s)), QString());
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(u"x"_s)), QString());
    QVERIFY(QDir(path(u"tmp"_s)).isEmpty());

    // The object's own flag stops nothing here, and goes with the reset.
    plugin_static_function::bool_cancel_extraction = false;
    helper.set_cancel_extraction(true);
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(u"x"_s)), path(u"tmp/x"_s));
    helper.set_essentials();
}

void test_plugin_helper_functions::no_copy_without_a_parent_path()
{
    write_file(path(u"x"_s), "text");
    const QString current = QDir::currentPath();
    QDir::setCurrent(path(u"tmp"_s));
    plugin_helper_functions helper(nullptr);
    QCOMPARE(helper.get_adhoc_path_for_database(path(u"x"_s)), QString());
    QCOMPARE(helper.get_adhoc_path_for_regular_file(path(u"x"_s)), QString());
    QDir::setCurrent(current);
    QVERIFY(QDir(path(u"tmp"_s)).isEmpty());
}

BLUETOOTH_LOGS_TEST(test_plugin_helper_functions, QCoreApplication)

#include "test_plugin_helper_functions.moc"
