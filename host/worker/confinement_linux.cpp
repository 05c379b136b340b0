// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/confinement.h"

#include "host/worker/landlock.h"
#include "host/worker/seccomp.h"

#include <QCoreApplication>
#include <QFile>
#include <QSet>

#include <csignal>

#include <link.h>
#include <sys/prctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/** The system's own: libraries, locales, time zones, how its name is resolved, random numbers. */
const QStringList &system_places()
{
    static const QStringList places{u"/usr"_s,         u"/lib"_s,      u"/lib64"_s,     u"/etc"_s,
                                    u"/dev/urandom"_s, u"/dev/zero"_s, u"/proc/self"_s, u"/sys/devices/system/cpu"_s};
    return places;
}

int add_folder(dl_phdr_info *object, size_t, void *folders)
{
    const QString path = QFile::decodeName(object->dlpi_name);
    if (path.startsWith(u'/'))
        static_cast<QSet<QString> *>(folders)->insert(path.first(qMax<qsizetype>(1, path.lastIndexOf(u'/'))));
    return 0;
}

/** Where libraries were loaded from, and where Qt looks for more. */
QSet<QString> library_folders()
{
    const QStringList folders_of_qt = QCoreApplication::libraryPaths();
    QSet<QString> folders(folders_of_qt.cbegin(), folders_of_qt.cend());
    ::dl_iterate_phdr(add_folder, &folders);
    return folders;
}

} // namespace

confinement confine_process(const QStringList &readable, const QStringList &writable)
{
    confinement result;
    ::prctl(PR_SET_DUMPABLE, 0);
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) // neither of the two is given to those who may gain rights
        return result;
    landlock_rules rules;
    for (const QStringList &places : {readable, system_places(), QStringList(library_folders().values())}) {
        for (const QString &place : places)
            rules.allow_reading(place);
    }
    rules.allow_reading_and_writing(u"/dev/null"_s);
    for (const QString &folder : writable)
        rules.allow_everything_below(folder);
    result.landlock = rules.put_in_force();
    result.seccomp = refuse_needless_calls();
    return result;
}

void end_with(pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) // it was gone before
        ::raise(SIGTERM);
}
