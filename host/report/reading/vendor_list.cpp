// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/vendor_list.h"

#include "host/devices/device_address.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/sha256.h"

#include <QDateTime>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 most_bytes = qint64(64) << 20;
constexpr QByteArrayView marker("(hex)"); // B4-C2-6A   (hex)		Name of the vendor

QByteArray read_list(const QString &file)
{
    try {
        return read_whole_file(QFileInfo(file).canonicalFilePath(), most_bytes);
    } catch (const host_error &error) {
        throw host_error(error_kind::refused, u"--vendors: "_s + error.message());
    }
}

} // namespace

vendor_list::vendor_list(const QString &file)
{
    const QByteArray content = read_list(file);
    for (const QByteArray &line : content.split('\n')) {
        const qsizetype place = line.indexOf(marker);
        const QByteArray prefix = line.first(qMax<qsizetype>(place, 0)).trimmed().toLower().replace('-', ':');
        if (prefix.size() == 8)
            add(prefix, line.sliced(place + marker.size()).trimmed());
    }
    if (names.isEmpty())
        throw host_error(error_kind::refused, u"--vendors: "_s + file + u" names no vendor in the form of oui.txt"_s);
    const QFileInfo info(file);
    description_text = info.fileName() + u", SHA-256 "_s + sha256::of(content) + u", of "_s
                       + info.lastModified().toUTC().date().toString(Qt::ISODate);
}

void vendor_list::add(const QByteArray &prefix, const QByteArray &name)
{
    QByteArray &known = names[prefix];
    if (known.isEmpty())
        known = name;
    else if (known != name)
        known += " or " + name; // a range that is divided among them
}

QByteArray vendor_list::vendor_of_first_public(std::initializer_list<QByteArrayView> texts) const
{
    if (names.isEmpty())
        return {};
    for (const QByteArrayView text : texts) {
        const std::optional<device_address> address = parse_device_address(text);
        if (address && address->joins_sources())
            return names.value(address->bytes.first(8));
    }
    return {};
}
