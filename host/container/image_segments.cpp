// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/image_segments.h"

#include "host/source/evidence_folder.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QtEndian>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int most_segments = 20000;
constexpr qint64 most_description_bytes = 1 << 20;

/** The names that follow ".001" or ".000". */
QStringList numbered_names(const QString &path)
{
    static const QRegularExpression form(u"^(.*\\.)(0{1,4}[01])$"_s, QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(path);
    QStringList names{path};
    if (!match.hasMatch())
        return names;
    const qsizetype digits = match.captured(2).size();
    for (int number = match.captured(2).toInt() + 1; number < most_segments; ++number) {
        const QString next = match.captured(1) + QString::number(number).rightJustified(digits, u'0');
        if (!QFileInfo(next).isFile())
            break;
        names.append(next);
    }
    return names;
}

/** "E02" … "E99", "EAA" … "EZZ", "FAA" …: the endings behind "E01", in the letter case of it. */
QString ewf_ending(int number, QChar first)
{
    if (number < 100)
        return first + QString::number(number).rightJustified(2, u'0');
    const int letters = number - 100;
    const char16_t base = first.isUpper() ? u'A' : u'a';
    const auto letter = [base](int place) { return QChar(char16_t(base + place)); };
    return QString(QChar(char16_t(first.unicode() + letters / 676))) + letter(letters / 26 % 26) + letter(letters % 26);
}

QStringList ewf_names(const QString &path)
{
    QStringList names{path};
    const QString ending = path.right(3);
    if (ending.compare("E01"_L1, Qt::CaseInsensitive) != 0 && ending.compare("S01"_L1, Qt::CaseInsensitive) != 0)
        return names;
    for (int number = 2; number < most_segments; ++number) {
        const QString next = path.chopped(3) + ewf_ending(number, ending.at(0));
        if (!QFileInfo(next).isFile())
            break;
        names.append(next);
    }
    return names;
}

QByteArray read_at(int file, qint64 place, qint64 size)
{
    QByteArray bytes(size, '\0');
    const auto count = ::pread(file, bytes.data(), size_t(size), place);
    bytes.truncate(qMax<qsizetype>(0, count));
    return bytes;
}

/** A VMDK's description is a text of its own, or stands in a sparse one where its header says. */
QByteArray vmdk_description(const QString &path)
{
    const descriptor file = open_evidence(path);
    const QByteArray start = read_at(file.number(), 0, 512);
    if (!start.startsWith("KDMV"))
        return read_at(file.number(), 0, most_description_bytes);
    if (start.size() < 512)
        return {};
    const quint64 place = qFromLittleEndian<quint64>(start.constData() + 28) * 512;
    const quint64 size = qFromLittleEndian<quint64>(start.constData() + 36) * 512;
    if (place > quint64(QFileInfo(path).size()))
        return {};
    return read_at(file.number(), qint64(place), qint64(qMin(size, quint64(most_description_bytes))));
}

QStringList vmdk_names(const QString &path)
{
    QStringList names{path};
    const QString folder = QFileInfo(path).path();
    for (const QString &extent : extent_names(vmdk_description(path))) {
        const QString place = folder + u'/' + QFileInfo(extent).fileName();
        if (!names.contains(place) && QFileInfo(place).isFile())
            names.append(place);
    }
    return names;
}

} // namespace

QStringList image_segments(const QString &path, QLatin1StringView format)
{
    if (format == "ewf"_L1)
        return ewf_names(path);
    if (format == "vmdk"_L1)
        return vmdk_names(path);
    return format == "raw"_L1 ? numbered_names(path) : QStringList{path};
}

QStringList extent_names(const QByteArray &description)
{
    static const QRegularExpression form(u"^(?:RW|RDONLY|NOACCESS) +[0-9]+ +[A-Z]+ +\"([^\"]+)\""_s,
                                         QRegularExpression::MultilineOption);
    QStringList names;
    auto matches = form.globalMatch(QString::fromUtf8(description));
    while (matches.hasNext() && names.size() < most_segments)
        names.append(matches.next().captured(1));
    return names;
}

// Sections of an EWF: type (16 bytes), place of the next one (8), size (8), padding, sum; 76 bytes. "hash" holds an
// MD5, "digest" an MD5 and a SHA-1; "done" ends the image, "next" a segment before the last.
// https://github.com/libyal/libewf/blob/main/documentation/
ewf_hashes hashes_in_ewf(const QString &last_segment)
{
    constexpr qint64 file_header_bytes = 13;
    constexpr qint64 section_header_bytes = 76;
    constexpr int most_sections = 100000;
    ewf_hashes hashes;
    const descriptor file = open_evidence(last_segment);
    qint64 place = file_header_bytes;
    for (int count = 0; count < most_sections; ++count) {
        const QByteArray section = read_at(file.number(), place, section_header_bytes);
        if (section.size() < section_header_bytes)
            break;
        const QByteArray type(section.constData());
        if (type == "hash" || type == "digest") {
            const QByteArray content = read_at(file.number(), place + section_header_bytes, 36);
            hashes.md5 = QString::fromLatin1(content.first(qMin<qsizetype>(16, content.size())).toHex());
            if (type == "digest" && content.size() == 36)
                hashes.sha1 = QString::fromLatin1(content.sliced(16, 20).toHex());
        }
        const qint64 next = qFromLittleEndian<qint64>(section.constData() + 16);
        hashes.is_whole = type == "done";
        if (hashes.is_whole || type == "next" || next <= place)
            break;
        place = next;
    }
    return hashes;
}
