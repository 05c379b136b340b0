// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/file_tree.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int most_links = 40; // as Linux follows them

tree_node folder_above(const QString &path)
{
    tree_node folder;
    folder.what = tree_node::type::folder;
    folder.path = path.left(qMax<qsizetype>(0, path.lastIndexOf(u'/')));
    return folder;
}

} // namespace

void file_tree::visit(const evidence_search &search, const file_taker &take)
{
    visited.clear();
    for (const QStringList &pattern : search.folders())
        look(root(), pattern, 0, {}, search, take);
}

std::optional<tree_node> file_tree::entry_named(const tree_node &folder, const QString &name)
{
    const QList<tree_node> all = entries(folder);
    const auto exact = std::find_if(all.cbegin(), all.cend(),
                                    [&name](const tree_node &node) { return node.name == name; });
    if (exact != all.cend())
        return *exact;
    const auto alike = std::find_if(all.cbegin(), all.cend(), [&name](const tree_node &node) {
        return node.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    return alike == all.cend() ? std::nullopt : std::optional(*alike);
}

file_tree::resolved file_tree::resolve(const tree_node &start, const QString &path, int links)
{
    tree_node place = path.startsWith(u'/') ? root() : start;
    for (const QString &part : path.split(u'/', Qt::SkipEmptyParts)) {
        if (part == "."_L1)
            continue;
        if (part == ".."_L1) {
            if (place.path.isEmpty())
                return {{}, u"it is a link that leads out of the container, to "_s + path};
            resolved above = resolve(root(), folder_above(place.path).path, links);
            if (!above.node)
                return above;
            place = *above.node;
            continue;
        }
        if (place.what != tree_node::type::folder)
            return {{}, u"it is a link that leads nowhere"_s};
        const std::optional<tree_node> entry = entry_named(place, part);
        if (!entry)
            return {{}, u"it is a link that leads nowhere"_s};
        resolved next = follow(place, *entry, links);
        if (!next.node)
            return next;
        place = *next.node;
    }
    return {place, {}};
}

file_tree::resolved file_tree::follow(const tree_node &folder, const tree_node &entry, int links)
{
    if (entry.what != tree_node::type::link)
        return {entry, {}};
    if (links >= most_links)
        return {{}, u"it is a link that leads to itself"_s};
    return resolve(folder, link_text(entry), links + 1);
}

void file_tree::look(const tree_node &folder, const QStringList &pattern, qsizetype place, const QStringList &parts,
                     const evidence_search &search, const file_taker &take)
{
    try {
        if (place == pattern.size())
            return take_folder(folder, parts, search, take);
        QList<tree_node> next;
        if (pattern.at(place) == "*"_L1)
            next = entries(folder);
        else if (const std::optional<tree_node> entry = entry_named(folder, pattern.at(place)))
            next.append(*entry);
        for (const tree_node &entry : std::as_const(next)) {
            const resolved target = follow(folder, entry, 0);
            const bool is_named = pattern.at(place) != "*"_L1;
            if (!target.node && is_named && !target.objection.isEmpty())
                notices.append(entry.path + u": "_s + target.objection);
            if (target.node && target.node->what == tree_node::type::folder)
                look(*target.node, pattern, place + 1, parts + QStringList{entry.name}, search, take);
        }
    } catch (const stream_failure &failure) {
        notices.append(u"the folder "_s + (folder.path.isEmpty() ? u"/"_s : folder.path) + u" cannot be read: "_s
                       + failure.reason());
    }
}

void file_tree::take_folder(const tree_node &folder, const QStringList &parts, const evidence_search &search,
                            const file_taker &take)
{
    if (visited.contains(folder.path)) // reached by another pattern, or by a link
        return;
    visited.insert(folder.path);
    if (search.match(parts)) {
        stored_file sign;
        sign.parts = parts;
        sign.is_folder = true;
        take(sign, nullptr);
    }
    for (const tree_node &entry : entries(folder)) {
        const QStringList path = parts + QStringList{entry.name};
        if (entry.what != tree_node::type::folder && search.match(path))
            take_file(folder, entry, path, take);
    }
}

void file_tree::take_file(const tree_node &folder, const tree_node &entry, const QStringList &parts,
                          const file_taker &take)
{
    stored_file file;
    file.parts = parts;
    file.origin.path = entry.path;
    std::unique_ptr<byte_stream> stream;
    try {
        const resolved target = follow(folder, entry, 0);
        if (!target.node) {
            file.objection = target.objection;
            file.is_refused = true;
        } else if (target.node->what != tree_node::type::file) {
            file.objection = u"it is not a regular file"_s;
            file.is_refused = true;
        } else {
            file.origin = origin_of(*target.node);
            stream = open(*target.node);
        }
    } catch (const stream_failure &failure) {
        file.objection = failure.reason();
        file.is_refused = failure.refuses();
        file.is_encrypted = failure.refuses();
    }
    take(file, stream.get());
}
