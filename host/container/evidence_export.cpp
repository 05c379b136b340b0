// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_export.h"

#include "host/container/backup_store.h"
#include "host/files/paths.h"
#include "host/files/system_error.h"
#include "host/source/working_copy.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/** A visit of one store by one collector. */
struct visit_end
{
    std::unique_ptr<evidence_store> store;
    evidence_collector collector;
};

/** An open container, and what was asked of it. */
class open_source
{
public:
    open_source(const container_choice &asked, const container_observers &who)
        : choice(asked)
        , observers(who)
    {
        open(choice.kind, choice.member);
    }

    source_container &container() const
    {
        return *opened;
    }

    container_facts facts() const
    {
        container_facts facts = opened->facts();
        if (!known_files.isEmpty())
            facts.files = known_files;
        return facts;
    }

    const source_kind *kind_of(const collected_source &found) const
    {
        return opened->kind() ? opened->kind() : found.kind;
    }

    /** Looks at the files of a volume; writes them to @p staging unless it is empty. */
    visit_end visit(int volume, const QString &staging)
    {
        const source_kind *const kind = opened->kind() ? &ios_files_kind : choice.kind;
        const evidence_search search(kind);
        const QString member = opened->kind() ? QString() : choice.member; // a backup was chosen when it was opened
        visit_end end{opened->store(volume), evidence_collector(search, staging, member, choice.limits)};
        end.store->visit(search, [&end](const stored_file &file, byte_stream *stream) {
            end.collector.take(file, stream);
            if (!end.collector.takes_others())
                end.store->pass_over_others();
        });
        return end;
    }

    /** An archive that turns out to hold a backup is read as one from here on. */
    bool reopen_as_backup(const evidence_collector &found)
    {
        if (opened->kind() || !found.has_found() || found.chosen().kind != &ios_backup_kind)
            return false;
        known_files = opened->facts().files;
        observers.hashed = {};
        open(&ios_backup_kind, found.chosen().root);
        return true;
    }

private:
    void open(const source_kind *kind, const QString &member)
    {
        opening how;
        how.kind = kind;
        how.follow_links = choice.follow_links;
        how.member = member;
        how.observers = observers;
        opened = open_container(choice.path, how);
        if (!opened)
            throw host_error(error_kind::not_found, u"this is no container that is known: "_s + choice.path);
    }

    const container_choice &choice;
    container_observers observers;
    QList<container_file> known_files; ///< of an archive that was read and hashed before it was opened again
    std::unique_ptr<source_container> opened;
};

QString volume_text(const volume_facts &volume)
{
    QString text = u"volume "_s + QString::number(volume.number) + u" at "_s + QString::number(volume.offset) + u" ("_s
                   + (volume.file_system.isEmpty() ? u"no file system that is known"_s : volume.file_system);
    if (!volume.name.isEmpty())
        text += u", "_s + volume.name;
    text += u')';
    return volume.problem.isEmpty() ? text : text + u": "_s + volume.problem;
}

QString list_of(const QList<looked_volume> &volumes)
{
    QString text;
    for (const looked_volume &volume : volumes)
        text += (text.isEmpty() ? u" "_s : u"; "_s) + volume_text(volume.facts);
    return text;
}

void look_into(open_source &source, looked_volume &volume, QStringList &warnings)
{
    if (volume.facts.file_system.isEmpty() || !volume.facts.problem.isEmpty())
        return;
    try {
        visit_end end = source.visit(volume.facts.number, {});
        warnings += end.store->warnings();
        if (end.collector.has_found()) {
            const collected_source &found = end.collector.chosen();
            volume.kind = source.kind_of(found);
            volume.evidence = found.files.values();
        }
    } catch (const host_error &error) {
        volume.facts.problem = error.message();
    }
}

[[noreturn]] void refuse(const QString &message)
{
    throw host_error(error_kind::refused, message);
}

} // namespace

const looked_volume &chosen_volume(const QList<looked_volume> &volumes, const container_choice &choice)
{
    QList<const looked_volume *> with_evidence;
    for (const looked_volume &volume : volumes) {
        if (volume.kind)
            with_evidence.append(&volume);
    }
    if (choice.volume > 0) {
        if (choice.volume > volumes.size())
            refuse(u"there is no volume "_s + QString::number(choice.volume) + u", choose one of these by --volume:"_s
                   + list_of(volumes));
        const looked_volume &volume = volumes.at(choice.volume - 1);
        if (!volume.kind)
            throw host_error(error_kind::not_found, u"there is no evidence in "_s + volume_text(volume.facts));
        return volume;
    }
    if (with_evidence.size() == 1)
        return *with_evidence.first();
    if (with_evidence.isEmpty()) {
        const bool is_hidden = std::any_of(volumes.cbegin(), volumes.cend(),
                                           [](const looked_volume &volume) { return volume.facts.is_encrypted; });
        throw host_error(error_kind::not_found,
                         (is_hidden ? u"there is no evidence in what can be read, and a volume is "
                                      "encrypted; these were looked at:"_s
                                    : u"there is no evidence in it; these volumes were looked at:"_s)
                             + list_of(volumes));
    }
    QString list;
    for (const looked_volume *volume : std::as_const(with_evidence))
        list += (list.isEmpty() ? u" "_s : u"; "_s) + u"--volume "_s + QString::number(volume->facts.number) + u" ("_s
                + volume->kind->name + u", "_s + volume_text(volume->facts) + u')';
    refuse(u"there is evidence in several volumes, choose one:"_s + list);
}

QStringList unread_volumes(const QList<looked_volume> &volumes)
{
    QStringList texts;
    for (const looked_volume &volume : volumes) {
        if (!volume.facts.problem.isEmpty())
            texts.append(u"not looked into: "_s + volume_text(volume.facts));
    }
    return texts;
}

namespace {

/** Evidence of which nothing can be read is as good as none, and encrypted where that is why. */
void refuse_unreadable(const source_kind &kind, const QList<collected_file> &files)
{
    QStringList reasons;
    bool is_any_readable = &kind == &winos_kind;
    for (const collected_file &file : files) {
        is_any_readable = is_any_readable || file.objection.isEmpty();
        if (!file.objection.isEmpty() && file.is_encrypted)
            reasons.append(file.origin.path + u": "_s + file.objection);
    }
    if (!is_any_readable && !reasons.isEmpty())
        throw host_error(error_kind::not_found, u"the evidence cannot be read: "_s + reasons.join(u"; "_s));
}

QString damage_text(const QString &damage)
{
    return damage.isEmpty() ? QString() : u"the container cannot be read to its end: "_s + damage;
}

/** Of what would be taken, the files that cannot be read: without them all is missing, or some of it. */
void find_unreadable(container_survey &found)
{
    bool has_rows = found.kind == &winos_kind;
    QStringList texts;
    for (const collected_file &file : std::as_const(found.evidence)) {
        const bool is_of_rows = found.kind == &ios_uid_kind || file.target.endsWith(".db"_L1);
        has_rows = has_rows || (is_of_rows && file.objection.isEmpty());
        if (!file.objection.isEmpty())
            texts.append(file.origin.path + u" is not read: "_s + file.objection);
    }
    found.problem = texts.join(u"; "_s);
    found.reason = has_rows ? error_kind::incomplete : error_kind::not_found;
}

container_survey survey(open_source &source, const container_choice &choice)
{
    container_survey found;
    found.damage = damage_text(source.container().damage());
    for (const volume_facts &facts : source.container().volumes()) {
        looked_volume volume;
        volume.facts = facts;
        look_into(source, volume, found.warnings);
        found.volumes.append(volume);
    }
    try {
        if (!found.volumes.isEmpty()) {
            const looked_volume &volume = chosen_volume(found.volumes, choice);
            found.kind = volume.kind;
            found.evidence = volume.evidence;
            found.container = source.facts();
            found.container.volume = volume.facts;
            refuse_unreadable(*found.kind, found.evidence);
        } else {
            visit_end end = source.visit(0, {});
            if (source.reopen_as_backup(end.collector))
                end = source.visit(0, {});
            found.warnings += end.store->warnings();
            found.damage = damage_text(end.store->damage());
            const collected_source &chosen = end.collector.chosen();
            found.kind = source.kind_of(chosen);
            found.evidence = chosen.files.values();
            refuse_unreadable(*found.kind, found.evidence);
        }
    } catch (const host_error &error) {
        found.problem = error.message();
        found.reason = error.kind();
    }
    if (found.container.kind.isEmpty())
        found.container = source.facts();
    found.is_in_place = found.container.kind.isEmpty();
    return found;
}

/** Moves what was staged to where the plug-in looks; a folder of the way may be there already. */
void publish(const QList<collected_file> &files, const QString &folder)
{
    for (const collected_file &file : files) {
        if (file.staged.isEmpty())
            continue;
        const QString place = folder + u'/' + file.target;
        make_folder(QFileInfo(place).path());
        if (std::rename(QFile::encodeName(file.staged).constData(), QFile::encodeName(place).constData()) != 0)
            throw host_error(error_kind::incomplete, u"the evidence cannot be put into the case: "_s + place + u": "_s
                                                         + system_error_text(errno));
    }
}

QStringList earlier_members(const QList<collected_file> &files)
{
    QStringList texts;
    for (const collected_file &file : files) {
        if (file.earlier > 0)
            texts.append(u"the container holds "_s + QString::number(file.earlier + 1) + u" files of the name "_s
                         + file.origin.path + u": the last one was taken"_s);
    }
    return texts;
}

QStringList unhashed_files(const container_facts &container)
{
    QStringList texts;
    for (const container_file &file : container.files) {
        if (!file.problem.isEmpty())
            texts.append(u"the container cannot be hashed: "_s + file.path + u": "_s + file.problem);
    }
    return texts;
}

} // namespace

container_survey survey_container(const container_choice &choice, const read_observer &read)
{
    open_source source(choice, {read, {}});
    container_survey found = survey(source, choice);
    if (found.problem.isEmpty())
        find_unreadable(found);
    if (!found.damage.isEmpty())
        found.problem += (found.problem.isEmpty() ? QString() : u"; "_s) + found.damage;
    return found;
}

exported_source export_evidence(const container_choice &choice, const export_places &places,
                                const container_observers &observers)
{
    make_folder(places.staging);
    open_source source(choice, observers);
    exported_source taken;
    std::optional<volume_facts> volume;
    if (!source.container().volumes().isEmpty()) {
        const container_survey looked = survey(source, choice);
        if (!looked.problem.isEmpty())
            throw host_error(looked.reason, choice.path + u": "_s + looked.problem
                                                + (looked.damage.isEmpty() ? QString() : u"; "_s + looked.damage));
        if (!looked.damage.isEmpty())
            taken.errors.append(looked.damage);
        volume = looked.container.volume;
        taken.warnings += unread_volumes(looked.volumes);
    }
    if (observers.hashed) // now that nobody has to choose, and nothing was taken out
        source.container().hash_files(observers.hashed);
    visit_end end = source.visit(volume ? volume->number : 0, places.staging);
    if (source.reopen_as_backup(end.collector)) {
        const QString staging = places.staging + u"/backup"_s; // what was taken before stands in the other one
        make_folder(staging);
        end = source.visit(0, staging);
    }
    taken.warnings += end.store->warnings();
    if (const QString damage = damage_text(end.store->damage()); !damage.isEmpty())
        taken.errors.append(damage);

    try {
        const collected_source &chosen = end.collector.chosen();
        taken.kind = source.kind_of(chosen);
        taken.files = chosen.files.values();
        refuse_unreadable(*taken.kind, taken.files);
    } catch (const host_error &error) {
        throw host_error(error.kind(), choice.path + u": "_s + error.message()
                                           + (taken.errors.isEmpty() ? QString() : u"; "_s + taken.errors.first()));
    }
    taken.warnings += earlier_members(taken.files);
    if (taken.kind == &ios_uid_kind)
        taken.log_name = taken.files.first().target;

    container_facts facts = source.facts();
    facts.volume = volume;
    taken.errors += unhashed_files(facts);
    taken.container = facts.kind.isEmpty() ? QJsonValue() : QJsonValue(facts.to_json());
    make_folder(places.evidence);
    publish(taken.files, places.evidence);
    return taken;
}
