// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_FILE_TREE_H
#define HOST_CONTAINER_FILE_TREE_H

#include "host/container/evidence_store.h"

#include <QSet>

/** A file, a folder or a link where every folder can be opened. */
struct tree_node
{
    enum class type { folder, file, link, other };

    type what = type::other;
    quint64 inode = 0;
    QString path; ///< from the root of the tree; empty: the root
    QString name;
};

/** A store whose folders can be opened: it knows what is in each, and looks only where evidence can be. */
class file_tree : public evidence_store
{
public:
    void visit(const evidence_search &search, const file_taker &take) override;

    QStringList warnings() const override
    {
        return notices;
    }

protected:
    virtual tree_node root() = 0;
    /** What is in a folder, deleted files aside. Throws stream_failure. */
    virtual QList<tree_node> entries(const tree_node &folder) = 0;
    /** Where a link leads, as it says. Throws stream_failure. */
    virtual QString link_text(const tree_node &link) = 0;
    /** What the tree says of a file: modified, size. */
    virtual file_origin origin_of(const tree_node &file) = 0;
    /** Throws stream_failure. */
    virtual std::unique_ptr<byte_stream> open(const tree_node &file) = 0;

private:
    /** What is at the end of a path, links followed inside the tree; a reason where there is nothing. */
    struct resolved
    {
        std::optional<tree_node> node;
        QString objection; ///< a link leads out of the tree or nowhere
    };

    resolved resolve(const tree_node &start, const QString &path, int links);
    resolved follow(const tree_node &folder, const tree_node &entry, int links);
    std::optional<tree_node> entry_named(const tree_node &folder, const QString &name);
    void look(const tree_node &folder, const QStringList &pattern, qsizetype place, const QStringList &parts,
              const evidence_search &search, const file_taker &take);
    void take_folder(const tree_node &folder, const QStringList &parts, const evidence_search &search,
                     const file_taker &take);
    void take_file(const tree_node &folder, const tree_node &entry, const QStringList &parts, const file_taker &take);

    QSet<QString> visited;
    QStringList notices;
};

#endif
