// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// container_mutants CONTAINER FILE COUNT PROGRAM [FIRST]
// Changes some bytes of a file of the container, takes the evidence out in a process of its own, puts the bytes back,
// and again. A mutant that brings such a process down is given to the program. Ends with 1 where that does not name it,
// 0 otherwise. A mutant is known by its number.

#include "host/container/evidence_export.h"

#include <QDir>
#include <QFile>
#include <QList>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <random>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 sector_bytes = 512;
constexpr int most_changes = 8;
constexpr unsigned longest_seconds = 60;
constexpr int refused_code = 3; // of the child's own; a sanitizer has others

struct change
{
    qint64 place;
    char before;
};

/** Sectors that are not all zeros: the others say nothing about the container. */
QList<qint64> filled_sectors(QFile &file)
{
    QList<qint64> sectors;
    QByteArray block(1 << 20, Qt::Uninitialized);
    for (qint64 start = 0;;) {
        const qint64 count = file.read(block.data(), block.size());
        if (count <= 0)
            return sectors;
        for (qint64 place = 0; place < count; place += sector_bytes) {
            const QByteArrayView sector(block.constData() + place, qMin(sector_bytes, count - place));
            if (std::any_of(sector.begin(), sector.end(), [](char byte) { return byte != 0; }))
                sectors.append(start + place);
        }
        start += count;
    }
}

QList<change> mutate(QFile &file, const QList<qint64> &sectors, unsigned number)
{
    std::mt19937 random(number);
    QList<change> changes;
    const int count = 1 + int(random() % most_changes);
    for (int i = 0; i < count; ++i) {
        const qint64 place = sectors.at(qsizetype(random() % unsigned(sectors.size())))
                             + qint64(random() % unsigned(sector_bytes));
        char byte = 0;
        if (place >= file.size() || !file.seek(place) || !file.getChar(&byte))
            continue;
        const char values[] = {char(random()), char(0xff), char(0), char(byte + 1), char(byte ^ 0x80)};
        file.seek(place);
        file.putChar(values[random() % std::size(values)]);
        changes.prepend({place, byte}); // the last one is put back first
    }
    file.flush();
    return changes;
}

void put_back(QFile &file, const QList<change> &changes)
{
    for (const change &made : changes) {
        file.seek(made.place);
        file.putChar(made.before);
    }
    file.flush();
}

/** What the worker does with a container. */
int take_out(const QString &container)
{
    ::alarm(longest_seconds);
    const QTemporaryDir folder;
    container_choice choice;
    choice.path = container;
    choice.limits.most_database_bytes = 64 << 20;
    choice.limits.most_log_bytes = 64 << 20;
    const auto ignore = [](qint64) {};
    try {
        export_evidence(choice, {folder.filePath(u"taken"_s), folder.filePath(u"evidence"_s)}, {ignore, ignore});
    } catch (const host_error &) {
        return refused_code;
    } catch (const std::bad_alloc &) {
        return refused_code;
    }
    return 0;
}

/** What the program ends with where a library brings its worker down: the source failed, and the program did not. */
bool is_named_by(const QString &program, const QString &container)
{
    constexpr int partial_code = 4;
    const QTemporaryDir folder;
    return QProcess::execute(program, {u"extract"_s, u"-q"_s, u"-i"_s, container, u"-o"_s, folder.filePath(u"case"_s)})
           == partial_code;
}

} // namespace

int main(int argc, char *argv[])
{
    QFile file(QFile::decodeName(argc > 4 ? argv[2] : ""));
    if (!file.open(QIODevice::ReadWrite)) {
        std::fprintf(stderr, "usage: container_mutants CONTAINER FILE COUNT PROGRAM [FIRST]\n");
        return 2;
    }
    const QString container = QFile::decodeName(argv[1]);
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // what is said is said once, and not again by a child
    const unsigned count = unsigned(std::atoi(argv[3]));
    const QString program = QFile::decodeName(argv[4]);
    const unsigned first = argc > 5 ? unsigned(std::atoi(argv[5])) : 0;
    const QList<qint64> sectors = filled_sectors(file);
    unsigned taken = 0;
    unsigned refused = 0;
    unsigned named = 0;
    unsigned down = 0;
    for (unsigned number = first; number < first + count; ++number) {
        const QList<change> changes = mutate(file, sectors, number);
        const pid_t child = ::fork();
        if (child == 0)
            std::exit(take_out(container));
        int status = 0;
        ::waitpid(child, &status, 0);
        const bool has_code = WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == refused_code);
        const bool is_named = !has_code && is_named_by(program, container);
        put_back(file, changes);
        if (has_code) {
            ++(WEXITSTATUS(status) == 0 ? taken : refused);
            continue;
        }
        ++(is_named ? named : down);
        std::printf("mutant %u of %s: %s %d, %s\n", number, argv[2], WIFSIGNALED(status) ? "signal" : "code",
                    WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status),
                    is_named ? "named by the program" : "not named by the program");
    }
    std::printf("%s: %u taken out, %u refused, %u ended a worker, %u not named\n", argv[2], taken, refused, named,
                down);
    return down == 0 ? 0 : 1;
}
