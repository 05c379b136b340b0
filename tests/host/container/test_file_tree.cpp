// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/file_tree.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString database = u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;

class text_stream : public byte_stream
{
public:
    explicit text_stream(const QString &text)
        : content(text.toUtf8())
    {
    }

    qsizetype read(char *bytes, qsizetype most) override
    {
        const QByteArray next = content.first(qMin(most, content.size()));
        std::copy_n(next.constData(), next.size(), bytes);
        content.remove(0, next.size());
        return next.size();
    }

private:
    QByteArray content;
};

/**
 * A tree of lines, in the order of its folders: "a/b = content", "a/b -> target", "a/b | " for what is neither file,
 * folder nor link, "a/b ! reason" for what cannot be opened, "a/b ? reason" for what will not be. Folders are there by
 * what is in them, or by "a/b/ ! reason".
 */
class lines_tree : public file_tree
{
public:
    explicit lines_tree(const QStringList &lines)
    {
        for (const QString &line : lines) {
            QString path = line.section(u' ', 0, 0);
            const bool is_folder = path.endsWith(u'/');
            if (is_folder)
                path.chop(1);
            marks.insert(path, line.section(u' ', 1, 1));
            texts.insert(path, line.section(u' ', 2));
            add(path, is_folder                      ? tree_node::type::folder
                      : marks.value(path) == "->"_L1 ? tree_node::type::link
                      : marks.value(path) == "|"_L1  ? tree_node::type::other
                                                     : tree_node::type::file);
        }
    }

    QStringList opened; ///< the folders that were, in their order

protected:
    tree_node root() override
    {
        tree_node node;
        node.what = tree_node::type::folder;
        return node;
    }

    QList<tree_node> entries(const tree_node &folder) override
    {
        opened.append(folder.path.isEmpty() ? u"/"_s : folder.path);
        require_access(folder.path);
        QList<tree_node> found;
        for (const tree_node &node : std::as_const(nodes)) {
            if (node.path == (folder.path.isEmpty() ? node.name : QString(folder.path + u'/' + node.name)))
                found.append(node);
        }
        return found;
    }

    QString link_text(const tree_node &link) override
    {
        return texts.value(link.path);
    }

    file_origin origin_of(const tree_node &file) override
    {
        file_origin origin;
        origin.path = file.path;
        origin.inode = file.inode;
        return origin;
    }

    std::unique_ptr<byte_stream> open(const tree_node &file) override
    {
        require_access(file.path);
        return std::make_unique<text_stream>(texts.value(file.path));
    }

private:
    void add(const QString &path, tree_node::type what)
    {
        const QString folder = path.section(u'/', 0, -2);
        const auto is_there = [this](const QString &wanted) {
            return std::any_of(nodes.cbegin(), nodes.cend(),
                               [&wanted](const tree_node &node) { return node.path == wanted; });
        };
        if (!folder.isEmpty() && !is_there(folder))
            add(folder, tree_node::type::folder);
        if (is_there(path))
            return;
        tree_node node;
        node.path = path;
        node.name = path.section(u'/', -1);
        node.what = what;
        node.inode = quint64(nodes.size() + 1);
        nodes.append(node);
    }

    void require_access(const QString &path) const
    {
        if (marks.value(path) == "!"_L1 || marks.value(path) == "?"_L1)
            throw stream_failure(texts.value(path), marks.value(path) == "?"_L1);
    }

    QList<tree_node> nodes;
    QHash<QString, QString> marks;
    QHash<QString, QString> texts;
};

/** "path (where it stands): content", or an objection with its flags, of each; then what is told of folders. */
QStringList taken_of(file_tree &tree, const source_kind &kind)
{
    QStringList found;
    tree.visit(evidence_search(&kind), [&found](const stored_file &file, byte_stream *stream) {
        QByteArray content(100, '\0');
        content.truncate(stream ? stream->read(content.data(), content.size()) : 0);
        found.append(joined(file.parts) + (file.is_folder ? u"/"_s : u" ("_s + file.origin.path + u')')
                     + (file.is_refused ? u", refused"_s : QString())
                     + (file.is_encrypted ? u", encrypted"_s : QString()) + u": "_s
                     + (stream ? QString::fromUtf8(content) : file.objection));
    });
    return found + tree.warnings();
}

/** Links from the database on, each to the next one, and behind the last of @p count a file. */
QStringList chain_of(int count)
{
    QStringList lines{database + u" -> /1"_s};
    for (int i = 1; i < count; ++i)
        lines.append(QString::number(i) + u" -> "_s + QString::number(i + 1));
    return lines + QStringList{QString::number(count) + u" = end"_s};
}

} // namespace

/** Where evidence is looked for in a tree of folders, and where links lead. */
class test_file_tree : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void taken_data();
    void taken();
    void folders_of_a_visit();
};

void test_file_tree::taken_data()
{
    QTest::addColumn<const source_kind *>("kind");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("texts");

    const QString place = database + u" ("_s + database + u')';
    const QString nowhere = u": it is a link that leads nowhere"_s;
    const QString outside = u": it is a link that leads out of the container, to "_s;
    const source_kind *const mac = &macos_kind;
    const source_kind *const windows = &winos_kind;
    const QString hive = u"Windows/System32/config/SYSTEM"_s;
    // clang-format off
    QTest::newRow("nothing")           << mac << QStringList{u"a = x"_s} << QStringList();
    QTest::newRow("a file")            << mac << QStringList{database + u" = x"_s} << QStringList{place + u": x"_s};
    QTest::newRow("in the order of its folder") << mac << QStringList{database + u"-wal = w"_s, database + u" = x"_s, u"Library/Bluetooth/other = y"_s}
        << QStringList{database + u"-wal ("_s + database + u"-wal): w"_s, place + u": x"_s};
    QTest::newRow("two roots")         << mac << QStringList{u"System/Volumes/Data/"_s + database + u" = x"_s, u"b/"_s + database + u" = y"_s}
        << QStringList{u"System/Volumes/Data/"_s + database + u" (System/Volumes/Data/"_s + database + u"): x"_s, u"b/"_s + database + u" (b/"_s + database + u"): y"_s};
    QTest::newRow("one folder by two ways") << mac << QStringList{u"a -> /"_s, database + u" = x"_s} << QStringList{place + u": x"_s};
    QTest::newRow("letters of Windows") << windows << QStringList{u"WINDOWS/system32/Config/system = x"_s}
        << QStringList{u"WINDOWS/system32/Config/system (WINDOWS/system32/Config/system): x"_s, u"WINDOWS/system32/: "_s};
    QTest::newRow("exact goes first")  << windows << QStringList{u"windows/System32/config/SYSTEM = x"_s, u"Windows/System32/config/SYSTEM = y"_s}
        << QStringList{hive + u" ("_s + hive + u"): y"_s, u"Windows/System32/: "_s};
    QTest::newRow("a folder is no file") << mac << QStringList{database + u"/a = x"_s} << QStringList();
    QTest::newRow("a device")          << mac << QStringList{database + u" |"_s} << QStringList{place + u", refused: it is not a regular file"_s};
    QTest::newRow("unreadable")        << mac << QStringList{database + u" ! no luck"_s} << QStringList{place + u": no luck"_s};
    QTest::newRow("encrypted")         << mac << QStringList{database + u" ? it is encrypted"_s} << QStringList{place + u", refused, encrypted: it is encrypted"_s};
    QTest::newRow("link")              << mac << QStringList{database + u" -> x"_s, u"Library/Bluetooth/x = y"_s} << QStringList{database + u" (Library/Bluetooth/x): y"_s};
    QTest::newRow("link upwards")      << mac << QStringList{database + u" -> .././../x"_s, u"x = y"_s} << QStringList{database + u" (x): y"_s};
    QTest::newRow("link to a folder")  << mac << QStringList{database + u" -> ../.."_s} << QStringList{place + u", refused: it is not a regular file"_s};
    QTest::newRow("link out")          << mac << QStringList{database + u" -> ../../../x"_s} << QStringList{place + u", refused"_s + outside + u"../../../x"_s};
    QTest::newRow("link nowhere")      << mac << QStringList{database + u" -> x"_s} << QStringList{place + u", refused"_s + nowhere};
    QTest::newRow("link below a file") << mac << QStringList{database + u" -> /x/y"_s, u"x = z"_s} << QStringList{place + u", refused"_s + nowhere};
    QTest::newRow("link through a link") << mac << QStringList{database + u" -> /a/../x"_s, u"a -> b/c"_s, u"b/c/x = no"_s, u"b/x = y"_s} << QStringList{database + u" (b/x): y"_s};
    QTest::newRow("40 links")          << mac << chain_of(40) << QStringList{database + u" (40): end"_s};
    QTest::newRow("41 links")          << mac << chain_of(41) << QStringList{place + u", refused: it is a link that leads to itself"_s};
    QTest::newRow("unreadable root")   << mac << QStringList{u"/ ! no luck"_s, database + u" = x"_s}
        << QStringList(9, u"the folder / cannot be read: no luck"_s);
    QTest::newRow("unreadable folder") << mac << QStringList{u"Library/ ! no luck"_s, database + u" = x"_s}
        << QStringList(6, u"the folder Library cannot be read: no luck"_s);
    QTest::newRow("unreadable folder of evidence") << mac << QStringList{u"Library/Bluetooth/ ! no luck"_s, database + u" = x"_s}
        << QStringList(2, u"the folder Library/Bluetooth cannot be read: no luck"_s);
    QTest::newRow("others of an unreadable folder") << mac << QStringList{u"a/Library/Bluetooth/ ! no luck"_s, u"b/"_s + database + u" = x"_s}
        << QStringList{u"b/"_s + database + u" (b/"_s + database + u"): x"_s} + QStringList(2, u"the folder a/Library/Bluetooth cannot be read: no luck"_s);
    QTest::newRow("folder by a link nowhere") << mac << QStringList{u"Library/Bluetooth -> x"_s} << QStringList(2, u"Library/Bluetooth"_s + nowhere);
    QTest::newRow("any folder by a link nowhere") << mac << QStringList{u"a -> x"_s} << QStringList();
    QTest::newRow("folder by a link")  << mac << QStringList{u"Library -> x/Lib"_s, u"x/Lib/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db = y"_s}
        << QStringList{database + u" (x/Lib/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db): y"_s};
    // clang-format on
}

void test_file_tree::taken()
{
    QFETCH(const source_kind *, kind);
    QFETCH(const QStringList, lines);
    lines_tree tree(lines);
    QTEST(taken_of(tree, *kind), "texts");
}

/** Only those are opened that lead to evidence; a second visit gives the same again. */
void test_file_tree::folders_of_a_visit()
{
    lines_tree tree({u"Users/a/b = x"_s, u"Library/Caches/c = x"_s, database + u" = x"_s});
    const QStringList first = taken_of(tree, macos_kind);
    tree.opened.removeDuplicates();
    QCOMPARE(tree.opened, QStringList({u"/"_s, u"Library"_s, u"Library/Bluetooth"_s, u"Users"_s}));
    QCOMPARE(taken_of(tree, macos_kind), first);
}

BLUETOOTH_LOGS_TEST(test_file_tree, QCoreApplication)

#include "test_file_tree.moc"
