// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_helper_functions.h"

#include "common/evidence_file.h"
#include "common/file_names.h"
#include "common/media_extensions.h"

using namespace Qt::StringLiterals;

namespace {

/** What SQLite keeps beside a database in WAL mode. */
const QStringList database_companions{u"-shm"_s, u"-wal"_s};

bool may_begin_extension(QChar character)
{
    const char16_t unit = character.unicode();
    if (unit > 127)
        return character.isLetter();
    return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

bool has_extension_of(const QStringList &extensions, const QString &file_name)
{
    if (file_name.endsWith(u'.'))
        return false;
    const QString name = file_name.trimmed().toLower().trimmed();
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot == -1 || dot + 1 == name.size() || !may_begin_extension(name.at(dot + 1)))
        return false;
    return extensions.contains(name.sliced(dot));
}

} // namespace

plugin_helper_functions::plugin_helper_functions(QWidget *parent)
{
    Q_UNUSED(parent)
    initialize_image_extension_list();
    initialize_audio_extension_list();
    initialize_video_extension_list();
}

plugin_helper_functions::~plugin_helper_functions() = default;

void plugin_helper_functions::set_essentials()
{
    bool_cancel_extraction = false;
}

void plugin_helper_functions::set_cancel_extraction(bool cancel)
{
    bool_cancel_extraction = cancel;
}

bool plugin_helper_functions::check_is_image_by_extn(QString file_name)
{
    return has_extension_of(image_extension_list, file_name);
}

bool plugin_helper_functions::check_is_video_by_extn(QString file_name)
{
    return has_extension_of(video_extension_list, file_name);
}

bool plugin_helper_functions::check_is_audio_by_extn(QString file_name)
{
    return has_extension_of(audio_extension_list, file_name);
}

void plugin_helper_functions::set_adhoc_parent_path(QString path)
{
    adhoc_parent_path = path;
}

QString plugin_helper_functions::get_adhoc_path_for_database(QString source)
{
    // A companion of an earlier copy would be taken for this one's.
    QString copy = free_adhoc_path(source, database_companions);
    if (copy.isEmpty() || !copy_evidence_file(source, copy))
        return {};
    for (const QString &companion : database_companions)
        copy_evidence_file(source + companion, copy + companion);
    return copy;
}

QString plugin_helper_functions::get_adhoc_path_for_regular_file(QString source)
{
    const QString copy = free_adhoc_path(source);
    return !copy.isEmpty() && copy_evidence_file(source, copy) ? copy : QString();
}

void plugin_helper_functions::initialize_image_extension_list()
{
    image_extension_list = image_extensions();
}

void plugin_helper_functions::initialize_audio_extension_list()
{
    audio_extension_list = audio_extensions();
}

void plugin_helper_functions::initialize_video_extension_list()
{
    video_extension_list = video_extensions();
}

/** Empty when cancelled, and without an ad-hoc folder: evidence is never copied into the current folder. */
QString plugin_helper_functions::free_adhoc_path(const QString &source, const QStringList &companions) const
{
    if (adhoc_parent_path.isEmpty())
        return {};
    const QString name = free_file_name(source, adhoc_parent_path, companions);
    if (name.isEmpty())
        return {};
    return adhoc_parent_path + (adhoc_parent_path.endsWith(u'/') ? QLatin1StringView() : "/"_L1) + name;
}
