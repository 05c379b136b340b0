// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_LAYOUT_H
#define HOST_CASE_LAYOUT_H

#include <QString>

/** Where things stand below a case's folder. */
class case_layout
{
public:
    explicit case_layout(const QString &directory);

    QString directory() const; ///< absolute
    QString result_folder() const;
    QString result_database() const;

    /** Throws host_error (usage) when a result stands there already, be it only a link. */
    void refuse_earlier_result() const;

    /** Removes an earlier result and makes sure of the case's folder. Throws host_error (internal_error). */
    void prepare() const;

private:
    QString case_directory;
};

#endif
