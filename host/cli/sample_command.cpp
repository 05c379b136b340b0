// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/sample_command.h"

#include "host/files/paths.h"
#include "host/files/terminal_text.h"
#include "host/sample/sample_parts.h"
#include "host/source/macos_databases.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *readme = R"(This folder holds synthetic samples written by "bluetooth-logs sample".

No person, device, address or identifier in it is real: all values come from a random number generator with a
fixed seed, so that every run writes the same bytes. Some names are hostile on purpose.

macos/    the root of a macOS source: two LE device databases and the Bluetooth preferences
ios/      the system log of an iOS source
windows/  the root of a Windows source, with placeholders only
)";

constexpr QLatin1StringView readme_name("/README.txt");
constexpr QLatin1StringView sample_entries[] = {"/macos"_L1, "/ios"_L1, "/windows"_L1, readme_name};

bool is_our_sample(const QString &directory)
{
    QFile file(directory + readme_name);
    return file.open(QIODevice::ReadOnly) && file.read(qint64(qstrlen(readme)) + 1) == readme;
}

/** Makes room for a sample. What this program did not write is never removed. */
void clear_directory(const QString &directory, bool force)
{
    QStringList present;
    for (const QLatin1StringView entry : sample_entries) {
        if (path_exists(directory + entry))
            present.append(directory + entry);
    }
    if (present.isEmpty())
        return;
    if (!is_our_sample(directory))
        throw host_error(exit_code::usage,
                         u"this stands in the way, and it is no sample of this program: "_s + present.join(u", "_s));
    if (!force)
        throw host_error(exit_code::usage,
                         u"the folder holds a sample already, "_s + directory + u": --force writes it anew"_s);
    for (const QString &entry : std::as_const(present)) {
        std::error_code error;
        std::filesystem::remove_all(to_std_path(entry), error);
        if (error)
            throw host_error(exit_code::internal_error, u"the earlier sample cannot be removed: "_s + entry);
    }
}

} // namespace

exit_code run_sample(const sample_options &options, const console &out)
{
    const QString directory = absolute_path(options.directory, u"DIR"_s);
    clear_directory(directory, options.force);

    const QString databases = directory + u"/macos/"_s + macos_database_folder;
    const QString preferences = directory + u"/macos/Library/Preferences/"_s;
    const QString log = directory + u"/ios/"_s;
    for (const QString &folder : {databases, preferences, log})
        make_sample_folder(folder);
    write_sample_file(directory + readme_name, readme); // first: what is half written can be written anew
    write_ledevices_databases(databases);
    write_preferences_plist(preferences + u"com.apple.Bluetooth.plist"_s);
    write_ios_log(log + u"system.log"_s);
    write_windows_folder(directory + u"/windows/"_s);

    out.print_unless_quiet(
        {u"A synthetic sample is in "_s + terminal_text(directory), QString(), u"Try"_s,
         u"  bluetooth-logs extract -i "_s + terminal_text(directory + u"/macos"_s) + u" -o CASE"_s});
    return exit_code::done;
}
