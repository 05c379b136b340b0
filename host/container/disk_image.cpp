// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/disk_image.h"

#include "host/container/image_segments.h"
#include "host/container/image_volume.h"
#include "host/container/kept_access_times.h"
#include "host/files/descriptor.h"
#include "host/files/host_error.h"
#include "host/source/evidence_folder.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <map>
#include <vector>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int most_volumes = 1000;
constexpr qint64 start_bytes = 8192;

struct type_name
{
    unsigned type;
    QLatin1StringView name;
};

constexpr type_name file_system_names[] = {
    {TSK_FS_TYPE_APFS, "apfs"_L1},   {TSK_FS_TYPE_HFS, "hfs+"_L1},    {TSK_FS_TYPE_NTFS, "ntfs"_L1},
    {TSK_FS_TYPE_EXT2, "ext2"_L1},   {TSK_FS_TYPE_EXT3, "ext3"_L1},   {TSK_FS_TYPE_EXT4, "ext4"_L1},
    {TSK_FS_TYPE_FAT12, "fat12"_L1}, {TSK_FS_TYPE_FAT16, "fat16"_L1}, {TSK_FS_TYPE_FAT32, "fat32"_L1},
    {TSK_FS_TYPE_EXFAT, "exfat"_L1},
};

QString name_of(TSK_FS_TYPE_ENUM type)
{
    const auto found = std::find_if(std::begin(file_system_names), std::end(file_system_names),
                                    [type](const type_name &known) { return known.type == unsigned(type); });
    return found == std::end(file_system_names) ? QString() : QString(found->name);
}

/** Bytes that a file system, or what hides one, has at a place of its volume. */
struct volume_signature
{
    qsizetype place;
    QByteArrayView bytes;
    unsigned type;               ///< of the library; 0 for what it does not open
    QLatin1StringView encrypted; ///< what it is encrypted with
};

constexpr unsigned no_type = 0;

// Only what is expected is tried: the library's own guesses take noise for file systems that nobody has.
// clang-format off
constexpr volume_signature volume_signatures[] = {
    {0,    QByteArrayView("LUKS\xba\xbe"), no_type,                 "LUKS"_L1},
    {3,    QByteArrayView("-FVE-FS-"),     no_type,                 "BitLocker"_L1},
    {88,   QByteArrayView("CS\x02\0", 4),  no_type,                 "FileVault (CoreStorage)"_L1},
    {88,   QByteArrayView("CS\x01\0", 4),  no_type,                 "FileVault (CoreStorage)"_L1},
    {32,   QByteArrayView("NXSB"),         TSK_FS_TYPE_APFS,        {}},
    {3,    QByteArrayView("NTFS    "),     TSK_FS_TYPE_NTFS,        {}},
    {3,    QByteArrayView("EXFAT   "),     TSK_FS_TYPE_EXFAT,       {}},
    {54,   QByteArrayView("FAT12"),        TSK_FS_TYPE_FAT_DETECT,  {}},
    {54,   QByteArrayView("FAT16"),        TSK_FS_TYPE_FAT_DETECT,  {}},
    {82,   QByteArrayView("FAT32"),        TSK_FS_TYPE_FAT_DETECT,  {}},
    {1024, QByteArrayView("H+\0\x04", 4),  TSK_FS_TYPE_HFS_DETECT,  {}},
    {1024, QByteArrayView("HX\0\x05", 4),  TSK_FS_TYPE_HFS_DETECT,  {}},
    {1080, QByteArrayView("\x53\xef"),     TSK_FS_TYPE_EXT_DETECT,  {}},
};
// clang-format on

const volume_signature *signature_of(QByteArrayView start)
{
    for (const volume_signature &signature : volume_signatures) {
        if (start.size() >= signature.place + signature.bytes.size()
            && start.sliced(signature.place, signature.bytes.size()) == signature.bytes)
            return &signature;
    }
    return nullptr;
}

/** A raw image as the library reads it: through files that keep their access times. */
struct raw_image
{
    TSK_IMG_INFO info = {}; ///< first: the library hands out its address
    std::vector<descriptor> files;
    std::vector<qint64> starts;
    qint64 size = 0;
};

ssize_t read_raw(TSK_IMG_INFO *info, TSK_OFF_T place, char *bytes, size_t most)
{
    const auto *image = reinterpret_cast<const raw_image *>(info);
    size_t done = 0;
    while (done < most && place < image->size) {
        const auto after = std::upper_bound(image->starts.cbegin(), image->starts.cend(), place);
        const auto index = size_t(after - image->starts.cbegin()) - 1;
        const qint64 end = index + 1 < image->starts.size() ? image->starts[index + 1] : image->size;
        const auto wanted = size_t(qMin<qint64>(qint64(most - done), end - place));
        const auto count = ::pread(image->files[index].number(), bytes + done, wanted, place - image->starts[index]);
        if (count <= 0)
            return done > 0 ? ssize_t(done) : -1;
        done += size_t(count);
        place += count;
    }
    return ssize_t(done);
}

void close_raw(TSK_IMG_INFO *info)
{
    delete reinterpret_cast<raw_image *>(info);
}

void describe_nothing(TSK_IMG_INFO *, FILE *)
{
}

image_handle open_raw(const QStringList &segments)
{
    auto image = std::make_unique<raw_image>();
    for (const QString &segment : segments) {
        image->files.push_back(open_evidence(segment));
        if (!image->files.back().is_open())
            return {nullptr, tsk().img_close};
        image->starts.push_back(image->size);
        image->size += QFileInfo(segment).size();
    }
    raw_image *const kept = image.release(); // the library closes it by close_raw()
    return {tsk().img_open_external(kept, kept->size, 512, read_raw, close_raw, describe_nothing), tsk().img_close};
}

image_handle open_by_library(const QStringList &segments, TSK_IMG_TYPE_ENUM type)
{
    QList<QByteArray> names;
    std::vector<const char *> texts;
    for (const QString &segment : segments)
        names.append(QFile::encodeName(segment));
    for (const QByteArray &name : std::as_const(names))
        texts.push_back(name.constData());
    return {tsk().img_open_utf8(int(texts.size()), texts.data(), type, 0), tsk().img_close};
}

image_handle open_any(const QStringList &segments, QLatin1StringView format)
{
    if (format == "raw"_L1)
        return open_raw(segments);
    // One name alone would be taken for a pattern, and have to end with ".E01"; twice the same is that one file.
    if (format == "ewf"_L1)
        return open_by_library(segments.size() == 1 ? segments + segments : segments, TSK_IMG_TYPE_EWF_EWF);
    // The other two libraries find the further files by themselves.
    return open_by_library(segments.first(1), format == "vmdk"_L1 ? TSK_IMG_TYPE_VMDK_VMDK : TSK_IMG_TYPE_VHD_VHD);
}

QList<container_file> files_now(const QStringList &paths)
{
    QList<container_file> files;
    for (const QString &path : paths)
        files.append(file_now(path));
    return files;
}

/** A volume, and how it is opened. */
struct known_volume
{
    volume_facts facts;
    unsigned type = no_type;
    std::optional<TSK_DADDR_T> pool_block; ///< of a volume of APFS
};

class disk_image : public source_container
{
public:
    disk_image(const QString &image_path, QLatin1StringView image_format)
        : path(image_path)
        , format(image_format)
        , segments(image_segments(image_path, image_format))
        , files(files_now(segments))
        , image(open_any(segments, image_format))
    {
        if (!image)
            throw host_error(error_kind::not_found, u"the image cannot be opened: "_s + path + u": "_s + image_error());
        if (format == "ewf"_L1)
            stored = hashes_in_ewf(segments.last());
        find_volumes();
        for (qsizetype i = 0; i < known.size(); ++i)
            known[i].facts.number = int(i) + 1;
    }

    container_facts facts() const override
    {
        container_facts facts;
        facts.kind = u"image"_s;
        facts.format = format;
        facts.files = files;
        facts.md5 = stored.md5;
        facts.sha1 = stored.sha1;
        return facts;
    }

    QString damage() const override
    {
        return format != "ewf"_L1 || stored.is_whole
                   ? QString()
                   : u"its end is missing, it was cut or a file that follows is not there: "_s + segments.last();
    }

    void hash_files(const read_observer &hashed) override
    {
        for (container_file &file : files)
            hash_file(file, hashed);
    }

    QList<volume_facts> volumes() const override
    {
        QList<volume_facts> all;
        for (const known_volume &volume : known)
            all.append(volume.facts);
        return all;
    }

    std::unique_ptr<evidence_store> store(int number) override
    {
        const known_volume &volume = known.at(number - 1);
        file_system_handle opened = open_file_system(volume);
        if (!opened)
            throw host_error(error_kind::not_found,
                             u"volume "_s + QString::number(number) + u" cannot be opened: "_s + image_error());
        return open_volume(std::move(opened));
    }

private:
    file_system_handle open_file_system(const known_volume &volume)
    {
        if (!volume.pool_block)
            return file_system_handle(
                tsk().fs_open_img(image.get(), volume.facts.offset, TSK_FS_TYPE_ENUM(volume.type)));
        const pool_handle &pool = pools.at(volume.facts.offset);
        image_handle inside(pool->get_img_info(pool.get(), *volume.pool_block), tsk().img_close);
        if (!inside)
            return {};
        TSK_FS_INFO *const opened = tsk().fs_open_img(inside.get(), 0, TSK_FS_TYPE_APFS);
        return opened ? file_system_handle(opened, file_system_closer{inside.release()}) : file_system_handle();
    }

    void find_volumes()
    {
        if (!add_volumes(0, image->size, {}))
            find_partitions();
        if (known.isEmpty()) // an image of something unknown is one volume without a file system
            add(0, image->size, {});
    }

    void find_partitions()
    {
        const std::unique_ptr<TSK_VS_INFO, void (*)(TSK_VS_INFO *)> table(tsk().vs_open(image.get(), 0,
                                                                                        TSK_VS_TYPE_DETECT),
                                                                          tsk().vs_close);
        if (!table)
            return tsk().error_reset();
        const bool has_names = table->vstype == TSK_VS_TYPE_GPT || table->vstype == TSK_VS_TYPE_MAC;
        for (const TSK_VS_PART_INFO *part = table->part_list; part && known.size() < most_volumes; part = part->next) {
            if ((part->flags & TSK_VS_PART_FLAG_ALLOC) == 0 || (part->flags & TSK_VS_PART_FLAG_META) != 0)
                continue;
            const qint64 offset = qint64(part->start) * table->block_size + qint64(table->offset);
            const qint64 size = qint64(part->len) * table->block_size;
            const QString name = has_names && part->desc ? evidence_name_text(part->desc) : QString();
            if (!add_volumes(offset, size, name))
                add(offset, size, name);
        }
    }

    known_volume &add(qint64 offset, qint64 size, const QString &name)
    {
        known_volume volume;
        volume.facts.offset = offset;
        volume.facts.size = size;
        volume.facts.name = name;
        known.append(volume);
        return known.last();
    }

    /** The volumes that begin at a place; false where nothing is known by its first bytes. */
    bool add_volumes(qint64 offset, qint64 size, const QString &name)
    {
        QByteArray start(start_bytes, '\0');
        if (tsk().img_read(image.get(), offset, start.data(), size_t(start.size())) <= 0) {
            add(offset, size, name).facts.problem = u"its first bytes cannot be read: "_s + image_error();
            return true;
        }
        const volume_signature *signature = signature_of(start);
        if (!signature)
            return false;
        if (signature->type == TSK_FS_TYPE_APFS) {
            add_pool(offset, size, name);
            return true;
        }
        known_volume volume;
        volume.facts.offset = offset;
        volume.facts.size = size;
        volume.facts.name = name;
        volume.type = signature->type;
        if (signature->type == no_type) {
            volume.facts.is_encrypted = true;
            volume.facts.problem = u"it is encrypted with "_s + signature->encrypted;
        } else {
            describe(volume);
        }
        known.append(volume);
        return true;
    }

    void describe(known_volume &volume)
    {
        const file_system_handle opened = open_file_system(volume);
        if (!opened) {
            volume.facts.problem = u"its file system cannot be opened: "_s + image_error();
            return;
        }
        volume.facts.file_system = name_of(opened->ftype);
        const QString label = volume_label(*opened);
        if (!label.isEmpty())
            volume.facts.name = label;
    }

    void add_pool(qint64 offset, qint64 size, const QString &name)
    {
        pool_handle pool(tsk().pool_open_img_sing(image.get(), offset, TSK_POOL_TYPE_APFS), tsk().pool_close);
        if (!pool) {
            known_volume &volume = add(offset, size, name);
            volume.facts.file_system = u"apfs"_s;
            volume.facts.problem = u"its container cannot be opened: "_s + image_error();
            return;
        }
        for (const TSK_POOL_VOLUME_INFO *in_pool = pool->vol_list; in_pool && known.size() < most_volumes;
             in_pool = in_pool->next) {
            known_volume &volume = add(offset, qint64(in_pool->num_blocks) * pool->block_size, name);
            volume.type = TSK_FS_TYPE_APFS;
            volume.pool_block = in_pool->block;
            volume.facts.file_system = u"apfs"_s;
            if (in_pool->desc && *in_pool->desc)
                volume.facts.name = evidence_name_text(in_pool->desc);
            volume.facts.is_encrypted = (in_pool->flags & TSK_POOL_VOLUME_FLAG_ENCRYPTED) != 0;
            if (volume.facts.is_encrypted)
                volume.facts.problem = u"it is encrypted with FileVault (APFS)"_s;
        }
        pools.emplace(offset, std::move(pool));
    }

    kept_access_times keeper; ///< as long as the library may open the files again
    QString path;
    QString format;
    QStringList segments;
    ewf_hashes stored;
    QList<container_file> files; ///< as they were before the image was opened
    image_handle image;
    std::map<qint64, pool_handle> pools;
    QList<known_volume> known;
};

} // namespace

std::unique_ptr<source_container> open_image(const QString &path, QLatin1StringView format)
{
    return std::make_unique<disk_image>(path, format);
}

ewf_hashes hashes_of_ewf_content(const QString &path)
{
    const kept_access_times keeper;
    const image_handle image = open_any(image_segments(path, "ewf"_L1), "ewf"_L1);
    if (!image)
        throw host_error(error_kind::not_found, u"the image cannot be opened: "_s + path + u": "_s + image_error());
    QCryptographicHash md5(QCryptographicHash::Md5);
    QCryptographicHash sha1(QCryptographicHash::Sha1);
    QByteArray block(1 << 20, Qt::Uninitialized);
    for (TSK_OFF_T place = 0; place < image->size;) {
        const auto wanted = size_t(qMin<TSK_OFF_T>(block.size(), image->size - place));
        const ssize_t count = tsk().img_read(image.get(), place, block.data(), wanted);
        if (count <= 0)
            throw host_error(error_kind::not_found,
                             u"the image cannot be read to its end: "_s + path + u": "_s + image_error());
        md5.addData(QByteArrayView(block.constData(), count));
        sha1.addData(QByteArrayView(block.constData(), count));
        place += count;
    }
    return {QString::fromLatin1(md5.result().toHex()), QString::fromLatin1(sha1.result().toHex())};
}

QString image_library()
{
    try {
        return u"The Sleuth Kit "_s + QString::fromLatin1(tsk().version_get_str());
    } catch (const host_error &error) {
        return error.message();
    }
}
