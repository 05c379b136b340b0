// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/member_name.h"

#include "host/source/evidence_folder.h"

#include <QByteArray>
#include <QStringTokenizer>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longest_name = 4096; // bytes, as Linux has it

bool starts_with_drive(const QString &text)
{
    return text.size() >= 2 && text.at(1) == u':' && text.at(0).isLetter() && text.at(0).unicode() < 0x80;
}

QString danger_of(const QString &text, QByteArrayView bytes)
{
    if (bytes.contains('\0'))
        return u"its name holds a zero byte"_s;
    if (bytes.size() > longest_name)
        return u"its name is longer than "_s + QString::number(longest_name) + u" bytes"_s;
    if (text.startsWith(u'/'))
        return u"its name is absolute"_s;
    if (bytes.contains('\\'))
        return u"its name holds a backslash"_s;
    if (starts_with_drive(text))
        return u"its name begins with a drive letter"_s;
    for (const QStringView part : QStringView(text).tokenize(u'/')) {
        if (part == ".."_L1)
            return u"its name leads to a folder above"_s;
    }
    return {};
}

} // namespace

member_name take_apart(QByteArrayView bytes)
{
    member_name name;
    name.text = evidence_name_text(bytes.first(qMin(bytes.size(), longest_name)));
    name.danger = danger_of(name.text, bytes);
    QString path = name.text;
    if (bytes.contains('\\')) {
        QByteArray slashed = bytes.first(qMin(bytes.size(), longest_name)).toByteArray();
        path = evidence_name_text(slashed.replace('\\', '/'));
    }
    if (starts_with_drive(path))
        path.remove(0, 2);
    for (const QStringView part : QStringView(path).tokenize(u'/', Qt::SkipEmptyParts)) {
        if (part != "."_L1 && part != ".."_L1)
            name.parts.append(part.toString());
    }
    return name;
}

bool is_plain_name(QByteArrayView bytes)
{
    if (bytes.isEmpty() || bytes.size() > longest_name || bytes.front() == '/' || (bytes.size() > 1 && bytes[1] == ':')
        || bytes == "." || bytes.endsWith("/.") || bytes.endsWith("//"))
        return false;
    char before = '\0';
    for (const char byte : bytes) {
        if (byte < ' ' || byte > '~' || byte == '\\' || (byte == '.' && before == '.'))
            return false;
        before = byte;
    }
    return true;
}

QString folded_name(const QString &path)
{
    return path.normalized(QString::NormalizationForm_D).toCaseFolded();
}
