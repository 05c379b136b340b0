// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sample/sample_parts.h"
#include "host/sample/sample_random.h"

#include <QTime>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 line_count = 4000;
constexpr qint64 device_line_distance = 80;
constexpr qint64 notice_distance = 130;

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

template<std::size_t Size>
QString pick(const QLatin1StringView (&texts)[Size], sample_random &random)
{
    return texts[random.below(Size)];
}

// One value in a statement: in which order an expression draws them is up to the compiler.
QString seen_device(sample_random &random)
{
    QString text = u"sharingd(CoreUtils)[102] <Notice>: BLE device found: SFDevice ID "_s + random.uuid();
    text += u", IDS "_s + random.uuid();
    text += u", RSSI -"_s + QString::number(30 + random.below(60));
    if (random.below(6) != 0)
        text += u", Nm '"_s + pick(device_names, random) + u'\'';
    if (random.below(6) != 0)
        text += u", Md '"_s + pick(models, random) + u'\'';
    text += u", AID "_s + random.hex(6);
    if (random.below(3) == 0)
        text += u", PairedBT"_s;
    return text;
}

QString active_device(sample_random &random)
{
    QString text = u"audioaccessoryd[219] <Notice>: "_s + pick(status_texts, random);
    text += u"active device: Endpoint "_s + random.hex(4);
    text += u", PI "_s + random.address(u':');
    text += u", Nm '"_s + pick(device_names, random);
    text += u"', Md '"_s + pick(models, random) + u'\'';
    return text;
}

QString message(qint64 line, sample_random &random)
{
    if (line % device_line_distance == 7)
        return seen_device(random);
    if (line % notice_distance == 11)
        return active_device(random);
    return pick(other_messages, random);
}

} // namespace

void write_ios_log(const QString &path)
{
    sample_random random(4);
    QTime time(12, 11, 5);
    QString text;
    for (qint64 line = 0; line < line_count; ++line) {
        time = time.addSecs(int(random.below(4)));
        text += u"May 17 "_s + time.toString(u"HH:mm:ss") + u" synthetic-phone "_s + message(line, random) + u'\n';
    }
    write_sample_file(path, text.toUtf8());
}
