// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/commands.h"
#include "host/cli/extract_command.h"
#include "host/cli/inspect_command.h"
#include "host/cli/note_command.h"
#include "host/cli/report_command.h"
#include "host/cli/sample_command.h"
#include "host/cli/show_command.h"
#include "host/cli/verify_command.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFileInfo>
#include <QTest>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

QString word(bool value)
{
    return value ? u"yes"_s : u"no"_s;
}

template<typename number>
QString word(const std::optional<number> &value)
{
    return value ? QString::number(qint64(*value)) : u"none"_s;
}

QStringList described(const QString &directory)
{
    return {u"directory "_s + directory};
}

QStringList described(const extract_options &options)
{
    const case_request &request = options.request;
    const QFileInfo plugin(request.options.plugin_file);
    QStringList texts{u"case "_s + request.directory,
                      u"earlier "_s + QString::number(int(request.earlier)),
                      u"only "_s + word(request.only),
                      u"jobs "_s + QString::number(request.jobs),
                      u"arguments "_s + request.arguments.join(u'|'),
                      u"examiner "_s + request.examiner,
                      u"case number "_s + request.case_number,
                      u"JSON "_s + word(options.json_progress),
                      u"confined "_s + word(request.options.is_confined),
                      u"verbose "_s + word(request.options.is_verbose),
                      u"plug-in "_s
                          + (plugin.path() == QCoreApplication::applicationDirPath()
                                 ? u"beside it, "_s + plugin.completeBaseName()
                                 : plugin.filePath()),
                      u"tables "_s + request.options.tables.join(u", "_s),
                      u"engine "_s + QString::number(request.options.engine_type),
                      u"display name "_s + request.options.display_name,
                      u"zone "_s + QString::number(request.options.timezone_offset),
                      u"suite tables "_s + word(request.options.suite_tables),
                      u"links "_s + word(request.options.follow_links),
                      u"live "_s + word(request.options.is_live),
                      u"memory "_s + QString::number(request.options.memory_limit),
                      u"time "_s + QString::number(request.options.timeout),
                      u"database "_s + QString::number(request.options.max_database),
                      u"log "_s + QString::number(request.options.max_log),
                      u"no hash "_s + word(request.options.skips_container_hash)};
    for (const named_source &source : request.sources)
        texts.append(u"source "_s + QString::number(source.number) + u", "_s + source.path + u", "_s
                     + (source.kind ? QString(source.kind->name) : u"any"_s) + u", "_s + QString::number(source.volume)
                     + u", "_s + source.member + u", "_s + source.place + u", "_s + source.name);
    return texts;
}

QStringList described(const show_options &options)
{
    return {u"place "_s + options.place,
            u"source "_s + word(options.source),
            u"table "_s + options.table,
            u"rows "_s + word(options.most_rows),
            u"layout "_s + QString::number(int(options.layout)),
            u"format "_s + (options.format ? format_name(*options.format) : u"none"_s)};
}

QStringList described(const verify_options &options)
{
    QStringList texts{u"case "_s + options.request.directory,
                      u"hash "_s + options.request.manifest_sha256,
                      u"reports "_s + options.request.report_folders.join(u", "_s),
                      u"no evidence "_s + word(options.request.leaves_out_evidence),
                      u"containers "_s + word(options.request.hashes_containers),
                      u"record "_s + options.record_file,
                      u"JSON "_s + word(options.json)};
    for (auto moved = options.request.moved_to.cbegin(); moved != options.request.moved_to.cend(); ++moved)
        texts.append(u"moved "_s + QString::number(moved.key()) + u" to "_s + moved.value());
    return texts;
}

QStringList described(const note_options &options)
{
    const std::optional<noted_row> &row = options.note.row;
    return {u"case "_s + options.directory,
            u"author "_s + options.note.author,
            u"device "_s + options.note.device,
            u"row "_s
                + (row ? QString::number(row->source) + u':' + row->table + u':' + QString::number(row->row)
                       : u"none"_s),
            u"flag "_s + word(options.note.is_flag),
            u"text "_s + options.note.text,
            u"list "_s + word(options.lists),
            u"remove "_s + word(options.remove)};
}

QStringList described(const inspect_options &options)
{
    return {u"paths "_s + options.paths.join(u", "_s), u"JSON "_s + word(options.json),
            u"memory "_s + QString::number(options.memory_limit), u"time "_s + QString::number(options.timeout)};
}

QStringList described(const sample_options &options)
{
    return {u"folder "_s + options.directory, u"force "_s + word(options.force),
            u"hostile "_s + word(options.is_hostile), u"containers "_s + word(options.has_containers)};
}

QStringList described(const report_options &options)
{
    QStringList texts{u"case "_s + options.case_directory,
                      u"folder "_s + options.output,
                      u"force "_s + word(options.force),
                      u"split "_s + word(options.split),
                      u"brief "_s + word(options.brief),
                      u"raw "_s + word(options.cells.is_raw),
                      u"mark "_s + word(options.cells.has_mark),
                      u"vendors "_s + options.vendors,
                      u"year "_s + word(options.times.log_year),
                      u"zone "_s + word(options.times.log_zone),
                      u"epoch "_s + word(options.times.mobile_epoch)};
    for (const report_format format : options.formats)
        texts.append(u"format "_s + QString::number(int(format)));
    return texts;
}

/** What a command was asked for, and how its messages are to be shown, as one text for each member. */
template<typename adder>
QStringList asked(const adder &add, const QString &arguments)
{
    CLI::App app;
    command_line line;
    line.arguments = arguments.split(u' ');
    const auto options = add(app, line);
    app.parse(arguments.toStdString());
    QStringList texts = described(*options);
    texts.append(u"events "_s + word(line.output.has_events));
    texts.append(u"no progress "_s + word(line.output.no_progress));
    return texts;
}

QStringList asked(const QString &arguments)
{
    const QString command = arguments.section(u' ', 0, 0);
    return command == "collect"_L1   ? asked(add_collect_command, arguments)
           : command == "extract"_L1 ? asked(add_extract_command, arguments)
           : command == "inspect"_L1 ? asked(add_inspect_command, arguments)
           : command == "note"_L1    ? asked(add_note_command, arguments)
           : command == "report"_L1  ? asked(add_report_command, arguments)
           : command == "sample"_L1  ? asked(add_sample_command, arguments)
           : command == "show"_L1    ? asked(add_show_command, arguments)
                                     : asked(add_verify_command, arguments);
}

} // namespace

/** What each option makes of a command, and what a command is without options. */
class test_arguments : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void without_options_data();
    void without_options();
    void option_data();
    void option();
};

void test_arguments::without_options_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QStringList>("texts");

    const QString jobs = QString::number(qMax(1U, std::thread::hardware_concurrency()));
    // clang-format off
    QTest::newRow("extract") << u"extract -i /s -o /c"_s << QStringList{
        u"case /c"_s, u"earlier 0"_s, u"only none"_s, u"jobs "_s + jobs, u"arguments extract|-i|/s|-o|/c"_s, u"examiner "_s, u"case number "_s, u"JSON no"_s,
        u"confined yes"_s, u"verbose no"_s, u"plug-in beside it, libbluetooth_logs"_s, u"tables devices, paired_devices"_s, u"engine 0"_s, u"display name "_s, u"zone 0"_s,
        u"suite tables no"_s, u"links no"_s, u"live no"_s, u"memory 2048"_s, u"time 0"_s, u"database 1024"_s, u"log 68719476736"_s, u"no hash no"_s,
        u"source -1, /s, any, 0, , -i /s, "_s, u"events no"_s, u"no progress no"_s};
    QTest::newRow("collect") << u"collect /c"_s << QStringList{u"directory /c"_s, u"events no"_s, u"no progress no"_s};
    QTest::newRow("show") << u"show /c"_s << QStringList{
        u"place /c"_s, u"source none"_s, u"table "_s, u"rows none"_s, u"layout 0"_s, u"format none"_s, u"events no"_s, u"no progress no"_s};
    QTest::newRow("verify") << u"verify /c"_s << QStringList{
        u"case /c"_s, u"hash "_s, u"reports "_s, u"no evidence no"_s, u"containers no"_s, u"record "_s, u"JSON no"_s, u"events no"_s, u"no progress no"_s};
    QTest::newRow("note") << u"note /c --list"_s << QStringList{
        u"case /c"_s, u"author "_s, u"device "_s, u"row none"_s, u"flag no"_s, u"text "_s, u"list yes"_s, u"remove none"_s, u"events no"_s, u"no progress no"_s};
    QTest::newRow("inspect") << u"inspect /a /b"_s << QStringList{
        u"paths /a, /b"_s, u"JSON no"_s, u"memory 2048"_s, u"time 0"_s, u"events no"_s, u"no progress no"_s};
    QTest::newRow("sample") << u"sample /d"_s << QStringList{
        u"folder /d"_s, u"force no"_s, u"hostile no"_s, u"containers no"_s, u"events no"_s, u"no progress no"_s};
    QTest::newRow("report") << u"report /c"_s << QStringList{
        u"case /c"_s, u"folder /c/Report"_s, u"force no"_s, u"split no"_s, u"brief no"_s, u"raw no"_s, u"mark no"_s, u"vendors "_s, u"year none"_s,
        u"zone none"_s, u"epoch none"_s, u"format 0"_s, u"events no"_s, u"no progress no"_s};
    // clang-format on
}

void test_arguments::without_options()
{
    QFETCH(const QString, arguments);
    QTEST(asked(arguments), "texts");
}

void test_arguments::option_data()
{
    QTest::addColumn<QString>("least");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QStringList>("different"); // of what the command is without them

    const QString extract = u"extract -i /s -o /c"_s;
    const auto row = [](const QString &least, const char *options, const QStringList &different) {
        QTest::newRow(options) << least << QString::fromLatin1(options) << different;
    };
    // clang-format off
    row(extract, "-i /t/../u",           {u"source -1, /u, any, 0, , -i /u, "_s});
    row(extract, "-t macos",             {u"source -1, /s, macOS, 0, , -i /s, "_s});
    row(extract, "--type auto",          {});
    row(extract, "--volume 3",           {u"source -1, /s, any, 3, , -i /s, "_s});
    row(extract, "--member a/b",         {u"source -1, /s, any, 0, a/b, -i /s, "_s});
    row(extract, "--source-number 7",    {u"source 7, /s, any, 0, , -i /s, "_s});
    row(extract, "--live",               {u"live yes"_s});
    row(extract, "--force",              {u"earlier 1"_s});
    row(extract, "--resume",             {u"earlier 2"_s});
    row(extract, "--add",                {u"earlier 3"_s});
    row(extract, "--only 5",             {u"only 5"_s});
    row(extract, "--examiner A",         {u"examiner A"_s});
    row(extract, "--case-number 7/26",   {u"case number 7/26"_s});
    row(extract, "--table paired_devices --table paired_devices", {u"tables paired_devices"_s});
    row(extract, "--engine KALDO_FIELD", {u"engine 1"_s});
    row(extract, "--engine KALDO_BOOT",  {u"engine 2"_s});
    row(extract, "--os-name x",          {u"display name x"_s});
    row(extract, "--timezone-offset +05:30", {u"zone 19800"_s});
    row(extract, "--timezone-offset -08:15", {u"zone -29700"_s});
    row(extract, "--timezone-offset -3600",  {u"zone -3600"_s});
    row(extract, "--suite-tables",       {u"suite tables yes"_s});
    row(extract, "--no-container-hash",  {u"no hash yes"_s});
    row(extract, "--follow-links",       {u"links yes"_s});
    row(extract, "--jobs 1000",          {u"jobs 1000"_s});
    row(extract, "--memory-limit 129",   {u"memory 129"_s});
    row(extract, "--timeout 9",          {u"time 9"_s});
    row(extract, "--max-database 8",     {u"database 8"_s});
    row(extract, "--max-log 0.5",        {u"log 536870912"_s});
    row(extract, "--max-log 1e-12",      {u"log 1"_s});
    row(extract, "--no-confinement",     {u"confined no"_s});
    row(extract, "--plugin /p.so",       {u"plug-in /p.so"_s});
    row(extract, "--progress text",      {});
    row(extract, "--progress json",      {u"JSON yes"_s, u"events yes"_s, u"no progress yes"_s});
    row(extract, "-v",                   {u"verbose yes"_s, u"no progress yes"_s});
    row(u"show /c"_s, "--source 0",      {u"source 0"_s});
    row(u"show /c"_s, "--table devices", {u"table devices"_s});
    row(u"show /c"_s, "--rows 0",        {u"rows 0"_s});
    row(u"show /c"_s, "--layout table",  {u"layout 1"_s});
    row(u"show /c"_s, "--layout records", {u"layout 2"_s});
    row(u"show /c --table devices"_s, "-f csv",   {u"format csv"_s});
    row(u"show /c --table devices"_s, "-f tsv",   {u"format tsv"_s});
    row(u"show /c --table devices"_s, "-f jsonl", {u"format jsonl"_s});
    row(u"verify /c"_s, "--manifest-sha256 0123456789abcdefABCDEF0123456789abcdef0123456789abcdef0123456789",
        {u"hash 0123456789abcdefABCDEF0123456789abcdef0123456789abcdef0123456789"_s});
    row(u"verify /c"_s, "--evidence 2=/x --evidence 7=/y=z", {u"moved 2 to /x"_s, u"moved 7 to /y=z"_s});
    row(u"verify /c"_s, "--containers",   {u"containers yes"_s});
    row(u"verify /c"_s, "--results-only", {u"no evidence yes"_s});
    row(u"verify /c"_s, "--report /r --report /q", {u"reports /r, /q"_s});
    row(u"verify /c"_s, "--json --record /r.json", {u"record /r.json"_s, u"JSON yes"_s});
    row(u"note /c --text t"_s, "--device b4c26a7fd37a", {u"device B4:C2:6A:7F:D3:7A"_s, u"text t"_s});
    row(u"note /c --text t"_s, "--row 1:devices:17", {u"row 1:devices:17"_s, u"text t"_s});
    row(u"note /c --device b4c26a7fd37a"_s, "--flag", {u"device B4:C2:6A:7F:D3:7A"_s, u"flag yes"_s});
    row(u"note /c --device b4c26a7fd37a"_s, "--text u", {u"device B4:C2:6A:7F:D3:7A"_s, u"text u"_s});
    row(u"note /c --device b4c26a7fd37a --flag"_s, "--by A", {u"author A"_s, u"device B4:C2:6A:7F:D3:7A"_s, u"flag yes"_s});
    row(u"note /c"_s, "--remove 3",       {u"remove 3"_s});
    row(u"inspect /a"_s, "--json",        {u"JSON yes"_s});
    row(u"inspect /a"_s, "--memory-limit 200 --timeout 8", {u"memory 200"_s, u"time 8"_s});
    row(u"sample /d"_s, "--force",        {u"force yes"_s});
    row(u"sample /d"_s, "--hostile",      {u"hostile yes"_s});
    row(u"sample /d"_s, "--image",        {u"containers yes"_s});
    row(u"report /c"_s, "-f html",        {});
    row(u"report /c"_s, "-f jsonl -f csv", {u"format 3"_s, u"format 1"_s});
    row(u"report /c"_s, "-o /d",          {u"folder /d"_s});
    row(u"report /c"_s, "--raw-cells",    {u"raw yes"_s});
    row(u"report /c"_s, "--csv-bom",      {u"mark yes"_s});
    row(u"report /c"_s, "--vendors /v",   {u"vendors /v"_s});
    row(u"report /c"_s, "--log-year 2024", {u"year 2024"_s});
    row(u"report /c"_s, "--log-zone -08:30", {u"zone -30600"_s});
    row(u"report /c"_s, "--log-zone +00:01", {u"zone 60"_s});
    row(u"report /c"_s, "--mobile-epoch 1970", {u"epoch 1970"_s});
    row(u"report /c"_s, "--mobile-epoch 2001", {u"epoch 2001"_s});
    row(u"report /c"_s, "--split",        {u"split yes"_s});
    row(u"report /c"_s, "--brief",        {u"brief yes"_s});
    row(u"report /c"_s, "--force",        {u"force yes"_s});
    // clang-format on
}

void test_arguments::option()
{
    QFETCH(const QString, least);
    QFETCH(const QString, options);
    const QStringList before = least.startsWith("note"_L1) // it does nothing by itself
                                   ? asked(u"note /c --list"_s) + QStringList{u"list no"_s}
                                   : asked(least);
    QStringList different;
    for (const QString &text : asked(least + u' ' + options)) {
        if (!before.contains(text) && !text.startsWith("arguments "_L1))
            different.append(text);
    }
    QTEST(different, "different");
}

BLUETOOTH_LOGS_TEST(test_arguments, QCoreApplication)

#include "test_arguments.moc"
