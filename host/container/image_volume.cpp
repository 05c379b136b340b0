// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/image_volume.h"

#include "host/files/utc_time.h"
#include "host/source/evidence_folder.h"

#include <QByteArray>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView fat_label_mark(" (Volume Label Entry)");
constexpr TSK_INUM_T ntfs_volume_entry = 3;
constexpr TSK_OFF_T ext_label_place = 1024 + 120;
constexpr size_t ext_label_bytes = 16;
constexpr size_t most_entries = 1'000'000;

using file_handle = std::unique_ptr<TSK_FS_FILE, void (*)(TSK_FS_FILE *)>;
using folder_handle = std::unique_ptr<TSK_FS_DIR, void (*)(TSK_FS_DIR *)>;

file_handle open_file(TSK_FS_INFO &system, TSK_INUM_T inode)
{
    file_handle file(tsk().fs_file_open_meta(&system, nullptr, inode), tsk().fs_file_close);
    if (!file || !file->meta)
        throw stream_failure(image_error());
    return file;
}

tree_node::type type_of(TSK_FS_META_TYPE_ENUM type)
{
    switch (type) {
    case TSK_FS_META_TYPE_REG:
        return tree_node::type::file;
    case TSK_FS_META_TYPE_DIR:
        return tree_node::type::folder;
    case TSK_FS_META_TYPE_LNK:
        return tree_node::type::link;
    default:
        return tree_node::type::other;
    }
}

class image_stream : public byte_stream
{
public:
    explicit image_stream(file_handle opened)
        : file(std::move(opened))
    {
    }

    qsizetype read(char *bytes, qsizetype most) override
    {
        const TSK_OFF_T left = file->meta->size - place;
        if (left <= 0)
            return 0;
        const auto wanted = size_t(qMin<TSK_OFF_T>(left, TSK_OFF_T(most)));
        const ssize_t count = tsk().fs_file_read(file.get(), place, bytes, wanted, TSK_FS_FILE_READ_FLAG_NONE);
        if (count <= 0)
            throw stream_failure(count < 0 ? image_error() : u"it ends before its size"_s);
        place += count;
        return count;
    }

private:
    file_handle file;
    TSK_OFF_T place = 0;
};

class image_tree : public file_tree
{
public:
    explicit image_tree(file_system_handle opened)
        : system(std::move(opened))
    {
    }

protected:
    tree_node root() override
    {
        tree_node node;
        node.what = tree_node::type::folder;
        node.inode = system->root_inum;
        return node;
    }

    QList<tree_node> entries(const tree_node &folder) override
    {
        const folder_handle opened(tsk().fs_dir_open_meta(system.get(), TSK_INUM_T(folder.inode)), tsk().fs_dir_close);
        if (!opened)
            throw stream_failure(image_error());
        QList<tree_node> nodes;
        const size_t count = qMin(tsk().fs_dir_getsize(opened.get()), most_entries);
        for (size_t i = 0; i < count; ++i) {
            const file_handle file(tsk().fs_dir_get(opened.get(), i), tsk().fs_file_close);
            if (!file || !file->name || !file->name->name || (file->name->flags & TSK_FS_NAME_FLAG_ALLOC) == 0
                || !file->meta || (file->meta->flags & TSK_FS_META_FLAG_ALLOC) == 0)
                continue; // deleted, or of a name alone
            tree_node node;
            node.name = evidence_name_text(file->name->name);
            if (node.name == "."_L1 || node.name == ".."_L1)
                continue;
            node.path = folder.path.isEmpty() ? node.name : folder.path + u'/' + node.name;
            node.inode = quint64(file->name->meta_addr);
            node.what = type_of(file->meta->type);
            nodes.append(node);
        }
        return nodes;
    }

    QString link_text(const tree_node &link) override
    {
        const file_handle file = open_file(*system, TSK_INUM_T(link.inode));
        if (!file->meta->link)
            throw stream_failure(u"it is a link without a target"_s);
        return evidence_name_text(file->meta->link);
    }

    file_origin origin_of(const tree_node &node) override
    {
        const file_handle file = open_file(*system, TSK_INUM_T(node.inode));
        file_origin origin;
        origin.path = node.path;
        origin.inode = node.inode;
        origin.size = qint64(file->meta->size);
        timespec time = {};
        time.tv_sec = file->meta->mtime;
        time.tv_nsec = long(file->meta->mtime_nano);
        origin.modified = utc_text(time);
        return origin;
    }

    std::unique_ptr<byte_stream> open(const tree_node &node) override
    {
        file_handle file = open_file(*system, TSK_INUM_T(node.inode));
        const TSK_FS_ATTR *content = tsk().fs_file_attr_get(file.get());
        if (content && (content->flags & TSK_FS_ATTR_ENC) != 0)
            throw stream_failure(u"it is encrypted"_s, true);
        return std::make_unique<image_stream>(std::move(file));
    }

private:
    file_system_handle system;
};

QString ntfs_label(TSK_FS_INFO &system)
{
    const file_handle file(tsk().fs_file_open_meta(&system, nullptr, ntfs_volume_entry), tsk().fs_file_close);
    if (!file)
        return {};
    const TSK_FS_ATTR *label = tsk().fs_file_attr_get_type(file.get(), TSK_FS_ATTR_TYPE_NTFS_VNAME, 0, 0);
    if (!label || label->size > 512)
        return {};
    QByteArray bytes(qsizetype(label->size), '\0');
    if (tsk().fs_attr_read(label, 0, bytes.data(), size_t(bytes.size()), TSK_FS_FILE_READ_FLAG_NONE) != bytes.size())
        return {};
    QString text;
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
        text += QChar(static_cast<uchar>(bytes.at(i)), static_cast<uchar>(bytes.at(i + 1)));
    return text;
}

QString ext_label(TSK_FS_INFO &system)
{
    QByteArray bytes(ext_label_bytes + 1, '\0');
    if (tsk().img_read(system.img_info, system.offset + ext_label_place, bytes.data(), ext_label_bytes)
        != ssize_t(ext_label_bytes))
        return {};
    return evidence_name_text(bytes.constData());
}

/** The library lists the label of a FAT as a file of its root. */
QString fat_label(TSK_FS_INFO &system)
{
    const folder_handle opened(tsk().fs_dir_open_meta(&system, system.root_inum), tsk().fs_dir_close);
    const size_t count = opened ? qMin(tsk().fs_dir_getsize(opened.get()), most_entries) : 0;
    for (size_t i = 0; i < count; ++i) {
        const TSK_FS_NAME *name = tsk().fs_dir_get_name(opened.get(), i);
        const QString text = name && name->name ? evidence_name_text(name->name) : QString();
        if (text.endsWith(fat_label_mark) && (name->flags & TSK_FS_NAME_FLAG_ALLOC) != 0)
            return text.chopped(fat_label_mark.size()).trimmed();
    }
    return {};
}

/** That of HFS+ is the name of its root folder. */
QString hfs_label(TSK_FS_INFO &system)
{
    const file_handle file(tsk().fs_file_open_meta(&system, nullptr, system.root_inum), tsk().fs_file_close);
    return file && file->meta && file->meta->name2 ? evidence_name_text(file->meta->name2->name) : QString();
}

} // namespace

QString image_error()
{
    const char *words = tsk().error_get();
    QString text = words ? evidence_name_text(words).simplified() : QString();
    tsk().error_reset();
    if (text.isEmpty())
        return u"no reason is known"_s;
    text[0] = text.at(0).toLower();
    return text;
}

QString volume_label(TSK_FS_INFO &system)
{
    QString label;
    if (TSK_FS_TYPE_ISNTFS(system.ftype))
        label = ntfs_label(system);
    else if (TSK_FS_TYPE_ISEXT(system.ftype))
        label = ext_label(system);
    else if (TSK_FS_TYPE_ISFAT(system.ftype))
        label = fat_label(system);
    else if (TSK_FS_TYPE_ISHFS(system.ftype))
        label = hfs_label(system);
    tsk().error_reset();
    return label;
}

std::unique_ptr<evidence_store> open_volume(file_system_handle file_system)
{
    return std::make_unique<image_tree>(std::move(file_system));
}
