// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/evidence_list.h"

#include "host/text/json_text.h"

using namespace Qt::StringLiterals;

namespace {

/** A file's texts and its size, in the order of the columns behind the source. */
struct listed_file
{
    explicit listed_file(const evidence_file &file)
        : path(file.path.toUtf8())
        , state(presence_name(file.state).data())
        , reason(file.reason.toUtf8())
        , size(file.before ? std::optional(file.before->size) : std::nullopt)
        , hashes{file.before ? file.before->sha256.toLatin1() : QByteArray(),
                 file.after ? file.after->sha256.toLatin1() : QByteArray(), file.copy_sha256.toLatin1()}
    {
    }

    QByteArray path;
    QByteArray state;
    QByteArray reason;
    std::optional<qint64> size;
    QByteArrayList hashes; ///< before, after, of the working copy
};

void append_text_or_null(QByteArray &json, const QString &name, QByteArrayView text)
{
    json += ",\"" + name.toLatin1() + "\":";
    if (text.isEmpty())
        json += "null";
    else
        append_json_text(json, text);
}

} // namespace

const QStringList &evidence_columns()
{
    static const QStringList names{u"source"_s, u"source_name"_s,   u"path"_s,         u"state"_s,      u"reason"_s,
                                   u"size"_s,   u"sha256_before"_s, u"sha256_after"_s, u"sha256_copy"_s};
    return names;
}

void add_evidence_cells(separated_file &file, const report_case &that_case)
{
    for (const report_source &source : that_case.sources) {
        for (const evidence_file &one : source.record.evidence.files) {
            const listed_file listed(one);
            file.add_number(source.record.number);
            for (const QByteArray &text : {source.name.toUtf8(), listed.path, listed.state, listed.reason})
                file.add_text(text);
            file.add_number(listed.size);
            for (const QByteArray &hash : listed.hashes)
                file.add_text(hash);
            file.end_line();
        }
    }
}

void tell_evidence_lines(const report_case &that_case, const std::function<void(QByteArrayView line)> &tell)
{
    const QStringList &names = evidence_columns();
    for (const report_source &source : that_case.sources) {
        for (const evidence_file &one : source.record.evidence.files) {
            const listed_file listed(one);
            QByteArray json = "{\"source\":" + QByteArray::number(source.record.number);
            append_text_or_null(json, names.at(1), source.name.toUtf8());
            append_text_or_null(json, names.at(2), listed.path);
            append_text_or_null(json, names.at(3), listed.state);
            append_text_or_null(json, names.at(4), listed.reason);
            json += ",\"size\":" + (listed.size ? QByteArray::number(*listed.size) : QByteArray("null"));
            for (qsizetype i = 0; i < listed.hashes.size(); ++i)
                append_text_or_null(json, names.at(6 + i), listed.hashes.at(i));
            tell(QByteArray(json + "}\n"));
        }
    }
}
