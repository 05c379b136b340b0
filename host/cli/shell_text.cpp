// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/shell_text.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** $'a\x1b': what bash, ksh and zsh turn back into any bytes. */
terminal_text ansi_c_word(const QString &text)
{
    QString word;
    const QByteArray bytes = text.toUtf8();
    for (const char byte : bytes) {
        if (byte == '\\' || byte == '\'')
            word += QString(u'\\') + QLatin1Char(byte);
        else if (byte >= ' ' && byte <= '~')
            word += QLatin1Char(byte);
        else
            word += u"\\x"_s + QString::fromLatin1(QByteArray(1, byte).toHex());
    }
    return terminal_text::ascii(u"$'"_s + word + u'\'');
}

} // namespace

terminal_text shell_word(const QString &text)
{
    static const QRegularExpression plain(u"^[A-Za-z0-9_/.:@%+=,][A-Za-z0-9_/.:@%+=,-]*$"_s);
    if (plain.match(text).hasMatch())
        return text;
    terminal_texts parts;
    for (const QString &part : text.split(u'\'')) {
        parts.append(part);
        if (parts.last().to_string() != part)
            return ansi_c_word(text); // it would not be pasted as it is
    }
    return u"'"_s + joined(parts, terminal_text::ascii(u"'\\''"_s)) + u"'"_s;
}

terminal_text shell_name_of_program()
{
    const QString program = QCoreApplication::applicationFilePath();
    const QString name = QFileInfo(program).fileName();
    const QString found = QStandardPaths::findExecutable(name);
    return shell_word(QFileInfo(found).canonicalFilePath() == QFileInfo(program).canonicalFilePath() ? name : program);
}
