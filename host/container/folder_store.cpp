// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/folder_store.h"

#include "host/container/file_stream.h"
#include "host/container/file_tree.h"
#include "host/files/file_times.h"
#include "host/files/system_error.h"
#include "host/files/utc_time.h"
#include "host/source/evidence_folder.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

class folder_tree : public file_tree
{
public:
    folder_tree(const QString &folder, bool links_leave)
        : top(folder)
        , follow_links(links_leave)
    {
    }

protected:
    tree_node root() override
    {
        tree_node node;
        node.what = tree_node::type::folder;
        return node;
    }

    QList<tree_node> entries(const tree_node &folder) override
    {
        const descriptor opened = open_evidence(place(folder), O_DIRECTORY);
        if (!opened.is_open())
            throw stream_failure(system_error_text(errno));
        QList<tree_node> nodes;
        for (const QString &name : entry_names(place(folder))) {
            tree_node node;
            node.name = name;
            node.path = folder.path.isEmpty() ? name : folder.path + u'/' + name;
            node.what = type_of(place(node));
            nodes.append(node);
        }
        return nodes;
    }

    QString link_text(const tree_node &link) override
    {
        QByteArray text(4096, '\0');
        const auto size = ::readlink(QFile::encodeName(place(link)).constData(), text.data(), size_t(text.size()));
        if (size < 0)
            throw stream_failure(system_error_text(errno));
        return QFile::decodeName(text.first(size));
    }

    file_origin origin_of(const tree_node &file) override
    {
        struct stat status = {};
        file_origin origin;
        origin.path = file.path;
        if (::stat(QFile::encodeName(place(file)).constData(), &status) != 0)
            return origin;
        origin.inode = quint64(status.st_ino);
        origin.size = qint64(status.st_size);
        origin.modified = utc_text(modification_time(status));
        return origin;
    }

    std::unique_ptr<byte_stream> open(const tree_node &file) override
    {
        descriptor opened = open_evidence(place(file));
        if (!opened.is_open())
            throw stream_failure(system_error_text(errno));
        return std::make_unique<file_stream>(std::move(opened));
    }

private:
    QString place(const tree_node &node) const
    {
        return node.path.isEmpty() ? top : top + u'/' + node.path;
    }

    /** Where links may leave the folder they count as what they lead to. */
    tree_node::type type_of(const QString &path) const
    {
        struct stat status = {};
        const QByteArray name = QFile::encodeName(path);
        const int result = follow_links ? ::stat(name.constData(), &status) : ::lstat(name.constData(), &status);
        if (result != 0)
            return tree_node::type::other;
        return S_ISDIR(status.st_mode)   ? tree_node::type::folder
               : S_ISREG(status.st_mode) ? tree_node::type::file
               : S_ISLNK(status.st_mode) ? tree_node::type::link
                                         : tree_node::type::other;
    }

    QString top;
    bool follow_links;
};

} // namespace

std::unique_ptr<evidence_store> open_folder(const QString &folder, bool follow_links)
{
    return std::make_unique<folder_tree>(folder, follow_links);
}
