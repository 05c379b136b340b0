// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/log_text.h"

#include "host/files/system_error.h"
#include "host/files/transfer.h"
#include "host/source/device_phrases.h"
#include "host/source/evidence_folder.h"

#include <QByteArray>
#include <QRegularExpression>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype block_bytes = 1 << 20;
constexpr qsizetype longest_time = 40; // bytes

/** Bytes that a kind of file has at a place, and what the examiner reads of it. */
struct file_signature
{
    qsizetype place;
    QByteArrayView bytes;
    QLatin1StringView words;
};

// clang-format off
constexpr file_signature signatures[] = {
    {0,   QByteArrayView("\x1f\x8b"),             "it is a gzip archive: unpack it first"_L1},
    {0,   QByteArrayView("\xfd" "7zXZ"),          "it is an xz archive: unpack it first"_L1},
    {0,   QByteArrayView("BZh"),                  "it is a bzip2 archive: unpack it first"_L1},
    {0,   QByteArrayView("\x28\xb5\x2f\xfd"),     "it is a zstd archive: unpack it first"_L1},
    {0,   QByteArrayView("7z\xbc\xaf\x27\x1c"),   "it is a 7z archive: unpack it first"_L1},
    {0,   QByteArrayView("PK\x03\x04"),           "it is a zip archive: unpack it first"_L1},
    {0,   QByteArrayView("PK\x05\x06"),           "it is an empty zip archive"_L1},
    {257, QByteArrayView("ustar"),                "it is a tar archive: unpack it first"_L1},
    {0,   QByteArrayView("EVF\x09\x0d\x0a\xff"),  "it is a disk image (E01): mount it, and give the log text in it"_L1},
    {0,   QByteArrayView("EVF2\x0d\x0a\x81"),     "it is a disk image (Ex01): mount it, and give the log text in it"_L1},
    {0,   QByteArrayView("SQLite format 3"),      "it is an SQLite database"_L1},
    {0,   QByteArrayView("bplist"),               "it is a property list"_L1},
    {0,   QByteArrayView("\x7f" "ELF"),           "it is a program"_L1},
    {0,   QByteArrayView("MZ"),                   "it is a program"_L1},
    {0,   QByteArrayView("\xcf\xfa\xed\xfe"),     "it is a program"_L1},
    {0,   QByteArrayView("\xca\xfe\xba\xbe"),     "it is a program"_L1},
    {0,   QByteArrayView("\xff\xfe"),             "it is a text in UTF-16: convert it first (iconv -f UTF-16 -t UTF-8)"_L1},
    {0,   QByteArrayView("\xfe\xff"),             "it is a text in UTF-16: convert it first (iconv -f UTF-16 -t UTF-8)"_L1},
};
// clang-format on

constexpr QLatin1StringView
    utf_16_without_mark("it looks like a text in UTF-16: convert it first (iconv -f UTF-16LE -t UTF-8)");

/** Text in UTF-16 that is mostly ASCII has a zero in every other byte. */
bool looks_like_utf_16(QByteArrayView start)
{
    qsizetype zeros[2] = {0, 0};
    for (qsizetype i = 0; i < start.size(); ++i)
        zeros[i % 2] += start[i] == '\0' ? 1 : 0;
    const qsizetype half = start.size() / 2;
    return half > 0 && std::max(zeros[0], zeros[1]) * 2 > half && std::min(zeros[0], zeros[1]) * 8 < half;
}

} // namespace

std::optional<QString> why_no_log_text(QByteArrayView start)
{
    if (start.isEmpty())
        return u"it is empty"_s;
    for (const file_signature &signature : signatures) {
        if (start.size() >= signature.place + signature.bytes.size()
            && start.sliced(signature.place, signature.bytes.size()) == signature.bytes)
            return signature.words;
    }
    if (looks_like_utf_16(start))
        return utf_16_without_mark;
    if (start.contains('\r') && !start.contains('\n'))
        return u"its lines end with CR alone: convert it first (dos2unix -c mac)"_s;
    return {};
}

bool is_device_log_line(QByteArrayView line)
{
    // "May 17 12:11:05 " of a system log, "2026-05-17 12:11:05" of its export
    static const QRegularExpression time(
        u"^\\s*(?:[A-Z][a-z]{2} [ 0-3]?[0-9] [0-9]{2}:[0-9]{2}:[0-9]{2}|[0-9]{4}-[0-9]{2}-[0-9]{2}[ T][0-9]{2}:[0-9]{2})"_s);
    if (line.contains(found_device_phrase) || line.contains(active_device_phrase))
        return true;
    return time.match(QString::fromLatin1(line.first(qMin(line.size(), longest_time)))).hasMatch();
}

bool device_log_check::add(QByteArrayView block)
{
    if (is_decided() || block.isEmpty())
        return has_line;
    if (is_first) {
        const QByteArrayView start = block.first(qMin(block.size(), block_bytes));
        objection = why_no_log_text(start).value_or(QString());
        is_first = false;
        if (!objection.isEmpty())
            return false;
    }
    const QByteArray text = rest + block;
    qsizetype start = 0;
    for (qsizetype end = text.indexOf('\n'); end != -1; end = text.indexOf('\n', start)) {
        has_line = is_device_log_line(QByteArrayView(text).sliced(start, end - start));
        if (has_line)
            return true;
        start = end + 1;
    }
    rest = text.sliced(start);
    has_line = is_device_log_line(rest);
    rest = rest.last(qMin(rest.size(), block_bytes)); // a line without end is not kept as a whole
    return has_line;
}

bool device_log_check::finish()
{
    if (is_first)
        objection = why_no_log_text({}).value_or(QString());
    else if (objection.isEmpty() && !has_line)
        objection = u"no line of it looks like one of a device's log"_s;
    return has_line;
}

std::optional<QString> why_no_device_log(const QString &path)
{
    const descriptor file = open_evidence(path);
    QByteArray block(block_bytes, Qt::Uninitialized);
    device_log_check check;
    for (;;) {
        const qsizetype count = read_some(file.number(), block.data(), block.size());
        if (count < 0)
            return system_error_text(errno);
        const bool is_log = count == 0 ? check.finish() : check.add(QByteArrayView(block.constData(), count));
        if (is_log)
            return {};
        if (count == 0 || check.is_decided())
            return check.reason();
    }
}
