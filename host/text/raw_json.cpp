// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/text/raw_json.h"

#include <QJsonDocument>

namespace {

/** Goes over a text that is known to be JSON. */
class json_scanner
{
public:
    explicit json_scanner(QByteArrayView json)
        : text(json)
    {
    }

    bool is_at(char character)
    {
        skip_blanks();
        return at < text.size() && text.at(at) == character;
    }

    /** Passes over a character that stands between values. */
    void pass()
    {
        ++at;
    }

    QByteArrayView value()
    {
        skip_blanks();
        const qsizetype begin = at;
        int depth = 0;
        do {
            const char character = text.at(at);
            if (character == '"')
                pass_string();
            else
                ++at;
            depth += character == '{' || character == '[' ? 1 : 0;
            depth -= character == '}' || character == ']' ? 1 : 0;
        } while (at < text.size() && (depth > 0 || !is_end(text.at(at))));
        return text.sliced(begin, at - begin).trimmed();
    }

private:
    static bool is_end(char character)
    {
        return character == ',' || character == ':' || character == '}' || character == ']';
    }

    void skip_blanks()
    {
        while (at < text.size() && QByteArrayView(" \t\r\n").contains(text.at(at)))
            ++at;
    }

    void pass_string()
    {
        for (++at; text.at(at) != '"'; ++at)
            at += text.at(at) == '\\' ? 1 : 0;
        ++at;
    }

    QByteArrayView text;
    qsizetype at = 0;
};

} // namespace

std::optional<QHash<QByteArrayView, QByteArrayView>> raw_json_members(QByteArrayView object)
{
    if (!QJsonDocument::fromJson(QByteArray::fromRawData(object.data(), object.size())).isObject())
        return {};
    QHash<QByteArrayView, QByteArrayView> members;
    json_scanner scanner(object);
    for (scanner.is_at('{'), scanner.pass(); !scanner.is_at('}'); scanner.is_at(',') ? scanner.pass() : void()) {
        const QByteArrayView name = scanner.value(); // up to the colon
        scanner.pass();
        members.insert(name.sliced(1, name.size() - 2), scanner.value());
    }
    return members;
}
