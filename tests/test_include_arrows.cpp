// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** A folder of sources, and what its files may include besides their own folder: folders, or single headers. */
struct folder_rule
{
    QString folder;
    QStringList may_include;
};

const QString frame_header = u"plugin/bluetooth_logs.h"_s;
const QString records_header = u"common/shared_records.h"_s;
const QString property_list_header = u"common/property_list/property_list_file.h"_s;

/** The floors of the house, the ground first. A folder that is not listed may not hold sources. */
// clang-format off
const folder_rule folder_rules[] = {
    {u"common/platform"_s,      {}},
    {u"common"_s,               {u"common/platform"_s}},
    {u"common/property_list"_s, {u"common"_s, u"common/platform"_s}},
    {u"extractors/ios_uid"_s,   {u"common"_s}},
    {u"extractors/macos"_s,     {u"common"_s, u"common/platform"_s, u"common/property_list"_s}},
    {u"extractors/winos"_s,     {u"common"_s}},
    {u"plugin"_s,               {u"common"_s, u"extractors/ios_uid"_s, u"extractors/macos"_s, u"extractors/winos"_s}},

    // Of the plug-in the program knows two headers, and only where the worker process drives it. Of what the plug-in is
    // made of it shares the reader of property lists, which reports need for names that no result has.
    {u"host/files"_s,           {}},
    {u"host/text"_s,            {u"host/files"_s}},
    {u"host/sqlite"_s,          {u"host/files"_s, u"host/text"_s}},
    {u"host/source"_s,          {u"host/files"_s, u"host/sqlite"_s, u"host/text"_s}},
    {u"host/container"_s,       {u"host/files"_s, u"host/sqlite"_s, u"host/source"_s, u"host/text"_s, u"common/property_list/property_list_guard.h"_s, u"common/platform/property_list.h"_s}},
    {u"host/devices"_s,         {u"host/files"_s, u"host/text"_s, u"host/source"_s, u"common/property_list/property_list_guard.h"_s, u"common/platform/property_list.h"_s}},
    {u"host/case"_s,            {u"host/files"_s, u"host/sqlite"_s, u"host/text"_s, u"host/source"_s}},
    {u"host/sample"_s,          {u"host/files"_s, u"host/sqlite"_s, u"host/source"_s}},
    {u"host/report/reading"_s,  {u"host/devices"_s, u"host/files"_s, u"host/sqlite"_s, u"host/text"_s, u"host/source"_s, u"host/case"_s, property_list_header}},
    {u"host/report/join"_s,     {u"host/devices"_s, u"host/files"_s, u"host/text"_s, u"host/source"_s, u"host/case"_s, u"host/report/reading"_s}},
    {u"host/report/tables"_s,   {u"host/files"_s, u"host/sqlite"_s, u"host/text"_s, u"host/report/reading"_s, u"host/report/join"_s}},
    {u"host/report/page"_s,     {u"host/devices"_s, u"host/files"_s, u"host/sqlite"_s, u"host/text"_s, u"host/case"_s, u"host/report/reading"_s, u"host/report/join"_s, u"host/report/tables"_s}},
    {u"host/report"_s,          {u"host/files"_s, u"host/text"_s, u"host/case"_s, u"host/source"_s, u"host/report/reading"_s, u"host/report/join"_s, u"host/report/tables"_s, u"host/report/page"_s}},
    {u"host/run"_s,             {u"host/container"_s, u"host/devices"_s, u"host/files"_s, u"host/sqlite"_s, u"host/text"_s, u"host/source"_s, u"host/case"_s}},
    {u"host/worker"_s,          {u"host/container"_s, u"host/files"_s, u"host/text"_s, u"host/source"_s, u"host/case"_s, u"host/run"_s, frame_header, records_header}},
    {u"host/cli"_s,             {u"host/container"_s, u"host/files"_s, u"host/text"_s, u"host/source"_s, u"host/case"_s, u"host/sample"_s, u"host/report"_s, u"host/report/reading"_s, u"host/report/tables"_s, u"host/run"_s}},
    {u"host"_s,                 {u"host/files"_s, u"host/run"_s, u"host/worker"_s, u"host/cli"_s}},
};
// clang-format on

/** Their files may include whatever they test or measure. */
const QStringList free_folders = {u"bench"_s, u"cmake"_s, u"fuzz"_s, u"tests"_s};

QString folder_of(const QString &path)
{
    return path.left(qMax<qsizetype>(0, path.lastIndexOf(u'/')));
}

bool is_free(const QString &folder)
{
    return free_folders.contains(folder.section(u'/', 0, 0));
}

/** What Qt's generators write for a source of the same folder. */
bool is_generated(const QString &file, const QString &included)
{
    const QString name = QFileInfo(file).completeBaseName();
    return included == name + u".moc"_s || included == u"ui_"_s + name + u".h"_s;
}

/** Why @p file may not have this include line, an empty text if it may. */
QString objection(const QDir &root, const QString &file, const QString &included, bool is_quoted)
{
    const QString line = file + u" includes "_s + included + u": "_s;
    const bool is_ours = QFile::exists(root.filePath(included));
    if (!is_quoted)
        return is_ours ? line + u"ours stand in quotes"_s : QString();
    if (is_generated(file, included))
        return {};
    if (!is_ours || included.contains(u".."_s))
        return line + u"no path from the root of the project"_s;

    const QString folder = folder_of(file);
    const auto rule = std::find_if(std::begin(folder_rules), std::end(folder_rules),
                                   [&folder](const folder_rule &one) { return one.folder == folder; });
    if (rule == std::end(folder_rules))
        return {}; // reported once for the file
    const QString target = folder_of(included);
    if (target == folder || rule->may_include.contains(target) || rule->may_include.contains(included))
        return {};
    return line + u"no such arrow"_s;
}

bool is_known(const QString &folder)
{
    return std::any_of(std::begin(folder_rules), std::end(folder_rules),
                       [&folder](const folder_rule &rule) { return rule.folder == folder; });
}

QStringList objections_to_file(const QDir &root, const QString &file)
{
    static const QRegularExpression include(uR"(^[ \t]*#[ \t]*(?:include|import)[ \t]*(["<])([^">\n]+)[">])"_s,
                                            QRegularExpression::MultilineOption);

    if (is_free(folder_of(file)))
        return {};
    if (!is_known(folder_of(file)))
        return {file + u": no rule for this folder"_s};

    QFile source(root.filePath(file));
    if (!source.open(QIODevice::ReadOnly))
        return {file + u": cannot be read"_s};
    QStringList objections;
    QRegularExpressionMatchIterator match = include.globalMatch(QString::fromUtf8(source.readAll()));
    while (match.hasNext()) {
        const QRegularExpressionMatch line = match.next();
        objections.append(objection(root, file, line.captured(2), line.captured(1) == "\""_L1));
    }
    objections.removeAll(QString());
    return objections;
}

/** Every source of the tree, by its path from the root. Build folders and hidden ones are not part of it. */
QStringList sources_below(const QDir &root)
{
    QStringList sources;
    QDirIterator files(root.path(), {u"*.h"_s, u"*.cpp"_s, u"*.mm"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString source = root.relativeFilePath(files.next());
        if (!source.startsWith(u'.') && !source.startsWith(u"build/"_s))
            sources.append(source);
    }
    sources.sort();
    return sources;
}

QStringList objections_to_tree(const QString &path)
{
    const QDir root(path);
    QStringList objections;
    for (const QString &source : sources_below(root))
        objections += objections_to_file(root, source);
    return objections;
}

void write_source(const QDir &root, const QString &path, const QByteArray &content)
{
    QVERIFY(root.mkpath(folder_of(u"./"_s + path)));
    QFile file(root.filePath(path));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

/** Arrows between folders run one way: each folder includes only what the list above allows. */
class test_include_arrows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rules_point_downwards();
    void this_tree();
    void made_up_tree_data();
    void made_up_tree();
};

void test_include_arrows::rules_point_downwards()
{
    QStringList folders_below;
    for (const folder_rule &rule : folder_rules) {
        for (const QString &target : rule.may_include)
            QVERIFY2(folders_below.contains(target.endsWith(".h"_L1) ? folder_of(target) : target), qPrintable(target));
        folders_below.append(rule.folder);
    }
}

void test_include_arrows::this_tree()
{
    QVERIFY(sources_below(QDir(PROJECT_FOLDER)).contains(frame_header));
    QCOMPARE(objections_to_tree(PROJECT_FOLDER), QStringList());
}

void test_include_arrows::made_up_tree_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("objections");

    // clang-format off
    QTest::newRow("own folder")              << u"common/a.cpp"_s << QByteArray("#include \"common/log.h\"\n") << QStringList();
    QTest::newRow("folder below")            << u"plugin/a.cpp"_s << QByteArray("#include \"common/log.h\"\n") << QStringList();
    QTest::newRow("header that is allowed")  << u"host/worker/a.cpp"_s   << QByteArray("#include \"common/shared_records.h\"\n") << QStringList();
    QTest::newRow("another of that folder")  << u"host/worker/a.cpp"_s   << QByteArray("#include \"common/log.h\"\n")
                                             << QStringList{u"host/worker/a.cpp includes common/log.h: no such arrow"_s};
    QTest::newRow("folder above")            << u"common/a.h"_s   << QByteArray("#include \"plugin/frame.h\"\n")
                                             << QStringList{u"common/a.h includes plugin/frame.h: no such arrow"_s};
    QTest::newRow("neighbour")               << u"extractors/macos/a.mm"_s << QByteArray("#import \"extractors/winos/b.h\"\n")
                                             << QStringList{u"extractors/macos/a.mm includes extractors/winos/b.h: no such arrow"_s};
    QTest::newRow("tests")                   << u"plugin/a.cpp"_s << QByteArray("#include \"tests/c.h\"\n")
                                             << QStringList{u"plugin/a.cpp includes tests/c.h: no such arrow"_s};
    QTest::newRow("second line, with blanks")<< u"common/a.cpp"_s << QByteArray("#include \"common/log.h\"\n # include  \"plugin/frame.h\"\n")
                                             << QStringList{u"common/a.cpp includes plugin/frame.h: no such arrow"_s};
    QTest::newRow("angle brackets")          << u"common/a.cpp"_s << QByteArray("#include <QString>\n#include <plugin/frame.h>\n")
                                             << QStringList{u"common/a.cpp includes plugin/frame.h: ours stand in quotes"_s};
    QTest::newRow("relative to the file")    << u"common/a.cpp"_s << QByteArray("#include \"log.h\"\n")
                                             << QStringList{u"common/a.cpp includes log.h: no path from the root of the project"_s};
    QTest::newRow("roundabout")              << u"common/a.cpp"_s << QByteArray("#include \"common/../plugin/frame.h\"\n")
                                             << QStringList{u"common/a.cpp includes common/../plugin/frame.h: no path from the root of the project"_s};
    QTest::newRow("generated for this file") << u"plugin/a.cpp"_s << QByteArray("#include \"ui_a.h\"\n#include \"a.moc\"\n") << QStringList();
    QTest::newRow("generated for another")   << u"plugin/a.cpp"_s << QByteArray("#include \"ui_frame.h\"\n")
                                             << QStringList{u"plugin/a.cpp includes ui_frame.h: no path from the root of the project"_s};
    QTest::newRow("unknown folder")          << u"common/misc/a.h"_s << QByteArray("")
                                             << QStringList{u"common/misc/a.h: no rule for this folder"_s};
    QTest::newRow("no folder")               << u"a.cpp"_s        << QByteArray("") << QStringList{u"a.cpp: no rule for this folder"_s};
    QTest::newRow("tests are free")          << u"tests/x/a.cpp"_s << QByteArray("#include \"plugin/frame.h\"\n#include \"b.h\"\n") << QStringList();
    QTest::newRow("build folder")            << u"build/x/a.cpp"_s << QByteArray("#include \"b.h\"\n") << QStringList();
    // clang-format on
}

void test_include_arrows::made_up_tree()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, objections);

    const QTemporaryDir folder;
    const QDir root(folder.path());
    for (const QString &header :
         {u"common/log.h"_s, records_header, u"extractors/winos/b.h"_s, u"plugin/frame.h"_s, u"tests/c.h"_s})
        write_source(root, header, "");
    QCOMPARE(objections_to_tree(root.path()), QStringList());

    write_source(root, file, content);
    QCOMPARE(objections_to_tree(root.path()), objections);
}

BLUETOOTH_LOGS_TEST(test_include_arrows, QCoreApplication)

#include "test_include_arrows.moc"
