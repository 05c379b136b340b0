// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/verify_command.h"

using namespace Qt::StringLiterals;

namespace {

/** What the code means, in one line. */
QString verdict(const check_outcome &outcome, const check_request &request)
{
    const QString files = QString::number(outcome.files_compared) + u" files compared"_s;
    switch (outcome.code()) {
    case outcome_code::evidence_changed:
        return u"CHANGED     "_s + QString::number(outcome.differences.size())
               + (outcome.differences.size() == 1 ? u" difference, "_s : u" differences, "_s) + files;
    case outcome_code::partial:
        return u"INCOMPLETE  what is there is unchanged, "_s + files;
    case outcome_code::no_evidence:
        return u"NOT CHECKED evidence is not there to be looked at; the case itself is unchanged, "_s + files;
    default:
        return (request.leaves_out_evidence ? u"UNCHANGED   results and working copies, evidence left out, "_s
                                            : u"UNCHANGED   evidence, results and working copies, "_s)
               + files;
    }
}

} // namespace

exit_code run_verify(const check_request &request, console &out)
{
    const check_outcome outcome = check_case(request);
    for (const QString &note : outcome.notes)
        out.note(note);
    for (const QString &difference : outcome.differences)
        out.error(difference);
    for (const QString &text : outcome.incomplete)
        out.error(text);
    for (const QString &text : outcome.missing)
        out.error(text);
    out.print_unless_quiet({verdict(outcome, request)});
    return exit_code_of(outcome.code());
}
