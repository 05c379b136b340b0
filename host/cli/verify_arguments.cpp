// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/reading_arguments.h"
#include "host/cli/verify_command.h"
#include "host/files/paths.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <memory>

using namespace Qt::StringLiterals;

std::shared_ptr<const verify_options> add_verify_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<verify_options>();
    check_request *const request = &options->request;
    CLI::App &verify = *app.add_subcommand("verify", "Compare evidence, working copies and results with the manifest");
    add_place(verify, {"CASE", "PATH", "The case's folder", {"bluetooth-logs verify case"}}, request->directory)
        ->required();
    const argument hash{"--manifest-sha256", "HEX",
                        "The manifest's hash from the examiner's notes (default: the file beside it)"};
    add_value(verify, hash, [request, hash](const QString &text) {
        static const QRegularExpression form(u"^[0-9A-Fa-f]{64}$"_s);
        if (!form.match(text).hasMatch())
            refuse(hash, text + u" is no SHA-256 of 64 hexadecimal digits"_s);
        request->manifest_sha256 = text;
    });
    const argument evidence{"--evidence",
                            "N=PATH",
                            "Where the evidence of source N lies now; may be given several times",
                            {"bluetooth-logs verify case --evidence 2=/mnt/elsewhere"}};
    add_values(verify, evidence, [request, evidence](const QStringList &places) {
        static const QRegularExpression form(u"^([0-9]{1,7})=(.*)$"_s, QRegularExpression::DotMatchesEverythingOption);
        for (const QString &place : places) {
            const QRegularExpressionMatch match = form.match(place);
            if (!match.hasMatch())
                refuse(evidence, u"must look like 3=/new/place, and not be "_s + place);
            request->moved_to.insert(match.captured(1).toInt(), absolute_path(match.captured(2), evidence.name()));
        }
    });
    add_flag(verify, {"--containers", "", "Hash images and archives again too, not only compare their sizes and times"},
             request->hashes_containers);
    add_flag(verify, {"--results-only", "", "Leave the evidence out", {"bluetooth-logs verify case --results-only"}},
             request->leaves_out_evidence);
    const argument report{"--report", "DIR", "The folder of a report that lies elsewhere; may be given several times"};
    add_values(verify, report, [request, report](const QStringList &folders) {
        for (const QString &folder : folders)
            request->report_folders.append(resolved_path(absolute_path(folder, report.name()), report.name()));
    });
    add_flag(verify, {"--json", "", "Print what was compared and found as JSON"}, options->json);
    add_place(verify,
              {"--record",
               "FILE",
               "Write the same into a file that is not there yet",
               {"bluetooth-logs verify case --record verified.json"}},
              options->record_file);
    const auto limits = add_reading_limits(verify, 0); // evidence may be terabytes
    verify.final_callback([options, limits, &line] {
        if (!options->record_file.isEmpty())
            limits->writable = {QFileInfo(options->record_file).path()};
        line.reading = *limits;
        line.command = [options](console &out) { return run_verify(*options, out); };
    });
    return options;
}
