// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sample/sample_parts.h"
#include "host/sample/sample_random.h"

#include <QDateTime>
#include <QList>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 line_count = 4000;
constexpr qint64 device_line_distance = 80;
constexpr qint64 notice_distance = 130;
constexpr qint64 longest_pause = 24; // seconds between two lines: all of them take half a day

// Bytes outside ASCII stand in the log as escapes; \M-b\M^@\M^Y is a right single quotation mark.
constexpr QLatin1StringView device_names[] = {
    "Anna\\M-b\\M^@\\M^Ys Buds"_L1,
    "Desk\\M-b\\M^@\\M^Ys Phone"_L1,
    "Kitchen speaker"_L1,
    "O'Neil's watch"_L1,
    "<private>"_L1,
    "=1+1"_L1,
    "\\M-p\\M^_\\M^N\\M-'"_L1,
    "lone surrogate \\M-m\\M- \\M^@"_L1,
    "title \\^[]0;x\\^G and NUL \\^@"_L1,
    "<img src=x onerror=alert(1)>"_L1,
    "Car, front"_L1,
};
constexpr QLatin1StringView models[] = {"AudioPods1,1"_L1, "Phone12,3"_L1, "Watch6,4"_L1, "<private>"_L1};
constexpr QLatin1StringView status_texts[] = {"Connected "_L1, "Disconnected "_L1, "Route changed to "_L1, ""_L1};
constexpr QLatin1StringView other_messages[] = {
    "wifid(WiFiPolicy)[57] <Notice>: scan request finished"_L1,
    "backboardd[66] <Notice>: ambient light changed"_L1,
    "locationd[71] <Debug>: fix is fresh enough"_L1,
    "bluetoothd[112] <Notice>: advertising buffer has room"_L1,
    "SpringBoard(FrontBoard)[63] <Error>: scene took too long"_L1,
    "powerd[40] <Notice>: battery level 81"_L1,
};

/** A device in the phone's neighbourhood: it is seen several times under the same identifiers. */
struct seen_device
{
    QString identifier;
    QString account_identifier;
    QString advertised;
    QString name; ///< empty: it gives none
    QString model;
};

/** A device that the phone is connected with. */
struct used_device
{
    QString address;
    QString endpoint;
    QLatin1StringView name;
    QLatin1StringView model;
};

template<std::size_t Size>
QString pick(const QLatin1StringView (&texts)[Size], sample_random &random)
{
    return texts[random.below(Size)];
}

// One value in a statement: in which order an expression draws them is up to the compiler.
QList<seen_device> neighbours(sample_random &random)
{
    QList<seen_device> devices;
    for (qsizetype place = 0; place <= qsizetype(std::size(device_names)); ++place) {
        seen_device device;
        device.identifier = random.uuid();
        device.account_identifier = random.uuid();
        device.advertised = random.hex(6);
        if (place < qsizetype(std::size(device_names)))
            device.name = device_names[place];
        device.model = models[place % qsizetype(std::size(models))];
        devices.append(device);
    }
    return devices;
}

QList<used_device> connected_devices(sample_random &random)
{
    QList<used_device> devices{
        {paired_address(headphones_row), {}, "Anna\\M-b\\M^@\\M^Ys headphones"_L1, models[0]},
        {rental_car_address, {}, "Car, front"_L1, models[3]},
    };
    for (const QLatin1StringView name : {device_names[2], device_names[3], device_names[4], device_names[5],
                                         device_names[7], device_names[8], device_names[9]})
        devices.append({random.address(u':'), {}, name, models[devices.size() % qsizetype(std::size(models))]});
    for (used_device &device : devices)
        device.endpoint = random.hex(4);
    return devices;
}

/** Writes the messages of a phone in a neighbourhood. */
class phone_log
{
public:
    QString message(qint64 line)
    {
        if (line % device_line_distance == 7)
            return sighting();
        if (line % notice_distance == 11)
            return notice();
        return pick(other_messages, random);
    }

    QDateTime next_time()
    {
        time = time.addSecs(random.below(longest_pause));
        return time;
    }

private:
    QString sighting()
    {
        const seen_device &device = seen.at(random.below(seen.size()));
        QString text = u"sharingd(CoreUtils)[102] <Notice>: BLE device found: SFDevice ID "_s + device.identifier;
        text += u", IDS "_s + device.account_identifier;
        text += u", RSSI -"_s + QString::number(30 + random.below(60));
        if (!device.name.isEmpty() && random.below(6) != 0)
            text += u", Nm '"_s + device.name + u'\'';
        if (random.below(6) != 0)
            text += u", Md '"_s + device.model + u'\'';
        text += u", AID "_s + device.advertised;
        if (random.below(3) == 0)
            text += u", PairedBT"_s;
        return text;
    }

    QString notice()
    {
        const used_device &device = used.at(notices++ % used.size());
        QString text = u"audioaccessoryd[219] <Notice>: "_s + pick(status_texts, random);
        text += u"active device: Endpoint "_s + device.endpoint;
        text += u", PI "_s + device.address;
        text += u", Nm '"_s + device.name;
        text += u"', Md '"_s + device.model + u'\'';
        return text;
    }

    sample_random random{4};
    const QList<seen_device> seen = neighbours(random);
    const QList<used_device> used = connected_devices(random);
    qint64 notices = 0;
    QDateTime time{QDate(2024, 5, 17), QTime(12, 11, 5), Qt::UTC}; // the log itself has neither year nor zone
};

} // namespace

void write_ios_log(const QString &path)
{
    phone_log phone;
    QString text;
    for (qint64 line = 0; line < line_count; ++line) {
        text += QLocale::c().toString(phone.next_time(), u"MMM d HH:mm:ss"_s) + u" synthetic-phone "_s;
        text += phone.message(line) + u'\n';
    }
    write_sample_file(path, text.toUtf8());
}
