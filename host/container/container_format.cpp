// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/container_format.h"

#include "host/source/evidence_folder.h"

#include <QByteArray>
#include <QFileInfo>

#include <algorithm>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using kind = container_guess::kind;

enum class side { start, end };

/** Bytes that a format has at a place, counted from the start of the file or of its last 512 bytes. */
struct container_signature
{
    qsizetype place;
    QByteArrayView bytes;
    kind what;
    QLatin1StringView format;
    QLatin1StringView command = {};
    side where = side::start;
};

constexpr QLatin1StringView qemu_convert("qemu-img convert -O raw %1 %1.raw");
constexpr QLatin1StringView no_command;

// Each format's own specification has its signature; those of file systems make a file a raw image.
// clang-format off
constexpr container_signature container_signatures[] = {
    {0,    QByteArrayView("QFI\xfb"),                       kind::refused,    "a QCOW2 image"_L1, qemu_convert},
    {0,    QByteArrayView("vhdxfile"),                      kind::refused,    "a VHDX image"_L1, qemu_convert},
    {64,   QByteArrayView("\x7f\x10\xda\xbe"),              kind::refused,    "a VDI image"_L1, qemu_convert},
    {0,    QByteArrayView("koly"),                          kind::refused,    "a DMG image"_L1, "qemu-img convert -f dmg -O raw %1 %1.raw"_L1, side::end},
    {0,    QByteArrayView("encrcdsa"),                      kind::refused,    "an encrypted DMG image"_L1, no_command},
    {0,    QByteArrayView("sprs"),                          kind::refused,    "a sparse image of macOS"_L1, no_command},
    {0,    QByteArrayView("EVF2\x0d\x0a\x81"),              kind::refused,    "an Ex01 image"_L1, no_command},
    {0,    QByteArrayView("LVF\x09\x0d\x0a\xff"),           kind::refused,    "an L01 image of single files"_L1, no_command},
    {0,    QByteArrayView("AFF10\x0d\x0a"),                 kind::refused,    "an AFF image"_L1, "affconvert -r -e raw %1"_L1},
    {0,    QByteArrayView("Rar!\x1a\x07"),                  kind::refused,    "a RAR archive"_L1, "unar %1"_L1},
    {0,    QByteArrayView("EVF\x09\x0d\x0a\xff"),           kind::image,      "ewf"_L1},
    {0,    QByteArrayView("KDMV"),                          kind::image,      "vmdk"_L1},
    {0,    QByteArrayView("COWD"),                          kind::image,      "vmdk"_L1},
    {0,    QByteArrayView("# Disk DescriptorFile"),         kind::image,      "vmdk"_L1},
    {0,    QByteArrayView("conectix"),                      kind::image,      "vhd"_L1},
    {0,    QByteArrayView("conectix"),                      kind::image,      "vhd"_L1, {}, side::end},
    {0,    QByteArrayView("PK\x03\x04"),                    kind::archive,    "zip"_L1},
    {0,    QByteArrayView("PK\x05\x06"),                    kind::archive,    "zip"_L1},
    {0,    QByteArrayView("PK\x30\x30PK\x03\x04"),          kind::archive,    "zip"_L1},
    {0,    QByteArrayView("7z\xbc\xaf\x27\x1c"),            kind::archive,    "7z"_L1},
    {257,  QByteArrayView("ustar"),                         kind::archive,    "tar"_L1},
    {0,    QByteArrayView("070701"),                        kind::archive,    "cpio"_L1},
    {0,    QByteArrayView("070702"),                        kind::archive,    "cpio"_L1},
    {0,    QByteArrayView("070707"),                        kind::archive,    "cpio"_L1},
    {0,    QByteArrayView("\xc7\x71"),                      kind::archive,    "cpio"_L1},
    {0,    QByteArrayView("\x71\xc7"),                      kind::archive,    "cpio"_L1},
    {0,    QByteArrayView("\x1f\x8b"),                      kind::compressed, "gzip"_L1},
    {0,    QByteArrayView("\xfd" "7zXZ"),                   kind::compressed, "xz"_L1},
    {0,    QByteArrayView("BZh"),                           kind::compressed, "bzip2"_L1},
    {0,    QByteArrayView("\x28\xb5\x2f\xfd"),              kind::compressed, "zstd"_L1},
    {32,   QByteArrayView("NXSB"),                          kind::image,      "raw"_L1},
    {1024, QByteArrayView("H+\0\x04", 4),                   kind::image,      "raw"_L1},
    {1024, QByteArrayView("HX\0\x05", 4),                   kind::image,      "raw"_L1},
    {3,    QByteArrayView("NTFS    "),                      kind::image,      "raw"_L1},
    {3,    QByteArrayView("EXFAT   "),                      kind::image,      "raw"_L1},
    {3,    QByteArrayView("-FVE-FS-"),                      kind::image,      "raw"_L1},
    {0,    QByteArrayView("LUKS\xba\xbe"),                  kind::image,      "raw"_L1},
    {512,  QByteArrayView("EFI PART"),                      kind::image,      "raw"_L1},
    {4096, QByteArrayView("EFI PART"),                      kind::image,      "raw"_L1},
    {512,  QByteArrayView("PM\0\0", 4),                     kind::image,      "raw"_L1},
    {2048, QByteArrayView("PM\0\0", 4),                     kind::image,      "raw"_L1},
    {1080, QByteArrayView("\x53\xef"),                      kind::image,      "raw"_L1},
    {510,  QByteArrayView("\x55\xaa"),                      kind::image,      "raw"_L1},
};
// clang-format on

bool has(QByteArrayView bytes, const container_signature &signature)
{
    return bytes.size() >= signature.place + signature.bytes.size()
           && bytes.sliced(signature.place, signature.bytes.size()) == signature.bytes;
}

/** A text has no zero bytes; the short signatures of raw images could stand in one by chance. */
bool may_be_an_image(QByteArrayView start)
{
    return start.contains('\0');
}

/** AFF4 is a zip whose first members name its volume. */
bool is_aff4(QByteArrayView start)
{
    return start.startsWith("PK\x03\x04")
           && (start.contains(QByteArrayView("aff4://")) || start.contains(QByteArrayView("container.description")));
}

/** The header of a tar that is older than its magic: six octal digits that are the sum of its bytes. */
bool is_old_tar(QByteArrayView start)
{
    constexpr qsizetype header_bytes = 512;
    constexpr qsizetype sum_place = 148;
    constexpr qsizetype sum_bytes = 8;
    if (start.size() < header_bytes || start[0] == '\0')
        return false;
    qint64 sum = 0;
    for (qsizetype i = 0; i < header_bytes; ++i)
        sum += i >= sum_place && i < sum_place + sum_bytes ? ' ' : static_cast<unsigned char>(start[i]);
    const QByteArray digits = start.sliced(sum_place, 6).toByteArray().trimmed();
    bool is_octal = false;
    return digits.toLongLong(&is_octal, 8) == sum && is_octal;
}

} // namespace

container_guess guess_container(QByteArrayView start, QByteArrayView end)
{
    if (is_aff4(start))
        return {kind::refused, "an AFF4 image"_L1, no_command};
    for (const container_signature &signature : container_signatures) {
        if (!has(signature.where == side::start ? start : end, signature))
            continue;
        if (signature.format == "raw"_L1 && !may_be_an_image(start))
            continue;
        return {signature.what, signature.format, signature.command};
    }
    if (is_old_tar(start))
        return {kind::archive, "tar"_L1, no_command};
    return {};
}

container_guess guess_container(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return {};
    const descriptor file = open_evidence(path);
    QByteArray start(container_start_bytes, Qt::Uninitialized);
    const auto read = ::pread(file.number(), start.data(), size_t(start.size()), 0);
    if (read <= 0)
        return {};
    start.truncate(read);
    const qint64 size = QFileInfo(path).size();
    QByteArray end(container_end_bytes, Qt::Uninitialized);
    const auto read_end = ::pread(file.number(), end.data(), size_t(end.size()),
                                  std::max<qint64>(0, size - container_end_bytes));
    end.truncate(std::max<qsizetype>(0, read_end));
    return guess_container(start, end);
}

QString refusal_of(const container_guess &guess, const QString &path)
{
    const QString what = u"it is "_s + guess.format + u", which this program does not read"_s;
    return guess.command.isEmpty() ? what : what + u": convert it first ("_s + QString(guess.command).arg(path) + u')';
}

bool is_sparse_bundle(const QString &folder)
{
    return QFileInfo(folder + u"/bands"_s).isDir() && QFileInfo(folder + u"/Info.plist"_s).isFile()
           && QFileInfo(folder + u"/token"_s).exists();
}
