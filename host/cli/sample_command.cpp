// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/sample_command.h"

#include "host/cli/shell_text.h"
#include "host/sample/sample.h"

using namespace Qt::StringLiterals;

namespace {

/** Lines to paste: each source into a case of its own, and what can be seen then. */
terminal_texts next_commands(const sample_options &options)
{
    const QString &directory = options.directory;
    const terminal_text program = u"  "_s + shell_name_of_program();
    const auto extract = [&](const QString &source, const QString &name) {
        return program + u" extract -i "_s + shell_word(directory + u'/' + source) + u" -o "_s
               + shell_word(directory + u"/case-"_s + name);
    };
    const auto show = [&](const QString &name) {
        return program + u" show "_s + shell_word(directory + u"/case-"_s + name);
    };
    terminal_texts lines{extract(u"macos"_s, u"macos"_s), extract(ios_sample_log, u"ios"_s),
                         extract(u"windows"_s, u"windows"_s)};
    if (options.has_containers)
        lines += terminal_texts{extract(packed_sample, u"archive"_s), extract(ios_backup_sample, u"backup"_s),
                                extract(ios_files_sample, u"ios-files"_s)};
    return lines + terminal_texts{show(u"macos"_s), show(u"ios"_s)};
}

} // namespace

exit_code run_sample(const sample_options &options, console &out)
{
    const sample_content content{options.is_hostile ? sample_names::hostile : sample_names::usual,
                                 options.has_containers};
    for (const QString &path : write_sample(options.directory, content, options.force))
        out.note(u"this is not of the earlier sample and stays: "_s + path);
    out.print_unless_quiet(
        {u"A synthetic sample is in "_s + options.directory, {}, u"To extract it and to see its rows:"_s});
    out.print_unless_quiet(next_commands(options));
    return exit_code::done;
}
