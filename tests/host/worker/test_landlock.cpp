// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/landlock.h"

#include "tests/support/child_answers.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <termios.h>

using namespace Qt::StringLiterals;

namespace {

/** How rules allow something at a path. */
using giving = void (landlock_rules::*)(const QString &path);

int tried_open(const char *path, int flags)
{
    const descriptor file(::open(path, flags | O_CLOEXEC, 0644));
    return file.is_open() ? 0 : errno;
}

int error_of(int result)
{
    return result == -1 ? errno : 0;
}

int tried_socket_file(const char *name)
{
    const descriptor socket(::socket(AF_UNIX, SOCK_DGRAM, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, name);
    return error_of(::bind(socket.number(), reinterpret_cast<sockaddr *>(&address), sizeof address));
}

/** What is tried in the working folder, which holds files, a folder with files and an empty one. */
struct folder_attempt
{
    const char *name;
    int since; ///< the version of Landlock whose rules know it
    int (*act)();
};

// clang-format off
constexpr folder_attempt folder_attempts[] = {
    {"read",            1, [] { return tried_open("file", O_RDONLY); }},
    {"list",            1, [] { return tried_open(".", O_RDONLY | O_DIRECTORY); }},
    {"write",           1, [] { return tried_open("file", O_WRONLY); }},
    {"truncate",        3, [] { return error_of(::truncate("file", 0)); }},
    {"run",             1, [] { return error_of(::execl("file", "file", nullptr)); }},
    {"make a file",     1, [] { return tried_open("new", O_WRONLY | O_CREAT | O_EXCL); }},
    {"make a folder",   1, [] { return error_of(::mkdir("new folder", 0755)); }},
    {"rename",          1, [] { return error_of(::rename("file", "renamed")); }},
    {"move",            2, [] { return error_of(::rename("folder/other", "moved")); }},
    {"second name",     2, [] { return error_of(::link("folder/last", "second")); }},
    {"remove",          1, [] { return error_of(::unlink("folder/last")); }},
    {"remove a folder", 1, [] { return error_of(::rmdir("empty")); }},
    {"link",            1, [] { return error_of(::symlink("file", "link")); }},
    {"pipe",            1, [] { return error_of(::mkfifo("pipe", 0644)); }},
    {"socket",          1, [] { return tried_socket_file("socket"); }},
};
// clang-format on

constexpr int came_to_its_end = 7;

int present_version()
{
    return int(::syscall(444 /* landlock_create_ruleset */, nullptr, 0, 1));
}

/** The kernel gives it to those who can gain no rights. */
void put_in_force(landlock_rules &rules)
{
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || !rules.put_in_force())
        ::_exit(1);
}

} // namespace

/** What a process may do with files, and what rules say of it. */
class test_landlock : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void rights_of_versions_data();
    void rights_of_versions();
    void in_a_folder_data();
    void in_a_folder();
    void with_a_file_data();
    void with_a_file();
    void below_a_link();
    void devices_and_others();
    void version_in_force();

private:
    QByteArray path(const char *name) const
    {
        return QFile::encodeName(place->path() + u'/' + QLatin1StringView(name));
    }

    std::unique_ptr<QTemporaryDir> place;
};

void test_landlock::init()
{
    strict_test::init();
    place = std::make_unique<QTemporaryDir>();
    const QString folder = place->path() + u"/place"_s;
    write_file(folder + u"/file"_s, "content");
    write_file(folder + u"/folder/other"_s, "content");
    write_file(folder + u"/folder/last"_s, "content");
    QVERIFY(QDir().mkpath(folder + u"/empty"_s));
}

void test_landlock::rights_of_versions_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<quint64>("files");
    QTest::addColumn<quint64>("net");
    QTest::addColumn<quint64>("scoped");

    // clang-format off
    QTest::newRow("none")    << 0 << quint64(0x0)    << quint64(0) << quint64(0);
    QTest::newRow("first")   << 1 << quint64(0x1fff) << quint64(0) << quint64(0);
    QTest::newRow("refer")   << 2 << quint64(0x3fff) << quint64(0) << quint64(0);
    QTest::newRow("cut off") << 3 << quint64(0x7fff) << quint64(0) << quint64(0);
    QTest::newRow("network") << 4 << quint64(0x7fff) << quint64(3) << quint64(0);
    QTest::newRow("devices") << 5 << quint64(0xffff) << quint64(3) << quint64(0);
    QTest::newRow("scopes")  << 6 << quint64(0xffff) << quint64(3) << quint64(3);
    QTest::newRow("newer")   << 9 << quint64(0xffff) << quint64(3) << quint64(3);
    // clang-format on
}

void test_landlock::rights_of_versions()
{
    QFETCH(const int, version);
    const landlock_rights rights = rights_of_landlock(version);
    QTEST(quint64(rights.files), "files");
    QTEST(quint64(rights.net), "net");
    QTEST(quint64(rights.scoped), "scoped");
}

void test_landlock::in_a_folder_data()
{
    QTest::addColumn<giving>("give");
    QTest::addColumn<QStringList>("possible");

    const QStringList reading{u"read"_s, u"list"_s};
    const QStringList writing = reading + QStringList{u"write"_s, u"truncate"_s};
    // clang-format off
    QTest::newRow("no rule")    << giving(nullptr)                              << QStringList();
    QTest::newRow("reading")    << &landlock_rules::allow_reading               << reading;
    QTest::newRow("writing")    << &landlock_rules::allow_reading_and_writing   << writing;
    QTest::newRow("everything") << &landlock_rules::allow_everything_below
        << writing + QStringList{u"make a file"_s, u"make a folder"_s, u"rename"_s, u"move"_s, u"second name"_s, u"remove"_s,
                                 u"remove a folder"_s};
    // clang-format on
}

void test_landlock::in_a_folder()
{
    if (present_version() < 1)
        QSKIP("this kernel has no Landlock");
    QFETCH(const giving, give);
    QFETCH(QStringList, possible);
    const QByteArray folder = path("place");
    const child_answers given(std::size(folder_attempts) + 1, [&](int *answers) {
        landlock_rules rules;
        rules.allow_everything_below(u"/does/not/exist"_s);
        if (give)
            (rules.*give)(QFile::decodeName(folder));
        if (::chdir(folder.constData()) != 0)
            return;
        put_in_force(rules);
        for (const folder_attempt &attempt : folder_attempts)
            *answers++ = attempt.act();
        *answers = came_to_its_end;
    });
    QStringList found;
    QStringList others; // what failed without being refused
    for (size_t number = 0; number < std::size(folder_attempts); ++number) {
        const folder_attempt &attempt = folder_attempts[number];
        const QString name = QString::fromLatin1(attempt.name);
        if (attempt.since > present_version())
            possible.removeOne(name);
        else if (given[number] == 0)
            found.append(name);
        else if (given[number] != EACCES && given[number] != EXDEV)
            others.append(name + u": "_s + QString::fromLocal8Bit(std::strerror(given[number])));
    }
    QCOMPARE(given[std::size(folder_attempts)], came_to_its_end);
    QCOMPARE(found, possible);
    QCOMPARE(others.join(u", "_s), QString());
}

void test_landlock::with_a_file_data()
{
    QTest::addColumn<giving>("give");
    QTest::addColumn<bool>("is_written");

    // clang-format off
    QTest::newRow("reading")    << &landlock_rules::allow_reading             << false;
    QTest::newRow("writing")    << &landlock_rules::allow_reading_and_writing << true;
    QTest::newRow("everything") << &landlock_rules::allow_everything_below    << true;
    // clang-format on
}

/** Rights to folders, which the kernel takes for no file, are left out of its rule. */
void test_landlock::with_a_file()
{
    if (present_version() < 1)
        QSKIP("this kernel has no Landlock");
    QFETCH(const giving, give);
    QFETCH(const bool, is_written);
    const QByteArray file = path("place/file");
    const child_answers given(4, [&](int *answers) {
        landlock_rules rules;
        (rules.*give)(QFile::decodeName(file));
        put_in_force(rules);
        answers[0] = tried_open(file.constData(), O_RDONLY);
        answers[1] = tried_open(file.constData(), O_WRONLY);
        answers[2] = tried_open(file.constData(), O_WRONLY | O_TRUNC);
        answers[3] = tried_open(path("place/folder/other").constData(), O_RDONLY);
    });
    QCOMPARE(given[0], 0);
    QCOMPARE(given[1], is_written ? 0 : EACCES);
    QCOMPARE(given[2], is_written ? 0 : EACCES);
    QCOMPARE(given[3], EACCES);
}

void test_landlock::below_a_link()
{
    if (present_version() < 1)
        QSKIP("this kernel has no Landlock");
    QVERIFY(QFile::link(place->path() + u"/place"_s, place->path() + u"/link"_s));
    const child_answers given(2, [&](int *answers) {
        landlock_rules rules;
        rules.allow_reading(QFile::decodeName(path("link")));
        put_in_force(rules);
        answers[0] = tried_open(path("place/folder/other").constData(), O_RDONLY);
        answers[1] = tried_open(path("").constData(), O_RDONLY);
    });
    QCOMPARE(given[0], 0);
    QCOMPARE(given[1], EACCES);
}

/** Devices are read and written and no more; no connection is made, and other processes get no signal. */
void test_landlock::devices_and_others()
{
    if (present_version() < 1)
        QSKIP("this kernel has no Landlock");
    const QByteArray abstract_name = '\0' + path("here");
    sockaddr_un there = {};
    there.sun_family = AF_UNIX;
    QVERIFY(abstract_name.size() < qsizetype(sizeof there.sun_path));
    std::memcpy(there.sun_path, abstract_name.constData(), size_t(abstract_name.size()));
    const auto length = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(abstract_name.size()));
    const descriptor listening(::socket(AF_UNIX, SOCK_DGRAM, 0));
    QCOMPARE(::bind(listening.number(), reinterpret_cast<sockaddr *>(&there), length), 0);

    const child_answers given(7, [&](int *answers) {
        landlock_rules rules;
        rules.allow_reading_and_writing(u"/dev/null"_s);
        put_in_force(rules);
        const descriptor device(::open("/dev/null", O_RDWR));
        answers[0] = device.is_open() ? 0 : errno;
        answers[1] = ::write(device.number(), "a", 1) == 1 ? 0 : errno;
        termios settings = {};
        answers[2] = error_of(::ioctl(device.number(), TCGETS, &settings));
        const descriptor internet(::socket(AF_INET, SOCK_STREAM, 0));
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        answers[3] = error_of(::bind(internet.number(), reinterpret_cast<sockaddr *>(&address), sizeof address));
        address.sin_port = htons(9);
        answers[4] = error_of(::connect(internet.number(), reinterpret_cast<sockaddr *>(&address), sizeof address));
        const descriptor here(::socket(AF_UNIX, SOCK_DGRAM, 0));
        answers[5] = error_of(::connect(here.number(), reinterpret_cast<sockaddr *>(&there), length));
        answers[6] = error_of(::kill(::getppid(), 0));
    });
    QCOMPARE(given[0], 0);
    QCOMPARE(given[1], 0);
    const int version = present_version();
    if (version >= 5)
        QCOMPARE(given[2], EACCES);
    if (version >= 4) {
        QCOMPARE(given[3], EACCES);
        QCOMPARE(given[4], EACCES);
    }
    if (version >= 6) {
        QCOMPARE(given[5], EPERM);
        QCOMPARE(given[6], EPERM);
    }
}

void test_landlock::version_in_force()
{
    if (present_version() < 1)
        QSKIP("this kernel has no Landlock");
    const child_answers given(1, [](int *answer) {
        landlock_rules rules;
        put_in_force(rules);
        landlock_rules further; // any number of times
        *answer = further.put_in_force().value_or(-1);
    });
    QCOMPARE(given[0], present_version());
}

BLUETOOTH_LOGS_TEST(test_landlock, QCoreApplication)
#include "test_landlock.moc"
