// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/evidence_state.h"

#include "host/source/macos_databases.h"
#include "host/text/json_member.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView presence_names[] = {"present"_L1, "absent"_L1, "unreadable"_L1, "refused"_L1};

std::optional<QString> difference(const std::optional<file_state> &before, const std::optional<file_state> &now)
{
    if (!before && !now)
        return {};
    if (!before)
        return u"it was not there before"_s;
    if (!now)
        return u"it is gone"_s;
    if (!before->identity.isEmpty() && before->identity != now->identity)
        return u"it is another file than before"_s;
    if (before->size != now->size)
        return u"its size was "_s + QString::number(before->size) + u" bytes and is "_s + QString::number(now->size);
    const bool is_unread = !before->sha256.isEmpty() && now->sha256.isEmpty(); // the file says why
    if (before->sha256 != now->sha256 && !is_unread)
        return u"its content was changed: its SHA-256 was "_s + before->sha256 + u" and is "_s + now->sha256;
    if (before->modified != now->modified)
        return u"it was modified"_s;
    if (before->changed != now->changed)
        return u"its entry was changed: permissions, owner, links or times"_s;
    return {};
}

QJsonValue state_or_null(const std::optional<file_state> &state)
{
    return state ? QJsonValue(state->to_json()) : QJsonValue();
}

std::optional<file_state> state_from(const QJsonValue &json)
{
    if (!json.isObject())
        return {};
    return file_state::from_json(json.toObject());
}

} // namespace

QJsonObject file_state::to_json() const
{
    return {{u"size"_s, size}, {u"modified"_s, modified}, {u"changed"_s, changed}, {u"sha256"_s, text_or_null(sha256)}};
}

file_state file_state::from_json(const QJsonObject &json)
{
    file_state state;
    state.size = json.value("size"_L1).toInteger();
    state.modified = json.value("modified"_L1).toString();
    state.changed = json.value("changed"_L1).toString();
    state.sha256 = json.value("sha256"_L1).toString();
    return state;
}

QLatin1StringView presence_name(evidence_file::presence state)
{
    return presence_names[int(state)];
}

QJsonObject evidence_file::to_json() const
{
    return {{u"path"_s, path},
            {u"state"_s, QString(presence_name(state))},
            {u"reason"_s, text_or_null(reason)},
            {u"before"_s, state_or_null(before)},
            {u"after"_s, state_or_null(after)},
            {u"copy_sha256"_s, text_or_null(copy_sha256)},
            {u"origin"_s, origin}};
}

evidence_file evidence_file::from_json(const QJsonObject &json)
{
    evidence_file file;
    file.path = json.value("path"_L1).toString();
    const auto name = std::find(std::begin(presence_names), std::end(presence_names),
                                json.value("state"_L1).toString());
    if (name != std::end(presence_names))
        file.state = presence(name - std::begin(presence_names));
    file.reason = json.value("reason"_L1).toString();
    file.before = state_from(json.value("before"_L1));
    file.after = state_from(json.value("after"_L1));
    file.copy_sha256 = json.value("copy_sha256"_L1).toString();
    file.origin = json.value("origin"_L1).isObject() ? json.value("origin"_L1) : QJsonValue();
    return file;
}

const evidence_file *evidence_state::file_named(const QString &path) const
{
    const auto found = std::find_if(files.cbegin(), files.cend(),
                                    [&path](const evidence_file &file) { return file.path == path; });
    return found == files.cend() ? nullptr : &*found;
}

QStringList evidence_state::changes() const
{
    QStringList texts;
    QSet<QString> known;
    for (const evidence_file &file : files) {
        known.insert(QFileInfo(file.path).fileName());
        if (const std::optional<QString> change = difference(file.before, file.after))
            texts.append(file.path + u": "_s + *change);
    }
    const QSet<QString> names_before(listing_before.cbegin(), listing_before.cend());
    const QSet<QString> names_after(listing_after.cbegin(), listing_after.cend());
    for (const QString &name : listing_after) {
        if (!names_before.contains(name) && !known.contains(name))
            texts.append(QString(macos_database_folder) + name + u": it was not there before"_s);
    }
    for (const QString &name : listing_before) {
        if (!names_after.contains(name) && !known.contains(name))
            texts.append(QString(macos_database_folder) + name + u": it is gone"_s);
    }
    return texts;
}

QJsonObject evidence_state::to_json() const
{
    QJsonArray list;
    for (const evidence_file &file : files)
        list.append(file.to_json());
    return {{u"evidence"_s, list},
            {u"listing"_s, QJsonObject{{u"before"_s, QJsonArray::fromStringList(listing_before)},
                                       {u"after"_s, QJsonArray::fromStringList(listing_after)}}},
            {u"unparsed_lines"_s, unparsed_lines}};
}

evidence_state evidence_state::from_json(const QJsonObject &json)
{
    evidence_state evidence;
    for (const auto file : json.value("evidence"_L1).toArray())
        evidence.files.append(evidence_file::from_json(file.toObject()));
    const QJsonObject listing = json.value("listing"_L1).toObject();
    evidence.listing_before = texts_from(listing.value("before"_L1));
    evidence.listing_after = texts_from(listing.value("after"_L1));
    evidence.unparsed_lines = json.value("unparsed_lines"_L1);
    return evidence;
}
