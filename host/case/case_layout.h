// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CASE_LAYOUT_H
#define HOST_CASE_CASE_LAYOUT_H

#include <QList>
#include <QString>
#include <QStringList>

/** "Source1": the folder of a source below the case, and what messages call it. */
QString source_name(int number);

/** Where things stand in the folder of one source of a case. */
class source_layout
{
public:
    source_layout(const QString &case_directory, int number);

    QString folder() const; ///< the plug-in's result directory
    QString lock() const;
    QString record() const;
    QString plugin_log() const;
    QString evidence_folder() const; ///< the host's working copies
    QString wal_changes() const;
    QString earlier_wal_changes() const; ///< what earlier versions of the program called it, in another form
    QString ios_lines() const;
    QString unparsed_lines() const;          ///< lines of a log with words of devices that gave no row
    QString salvage() const;                 ///< rows on the intact pages of a damaged database
    QString host_devices() const;            ///< devices of the lists that are no database
    QString temporary_folder() const;        ///< of the process that runs the plug-in
    QString plugin_temporary_folder() const; ///< of the plug-in, which removes it in the end
    QString result_folder() const;
    QString result_database() const;

    /** A path below the folder as it stands in records: relative to the case. */
    QString relative_to_case(const QString &path) const;

    /** Whether an earlier run left anything here. */
    bool holds_a_run() const;

    /**
     * Removes what the program wrote for a source, and only the names that it writes; folders go when they are empty.
     * Gives the paths that stay because they are not the program's. Throws host_error (io).
     */
    QStringList remove_run() const;

private:
    QString directory;
    QString source_folder;
};

/** Where things stand below a case's folder. */
class case_layout
{
public:
    /** @p directory is absolute. */
    explicit case_layout(const QString &directory);

    QString directory() const;
    QString lock() const;
    QString manifest() const;
    QString manifest_hash() const;
    QString notes() const;       ///< what examiners add
    QString source_list() const; ///< the sources of a case that has several, as --sources takes them
    source_layout source(int number) const;

    /** The numbers of the source folders that are there, in order. */
    QList<int> source_numbers() const;

private:
    QString case_directory;
};

#endif
