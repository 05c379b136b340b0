// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_notes.h"

#include "host/case/manifest.h"
#include "host/case/result_tables.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/files/system_error.h"
#include "host/files/utc_time.h"
#include "host/text/json_member.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 most_note_bytes = qint64(64) << 20;

/** The file as it was read: what was noted, and how many notes there ever were. */
struct noted
{
    QList<case_note> notes;
    int count = 0;
};

QJsonObject to_json(const case_note &note)
{
    QJsonValue row;
    if (note.row)
        row = QJsonObject{{u"source"_s, note.row->source}, {u"table"_s, note.row->table}, {u"row"_s, note.row->row}};
    return {{u"number"_s, note.number},
            {u"time"_s, note.time},
            {u"by"_s, note.author},
            {u"device"_s, text_or_null(note.device)},
            {u"row"_s, row},
            {u"flag"_s, note.is_flag},
            {u"text"_s, text_or_null(note.text)}};
}

case_note from_json(const QJsonObject &json)
{
    case_note note;
    note.number = json.value("number"_L1).toInt();
    note.time = json.value("time"_L1).toString();
    note.author = json.value("by"_L1).toString();
    note.device = json.value("device"_L1).toString();
    const QJsonObject row = json.value("row"_L1).toObject();
    if (!row.isEmpty())
        note.row = noted_row{row.value("source"_L1).toInt(), row.value("table"_L1).toString(),
                             row.value("row"_L1).toInteger()};
    note.is_flag = json.value("flag"_L1).toBool();
    note.text = json.value("text"_L1).toString();
    return note;
}

qsizetype index_of(const QList<case_note> &notes, int number)
{
    const auto found = std::lower_bound(notes.cbegin(), notes.cend(), number,
                                        [](const case_note &note, int wanted) { return note.number < wanted; });
    return found != notes.cend() && found->number == number ? found - notes.cbegin() : -1;
}

/** Takes in a line. False when no run of this program wrote it there. */
bool take_line(noted &file, const QByteArray &line)
{
    const QJsonObject json = QJsonDocument::fromJson(line).object();
    const int removed = json.value("removes"_L1).toInt();
    if (json.isEmpty() || json.value("time"_L1).toString().isEmpty())
        return false;
    if (removed != 0) {
        const qsizetype index = index_of(file.notes, removed);
        if (index != -1)
            file.notes.removeAt(index);
        return index != -1;
    }
    const case_note note = from_json(json);
    const bool has_place = note.row.has_value()
                           != (normal_device(note.device) == note.device && !note.device.isEmpty());
    if (note.number != file.count + 1 || !has_place)
        return false;
    ++file.count;
    file.notes.append(note);
    return true;
}

noted read_notes(const case_layout &layout)
{
    noted file;
    if (!path_exists(layout.notes()))
        return file;
    QList<QByteArray> lines = read_whole_file(layout.notes(), most_note_bytes).split('\n');
    const QByteArray rest = lines.takeLast();
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (!take_line(file, lines.at(i)))
            throw host_error(error_kind::not_found,
                             layout.notes() + u": line "_s + QString::number(i + 1) + u" is no note of this program"_s);
    }
    if (!rest.isEmpty())
        throw host_error(error_kind::not_found, layout.notes() + u": its last line is cut"_s);
    return file;
}

/** At the end of the file, whole or not at all, and on the disk when this returns. */
void append_line(const case_layout &layout, const QJsonObject &json)
{
    const auto fail = [&layout](int error) {
        throw host_error(error_kind::io, layout.notes() + u" cannot be written: "_s + system_error_text(error));
    };
    const QByteArray line = QJsonDocument(json).toJson(QJsonDocument::Compact) + '\n';
    const descriptor file = open_without_links(layout.notes(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK, 0644);
    struct stat before = {};
    if (!file.is_open() || ::fstat(file.number(), &before) != 0)
        fail(errno);
    const auto written = ::write(file.number(), line.constData(), size_t(line.size()));
    const int error = written < 0 ? errno : ENOSPC;
    if (written == line.size() && ::fsync(file.number()) == 0)
        return;
    if (::ftruncate(file.number(), before.st_size) != 0)
        fail(errno);
    fail(error);
}

} // namespace

std::optional<QString> normal_device(const QString &text)
{
    static const QRegularExpression address(u"^([0-9A-F]{2})([:.-]?)([0-9A-F]{2})\\2([0-9A-F]{2})\\2([0-9A-F]{2})\\2"
                                            "([0-9A-F]{2})\\2([0-9A-F]{2})$"_s);
    static const QRegularExpression uuid(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
    const QString capitals = text.toUpper();
    if (uuid.match(capitals).hasMatch())
        return capitals;
    const QRegularExpressionMatch match = address.match(capitals);
    if (!match.hasMatch())
        return {};
    QStringList bytes{match.captured(1)};
    for (int i = 3; i <= 7; ++i)
        bytes.append(match.captured(i));
    return bytes.join(u':');
}

std::optional<noted_row> row_named(const QString &text)
{
    static const QRegularExpression form(u"^([0-9]{1,7}):([a-z_]+):([0-9]{1,18})$"_s);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch() || !result_tables().contains(match.captured(2)))
        return {};
    return noted_row{match.captured(1).toInt(), match.captured(2), match.captured(3).toLongLong()};
}

QList<case_note> read_case_notes(const case_layout &layout)
{
    return read_notes(layout).notes;
}

int add_case_note(const case_layout &layout, const case_note &note)
{
    if (note.row && !path_exists(layout.source(note.row->source).record()))
        throw host_error(error_kind::refused, u"the case has no "_s + source_name(note.row->source));
    case_note numbered = note;
    numbered.number = read_notes(layout).count + 1;
    numbered.time = utc_now();
    append_line(layout, to_json(numbered));
    return numbered.number;
}

void remove_case_note(const case_layout &layout, int number, const QString &author)
{
    if (index_of(read_notes(layout).notes, number) == -1)
        throw host_error(error_kind::refused, u"there is no note "_s + QString::number(number));
    append_line(layout, {{u"removes"_s, number}, {u"time"_s, utc_now()}, {u"by"_s, author}});
}

QString default_author(const case_layout &layout)
{
    for (const int number : recorded_sources(layout)) {
        QString examiner = read_source_record(layout, number).members.value("examiner"_L1).toString();
        if (!examiner.isEmpty())
            return examiner;
        break; // all records of a case have the same
    }
    const struct passwd *user = ::getpwuid(::geteuid());
    return user ? QString::fromLocal8Bit(user->pw_name) : QString::number(::geteuid());
}
